/* Modification of a problem's model by the exported routines: each worker checks its arguments in the
 * documented order, changes the model and discards what the change makes invalid. A failed call leaves the
 * problem as it was. */
#pragma once

#include <optional>
#include <span>

#include "env/environment.h"
#include "env/problem.h"
#include "model/routines/check.h"
#include "model/store/model.h"

namespace tovik::model {

/* 1023 for a problem of a fixed type, which cannot be modified. */
Status check_modifiable(const Problem& problem);

/* Where a presolved model exists: tells that it cannot follow a change ("Warning: <change> the presolved
 * model fails."), and discards it. */
void discard_presolved_model(Environment& env, Problem& problem, const char* change);
/* After values of these rows or columns were changed in the model, or rows added at its end (no indices): the
 * presolved model takes that over, or is discarded as above. */
void apply_to_presolved_model(Environment& env, Problem& problem, Change kind, std::span<const int> indices,
                              const char* change) noexcept;

// ---- Adding and deleting (growth.cpp)
Status add_rows(Environment& env, Problem& problem, const NewColumns& columns, const NewRows& rows);
Status add_columns(Environment& env, Problem& problem, const NewColumns& columns);
Status delete_rows(Environment& env, Problem& problem, int begin, int end);
Status delete_columns(Environment& env, Problem& problem, int begin, int end);
Status delete_row_set(Problem& problem, int* delstat);
Status delete_column_set(Problem& problem, int* delstat);

// ---- Coefficients (coefficients.cpp)
Status change_coefficient(Environment& env, Problem& problem, int i, int j, double value);
struct CoefficientList {
  int count;
  const int* rows;
  const int* columns;
  const double* values;
};
Status change_coefficients(Environment& env, Problem& problem, const CoefficientList& list);
/* i, j as in change_coefficient. */
Status get_coefficient(const Problem& problem, int i, int j, double* value);

// ---- Values by row or column (values.cpp)
struct BoundChanges {
  int count;
  const int* indices;
  const char* which;  // 'L', 'U', 'B'
  const double* bounds;
};
enum class BoundRule { replace, tighten };
Status change_bounds(Environment& env, Problem& problem, const BoundChanges& changes, BoundRule rule);
struct ValueChanges {
  int count;
  const int* indices;
  const double* values;
};
Status change_rhs(Environment& env, Problem& problem, const ValueChanges& changes);
Status change_ranges(Environment& env, Problem& problem, const ValueChanges& changes);
Status change_objective(Environment& env, Problem& problem, const ValueChanges& changes);
Status change_senses(Environment& env, Problem& problem, int count, const int* rows, const char* senses);
Status change_objective_sense(Environment& env, Problem& problem, int sense);
Status change_objective_offset(Environment& env, Problem& problem, double offset);

/* The checks that all changes by index list share; the rule says what is changed. */
Status check_changes(Environment& env, const ValueChanges& changes, IndexRule rule);
Status check_changes(Environment& env, const BoundChanges& changes, IndexRule rule);
/* What is stored when a bound is changed to `bound`: with a zero for tiny values and +-1e20 for large ones.
 * Nothing, with a warning, when it is to be ignored. */
std::optional<double> new_lower_bound(Environment& env, double bound);
std::optional<double> new_upper_bound(Environment& env, double bound);

// ---- Names (naming.cpp)
Status change_name(Problem& problem, int key, int index, const char* name);
struct NameChanges {
  int count;
  const int* indices;
  const char* const* names;
};
/* A null pointer among the names could not be stored, so it fails whatever the data check says. */
Status check_renames(Environment& env, const NameChanges& changes, IndexRule rule);
/* Of the items that the key stands for, as in change_name but without the bound set. */
Status change_names(Environment& env, Problem& problem, int key, const NameChanges& changes);
Status change_column_names(Environment& env, Problem& problem, const NameChanges& changes);
Status change_row_names(Environment& env, Problem& problem, const NameChanges& changes);
Status delete_names(Problem& problem);
Status change_problem_name(Problem& problem, const char* name);
Status copy_objective_name(Problem& problem, const char* name);

// ---- Column types (types.cpp)
Status copy_types(Environment& env, Problem& problem, const char* types);
Status change_types(Environment& env, Problem& problem, int count, const int* columns, const char* types);

}  // namespace tovik::model
