/* What guides the mixed-integer search and is no part of the model's statement: priority order and MIP
 * starts. */
#include <algorithm>
#include <utility>

#include "model/routines/changes.h"
#include "model/routines/family_changes.h"
#include "model/store/problem_type.h"

namespace tovik::model {

namespace {

constexpr int kLowestEffort = -1, kHighestEffort = 4;

Status check_mixed_integer(const Problem& problem) {
  return is_mixed_integer(problem.type) ? Status() : Status(TVK_ERROR_NOT_MIP);
}

Status check_order(Environment& env, const OrderList& list) {
  for (int k = 0; list.priority != nullptr && k < list.count; ++k) {
    if (list.priority[k] < 0) return fail(env, TVK_ERROR_PRIORITY_ENTRY, k);
  }
  for (int k = 0; list.direction != nullptr && k < list.count; ++k) {
    if (list.direction[k] < -1 || list.direction[k] > 1) return fail(env, TVK_ERROR_DIRECTION_ENTRY, k);
  }
  return {};
}

PackedMatrix matrix_of(const StartList& list) {
  return {list.count, list.entries, list.begin, list.column, list.value};
}

Status check_list(Environment& env, const Problem& problem, const StartList& list) {
  if (Status s = check_columns_matrix(env, problem, matrix_of(list)); !s.ok()) return s;
  if (!checking(env)) return {};
  for (int k = 0; list.effort != nullptr && k < list.count; ++k) {
    if (list.effort[k] < kLowestEffort || list.effort[k] > kHighestEffort) return TVK_ERROR_BAD_ARGUMENT;
  }
  return check_names(env, list.count, list.names);
}

}  // namespace

Status copy_order(Environment& env, Problem& problem, const OrderList& list) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (Status s = check_mixed_integer(problem); !s.ok()) return s;
  if (Status s = check_count({list.count}); !s.ok()) return s;
  if (list.count > 0 && list.columns == nullptr) return TVK_ERROR_NULL_POINTER;
  if (checking(env)) {
    if (Status s = check_order(env, list); !s.ok()) return s;
  }
  const IndexRule rule{'c', problem.model->num_columns()};
  if (Status s = check_safe_indices(env, rule, list.count, list.columns); !s.ok()) return s;
  std::vector<OrderEntry> entries(static_cast<std::size_t>(list.count));
  for (int k = 0; k < list.count; ++k) {
    entries[static_cast<std::size_t>(k)] = {list.columns[k], list.priority == nullptr ? 0 : list.priority[k],
                                            list.direction == nullptr ? 0 : list.direction[k]};
  }
  problem.model->change_families().order.assign(std::move(entries));
  invalidate(problem, Change::branching_order);
  return {};
}

Status add_starts(Environment& env, Problem& problem, const StartList& list) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (Status s = check_mixed_integer(problem); !s.ok()) return s;
  if (Status s = check_arrays(matrix_of(list)); !s.ok() || list.count == 0) return s;
  if (Status s = check_list(env, problem, list); !s.ok()) return s;
  MipStarts& starts = problem.model->change_families().starts;
  if (Status s = check_entries(env, starts.size(), list.count); !s.ok()) return s;
  if (Status s = check_entries(env, starts.entries(), list.entries); !s.ok()) return s;
  const MipStarts::Extent before = starts.extent();
  try {
    for (int k = 0; k < list.count; ++k) {
      const int effort = list.effort == nullptr ? 0 : list.effort[k];
      starts.add({vector_of(matrix_of(list), k), effort, name_of(list.names, k)});
    }
  } catch (...) {
    starts.truncate(before);
    throw;
  }
  invalidate(problem, Change::starts);
  return {};
}

Status change_starts(Environment& env, Problem& problem, const int* indices, const StartList& list) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (Status s = check_mixed_integer(problem); !s.ok()) return s;
  if (Status s = check_arrays(matrix_of(list)); !s.ok() || list.count == 0) return s;
  if (indices == nullptr) return TVK_ERROR_NULL_POINTER;
  if (Status s = check_list(env, problem, list); !s.ok()) return s;
  MipStarts& starts = problem.model->change_families().starts;
  if (starts.empty()) return TVK_ERROR_NO_MIP_START;
  for (int k = 0; k < list.count; ++k) {
    if (indices[k] < 0 || indices[k] >= starts.size()) return TVK_ERROR_INDEX_RANGE;
  }
  MipStarts changed(starts);
  for (int k = 0; k < list.count; ++k) {
    changed.merge(indices[k], vector_of(matrix_of(list), k));
    if (list.effort != nullptr) changed.set_effort(indices[k], list.effort[k]);
  }
  if (Status s = check_entries(env, changed.entries(), 0); !s.ok()) return s;
  std::swap(starts, changed);
  invalidate(problem, Change::starts);
  return {};
}

Status delete_starts(Environment& env, Problem& problem, int begin, int end) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (Status s = check_mixed_integer(problem); !s.ok()) return s;
  MipStarts& starts = problem.model->change_families().starts;
  const Status range =
      check_family_range(env, "TVKdelmipstarts", begin, end, starts.size(), TVK_ERROR_NO_MIP_START);
  if (!range.ok() || begin > end) return range;
  delete_range(starts, begin, end);
  invalidate(problem, Change::starts);
  return {};
}

Status delete_set_of_starts(Problem& problem, int* delstat) {
  if (Status s = check_modifiable(problem); !s.ok()) return s;
  if (Status s = check_mixed_integer(problem); !s.ok()) return s;
  if (delstat == nullptr) return TVK_ERROR_NULL_POINTER;
  if (delete_marked(problem.model->change_families().starts, delstat)) invalidate(problem, Change::starts);
  return {};
}

}  // namespace tovik::model
