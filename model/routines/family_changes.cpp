#include "model/routines/family_changes.h"

namespace tovik::model {

VectorView vector_of(const PackedMatrix& m, int k) {
  if (m.entries < 1 || m.begin == nullptr || m.index == nullptr || m.value == nullptr)
    return {nullptr, nullptr, 0};
  const int first = m.begin[k];
  const int end = k + 1 < m.vectors ? m.begin[k + 1] : m.entries;
  return end <= first ? VectorView{nullptr, nullptr, 0}
                      : VectorView{m.index + first, m.value + first, end - first};
}

Status check_arrays(const PackedMatrix& m) {
  if (Status s = check_count({m.vectors, m.entries}); !s.ok()) return s;
  const bool lacks = m.begin == nullptr || m.index == nullptr || m.value == nullptr;
  return m.vectors > 0 && m.entries > 0 && lacks ? Status(TVK_ERROR_NULL_POINTER) : Status();
}

Status check_columns_matrix(Environment& env, const Problem& problem, const PackedMatrix& matrix) {
  const IndexRule rule{'c', problem.model->num_columns()};
  return checking(env) ? check_matrix(env, rule, matrix) : check_safe(env, rule, matrix);
}

Status check_entries(const Environment& env, std::int64_t present, std::int64_t more) {
  return present + more <= env.size_limits[2] ? Status() : Status(TVK_ERROR_SIZE_LIMITS_TOO_LARGE);
}

Status check_family_range(Environment& env, const char* routine, int begin, int end, int count, int none) {
  if (none != 0 && count == 0 && begin <= end) return none;
  return check_range(env, routine, begin, end, count);
}

}  // namespace tovik::model
