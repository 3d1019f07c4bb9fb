/* Linear rows that stand beside the matrix: user cuts, lazy constraints, and the linear parts of indicator
 * and quadratic constraints.
 *
 * - Holds: by row: its terms over the columns (no zeros), sense 'L', 'E' or 'G', right-hand side, and names
 *   of all rows or of none. Deleting a column takes its terms out; the row stays.
 * - Errors: bad_alloc; the pool is then as before the call. */
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "model/base/entry_packer.h"
#include "model/base/named_vectors.h"

namespace tovik::model {

struct PoolRow {
  VectorView terms;  // zeros are dropped, a repeated column is summed
  char sense;
  double rhs;
  const char* name = nullptr;  // null: generated when others have names
};

class RowPool {
 public:
  /* letter: of generated names. */
  explicit RowPool(char letter) : rows_(letter) {}

  int size() const { return rows_.size(); }
  bool empty() const { return size() == 0; }
  std::int64_t entries() const { return rows_.entries(); }
  VectorView row(int k) const { return rows_.at(k); }
  std::span<const char> sense() const { return sense_; }
  std::span<const double> rhs() const { return rhs_; }
  const NameTable& names() const { return rows_.names(); }

  void add(const PoolRow& row);
  void rename(int count, const int* positions, const char* const* names) {
    rows_.rename(count, positions, names);
  }
  void clear_names() noexcept { rows_.clear_names(); }

  using Extent = NamedVectors::Extent;
  Extent extent() const { return rows_.extent(); }
  void truncate(Extent extent) noexcept;  // back to that state, after add()
  void clear() noexcept { truncate({0, 0}); }
  void renumber(std::span<const int> renumber) noexcept;
  void renumber_columns(std::span<const int> renumber) noexcept { rows_.renumber_columns(renumber); }
  void remove_small(double eps) noexcept;

 private:
  NamedVectors rows_;
  std::vector<char> sense_;
  std::vector<double> rhs_;
};

}  // namespace tovik::model
