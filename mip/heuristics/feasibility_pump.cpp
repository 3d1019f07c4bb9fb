#include "mip/heuristics/feasibility_pump.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "mip/branching/branching.h"

namespace tovik::mip {

using lp::Outcome;

namespace {

constexpr int kRounds = 60;
constexpr double kShareFall = 0.9, kSlowShareFall = 0.97, kLeastShare = 1e-3;
constexpr int kLeastTurned = 10, kTurnedRange = 10;

lp::simplex::Limits limits_until(const Worker& worker, std::int64_t end) {
  lp::simplex::Limits limits;
  limits.iterations = std::max<std::int64_t>(1, end - worker.iterations);
  return limits;
}

double norm(std::span<const double> v) {
  return std::sqrt(std::inner_product(v.begin(), v.end(), v.begin(), 0.0));
}

}  // namespace

Verdict FeasibilityPump::call(Worker& worker, const Moment& moment) {
  if (!moment.first) return Verdict::nothing;
  const std::int64_t end = worker.iterations + moment.iterations;
  if (worker.solve({}) != Outcome::optimal) return Verdict::nothing;
  const int position = worker.domain.position();
  const auto checkpoint = worker.relaxation->save();
  const bool found = pump(worker, end);
  worker.backtrack(position);
  worker.relaxation->restore(*checkpoint);
  worker.solve({});
  return found ? Verdict::found : Verdict::nothing;
}

bool FeasibilityPump::pump(Worker& worker, std::int64_t end) {
  std::vector<double> x;
  target_.clear();
  const int wanted = worker.global.settings.heuristics.pump;
  const double fall = wanted == 2 ? kSlowShareFall : kShareFall;
  double share = wanted == 1 ? 0 : 1;
  for (int k = 0; k < kRounds && worker.iterations < end; ++k) {
    const std::span<const double> primal = worker.relaxation->primal();
    x.assign(primal.begin(), primal.end());
    if (find_shortfall(worker, x).fractions.empty()) {
      polish(worker, x, end);
      worker.out.candidates.push_back({std::move(x), name()});
      return true;
    }
    if (!round(worker, x)) turn_farthest(worker, x);
    share *= fall;
    aim(worker, share > kLeastShare ? share : 0);
    if (worker.solve(limits_until(worker, end)) != Outcome::optimal) return false;
  }
  return false;
}

/* False when the rounded point is the last one again. */
bool FeasibilityPump::round(Worker& worker, std::span<const double> x) {
  const std::vector<int>& columns = worker.global.integer_columns;
  const bool is_first = target_.empty();
  target_.resize(columns.size());
  bool moved = is_first;
  for (std::size_t k = 0; k < columns.size(); ++k) {
    const int j = columns[k];
    const double value = std::clamp(std::round(x[j]), worker.domain.lower(j), worker.domain.upper(j));
    moved |= value != target_[k];
    target_[k] = value;
  }
  return moved;
}

void FeasibilityPump::turn_farthest(Worker& worker, std::span<const double> x) {
  const std::vector<int>& columns = worker.global.integer_columns;
  std::vector<std::size_t> order(columns.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  const std::size_t count =
      std::min(order.size(), static_cast<std::size_t>(kLeastTurned + worker.random.below(kTurnedRange)));
  const auto distance = [&](std::size_t k) { return std::fabs(x[columns[k]] - target_[k]); };
  std::partial_sort(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(count), order.end(),
                    [&](std::size_t a, std::size_t b) {
                      return distance(a) != distance(b) ? distance(a) > distance(b) : a < b;
                    });
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t k = order[i];
    const int j = columns[k];
    const double towards = x[j] > target_[k] ? target_[k] + 1 : target_[k] - 1;
    const double away = x[j] > target_[k] ? target_[k] - 1 : target_[k] + 1;
    const auto fits = [&](double v) { return v >= worker.domain.lower(j) && v <= worker.domain.upper(j); };
    target_[k] = fits(towards) ? towards : fits(away) ? away : target_[k];
  }
}

/* The distance to the target and a share of the objective, of the same norm, become the costs. */
void FeasibilityPump::aim(Worker& worker, double objective_share) {
  const Global& global = worker.global;
  const std::vector<double>& cost = global.problem.lp.cost;
  const double length = norm(cost);
  const double scale =
      length > 0 ? objective_share * std::sqrt(static_cast<double>(target_.size())) / length : 0;
  costs_.clear();
  for (int j = 0; j < global.problem.num_columns(); ++j) costs_.push_back({j, scale * cost[j]});
  for (std::size_t k = 0; k < target_.size(); ++k) {
    const int j = global.integer_columns[k];
    const bool at_lower = target_[k] <= worker.domain.lower(j);
    const bool at_upper = target_[k] >= worker.domain.upper(j);
    if (at_lower != at_upper) costs_[j].cost += (1 - objective_share) * (at_lower ? 1 : -1);
  }
  worker.relaxation->change_costs(costs_);
}

void FeasibilityPump::polish(Worker& worker, std::vector<double>& x, std::int64_t end) {
  costs_.clear();
  for (int j = 0; j < worker.global.problem.num_columns(); ++j) {
    costs_.push_back({j, worker.global.problem.lp.cost[j]});
  }
  for (const int j : worker.global.integer_columns) {
    worker.domain.fix(j, std::round(x[j]), {Reason::Kind::branching, j});
  }
  worker.relaxation->change_costs(costs_);
  if (worker.domain.is_infeasible() || worker.solve(limits_until(worker, end)) != Outcome::optimal) return;
  const std::span<const double> better = worker.relaxation->primal();
  x.assign(better.begin(), better.end());
}

}  // namespace tovik::mip
