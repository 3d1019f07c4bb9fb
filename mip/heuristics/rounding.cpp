#include "mip/heuristics/rounding.h"

#include <algorithm>
#include <cmath>

#include "mip/domain/point.h"

namespace tovik::mip {
namespace {

constexpr int kDeadEnds = 5;  // failed fixings that end a rounding
constexpr double kLeastThreshold = 0.2, kThresholdRange = 0.6;

bool fix(Worker& worker, int column, double value) {
  worker.domain.fix(column, value, {Reason::Kind::branching, column});
  return worker.propagate();
}

/* What the objective cannot fall below in the domain. */
double least_objective(const Domain& domain) {
  const lp::LpData& lp = domain.problem().lp;
  double sum = lp.offset;
  for (int j = 0; j < lp.num_columns(); ++j) {
    if (lp.cost[j] != 0) sum += lp.cost[j] * (lp.cost[j] > 0 ? domain.lower(j) : domain.upper(j));
  }
  return sum;
}

/* Nearly whole values first. */
std::vector<int> order_of_fixing(const Worker& worker, std::span<const double> x) {
  std::vector<int> order;
  for (const int j : worker.global.integer_columns) {
    if (!worker.domain.is_fixed(j)) order.push_back(j);
  }
  std::stable_sort(order.begin(), order.end(),
                   [&](int a, int b) { return fractionality(x[a]) < fractionality(x[b]); });
  return order;
}

bool fix_all(Worker& worker, std::span<const double> x) {
  const Domain& domain = worker.domain;
  const double threshold = kLeastThreshold + kThresholdRange * worker.random.real();
  int dead_ends = 0;
  for (const int j : order_of_fixing(worker, x)) {
    if (worker.must_stop()) return false;
    if (domain.is_fixed(j)) continue;
    const double near = std::round(x[j]);
    const double wanted = std::fabs(x[j] - near) <= worker.global.settings.tolerances.integrality
                              ? near
                              : std::floor(x[j] + 1 - threshold);
    const double value = std::clamp(wanted, domain.lower(j), domain.upper(j));
    const int before = domain.position();
    if (fix(worker, j, value)) continue;
    worker.backtrack(before);
    const bool goes_down = x[j] < value || value == domain.upper(j);
    const double other = goes_down ? value - 1 : value + 1;
    if (++dead_ends > kDeadEnds || other < domain.lower(j) || other > domain.upper(j)) return false;
    if (!fix(worker, j, other)) return false;
  }
  return least_objective(domain) < worker.global.cutoff;
}

}  // namespace

std::optional<std::vector<double>> round_by_locks(const Worker& worker, std::span<const double> x) {
  const Global& global = worker.global;
  const double tolerance = global.settings.tolerances.integrality;
  std::vector<double> rounded;
  for (const int j : global.integer_columns) {
    if (fractionality(x[j]) <= tolerance) continue;
    const Locks locks = global.locks[j];
    if (locks.down > 0 && locks.up > 0) return std::nullopt;
    if (rounded.empty()) rounded.assign(x.begin(), x.end());
    const bool down = locks.down == 0 && (locks.up > 0 || global.problem.lp.cost[j] >= 0);
    rounded[j] = down ? std::floor(x[j]) : std::ceil(x[j]);
  }
  if (rounded.empty() || !(objective(global.problem, rounded) < global.cutoff)) return std::nullopt;
  return rounded;
}

Verdict SimpleRounding::call(Worker& worker, const Moment&) {
  std::optional<std::vector<double>> rounded = round_by_locks(worker, worker.relaxation->primal());
  if (!rounded) return Verdict::nothing;
  worker.out.candidates.push_back({std::move(*rounded), name()});
  return Verdict::found;
}

Verdict PropagatedRounding::call(Worker& worker, const Moment&) {
  const std::span<const double> primal = worker.relaxation->primal();
  std::vector<double> x(primal.begin(), primal.end());
  const Domain& domain = worker.domain;
  const int position = domain.position();
  const bool possible = fix_all(worker, x);
  if (possible) {
    for (std::size_t j = 0; j < x.size(); ++j) {
      const int column = static_cast<int>(j);
      x[j] = std::clamp(x[j], domain.lower(column), std::max(domain.lower(column), domain.upper(column)));
    }
  }
  worker.backtrack(position);
  if (!possible) return Verdict::nothing;
  worker.out.candidates.push_back({std::move(x), name()});
  return Verdict::found;
}

}  // namespace tovik::mip
