/* The special ordered sets of a model.
 *
 * - Holds: by set: its type ('1' at most one member is not zero, '2' at most two and those neighbours in the
 *   order of the weights), its members as (column, weight) in the order in which they were given, and names
 *   of all sets or of none. Deleting a column takes it out of its sets; a set stays also when it becomes
 *   empty.
 * - Errors: bad_alloc; the table is then as before the call. */
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "model/base/named_vectors.h"

namespace tovik::model {

struct NewSet {
  char type;
  VectorView members;          // index: columns, value: weights; of a repeated column the last weight counts
  const char* name = nullptr;  // null: generated when others have names
};

class Sets {
 public:
  int size() const { return members_.size(); }
  bool empty() const { return size() == 0; }
  std::int64_t entries() const { return members_.entries(); }
  VectorView members(int k) const { return members_.at(k); }
  std::span<const char> type() const { return type_; }
  const NameTable& names() const { return members_.names(); }

  void add(const NewSet& set);
  void rename(int count, const int* positions, const char* const* names) {
    members_.rename(count, positions, names);
  }
  void clear_names() noexcept { members_.clear_names(); }

  using Extent = NamedVectors::Extent;
  Extent extent() const { return members_.extent(); }
  void truncate(Extent extent) noexcept;
  void clear() noexcept { truncate({0, 0}); }
  void renumber(std::span<const int> renumber) noexcept;
  void renumber_columns(std::span<const int> renumber) noexcept { members_.renumber_columns(renumber); }

 private:
  NamedVectors members_{'s'};
  std::vector<char> type_;
};

}  // namespace tovik::model
