/* Bounds, right-hand sides, ranges, senses and the objective. */
#include <algorithm>
#include <cmath>
#include <span>

#include "model/routines/changes.h"
#include "model/routines/check.h"

namespace tovik::model {

namespace {

/* A bound change of this size already means an infinite bound, smaller than kInfinity as it is. */
constexpr double kInfiniteChange = 1e17;
/* A bound change below this size means 0. */
constexpr double kZeroChange = 1e-10;

std::span<const int> list(const int* indices, int count) {
  return {indices, static_cast<std::size_t>(count)};
}

double normal_bound(double bound) {
  if (bound >= kInfiniteChange) return kInfinity;
  if (bound <= -kInfiniteChange) return -kInfinity;
  return std::fabs(bound) < kZeroChange ? 0.0 : bound;
}

void change_lower(Environment& env, Model& model, int j, double bound, BoundRule rule) {
  const auto value = new_lower_bound(env, bound);
  if (!value) return;
  const bool looser = *value <= model.lower()[static_cast<std::size_t>(j)];
  if (rule == BoundRule::replace || !looser) model.set_lower(j, *value);
}

void change_upper(Environment& env, Model& model, int j, double bound, BoundRule rule) {
  const auto value = new_upper_bound(env, bound);
  if (!value) return;
  const bool looser = *value >= model.upper()[static_cast<std::size_t>(j)];
  if (rule == BoundRule::replace || !looser) model.set_upper(j, *value);
}

}  // namespace

Status check_changes(Environment& env, const ValueChanges& changes, IndexRule rule) {
  if (Status s = check_count({changes.count}); !s.ok()) return s;
  if (changes.count == 0) return {};
  if (changes.indices == nullptr || changes.values == nullptr) return TVK_ERROR_NULL_POINTER;
  if (checking(env)) {
    if (Status s = check_numbers(env, changes.count, changes.values); !s.ok()) return s;
  }
  return check_safe_indices(env, rule, changes.count, changes.indices);
}

Status check_changes(Environment& env, const BoundChanges& changes, IndexRule rule) {
  if (Status s = check_count({changes.count}); !s.ok()) return s;
  if (changes.count == 0) return {};
  if (changes.indices == nullptr || changes.which == nullptr || changes.bounds == nullptr)
    return TVK_ERROR_NULL_POINTER;
  if (checking(env)) {
    if (Status s = check_bound_indicators(env, changes.count, changes.which); !s.ok()) return s;
    if (Status s = check_numbers(env, changes.count, changes.bounds); !s.ok()) return s;
  }
  return check_safe_indices(env, rule, changes.count, changes.indices);
}

std::optional<double> new_lower_bound(Environment& env, double bound) {
  if (!(bound >= kInfiniteChange)) return normal_bound(bound);
  message(env.warning_channel, "Warning:  Infinity lower bound ignored.\n");
  return {};
}

std::optional<double> new_upper_bound(Environment& env, double bound) {
  if (!(bound <= -kInfiniteChange)) return normal_bound(bound);
  message(env.warning_channel, "Warning:  -Infinity upper bound ignored.\n");
  return {};
}

Status check_modifiable(const Problem& problem) {
  return problem.fixed() ? Status(TVK_ERROR_FIXED_PROBLEM) : Status();
}

void discard_presolved_model(Environment& env, Problem& problem, const char* change) {
  if (!problem.presolve) return;
  message(env.warning_channel, "Warning: %s the presolved model fails.\n", change);
  problem.presolve.reset();
}

void apply_to_presolved_model(Environment& env, Problem& problem, Change kind, std::span<const int> indices,
                              const char* change) noexcept {
  if (!problem.presolve) return;
  try {
    problem.presolve_up_to_date = problem.presolve->apply_change(problem, kind, indices);
  } catch (const std::bad_alloc&) {
    problem.presolve_up_to_date = false;
  }
  if (!problem.presolve_up_to_date) discard_presolved_model(env, problem, change);
}

Status change_bounds(Environment& env, Problem& problem, const BoundChanges& changes, BoundRule rule) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  Model& model = *problem.model;
  const Status checked = check_changes(env, changes, {'c', model.num_columns()});
  if (!checked.ok() || changes.count == 0) return checked;
  for (int k = 0; k < changes.count; ++k) {
    const char which = changes.which[k];
    if (which == 'L' || which == 'B') change_lower(env, model, changes.indices[k], changes.bounds[k], rule);
    if (which == 'U' || which == 'B') change_upper(env, model, changes.indices[k], changes.bounds[k], rule);
  }
  apply_to_presolved_model(env, problem, Change::bounds, list(changes.indices, changes.count),
                           "Changing bounds of");
  invalidate(problem, Change::bounds,
             {Edit::values(Edit::Dimension::columns, list(changes.indices, changes.count))});
  return {};
}

