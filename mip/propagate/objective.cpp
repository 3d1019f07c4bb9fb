#include "mip/propagate/objective.h"

#include <algorithm>
#include <cmath>

namespace tovik::mip {
namespace {

constexpr double kTolerance = 1e-9;  // relative, by which the cutoff may be passed
constexpr double kRounding = 1e-12;  // of the sum, relative to its terms
constexpr double kFairMove = 1e-3;   // of a continuous column's bound, relative

}  // namespace

ObjectivePropagator::ObjectivePropagator(const Problem& problem) : problem_(problem) {
  const std::vector<double>& cost = problem.lp.cost;
  for (int j = 0; j < problem.num_columns(); ++j) {
    if (cost[j] != 0) columns_.push_back(j);
  }
  const auto integers = std::stable_partition(columns_.begin(), columns_.end(),
                                              [&](int j) { return problem.is_integer[j] == 0; });
  continuous_ = static_cast<int>(integers - columns_.begin());
  for (auto j = integers; j != columns_.end(); ++j)
    widest_ = std::max(widest_, problem.lp.upper[*j] - problem.lp.lower[*j]);
  std::stable_sort(integers, columns_.end(),
                   [&](int a, int b) { return std::fabs(cost[a]) > std::fabs(cost[b]); });
}

bool ObjectivePropagator::run(Domain& domain, double cutoff) {
  if (std::isinf(cutoff)) return false;
  const std::vector<double>& cost = problem_.lp.cost;
  double least = problem_.lp.offset, terms = std::fabs(least);
  for (const int j : columns_) {
    const double term = cost[j] * (cost[j] > 0 ? domain.lower(j) : domain.upper(j));
    least += term;
    terms += std::fabs(term);
  }
  work_ += static_cast<std::int64_t>(columns_.size());
  if (std::isinf(terms)) return false;
  const double room = cutoff + kTolerance * std::max(1.0, std::fabs(cutoff)) + kRounding * terms - least;
  if (room < 0) {
    domain.set_infeasible({Reason::Kind::objective, -1});
    return true;
  }
  bool moved = false;
  for (std::size_t k = 0; k < columns_.size(); ++k) {
    const int j = columns_[k];
    const double lower = domain.lower(j), upper = domain.upper(j), step = room / std::fabs(cost[j]);
    const bool is_continuous = static_cast<int>(k) < continuous_;
    if (!is_continuous && step >= widest_) break;
    if (!(upper - lower > step)) continue;
    const double bound = cost[j] > 0 ? lower + step : upper - step;
    const double move = cost[j] > 0 ? upper - bound : bound - lower;
    if (is_continuous && !(move > kFairMove * std::max(1.0, std::fabs(bound)))) continue;
    moved |= domain.tighten(j, cost[j] > 0 ? Side::upper : Side::lower, bound, {Reason::Kind::objective, j});
  }
  return moved;
}

}  // namespace tovik::mip
