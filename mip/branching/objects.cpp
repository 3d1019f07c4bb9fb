#include <algorithm>
#include <cmath>

#include "mip/branching/branching.h"
#include "mip/domain/point.h"

namespace tovik::mip {
namespace {

void fix_zero(std::vector<NodeChange>& changes, const Worker& worker, int j) {
  if (worker.domain.lower(j) < 0) changes.push_back({j, Side::lower, 0});
  if (worker.domain.upper(j) > 0) changes.push_back({j, Side::upper, 0});
}

Branching on_semi_column(const Worker& worker, const SemiColumn& semi, double v) {
  Branching b;
  fix_zero(b.children[0].changes, worker, semi.column);
  b.children[1].changes.push_back({semi.column, Side::lower, semi.lower});
  b.children[1].changes.push_back({semi.column, Side::upper, semi.upper});
  const double nearest = semi.lower > 0 ? semi.lower : semi.upper;
  b.first = std::fabs(v) > std::fabs(nearest) / 2 ? 1 : 0;
  return b;
}

/* The split lies at the mean of the positions, weighted by the values, and cuts off both ends. */
Branching on_set(const Worker& worker, const OrderedSet& set, std::span<const double> x) {
  double weight = 0, mean = 0;
  int first = -1, last = -1;
  for (std::size_t k = 0; k < set.columns.size(); ++k) {
    const double v = std::fabs(x[set.columns[k]]);
    if (v <= worker.global.settings.tolerances.feasibility) continue;
    if (first < 0) first = static_cast<int>(k);
    last = static_cast<int>(k);
    weight += v;
    mean += v * static_cast<double>(k);
  }
  mean = weight > 0 ? mean / weight : 0;
  Branching b;
  // Type 1: columns up to the split, or those behind it. Type 2: those before the split, or behind it; it stays itself.
  const int split = set.type == 1 ? std::clamp(static_cast<int>(mean), first, last - 1)
                                  : std::clamp(static_cast<int>(std::lround(mean)), first + 1, last - 1);
  for (int k = 0; k < static_cast<int>(set.columns.size()); ++k) {
    const int j = set.columns[k];
    if (set.type == 1 ? k <= split : k < split) fix_zero(b.children[0].changes, worker, j);
    if (k > split) fix_zero(b.children[1].changes, worker, j);
  }
  b.first = mean - first > last - mean ? 0 : 1;  // keeps the end with more weight
  return b;
}

Branching on_indicator(const Indicator& indicator) {
  Branching b;
  const int z = indicator.switch_column;
  const double on = indicator.active_value;
  b.children[0].changes.push_back({z, on == 0 ? Side::upper : Side::lower, on});
  b.children[0].changes.push_back({indicator.slack, Side::upper, 0});
  b.children[1].changes.push_back({z, on == 0 ? Side::lower : Side::upper, 1 - on});
  b.first = 1;  // nothing has to move there
  return b;
}

}  // namespace

Branching branch_on_object(const Worker& worker, std::span<const double> x, const Shortfall& shortfall) {
  const Problem& problem = worker.global.problem;
  const auto level = [&](int j) { return problem.priorities.empty() ? 0 : problem.priorities[j].level; };
  const auto set_level = [&](int k) {
    int highest = 0;
    for (const int j : problem.sets[k].columns) highest = std::max(highest, level(j));
    return highest;
  };
  // The highest priority; among equal ones indicators, then semi-continuous columns, then sets, each by what they lack.
  Branching best;
  int best_level = -1;
  double most = -1;
  const auto consider = [&](int priority, double lacks, auto make) {
    if (priority < best_level || (priority == best_level && lacks <= most)) return;
    best_level = priority;
    most = lacks;
    best = make();
  };
  for (const int k : shortfall.indicators) {
    const Indicator& i = problem.indicators[k];
    consider(level(i.switch_column), violation(i, x), [&] { return on_indicator(i); });
  }
  for (const int k : shortfall.semi_columns) {
    const SemiColumn& s = problem.semi_columns[k];
    consider(level(s.column), violation(s, x), [&] { return on_semi_column(worker, s, x[s.column]); });
  }
  for (const int k : shortfall.sets) {
    const OrderedSet& s = problem.sets[k];
    consider(set_level(k), violation(s, x), [&] {
      Branching branching = on_set(worker, s, x);
      branching.set = k;
      return branching;
    });
  }
  return best;
}

}  // namespace tovik::mip
