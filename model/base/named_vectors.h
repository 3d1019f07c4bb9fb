/* A family of sparse vectors over the columns of a model, each with an optional name: what sets, rows beside
 * the matrix and MIP starts have in common.
 *
 * - Holds: one VectorFile (indices are columns, none twice in a vector; values may be zero) and the names, of
 *   all vectors or of none.
 * - Errors: bad_alloc; the family is then as before the call. */
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "model/base/names.h"
#include "model/base/vector_file.h"

namespace tovik::model {

class NamedVectors {
 public:
  explicit NamedVectors(char letter) : names_(letter) {}

  int size() const { return vectors_.size(); }
  std::int64_t entries() const { return vectors_.entries(); }
  VectorView at(int k) const { return vectors_.at(k); }
  const NameTable& names() const { return names_; }

  /* A null name is generated when others have names. */
  void append(VectorView vector, const char* name);
  /* Adds an entry to vector k, or changes it. */
  void set(int k, int column, double value);
  /* Renames the listed vectors; the others get generated names when there were none. */
  void rename(int count, const int* positions, const char* const* names) {
    names_.rename(size(), count, positions, names);
  }
  void clear_names() noexcept { names_.clear(); }

  /* The present size of the family, to which it can be truncated after vectors were appended. */
  struct Extent {
    int vectors, names;
  };
  Extent extent() const { return {vectors_.size(), names_.size()}; }
  void truncate(Extent extent) noexcept;

  /* Drops the vectors with renumber[k] < 0 and gives the others their new position (ascending from 0). */
  void renumber(std::span<const int> renumber) noexcept;
  /* Removes entries of columns with renumber[j] < 0 and renumbers the others. */
  void renumber_columns(std::span<const int> renumber) noexcept { vectors_.renumber_indices(renumber); }
  void remove_small(double eps) noexcept { vectors_.remove_small(eps); }

 private:
  VectorFile vectors_;
  NameTable names_;
};

/* New positions of `count` items when first .. last go (-1 for those). */
std::vector<int> renumbering_without(int count, int first, int last);
/* The same for the items whose mark is exactly 1. */
std::vector<int> renumbering_without(std::span<const int> marks);

/* Keeps values[k] where renumber[k] >= 0. */
template <class T>
void compact_values(std::vector<T>& values, std::span<const int> renumber) noexcept {
  std::size_t kept = 0;
  for (std::size_t k = 0; k < renumber.size(); ++k) {
    if (renumber[k] < 0) continue;
    if (kept != k) values[kept] = std::move(values[k]);
    ++kept;
  }
  values.erase(values.begin() + static_cast<std::ptrdiff_t>(kept), values.end());
}

/* Room for one more value that is to come, with geometric growth. */
template <class T>
void reserve_one(std::vector<T>& values) {
  if (values.size() == values.capacity()) values.reserve(values.size() + values.size() / 2 + 4);
}

}  // namespace tovik::model
