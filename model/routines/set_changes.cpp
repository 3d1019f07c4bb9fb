/* Copying, adding and deleting special ordered sets. */
#include <algorithm>
#include <utility>

#include "model/routines/changes.h"
#include "model/routines/family_changes.h"
#include "model/routines/type_change.h"

namespace tovik::model {

namespace {

PackedMatrix matrix_of(const SetList& list) {
  return {list.count, list.entries, list.begin, list.column, list.weight};
}

Status check_set_types(Environment& env, const SetList& list) {
  for (int k = 0; k < list.count; ++k) {
    if (list.type[k] != '1' && list.type[k] != '2') return fail(env, TVK_ERROR_SOS_TYPE_ENTRY, k);
  }
  return {};
}

/* Weights order a set: with equal ones nobody knows which columns are neighbours. */
Status check_weights(const SetList& list) {
  std::vector<double> weights;
  for (int k = 0; k < list.count; ++k) {
    const VectorView members = vector_of(matrix_of(list), k);
    weights.assign(members.value, members.value + members.count);
    std::sort(weights.begin(), weights.end());
    if (std::adjacent_find(weights.begin(), weights.end()) != weights.end())
      return TVK_ERROR_SOS_WEIGHTS_NOT_UNIQUE;
  }
  return {};
}

Status check_list(Environment& env, const Problem& problem, const SetList& list) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (Status s = check_count({list.count, list.entries}); !s.ok()) return s;
  if (list.type == nullptr || list.begin == nullptr) return TVK_ERROR_NULL_POINTER;
  const bool members = list.count > 0 && list.entries > list.begin[0];
  if (members && (list.column == nullptr || list.weight == nullptr)) return TVK_ERROR_NULL_POINTER;
  if (Status s = check_columns_matrix(env, problem, matrix_of(list)); !s.ok()) return s;
  if (!checking(env)) return {};
  if (Status s = check_set_types(env, list); !s.ok()) return s;
  if (Status s = check_weights(list); !s.ok()) return s;
  return check_names(env, list.count, list.names);
}

void append(Sets& sets, const SetList& list) {
  for (int k = 0; k < list.count; ++k) {
    sets.add({list.type[k], vector_of(matrix_of(list), k), name_of(list.names, k)});
  }
}

}  // namespace

Status copy_sets(Environment& env, Problem& problem, const SetList& list) {
  if (Status s = check_list(env, problem, list); !s.ok()) return s;
  if (Status s = check_entries(env, 0, list.entries); !s.ok()) return s;
  Sets fresh;
  append(fresh, list);
  if (list.count > 0) MixedInteger(problem).commit();
  std::swap(problem.model->change_families().sets, fresh);
  invalidate(problem, Change::sets);
  return {};
}

Status add_sets(Environment& env, Problem& problem, const SetList& list) {
  if (Status s = check_list(env, problem, list); !s.ok() || list.count == 0) return s;
  Sets& sets = problem.model->change_families().sets;
  if (Status s = check_entries(env, sets.size(), list.count); !s.ok()) return s;
  if (Status s = check_entries(env, sets.entries(), list.entries); !s.ok()) return s;
  MixedInteger with_types(problem);
  const Sets::Extent before = sets.extent();
  try {
    append(sets, list);
  } catch (...) {
    sets.truncate(before);
    throw;
  }
  with_types.commit();
  invalidate(problem, Change::sets);
  return {};
}

Status delete_sets(Environment& env, Problem& problem, int begin, int end) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  Sets& sets = problem.model->change_families().sets;
  const Status range = check_family_range(env, "TVKdelsos", begin, end, sets.size(), TVK_ERROR_NO_SOS);
  if (!range.ok() || begin > end) return range;
  delete_range(sets, begin, end);
  invalidate(problem, Change::sets);
  return {};
}

Status delete_set_of_sets(Problem& problem, int* delstat) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (delstat == nullptr) return TVK_ERROR_NULL_POINTER;
  if (delete_marked(problem.model->change_families().sets, delstat)) invalidate(problem, Change::sets);
  return {};
}

}  // namespace tovik::model
