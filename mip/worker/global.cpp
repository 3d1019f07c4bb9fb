#include "mip/worker/global.h"

#include <algorithm>
#include <cmath>

#include "mip/domain/common_step.h"

namespace tovik::mip {
namespace {

std::vector<Locks> count_locks(const Problem& problem) {
  const lp::LpData& lp = problem.lp;
  std::vector<Locks> locks(static_cast<std::size_t>(lp.num_columns()));
  for (int j = 0; j < lp.num_columns(); ++j) {
    for (int k = lp.matrix.start[j]; k < lp.matrix.start[j + 1]; ++k) {
      const int i = lp.matrix.index[k];
      const bool positive = lp.matrix.value[k] > 0;
      if (lp.row_upper[i] < kInf) ++(positive ? locks[j].up : locks[j].down);
      if (lp.row_lower[i] > -kInf) ++(positive ? locks[j].down : locks[j].up);
    }
  }
  const auto both = [&](int j) {
    ++locks[j].down;
    ++locks[j].up;
  };
  for (const SemiColumn& s : problem.semi_columns) both(s.column);
  for (const OrderedSet& s : problem.sets) {
    for (const int j : s.columns) both(j);
  }
  for (const Indicator& s : problem.indicators) {
    both(s.switch_column);
    both(s.slack);
  }
  return locks;
}

std::vector<char> find_integral_rows(const Problem& problem) {
  const lp::LpData& lp = problem.lp;
  std::vector<char> integral(static_cast<std::size_t>(lp.num_rows()), 1);
  const auto is_whole = [](double v) { return std::isinf(v) || v == std::round(v); };
  for (int i = 0; i < lp.num_rows(); ++i)
    integral[i] = is_whole(lp.row_lower[i]) && is_whole(lp.row_upper[i]);
  for (int j = 0; j < lp.num_columns(); ++j) {
    for (int k = lp.matrix.start[j]; k < lp.matrix.start[j + 1]; ++k) {
      if (problem.is_integer[j] == 0 || !is_whole(lp.matrix.value[k])) integral[lp.matrix.index[k]] = 0;
    }
  }
  return integral;
}

double find_objective_step(const Problem& problem) {
  for (int j = 0; j < problem.num_columns(); ++j) {
    if (problem.lp.cost[j] != 0 && problem.is_integer[j] == 0) return 0;
  }
  const CommonStep step = common_step(problem.lp.cost);
  return step.is_known() ? step.divisor / step.scale : 0;
}

}  // namespace

Global::Global(const Problem& the_problem, const Settings& the_settings)
    : problem(the_problem),
      settings(the_settings),
      is_discrete(the_problem.is_integer),
      locks(count_locks(the_problem)),
      row_is_integral(find_integral_rows(the_problem)),
      cliques(the_problem),
      variable_bounds(the_problem),
      objective_step(find_objective_step(the_problem)),
      pseudo_costs(the_problem.num_columns()),
      cutoff(the_settings.cutoff) {
  for (int j = 0; j < problem.num_columns(); ++j) {
    if (problem.is_integer[j] != 0) integer_columns.push_back(j);
  }
  for (const SemiColumn& s : problem.semi_columns) is_discrete[s.column] = 1;
  for (const OrderedSet& s : problem.sets) {
    for (const int j : s.columns) is_discrete[j] = 1;
  }
  for (const Indicator& s : problem.indicators) is_discrete[s.switch_column] = is_discrete[s.slack] = 1;
}

}  // namespace tovik::mip
