#include "lp/network/working_arcs.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

namespace tovik::lp::network {
namespace {

/* Whole numbers up to here stay exact when many are added. */
constexpr double kExact = 1e12;
constexpr std::size_t kMostArcs = std::size_t{1} << 30;

bool is_whole(double value) {
  return std::fabs(value) <= kExact && std::floor(value) == value;
}

}  // namespace

WorkingArcs::WorkingArcs(const FlowProblem& problem) : problem_(problem) {
  std::size_t count = 0;
  for (std::size_t a = 0; a < problem.tail.size(); ++a) {
    if (problem.tail[a] == problem.head[a]) continue;
    count += problem.lower[a] == -kInf && problem.upper[a] == kInf ? 2 : 1;
  }
  if (count > kMostArcs) throw std::bad_alloc();
  origin_.reserve(count);
  for (int a = 0; a < problem.num_arcs(); ++a) {
    if (problem.tail[at(a)] == problem.head[at(a)]) continue;
    const bool has_lower = problem.lower[at(a)] > -kInf;
    origin_.push_back(2 * a + static_cast<int>(!has_lower && problem.upper[at(a)] < kInf));
    if (!has_lower && problem.upper[at(a)] == kInf) origin_.push_back(2 * a + 1);
  }
  spread();
  arcs_.resize(count);
  capacity_.resize(count);
  state_.assign(count, 1);
  for (int a = 0; a < this->count(); ++a) {
    const std::size_t k = at(origin(a));
    const bool reversed = is_reversed(a);
    const double capacity = problem.upper[k] - problem.lower[k];
    arcs_[at(a)] = {reversed ? problem.head[k] : problem.tail[k],
                    reversed ? problem.tail[k] : problem.head[k], 0};
    capacity_[at(a)] = capacity;
    if (capacity <= 0) state_[at(a)] = 0;
    for (const double bound : {problem.lower[k], problem.upper[k]})
      if (std::isfinite(bound) && !is_whole(bound)) integral_ = false;
    if (!is_whole(problem.cost[k])) integral_ = false;
    largest_cost_ = std::max(largest_cost_, std::fabs(problem.cost[k]));
  }
  restore_costs();
}

/* Takes every k-th arc, from each of the first k. */
void WorkingArcs::spread() {
  const std::size_t count = origin_.size();
  const auto stride = static_cast<std::size_t>(std::max(std::sqrt(static_cast<double>(count)), 10.0));
  std::vector<int> spread;
  spread.reserve(count);
  for (std::size_t first = 0; first < std::min(stride, count); ++first)
    for (std::size_t k = first; k < count; k += stride) spread.push_back(origin_[k]);
  origin_ = std::move(spread);
}

bool WorkingArcs::is_free(int a) const {
  const std::size_t k = at(origin(a));
  return problem_.lower[k] == -kInf && problem_.upper[k] == kInf;
}

double WorkingArcs::original_flow(int a, double flow) const {
  const std::size_t k = at(origin(a));
  if (is_reversed(a)) return problem_.upper[k] < kInf ? problem_.upper[k] - flow : -flow;
  return problem_.lower[k] > -kInf ? problem_.lower[k] + flow : flow;
}

double WorkingArcs::original_bound(int a) const {
  if (state(a) >= 0) return original_flow(a, 0);
  return is_reversed(a) ? problem_.lower[at(origin(a))] : problem_.upper[at(origin(a))];
}

void WorkingArcs::clear_costs() {
  for (WorkingArc& arc : arcs_) arc.cost = 0;
}

void WorkingArcs::restore_costs() {
  for (int a = 0; a < count(); ++a) {
    const double cost = problem_.cost[at(origin(a))];
    arcs_[at(a)].cost = is_reversed(a) ? -cost : cost;
  }
}

}  // namespace tovik::lp::network
