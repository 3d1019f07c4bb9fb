#include "lp/refine/iterate.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "lp/verify/bounds.h"

namespace tovik::lp::refine {

Accuracy measure(const LpData& lp, const Iterate& iterate, Residuals& residuals) {
  Accuracy worst{0, 0};
  const Matrix& a = lp.matrix;
  std::vector<CompensatedSum> rows(lp.row_lower.size());
  for (std::size_t i = 0; i < rows.size(); ++i) rows[i].add(lp.row_lower[i]);
  residuals.reduced_costs.resize(lp.cost.size());
  residuals.rows.resize(rows.size());
  for (int j = 0; j < lp.num_columns(); ++j) {
    CompensatedSum dual;
    dual.add(lp.cost[j]);
    for (int k = a.start[j]; k < a.start[j + 1]; ++k) {
      iterate.x[j].add_to(rows[a.index[k]], -a.value[k]);
      iterate.y[a.index[k]].add_to(dual, -a.value[k]);
    }
    const double d = residuals.reduced_costs[j] = dual.value();
    worst.primal =
        std::max({worst.primal, iterate.x[j].room_to(lp.lower[j]), -iterate.x[j].room_to(lp.upper[j])});
    worst.dual = std::max(worst.dual, verify::wrong_sign(d, iterate.basis.columns[j],
                                                         verify::is_fixed(lp.lower[j], lp.upper[j])));
  }
  for (std::size_t i = 0; i < rows.size(); ++i) {
    residuals.rows[i] = rows[i].value();
    worst.primal = std::max(worst.primal, std::fabs(residuals.rows[i]));
  }
  return worst;
}

}  // namespace tovik::lp::refine
