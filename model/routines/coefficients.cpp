/* Single coefficients and lists of them. Row -1 addresses the objective, column -1 the right-hand side,
 * column -2 the range value. */
#include <algorithm>
#include <cstdint>
#include <numeric>
#include <vector>

#include "model/routines/changes.h"
#include "model/routines/check.h"

namespace tovik::model {

namespace {

constexpr int kObjectiveRow = -1;
constexpr int kRhsColumn = -1;
constexpr int kRangeColumn = -2;

Status check_address(const Model& model, int i, int j) {
  if (i == kObjectiveRow && j < 0) return TVK_ERROR_RHS_IN_OBJECTIVE;
  if (i < kObjectiveRow || j < kRangeColumn || i >= model.num_rows() || j >= model.num_columns())
    return TVK_ERROR_INDEX_RANGE;
  if (j == kRangeColumn && model.sense()[static_cast<std::size_t>(i)] != 'R' && !model.has_ranges())
    return TVK_ERROR_NO_RANGE_VALUES;
  return {};
}

bool in_matrix(int i, int j) {
  return i >= 0 && j >= 0;
}

Status check_growth(const Environment& env, const Model& model, std::int64_t more) {
  return model.num_nonzeros() + more <= env.size_limits[2] ? Status()
                                                           : Status(TVK_ERROR_SIZE_LIMITS_TOO_LARGE);
}

/* Ensures that setting this coefficient cannot fail; `extra` changes may fall into its column. */
Status prepare(const Environment& env, Model& model, int i, int j, double value, int extra) {
  if (!in_matrix(i, j) || value == 0 || model.coefficient(i, j) != 0) return {};
  if (Status s = check_growth(env, model, extra); !s.ok()) return s;
  model.reserve_entries(j, extra);
  return {};
}

/* The arrays of a solution outlive a change of the objective or the right-hand side; they follow it to first
 * order. */
void adjust_solution(Problem& problem, int i, int j, double change) {
  if (!problem.solution) return;
  std::vector<double>& values = i == kObjectiveRow ? problem.solution->dj : problem.solution->slack;
  const auto at = static_cast<std::size_t>(i == kObjectiveRow ? j : i);
  if (at < values.size()) values[at] += change;
}

void apply(Environment& env, Problem& problem, int i, int j, double value) {
  Model& model = *problem.model;
  if (in_matrix(i, j)) {
    model.set_coefficient(i, j, value);
    invalidate(problem, Change::matrix);
  } else if (i == kObjectiveRow) {
    adjust_solution(problem, i, j, value - model.objective()[static_cast<std::size_t>(j)]);
    model.set_objective(j, value);
    apply_to_presolved_model(env, problem, Change::objective, {&j, 1}, "Changing obj. of");
    invalidate(problem, Change::objective, {Edit::values(Edit::Dimension::columns, {&j, 1})});
  } else if (j == kRhsColumn) {
    adjust_solution(problem, i, j, value - model.rhs()[static_cast<std::size_t>(i)]);
    model.set_rhs(i, value);
    apply_to_presolved_model(env, problem, Change::rhs, {&i, 1}, "Changing rhs of");
    invalidate(problem, Change::rhs, {Edit::values(Edit::Dimension::rows, {&i, 1})});
  } else {
    model.set_range(i, value);
    invalidate(problem, Change::ranges, {Edit::values(Edit::Dimension::rows, {&i, 1})});
  }
}

Status change_two(Environment& env, Problem& problem, const CoefficientList& list) {
  if (list.rows[0] == list.rows[1] && list.columns[0] == list.columns[1]) return TVK_ERROR_DUPLICATE_ENTRY;
  Model& model = *problem.model;
  for (int k = 0; k < 2; ++k) {
    if (Status s = check_address(model, list.rows[k], list.columns[k]); !s.ok()) return s;
  }
  for (int k = 0; k < 2; ++k) {
    if (Status s = prepare(env, model, list.rows[k], list.columns[k], list.values[k], 2); !s.ok()) return s;
  }
  for (int k = 0; k < 2; ++k) apply(env, problem, list.rows[k], list.columns[k], list.values[k]);
  return {};
}

/* Positions of the list by column, then row; empty when a pair stands twice. */
std::vector<int> order_by_column(const CoefficientList& list) {
  std::vector<int> order(static_cast<std::size_t>(list.count));
  std::iota(order.begin(), order.end(), 0);
  const auto before = [&](int a, int b) {
    return list.columns[a] != list.columns[b] ? list.columns[a] < list.columns[b]
                                              : list.rows[a] < list.rows[b];
  };
  std::sort(order.begin(), order.end(), before);
  const auto same = [&](int a, int b) { return !before(a, b) && !before(b, a); };
  if (std::adjacent_find(order.begin(), order.end(), same) != order.end()) order.clear();
  return order;
}

Status change_many(Environment& env, Problem& problem, const CoefficientList& list) {
  Model& model = *problem.model;
  if (Status s = check_safe_indices(env, {'r', model.num_rows()}, list.count, list.rows); !s.ok()) return s;
  if (Status s = check_safe_indices(env, {'c', model.num_columns()}, list.count, list.columns); !s.ok())
    return s;
  const std::vector<int> order = order_by_column(list);
  if (order.empty()) return TVK_ERROR_DUPLICATE_ENTRY;
  if (Status s = check_growth(env, model, list.count); !s.ok()) return s;
  for (auto first = order.begin(); first != order.end();) {
    const int column = list.columns[*first];
    const auto end = std::find_if(first, order.end(), [&](int k) { return list.columns[k] != column; });
    const auto added = std::count_if(first, end, [&](int k) {
      return list.values[k] != 0 && model.coefficient(list.rows[k], column) == 0;
    });
    if (added > 0) model.reserve_entries(column, static_cast<int>(added));
    first = end;
  }
  for (const int k : order) model.set_coefficient(list.rows[k], list.columns[k], list.values[k]);
  invalidate(problem, Change::matrix);
  return {};
}

}  // namespace

Status change_coefficient(Environment& env, Problem& problem, int i, int j, double value) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (Status s = check_address(*problem.model, i, j); !s.ok()) return s;
  if (checking(env)) {
    if (Status s = check_numbers(env, 1, &value); !s.ok()) return s;
  }
  if (Status s = prepare(env, *problem.model, i, j, value, 1); !s.ok()) return s;
  apply(env, problem, i, j, value);
  return {};
}

Status change_coefficients(Environment& env, Problem& problem, const CoefficientList& list) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (Status s = check_count({list.count}); !s.ok()) return s;
  if (list.count == 0) return {};
  if (list.rows == nullptr || list.columns == nullptr || list.values == nullptr)
    return TVK_ERROR_NULL_POINTER;
  if (checking(env)) {
    if (Status s = check_numbers(env, list.count, list.values); !s.ok()) return s;
  }
  if (list.count == 1) return change_coefficient(env, problem, list.rows[0], list.columns[0], list.values[0]);
  return list.count == 2 ? change_two(env, problem, list) : change_many(env, problem, list);
}

Status get_coefficient(const Problem& problem, int i, int j, double* value) {
  const Model& model = *problem.model;
  if (Status s = check_address(model, i, j); !s.ok()) return s;
  if (value == nullptr) return TVK_ERROR_NULL_POINTER;
  if (in_matrix(i, j)) {
    *value = model.coefficient(i, j);
  } else if (i == kObjectiveRow) {
    *value = model.objective()[static_cast<std::size_t>(j)];
  } else {
    *value = (j == kRhsColumn ? model.rhs() : model.range())[static_cast<std::size_t>(i)];
  }
  return {};
}

}  // namespace tovik::model
