#include "lp/network/working_arcs.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

namespace tovik::lp::network {
namespace {

constexpr std::size_t kMostArcs = std::size_t{1} << 30;
/* Neighbours that stay together: what they read shares lines of the cache. */
constexpr std::size_t kGroup = 8;

}  // namespace

WorkingArcs::WorkingArcs(const FlowProblem& problem) : problem_(problem) {
  list_origins();
  const std::size_t count = origin_.size();
  tail_.reserve(count);
  head_.reserve(count);
  cost_.reserve(count);
  state_.reserve(count);
  for (const int code : origin_) {
    const std::size_t k = at(code >> 1);
    const bool reversed = (code & 1) != 0;
    const double lower = problem.lower[k], upper = problem.upper[k], cost = problem.cost[k];
    tail_.push_back(reversed ? problem.head[k] : problem.tail[k]);
    head_.push_back(reversed ? problem.tail[k] : problem.head[k]);
    cost_.push_back(reversed ? -cost : cost);
    state_.push_back(upper - lower > 0 ? 1 : 0);
    if (lower != 0) other_bounds_ = true;
    integral_ = integral_ && is_exactly_added(cost) && (is_exactly_added(lower) || lower == -kInf) &&
                (is_exactly_added(upper) || upper == kInf);
    largest_cost_ = std::max(largest_cost_, std::fabs(cost));
  }
}

/* One entry an arc, two a free one, none a loop; then every k-th group of them, from each of the first k. */
void WorkingArcs::list_origins() {
  std::size_t count = 0, simple = 0;
  for (std::size_t a = 0; a < problem_.tail.size(); ++a) {
    const bool is_loop = problem_.tail[a] == problem_.head[a], bounded = problem_.lower[a] > -kInf;
    const bool free = !bounded && problem_.upper[a] == kInf;
    count += is_loop ? 0 : free ? 2 : 1;
    simple += !is_loop && bounded ? 1 : 0;
  }
  if (count > kMostArcs) throw std::bad_alloc();
  std::vector<int> in_order;
  const bool all_simple = simple == problem_.tail.size();
  if (!all_simple) in_order.reserve(count);
  for (int a = 0; !all_simple && a < problem_.num_arcs(); ++a) {
    if (problem_.tail[at(a)] == problem_.head[at(a)]) continue;
    const bool has_lower = problem_.lower[at(a)] > -kInf;
    in_order.push_back(2 * a + static_cast<int>(!has_lower && problem_.upper[at(a)] < kInf));
    if (!has_lower && problem_.upper[at(a)] == kInf) in_order.push_back(2 * a + 1);
  }
  const std::size_t groups = (count + kGroup - 1) / kGroup;
  const auto stride = static_cast<std::size_t>(std::max(std::sqrt(static_cast<double>(groups)), 3.0));
  origin_.reserve(count);
  for (std::size_t first = 0; first < std::min(stride, groups); ++first)
    for (std::size_t g = first; g < groups; g += stride)
      for (std::size_t k = g * kGroup; k < std::min(count, (g + 1) * kGroup); ++k)
        origin_.push_back(all_simple ? 2 * static_cast<int>(k) : in_order[k]);
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
  std::ranges::fill(cost_, 0);
}

void WorkingArcs::restore_costs() {
  for (int a = 0; a < count(); ++a) {
    const double cost = problem_.cost[at(origin(a))];
    cost_[at(a)] = is_reversed(a) ? -cost : cost;
  }
}

}  // namespace tovik::lp::network
