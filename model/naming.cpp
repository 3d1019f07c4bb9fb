/* Giving and removing names. */
#include <cstring>
#include <string>
#include <utility>

#include "model/changes.h"
#include "model/check.h"

namespace tovik::model {

Status check_renames(Environment& env, const NameChanges& changes, IndexRule rule) {
  if (changes.count < 0) return TVK_ERROR_BAD_ARGUMENT;
  if (changes.count == 0) return {};
  if (changes.indices == nullptr || changes.names == nullptr) return TVK_ERROR_NULL_POINTER;
  if (Status s = check_names(env, changes.count, changes.names); !s.ok()) return s;
  return check_safe_indices(env, rule, changes.count, changes.indices);
}

Status change_column_names(Environment& env, Problem& problem, const NameChanges& changes) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  const Status checked = check_renames(env, changes, {'c', problem.model->num_columns()});
  if (!checked.ok() || changes.count == 0) return checked;
  problem.model->rename_columns(changes.count, changes.indices, changes.names);
  invalidate(problem, Change::names);
  return {};
}

Status change_row_names(Environment& env, Problem& problem, const NameChanges& changes) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  const Status checked = check_renames(env, changes, {'r', problem.model->num_rows()});
  if (!checked.ok() || changes.count == 0) return checked;
  problem.model->rename_rows(changes.count, changes.indices, changes.names);
  invalidate(problem, Change::names);
  return {};
}

namespace {

/* Names item `index` of a family. */
template <class Family>
Status rename(Family& family, int index, const char* name) {
  if (index < 0 || index >= family.size()) return TVK_ERROR_INDEX_RANGE;
  family.rename(index, name);
  return {};
}

Status rename(Model& model, int key, int index, const char* name) {
  const auto outside = [index](int count) { return index < 0 || index >= count; };
  Families& families = model.change_families();
  switch (key) {
    case 'c':
      if (outside(model.num_columns())) return TVK_ERROR_INDEX_RANGE;
      model.rename_columns(1, &index, &name);
      return {};
    case 'r':
      if (outside(model.num_rows())) return TVK_ERROR_INDEX_RANGE;
      model.rename_rows(1, &index, &name);
      return {};
    case 'b':
      model.set_bounds_name(name);
      return {};
    case 's':
      return rename(families.sets, index, name);
    case 'i':
      return rename(families.indicators, index, name);
    case 'u':
      return rename(families.user_cuts, index, name);
    case 'l':
      return rename(families.lazy_constraints, index, name);
    case 'q':
      return rename(families.quadratic_rows, index, name);
    default:
      return rename(families.starts, index, name);
  }
}

}  // namespace

Status change_name(Problem& problem, int key, int index, const char* name) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (key <= 0 || key > 127 || std::strchr("crbsiulqm", key) == nullptr) return TVK_ERROR_BAD_ARGUMENT;
  if (name == nullptr) return TVK_ERROR_NULL_POINTER;
  if (Status s = rename(*problem.model, key, index, name); !s.ok()) return s;
  invalidate(problem, Change::names);
  return {};
}

Status delete_names(Problem& problem) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  problem.model->delete_names();
  invalidate(problem, Change::names);
  return {};
}

Status change_problem_name(Problem& problem, const char* name) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (name == nullptr) return TVK_ERROR_NULL_POINTER;
  std::string(name).swap(problem.name);
  invalidate(problem, Change::names);
  return {};
}

Status copy_objective_name(Problem& problem, const char* name) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (name == nullptr) return TVK_ERROR_NULL_POINTER;
  problem.model->set_objective_name(name);
  invalidate(problem, Change::names);
  return {};
}

}  // namespace tovik::model
