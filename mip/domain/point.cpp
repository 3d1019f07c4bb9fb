#include "mip/domain/point.h"

#include <algorithm>
#include <cmath>

#include "lp/verify/point.h"

namespace tovik::mip {

double fractionality(double value) {
  return std::fabs(value - std::round(value));
}

double objective(const Problem& problem, std::span<const double> x) {
  return lp::verify::objective(problem.lp, x);
}

double violation(const SemiColumn& semi, std::span<const double> x) {
  const double v = x[semi.column];
  const double outside = std::max({0.0, semi.lower - v, v - semi.upper});
  return std::min(std::fabs(v), outside);
}

/* The best window of columns keeps its values, all others have to go to 0. */
double violation(const OrderedSet& set, std::span<const double> x) {
  const std::size_t count = set.columns.size();
  double first = 0, second = 0;  // largest values before and behind the best window
  double best = kInf;
  const auto width = static_cast<std::size_t>(set.type);
  std::vector<double> before(count + 1, 0.0), behind(count + 1, 0.0);
  for (std::size_t k = 0; k < count; ++k) before[k + 1] = std::max(before[k], std::fabs(x[set.columns[k]]));
  for (std::size_t k = count; k-- > 0;) behind[k] = std::max(behind[k + 1], std::fabs(x[set.columns[k]]));
  for (std::size_t k = 0; k < count; ++k) {
    first = before[k];
    second = behind[std::min(count, k + width)];
    best = std::min(best, std::max(first, second));
  }
  return count == 0 ? 0 : best;
}

double violation(const Indicator& indicator, std::span<const double> x) {
  const double off = std::fabs(x[indicator.switch_column] - indicator.active_value);
  return off < 0.5 ? std::fabs(x[indicator.slack]) : 0;
}

PointViolation measure(const Problem& problem, std::span<const double> x) {
  const lp::LpData& lp = problem.lp;
  PointViolation result;
  for (int j = 0; j < lp.num_columns(); ++j) {
    if (problem.is_integer[j] != 0) result.integrality = std::max(result.integrality, fractionality(x[j]));
    result.bound = std::max({result.bound, lp.lower[j] - x[j], x[j] - lp.upper[j]});
    if (!std::isfinite(x[j])) result.bound = kInf;
  }
  const std::vector<double> activity =
      lp::verify::activities(lp.num_rows(), lp::verify::entries_of(lp.matrix), x);
  for (int i = 0; i < lp.num_rows(); ++i) {
    result.row = std::max({result.row, lp.row_lower[i] - activity[i], activity[i] - lp.row_upper[i]});
  }
  const auto each = [&](const auto& objects) {
    for (const auto& object : objects) result.object = std::max(result.object, violation(object, x));
  };
  each(problem.semi_columns);
  each(problem.sets);
  each(problem.indicators);
  return result;
}

}  // namespace tovik::mip
