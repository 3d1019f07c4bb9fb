#include "lp/basis_query/sensitivity.h"

#include <algorithm>
#include <cmath>

#include "env/solution_access.h"
#include "model/store/model.h"

namespace tovik::lp::run {
namespace {

constexpr double kInfinity = model::kInfinity;
constexpr double kNoCost = 1e-9;     // smaller reduced costs do not tell one bound from the other
constexpr double kNoEffect = 1e-11;  // smaller entries of a row or column do not bind

double clip(double v) {
  return std::clamp(v, -kInfinity, kInfinity);
}

}  // namespace

Status Sensitivity::open(Environment& env, Problem& problem) {
  Status why;
  if (!is_optimal(problem) || find_solution(problem, SolutionPart::duals, why) == nullptr)
    return Status(TVK_ERROR_NO_SENSITIVITY);
  if (const Status status = view_.open_for_query(env, problem); !status.ok()) return status;
  problem_ = &problem;
  sign_ = problem.model->objective_sense();
  const simplex::Core& core = view_.core();
  const Solution& solution = *problem.solution;
  reduced_cost_.resize(static_cast<size_t>(core.total()));
  for (int j = 0; j < core.n(); ++j) reduced_cost_[j] = sign_ * solution.dj[j];
  for (int i = 0; i < core.m(); ++i) reduced_cost_[core.n() + i] = -sign_ * solution.pi[i];
  return {};
}

Interval Sensitivity::cost(int j) {
  const simplex::Core& core = view_.core();
  const double c = view_.solver().user_lp().cost[j];
  Interval range{-kInfinity, kInfinity};
  const int p = view_.position(j);
  if (p < 0) {
    if (core.is_fixed(j)) {
      // never enters: any cost keeps the basis
    } else if (core.basis.move(j) < 0) {
      range.upper = c - reduced_cost_[j];
    } else {
      range.lower = c - reduced_cost_[j];
      if (core.basis.move(j) == 0) range.upper = range.lower;
    }
  } else {
    double down = -kInf;
    double up = kInf;
    std::vector<double> row, alpha;
    view_.inverse_row(p, row);
    view_.row_times_matrix(row, alpha);
    const auto limit = [&](int k, double a) {
      if (!core.basis.nonbasic(k) || core.is_fixed(k) || std::fabs(a) < kNoEffect) return;
      const double ratio = reduced_cost_[k] / a;
      const bool at_lower = core.basis.move(k) >= 0;
      const bool at_upper = core.basis.move(k) <= 0;
      if (at_lower) (a > 0 ? up = std::min(up, ratio) : down = std::max(down, ratio));
      if (at_upper) (a > 0 ? down = std::max(down, ratio) : up = std::min(up, ratio));
    };
    for (int k = 0; k < core.n(); ++k) limit(k, alpha[k]);
    for (int i = 0; i < core.m(); ++i) limit(core.n() + i, row[i]);
    range.lower = c + std::min(down, 0.0);
    range.upper = c + std::max(up, 0.0);
  }
  if (sign_ < 0) range = {-range.upper, -range.lower};
  return {clip(range.lower), clip(range.upper)};
}

/* x_B - step * column must stay within the bounds of the basic variables. */
Interval Sensitivity::step_range(const std::vector<double>& column) {
  const simplex::Core& core = view_.core();
  double down = -kInf;
  double up = kInf;
  for (int p = 0; p < core.m(); ++p) {
    const double a = column[p];
    if (std::fabs(a) < kNoEffect) continue;
    const int j = core.basis.head(p);
    const double unit =
        j < core.n() ? view_.solver().column_scale(j) : 1.0 / view_.solver().row_scale(j - core.n());
    const double to_lower = std::max(0.0, (core.values.x(p) - core.model.lower(j)) * unit);
    const double to_upper = std::max(0.0, (core.model.upper(j) - core.values.x(p)) * unit);
    if (a > 0) {
      up = std::min(up, to_lower / a);
      down = std::max(down, -to_upper / a);
    } else {
      up = std::min(up, to_upper / -a);
      down = std::max(down, -to_lower / -a);
    }
  }
  return {down, up};
}

Interval Sensitivity::rhs(int i) {
  const simplex::Core& core = view_.core();
  const double b = problem_->model->rhs()[i];
  const int p = view_.position(core.n() + i);
  if (p >= 0) {
    const double activity = b - view_.value(p);
    const double width = problem_->model->range()[i];
    switch (problem_->model->sense()[i]) {
      case 'L':
        return {clip(std::min(activity, b)), kInfinity};
      case 'G':
        return {-kInfinity, clip(std::max(activity, b))};
      case 'R':
        return {clip(activity - std::max(width, 0.0)), clip(activity - std::min(width, 0.0))};
      default:
        return {b, b};
    }
  }
  std::vector<double> unit(static_cast<size_t>(core.m()), 0.0), column;
  unit[i] = 1.0;
  view_.solve(unit, column);
  // The logical moves against the right-hand side.
  const Interval step = step_range(column);
  return {clip(b - step.upper), clip(b - step.lower)};
}

Interval Sensitivity::lower_bound(int j) {
  const simplex::Core& core = view_.core();
  const double x = problem_->solution->x[j];
  if (view_.position(j) >= 0 || core.basis.move(j) < 0 || core.model.is_free(j)) return {-kInfinity, clip(x)};
  std::vector<double> column;
  view_.solve(view_.column(j), column);
  const Interval step = step_range(column);
  if (core.is_fixed(j)) {  // with room below it stands at the bound that its reduced cost asks for
    return {reduced_cost_[j] > kNoCost ? clip(x + step.lower) : -kInfinity, clip(x)};
  }
  return {clip(x + step.lower), clip(std::min(x + step.upper, problem_->model->upper()[j]))};
}

Interval Sensitivity::upper_bound(int j) {
  const simplex::Core& core = view_.core();
  const double x = problem_->solution->x[j];
  if (view_.position(j) >= 0 || core.basis.move(j) > 0 || core.model.is_free(j)) return {clip(x), kInfinity};
  std::vector<double> column;
  view_.solve(view_.column(j), column);
  const Interval step = step_range(column);
  if (core.is_fixed(j)) {
    return {clip(x), reduced_cost_[j] < -kNoCost ? clip(x + step.upper) : kInfinity};
  }
  return {clip(std::max(x + step.lower, problem_->model->lower()[j])), clip(x + step.upper)};
}

}  // namespace tovik::lp::run
