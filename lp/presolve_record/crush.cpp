#include "lp/presolve_record/crush.h"

#include <utility>

#include "include/tovik.h"

namespace tovik::lp::run {
namespace {

using presolve::RemovalReason;

std::vector<double> times(double sign, std::vector<double> values) {
  if (sign < 0) {
    for (double& v : values) v = v == 0 ? 0 : -v;
  }
  return values;
}

std::vector<double> copy(const double* values, size_t count) {
  return values == nullptr ? std::vector<double>(count, 0.0) : std::vector<double>(values, values + count);
}

/* A reduced point whose columns all count as lying between their bounds and whose rows as not binding. */
Answer loose_point(const LpData& reduced) {
  Answer point;
  point.x.assign(reduced.cost.size(), 0.0);
  point.d.assign(reduced.cost.size(), 0.0);
  point.y.assign(reduced.row_lower.size(), 0.0);
  point.column_status.assign(reduced.cost.size(), BasisStatus::basic);
  point.row_status.assign(reduced.row_lower.size(), BasisStatus::basic);
  return point;
}

std::vector<int> removal_codes(const std::vector<RemovalReason>& reasons, const std::vector<int>& map) {
  std::vector<int> codes(reasons.size());
  for (size_t k = 0; k < reasons.size(); ++k) {
    switch (reasons[k]) {
      case RemovalReason::redundant:
        codes[k] = TVK_PRESTAT_REDUNDANT;
        break;
      case RemovalReason::fixed:
        codes[k] = TVK_PRESTAT_FIXED;
        break;
      case RemovalReason::aggregated:
        codes[k] = TVK_PRESTAT_SUBSTITUTED;
        break;
      case RemovalReason::merged:
        codes[k] = TVK_PRESTAT_MERGED;
        break;
      default:
        codes[k] = TVK_PRESTAT_OTHER;
    }
  }
  for (size_t k = 0; k < map.size(); ++k) codes[map[k]] = static_cast<int>(k);
  return codes;
}

}  // namespace

std::vector<double> crush_pi(const Presolved& presolved, const double* pi) {
  std::vector<double> y = times(presolved.sign, copy(pi, presolved.original.row_lower.size()));
  return times(presolved.sign, presolve::crush_duals(presolved.reduction, std::move(y)));
}

std::vector<double> uncrush_x(const Presolved& presolved, const double* x) {
  Answer point = loose_point(presolved.reduction.lp);
  point.x = copy(x, point.x.size());
  return presolve::postsolve(presolved.original, presolved.reduction, point).x;
}

/* Where the duals are not zero their signs tell which bounds and sides hold them. */
std::vector<double> uncrush_pi(const Presolved& presolved, const double* pi) {
  const LpData& lp = presolved.reduction.lp;
  Answer point = loose_point(lp);
  point.y = times(presolved.sign, copy(pi, point.y.size()));
  for (size_t i = 0; i < point.y.size(); ++i)
    point.row_status[i] = presolve::Undo::side(BasisStatus::basic, point.y[i]);
  for (int j = 0; j < lp.num_columns(); ++j) {
    presolve::CleanSum d(lp.cost[j]);
    for (int k = lp.matrix.start[j]; k < lp.matrix.start[j + 1]; ++k)
      d.subtract(lp.matrix.value[k] * point.y[lp.matrix.index[k]]);
    point.d[j] = d.value();
    point.column_status[j] = presolve::Undo::side(BasisStatus::basic, point.d[j]);
  }
  return times(presolved.sign, presolve::postsolve(presolved.original, presolved.reduction, point).y);
}

presolve::LinearForm dense_form(int columns, int count, const int* index, const double* value) {
  presolve::LinearForm form;
  form.coefficients.assign(static_cast<size_t>(columns), 0.0);
  for (int k = 0; k < count; ++k) form.coefficients[index[k]] += value[k];
  return form;
}

std::vector<int> row_codes(const Presolved& presolved) {
  return removal_codes(presolved.reduction.row_removal, presolved.reduction.row_map);
}

std::vector<int> column_codes(const Presolved& presolved) {
  return removal_codes(presolved.reduction.column_removal, presolved.reduction.column_map);
}

}  // namespace tovik::lp::run