Status change_rhs(Environment& env, Problem& problem, const ValueChanges& changes) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  Model& model = *problem.model;
  const Status checked = check_changes(env, changes, {'r', model.num_rows()});
  if (!checked.ok() || changes.count == 0) return checked;
  for (int k = 0; k < changes.count; ++k) model.set_rhs(changes.indices[k], changes.values[k]);
  apply_to_presolved_model(env, problem, Change::rhs, list(changes.indices, changes.count),
                           "Changing rhs of");
  invalidate(problem, Change::rhs,
             {Edit::values(Edit::Dimension::rows, list(changes.indices, changes.count))});
  return {};
}

Status change_ranges(Environment& env, Problem& problem, const ValueChanges& changes) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  Model& model = *problem.model;
  const Status checked = check_changes(env, changes, {'r', model.num_rows()});
  if (!checked.ok() || changes.count == 0) return checked;
  if (!model.has_ranges()) return TVK_ERROR_NO_RANGE_VALUES;
  for (int k = 0; k < changes.count; ++k) model.set_range(changes.indices[k], changes.values[k]);
  invalidate(problem, Change::ranges,
             {Edit::values(Edit::Dimension::rows, list(changes.indices, changes.count))});
  return {};
}

Status change_objective(Environment& env, Problem& problem, const ValueChanges& changes) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  Model& model = *problem.model;
  const Status checked = check_changes(env, changes, {'c', model.num_columns()});
  if (!checked.ok() || changes.count == 0) return checked;
  for (int k = 0; k < changes.count; ++k) model.set_objective(changes.indices[k], changes.values[k]);
  apply_to_presolved_model(env, problem, Change::objective, list(changes.indices, changes.count),
                           "Changing obj. of");
  invalidate(problem, Change::objective,
             {Edit::values(Edit::Dimension::columns, list(changes.indices, changes.count))});
  return {};
}

Status change_senses(Environment& env, Problem& problem, int count, const int* rows, const char* senses) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (Status s = check_count({count}); !s.ok()) return s;
  if (count == 0) return {};
  if (rows == nullptr || senses == nullptr) return TVK_ERROR_NULL_POINTER;
  if (checking(env)) {
    if (Status s = check_senses(env, count, senses); !s.ok()) return s;
  }
  Model& model = *problem.model;
  if (Status s = check_safe_indices(env, {'r', model.num_rows()}, count, rows); !s.ok()) return s;
  for (int k = 0; k < count; ++k) model.set_sense(rows[k], senses[k]);
  invalidate(problem, Change::senses);
  return {};
}

Status change_objective_sense(Environment& env, Problem& problem, int sense) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  discard_presolved_model(env, problem, "Changing the objective of");
  problem.model->set_objective_sense(sense < 0 ? -1 : 1);
  invalidate(problem, Change::objective_sense);
  return {};
}

Status change_objective_offset(Environment& env, Problem& problem, double offset) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (checking(env)) {
    if (Status s = check_numbers(env, 1, &offset); !s.ok()) return s;
  }
  problem.model->set_objective_offset(offset);
  apply_to_presolved_model(env, problem, Change::objective, {}, "Changing the objective of");
  invalidate(problem, Change::objective, {});
  return {};
}

}  // namespace tovik::model
