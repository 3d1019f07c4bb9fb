#include "mip/heuristics/one_opt.h"

#include <algorithm>
#include <cmath>

#include "mip/worker/worker.h"

namespace tovik::mip {
namespace {

constexpr double kSlackTrust = 1e-9;

std::vector<double> activities(const lp::LpData& lp, std::span<const double> x) {
  std::vector<double> sums(static_cast<std::size_t>(lp.num_rows()), 0.0);
  for (int j = 0; j < lp.num_columns(); ++j) {
    if (x[j] == 0) continue;
    for (int k = lp.matrix.start[j]; k < lp.matrix.start[j + 1]; ++k)
      sums[lp.matrix.index[k]] += lp.matrix.value[k] * x[j];
  }
  return sums;
}

/* Whole steps by which the column can move in the direction, 1 or -1. */
double steps(const lp::LpData& lp, std::span<const double> activity, int j, double value, int direction) {
  double room = direction > 0 ? lp.upper[j] - value : value - lp.lower[j];
  for (int k = lp.matrix.start[j]; k < lp.matrix.start[j + 1] && room > 0; ++k) {
    const double a = lp.matrix.value[k] * direction;
    const int i = lp.matrix.index[k];
    const double slack = a > 0 ? lp.row_upper[i] - activity[i] : activity[i] - lp.row_lower[i];
    room = std::min(room, slack / std::fabs(a));
  }
  return std::isinf(room) ? 0 : std::max(0.0, std::floor(room + kSlackTrust));
}

/* Integer columns with a cost that no object decides, the dearest first. */
std::vector<int> movable_columns(const Global& global) {
  const Problem& problem = global.problem;
  std::vector<char> is_decided(static_cast<std::size_t>(problem.num_columns()), 0);
  for (const SemiColumn& s : problem.semi_columns) is_decided[s.column] = 1;
  for (const OrderedSet& s : problem.sets) {
    for (const int j : s.columns) is_decided[j] = 1;
  }
  for (const Indicator& s : problem.indicators) is_decided[s.switch_column] = is_decided[s.slack] = 1;
  const std::vector<double>& cost = problem.lp.cost;
  std::vector<int> columns;
  for (const int j : global.integer_columns) {
    if (cost[j] != 0 && is_decided[j] == 0) columns.push_back(j);
  }
  std::stable_sort(columns.begin(), columns.end(),
                   [&](int a, int b) { return std::fabs(cost[a]) > std::fabs(cost[b]); });
  return columns;
}

}  // namespace

Verdict OneOpt::call(Worker& worker, const Moment&) {
  const Global& global = worker.global;
  if (!global.has_incumbent_point()) return Verdict::nothing;
  const lp::LpData& lp = global.problem.lp;
  std::vector<double> x = global.incumbent;
  std::vector<double> activity = activities(lp, x);
  bool moved = false;
  for (const int j : movable_columns(global)) {
    const int direction = lp.cost[j] > 0 ? -1 : 1;
    const double step = steps(lp, activity, j, x[j], direction) * direction;
    if (step == 0) continue;
    x[j] += step;
    for (int k = lp.matrix.start[j]; k < lp.matrix.start[j + 1]; ++k)
      activity[lp.matrix.index[k]] += lp.matrix.value[k] * step;
    moved = true;
  }
  if (!moved) return Verdict::nothing;
  worker.out.candidates.push_back({std::move(x), name()});
  return Verdict::found;
}

}  // namespace tovik::mip
