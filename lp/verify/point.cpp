#include "lp/verify/point.h"

namespace tovik::lp::verify {
namespace {

/* The largest of some violations and its place. */
void note(double violation, int where, double& largest, int& worst) {
  if (!(violation > largest)) return;
  largest = violation;
  worst = where;
}

}  // namespace

double objective(const LpData& lp, std::span<const double> x) {
  CompensatedSum sum;
  sum.add(lp.offset);
  for (size_t j = 0; j < x.size(); ++j) sum.add_product(lp.cost[j], x[j]);
  return sum.value();
}

Violation measure_violation(const LpData& lp, const Point& point, double reach) {
  Violation v;
  for (int j = 0; j < lp.num_columns(); ++j) {
    const double low = lp.lower[j], high = lp.upper[j];
    note(outside(point.x[j], low, high), j, v.column, v.worst_column);
    if (point.d.empty()) continue;
    const BasisStatus at =
        point.column_status.empty() ? status_at(point.x[j], low, high, reach) : point.column_status[j];
    note(wrong_sign(point.d[j], at, is_fixed(low, high)), j, v.dual, v.worst_dual);
  }
  for (int i = 0; i < lp.num_rows(); ++i) {
    const double low = lp.row_lower[i], high = lp.row_upper[i];
    note(outside(point.activity[i], low, high), i, v.row, v.worst_row);
    if (point.y.empty()) continue;
    const BasisStatus at =
        point.row_status.empty() ? status_at(point.activity[i], low, high, reach) : point.row_status[i];
    note(wrong_sign(point.y[i], at, is_fixed(low, high)), lp.num_columns() + i, v.dual, v.worst_dual);
  }
  return v;
}

Violation measure_violation(const LpData& lp, const Answer& answer) {
  return measure_violation(
      lp, Point{answer.x, answer.activity, answer.d, answer.y, answer.column_status, answer.row_status});
}

}  // namespace tovik::lp::verify
