#include "model/routines/check.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "env/environment.h"

namespace tovik::model {

namespace {

constexpr double kLargestNumber = std::numeric_limits<double>::max();
constexpr std::int64_t kLastPosition = 2100000000;

Status check_letters(Environment& env, int count, const char* letters, const char* allowed, int code) {
  if (letters == nullptr) return {};
  for (int k = 0; k < count; ++k) {
    if (letters[k] == '\0' || std::strchr(allowed, letters[k]) == nullptr) return fail(env, code, k);
  }
  return {};
}

int index_code(char kind) {
  switch (kind) {
    case 'c':
      return TVK_ERROR_COLUMN_INDEX_RANGE;
    case 'r':
      return TVK_ERROR_ROW_INDEX_RANGE;
    case 'n':
      return TVK_ERROR_NODE_INDEX_RANGE;
    case 'a':
      return TVK_ERROR_ARC_INDEX_RANGE;
    default:
      return TVK_ERROR_INDEX_RANGE;
  }
}

Status index_failure(Environment& env, char kind, int position) {
  const int code = index_code(kind);
  return code == TVK_ERROR_INDEX_RANGE ? Status(TVK_ERROR_INDEX_RANGE) : fail(env, code, position);
}

/* Finds an index that stands twice in a stretch; the scratch array is reused from stretch to stretch. */
class DuplicateFinder {
 public:
  explicit DuplicateFinder(int longest) { sorted_.reserve(static_cast<std::size_t>(std::max(longest, 1))); }
  bool found(const int* index, int count) {
    bool ascending = true;
    for (int p = 1; p < count && ascending; ++p) ascending = index[p - 1] < index[p];
    if (ascending) return false;
    sorted_.assign(index, index + count);
    std::sort(sorted_.begin(), sorted_.end());
    return std::adjacent_find(sorted_.begin(), sorted_.end()) != sorted_.end();
  }

