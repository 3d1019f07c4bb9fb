#include "mip/cuts/implied_bounds.h"

#include <utility>

#include "mip/cuts/rounding.h"

namespace tovik::mip {
namespace {

/* The most violated bound of one side; null: none. */
const VariableBound* most_violated(std::span<const VariableBound> bounds, double sign, int j,
                                   std::span<const double> x) {
  const VariableBound* worst = nullptr;
  double most = 0;
  for (const VariableBound& b : bounds) {
    const double by = sign * (x[j] - b.at(x[b.binary]));
    if (by <= most) continue;
    most = by;
    worst = &b;
  }
  return worst;
}

}  // namespace

Verdict ImpliedBounds::call(Worker& worker, const Moment&) {
  const VariableBounds& table = worker.global.variable_bounds;
  const std::span<const double> x = worker.relaxation->primal();
  bool found = false;
  for (const int j : table.columns()) {
    for (const double sign : {1.0, -1.0}) {
      const VariableBound* bound = most_violated(sign > 0 ? table.upper(j) : table.lower(j), sign, j, x);
      if (bound == nullptr) continue;
      Cut cut;
      cut.kind = CutClass::implied_bound;
      cut.columns = {j, bound->binary};
      cut.values = {sign, -sign * bound->slope};
      if (cut.columns[0] > cut.columns[1]) {
        std::swap(cut.columns[0], cut.columns[1]);
        std::swap(cut.values[0], cut.values[1]);
      }
      cut.side = sign * bound->constant;
      if (!finish_cut(worker, x, &cut)) continue;
      worker.out.cuts.push_back(std::move(cut));
      found = true;
    }
  }
  return found ? Verdict::found : Verdict::nothing;
}

}  // namespace tovik::mip
