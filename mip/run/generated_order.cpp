#include "mip/run/generated_order.h"

#include <algorithm>
#include <cmath>

namespace tovik::mip::run {
namespace {

/* Smaller ones come first. */
double key_of(const Problem& problem, OrderRule rule, int j) {
  const lp::LpData& lp = problem.lp;
  const double cost = std::fabs(lp.cost[j]);
  switch (rule) {
    case OrderRule::decreasing_cost:
      return -cost;
    case OrderRule::increasing_range:
      return lp.upper[j] - lp.lower[j];
    default:
      return cost / std::max(1, lp.matrix.start[j + 1] - lp.matrix.start[j]);
  }
}

}  // namespace

std::vector<Priority> generate_order(const Problem& problem, OrderRule rule) {
  std::vector<Priority> order;
  if (rule == OrderRule::none) return order;
  std::vector<double> keys;
  for (int j = 0; j < problem.num_columns(); ++j) {
    if (problem.is_integer[j] != 0) keys.push_back(key_of(problem, rule, j));
  }
  std::sort(keys.begin(), keys.end());
  keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
  order.resize(static_cast<std::size_t>(problem.num_columns()));
  for (int j = 0; j < problem.num_columns(); ++j) {
    if (problem.is_integer[j] == 0) continue;
    const auto at = std::lower_bound(keys.begin(), keys.end(), key_of(problem, rule, j));
    order[static_cast<std::size_t>(j)].level = static_cast<int>(keys.end() - at);
  }
  return order;
}

const char* announcement(OrderRule rule) {
  switch (rule) {
    case OrderRule::decreasing_cost:
      return "Generated priority order by decreasing cost.\n";
    case OrderRule::increasing_range:
      return "Generated priority order by increasing bound range.\n";
    case OrderRule::increasing_cost_per_entry:
      return "Generated priority order by increasing cost per coefficient count.\n";
    default:
      return "";
  }
}

}  // namespace tovik::mip::run