 private:
  std::vector<int> sorted_;
};

bool incomplete(const CountedMatrix& m) {
  return m.vectors < 1 || m.begin == nullptr || m.count == nullptr || m.index == nullptr ||
         m.value == nullptr;
}

bool incomplete(const PackedMatrix& m) {
  return m.vectors < 1 || m.entries < 1 || m.begin == nullptr || m.index == nullptr || m.value == nullptr;
}

/* Counts and overlaps; of several errors the last is reported. */
Status check_counts(Environment& env, int bound, const CountedMatrix& m) {
  int code = 0, position = 0;
  const auto wrong = [&](int new_code, int at) {
    code = new_code;
    position = at;
  };
  for (int j = 0; j < m.vectors; ++j) {
    if (m.count[j] < 0 || m.count[j] > bound) wrong(TVK_ERROR_COUNT_ENTRY, j);
    if (j + 1 < m.vectors && std::int64_t{m.begin[j]} + m.count[j] > m.begin[j + 1])
      wrong(TVK_ERROR_COUNT_OVERLAP, j);
  }
  const int last = m.vectors - 1;
  if (std::int64_t{m.begin[last]} + m.count[last] > kLastPosition) wrong(TVK_ERROR_COUNT_OVERLAP, m.vectors);
  return code == 0 ? Status() : fail(env, code, position);
}

Status check_ascending(Environment& env, int vectors, const int* begin) {
  for (int j = 0; j + 1 < vectors; ++j) {
    if (begin[j] > begin[j + 1]) return fail(env, TVK_ERROR_NOT_ASCENDING, j + 1);
  }
  return {};
}

}  // namespace

bool checking(const Environment& env) {
  return env.settings.integer(TVK_PARAM_DATACHECK) == 1;
}

Status check_count(std::initializer_list<int> counts) {
  const auto [least, most] = std::minmax(counts);
  if (least < 0) return TVK_ERROR_BAD_ARGUMENT;
  return most > kLastPosition ? Status(TVK_ERROR_SIZE_LIMITS_TOO_LARGE) : Status();
}

Status check_objective_sense(int sense) {
  return sense == 1 || sense == -1 ? Status() : Status(TVK_ERROR_BAD_ARGUMENT);
}

Status check_numbers(Environment& env, int count, const double* values) {
  if (values == nullptr) return {};
  for (int k = 0; k < count; ++k) {
    if (std::isnan(values[k])) return fail(env, TVK_ERROR_NOT_A_NUMBER, k);
    if (std::fabs(values[k]) > kLargestNumber) return fail(env, TVK_ERROR_NUMBER_TOO_BIG, k, kLargestNumber);
  }
  return {};
}

Status check_senses(Environment& env, int count, const char* senses) {
  return check_letters(env, count, senses, "LGER", TVK_ERROR_SENSE_ENTRY);
}

Status check_unranged_senses(Environment& env, int count, const char* senses) {
  return check_letters(env, count, senses, "LGE", TVK_ERROR_SENSE_ENTRY);
}

Status check_range_presence(Environment& env, int count, const char* senses, const double* ranges) {
  if (senses == nullptr || ranges != nullptr) return {};
  return std::find(senses, senses + count, 'R') == senses + count ? Status()
                                                                  : fail(env, TVK_ERROR_BAD_ARGUMENT);
}

Status check_bound_indicators(Environment& env, int count, const char* indicators) {
  return check_letters(env, count, indicators, "LUB", TVK_ERROR_BOUND_INDICATOR);
}

Status check_types(Environment& env, int count, const char* types) {
  return check_letters(env, count, types, "CBISN", TVK_ERROR_COLUMN_TYPE_ENTRY);
}

Status check_names(Environment& env, int count, const char* const* names) {
  if (names == nullptr) return {};
  for (int k = 0; k < count; ++k) {
    if (names[k] == nullptr) return fail(env, TVK_ERROR_NULL_NAME, k);
  }
  return {};
}

Status check_matrix(Environment& env, IndexRule rule, const CountedMatrix& m) {
  if (incomplete(m)) return {};
  if (Status s = check_ascending(env, m.vectors, m.begin); !s.ok()) return s;
  if (m.begin[0] < 0 || m.begin[m.vectors - 1] > kLastPosition) return TVK_ERROR_INDEX_RANGE;
  if (Status s = check_counts(env, rule.bound, m); !s.ok()) return s;
  DuplicateFinder duplicates(*std::max_element(m.count, m.count + m.vectors));
  for (int j = 0; j < m.vectors; ++j) {
    const int first = m.begin[j];
    for (int p = first; p < first + m.count[j]; ++p) {
      if (m.index[p] < 0 || m.index[p] >= rule.bound) return index_failure(env, rule.kind, p);
    }
    if (duplicates.found(m.index + first, m.count[j])) return TVK_ERROR_DUPLICATE_ENTRY;
    if (Status s = check_numbers(env, m.count[j], m.value + first); !s.ok()) return s;
  }
  return {};
}

Status check_matrix(Environment& env, IndexRule rule, const PackedMatrix& m) {
  if (incomplete(m)) return {};
  if (Status s = check_ascending(env, m.vectors, m.begin); !s.ok()) return s;
  if (m.begin[0] < 0 || m.begin[m.vectors - 1] > m.entries) return TVK_ERROR_INDEX_RANGE;
  if (Status s = check_safe_indices(env, rule, m.entries, m.index); !s.ok()) return s;
  if (Status s = check_numbers(env, m.entries, m.value); !s.ok()) return s;
  DuplicateFinder duplicates(0);
  for (int j = 0; j < m.vectors; ++j) {
    const int end = j + 1 < m.vectors ? m.begin[j + 1] : m.entries;
    if (duplicates.found(m.index + m.begin[j], end - m.begin[j])) return TVK_ERROR_DUPLICATE_ENTRY;
  }
  return {};
}

Status check_safe(Environment& env, IndexRule rule, const CountedMatrix& m) {
  if (incomplete(m)) return {};
  const int last = m.vectors - 1;
  if (m.begin[last] < 0) return TVK_ERROR_INDEX_RANGE;
  if (m.count[last] < 0) return fail(env, TVK_ERROR_COUNT_ENTRY, last);
  const std::int64_t entries = std::int64_t{m.begin[last]} + m.count[last];
  if (entries > kLastPosition) return fail(env, TVK_ERROR_COUNT_OVERLAP, m.vectors);
  for (int j = 0; j < m.vectors; ++j) {
    if (m.begin[j] < 0) return TVK_ERROR_INDEX_RANGE;
    if (m.count[j] < 0) return fail(env, TVK_ERROR_COUNT_ENTRY, j);
    if (std::int64_t{m.begin[j]} + m.count[j] > entries) return fail(env, TVK_ERROR_COUNT_OVERLAP, j);
    for (int p = m.begin[j]; p < m.begin[j] + m.count[j]; ++p) {
      if (m.index[p] < 0 || m.index[p] >= rule.bound) return index_failure(env, rule.kind, p);
    }
  }
  return {};
}

Status check_safe(Environment& env, IndexRule rule, const PackedMatrix& m) {
  if (incomplete(m)) return {};
  for (int j = 0; j < m.vectors; ++j) {
    if (m.begin[j] < 0 || m.begin[j] > m.entries) return TVK_ERROR_INDEX_RANGE;
  }
  return check_safe_indices(env, rule, m.entries, m.index);
}

Status check_safe_indices(Environment& env, IndexRule rule, int count, const int* indices) {
  for (int k = 0; k < count; ++k) {
    if (indices[k] < 0 || indices[k] >= rule.bound) return index_failure(env, rule.kind, k);
  }
  return {};
}

Status check_range(Environment& env, const char* routine, int begin, int end, int count) {
  bool inside = true;
  if (begin < 0) inside = fail(env, TVK_ERROR_BEGIN_TOO_SMALL, routine, begin, 0).ok();
  if (end > count - 1) inside = fail(env, TVK_ERROR_END_TOO_BIG, routine, end, count - 1).ok();
  return inside ? Status() : Status(TVK_ERROR_INDEX_RANGE);
}

}  // namespace tovik::model
