/* Giving and removing names. */
#include <cstring>
#include <string>
#include <utility>

#include "model/routines/changes.h"
#include "model/routines/check.h"

namespace tovik::model {

Status check_renames(Environment& env, const NameChanges& changes, IndexRule rule) {
  if (Status s = check_count({changes.count}); !s.ok()) return s;
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

int items_of(const Problem& problem, int key) {
  const Families& families = problem.model->families();
  switch (key) {
    case 'c':
      return problem.model->num_columns();
    case 'r':
      return problem.model->num_rows();
    case 's':
      return families.sets.size();
    case 'i':
      return families.indicators.size();
    case 'u':
      return families.user_cuts.size();
    case 'l':
      return families.lazy_constraints.size();
    case 'q':
      return families.quadratic_rows.size();
    default:
      return families.starts.size();
  }
}

/* Indices in range, names not null. */
void rename(Model& model, int key, const NameChanges& changes) {
  Families& families = model.change_families();
  const auto in = [&changes](auto& family) { family.rename(changes.count, changes.indices, changes.names); };
  switch (key) {
    case 'c':
      return model.rename_columns(changes.count, changes.indices, changes.names);
    case 'r':
      return model.rename_rows(changes.count, changes.indices, changes.names);
    case 's':
      return in(families.sets);
    case 'i':
      return in(families.indicators);
    case 'u':
      return in(families.user_cuts);
    case 'l':
      return in(families.lazy_constraints);
    case 'q':
      return in(families.quadratic_rows);
    default:
      return in(families.starts);
  }
}

bool is_key(int key, const char* keys) {
  return key > 0 && key <= 127 && std::strchr(keys, key) != nullptr;
}

}  // namespace

Status change_name(Problem& problem, int key, int index, const char* name) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (!is_key(key, "crbsiulqm")) return TVK_ERROR_BAD_ARGUMENT;
  if (name == nullptr) return TVK_ERROR_NULL_POINTER;
  if (key == 'b') {
    problem.model->set_bounds_name(name);
  } else {
    if (index < 0 || index >= items_of(problem, key)) return TVK_ERROR_INDEX_RANGE;
    rename(*problem.model, key, {1, &index, &name});
  }
  invalidate(problem, Change::names);
  return {};
}

Status change_names(Environment& env, Problem& problem, int key, const NameChanges& changes) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (!is_key(key, "crsiulqm")) return TVK_ERROR_BAD_ARGUMENT;
  const int items = items_of(problem, key);
  const Status checked = check_renames(env, changes, {static_cast<char>(key), items});
  if (!checked.ok() || changes.count == 0) return checked;
  rename(*problem.model, key, changes);
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
