/* Points, whole or in part, from which a mixed-integer search may start.
 *
 * - Holds: by start: values of some columns, the effort to spend on it, and names of all starts or of none.
 *   Deleting a column takes its value out; a start stays also when it becomes empty.
 * - Errors: bad_alloc; the table is then as before the call. */
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "model/base/named_vectors.h"

namespace tovik::model {

struct NewStart {
  VectorView values;           // index: columns; of a repeated column the last value counts
  int effort = 0;              // -1 and 0: the optimizer's choice
  const char* name = nullptr;  // null: generated when others have names
};

class MipStarts {
 public:
  int size() const { return values_.size(); }
  bool empty() const { return size() == 0; }
  std::int64_t entries() const { return values_.entries(); }
  VectorView values(int k) const { return values_.at(k); }
  std::span<const int> effort() const { return effort_; }
  const NameTable& names() const { return values_.names(); }

  void add(const NewStart& start);
  /* Gives columns of a start their value here; on bad_alloc some may have it already. */
  void merge(int k, VectorView values);
  void set_effort(int k, int effort) { effort_[static_cast<std::size_t>(k)] = effort; }
  void rename(int count, const int* positions, const char* const* names) {
    values_.rename(count, positions, names);
  }

  using Extent = NamedVectors::Extent;
  Extent extent() const { return values_.extent(); }
  void truncate(Extent extent) noexcept;
  void clear() noexcept { truncate({0, 0}); }
  void renumber(std::span<const int> renumber) noexcept;
  void renumber_columns(std::span<const int> renumber) noexcept { values_.renumber_columns(renumber); }

 private:
  NamedVectors values_{'m'};
  std::vector<int> effort_;
};

}  // namespace tovik::model
