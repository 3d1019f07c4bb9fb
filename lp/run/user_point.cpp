#include "lp/run/user_point.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lp/verify/point.h"

namespace tovik::lp::run {
namespace {

/* Where a nonbasic variable must stand; what a status without a bound says is no place at all. */
double place(BasisStatus at, double lower, double upper) {
  return at == BasisStatus::lower ? lower : at == BasisStatus::upper ? upper : 0.0;
}

/* Nonbasics with equal bounds get the status that the simplex engine gives them, so that a basis compares
 * equal whichever way it was found. */
void settle_fixed(BasisStatus& at, BasisStatus settled, double lower, double upper) {
  if (at != BasisStatus::basic && lower == upper) at = settled;
}

}  // namespace

Answer complete_point(const LpData& lp, Answer point) {
  Answer answer;
  const auto rows = static_cast<size_t>(lp.num_rows());
  const auto columns = static_cast<size_t>(lp.num_columns());
  answer.x = std::move(point.x);
  answer.y = std::move(point.y);
  answer.column_status = std::move(point.column_status);
  answer.row_status = std::move(point.row_status);
  for (size_t i = 0; i < rows; ++i)
    settle_fixed(answer.row_status[i], BasisStatus::upper, lp.row_lower[i], lp.row_upper[i]);
  for (size_t j = 0; j < columns; ++j) {
    settle_fixed(answer.column_status[j], BasisStatus::lower, lp.lower[j], lp.upper[j]);
    const BasisStatus at = answer.column_status[j];
    const double bound = place(at, lp.lower[j], lp.upper[j]);
    if (at != BasisStatus::basic && at != BasisStatus::free && !std::isinf(bound)) answer.x[j] = bound;
  }
  const auto each = verify::entries_of(lp.matrix);
  answer.activity = verify::activities(lp.num_rows(), each, answer.x);
  answer.objective = verify::objective(lp, answer.x);
  answer.d.resize(columns);
  for (size_t j = 0; j < columns; ++j)
    answer.d[j] = verify::reduced_cost(lp.cost[j], static_cast<int>(j), each, answer.y).value();
  answer.violation = verify::measure_violation(lp, answer);
  answer.has_values = true;
  return answer;
}

Answer slack_point(const LpData& lp) {
  Answer point;
  point.x.assign(lp.cost.size(), 0.0);
  point.y.assign(lp.row_lower.size(), 0.0);
  point.row_status.assign(lp.row_lower.size(), BasisStatus::basic);
  for (int j = 0; j < lp.num_columns(); ++j)
    point.column_status.push_back(lp.lower[j] > -kInf  ? BasisStatus::lower
                                  : lp.upper[j] < kInf ? BasisStatus::upper
                                                       : BasisStatus::free);
  return complete_point(lp, std::move(point));
}

bool is_final(const LpData& lp, const Answer& answer, const simplex::Options& options) {
  if (!(answer.violation.primal() <= options.primal_tolerance) ||
      !(answer.violation.dual <= options.dual_tolerance) || !std::isfinite(answer.objective))
    return false;
  int basics = 0;
  const auto stands = [&](BasisStatus at, double value, double lower, double upper) {
    if (at == BasisStatus::basic) return ++basics > 0;
    return std::fabs(value - place(at, lower, upper)) <= options.primal_tolerance;
  };
  for (int j = 0; j < lp.num_columns(); ++j) {
    if (!stands(answer.column_status[j], answer.x[j], lp.lower[j], lp.upper[j])) return false;
  }
  for (int i = 0; i < lp.num_rows(); ++i) {
    if (!stands(answer.row_status[i], answer.activity[i], lp.row_lower[i], lp.row_upper[i])) return false;
  }
  return basics == lp.num_rows();
}

}  // namespace tovik::lp::run
