#include "model/routines/protected_columns.h"

#include <algorithm>

#include "include/tovik.h"
#include "model/routines/check.h"
#include "model/store/model.h"

namespace tovik::model {

Status copy_protected(Environment& env, Problem& problem, int count, const int* columns) {
  if (Status s = check_count({count}); !s.ok()) return s;
  if (count > 0 && columns == nullptr) return TVK_ERROR_NULL_POINTER;
  const Status checked = check_safe_indices(env, {'c', problem.model->num_columns()}, count, columns);
  if (!checked.ok()) return checked;
  std::vector<int> list;
  if (count > 0) list.assign(columns, columns + count);
  std::sort(list.begin(), list.end());
  list.erase(std::unique(list.begin(), list.end()), list.end());
  problem.protected_columns.swap(list);
  return {};
}

std::vector<char> protected_flags(const Problem& problem) {
  std::vector<char> flags;
  if (problem.protected_columns.empty()) return flags;
  flags.assign(static_cast<std::size_t>(problem.model->num_columns()), 0);
  for (const int j : problem.protected_columns) flags[j] = 1;
  return flags;
}

void drop_protected(Problem& problem, int first, int last) noexcept {
  std::erase_if(problem.protected_columns, [&](int j) { return j >= first && j <= last; });
  for (int& j : problem.protected_columns) {
    if (j > last) j -= last - first + 1;
  }
}

void drop_protected(Problem& problem, std::span<const int> marks) noexcept {
  std::erase_if(problem.protected_columns, [&](int j) { return marks[j] == 1; });
  std::size_t seen = 0;
  int gone = 0;
  for (int& j : problem.protected_columns) {
    for (; seen < static_cast<std::size_t>(j); ++seen) gone += marks[seen] == 1;
    j -= gone;
  }
}

}  // namespace tovik::model
