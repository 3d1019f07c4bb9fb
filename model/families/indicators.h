/* The indicator constraints of a model: a linear row that must hold while a binary column is 1, or,
 * complemented, while it is 0.
 *
 * Deleting a column takes its terms out of the rows; deleting the column that switches a row deletes that
 * constraint.
 * - Errors: bad_alloc; the table is then as before the call. */
#pragma once

#include <span>
#include <vector>

#include "model/families/row_pool.h"

namespace tovik::model {

struct NewIndicator {
  PoolRow row;
  int column;         // that switches the row
  bool complemented;  // the row holds while the column is 0
};

class Indicators {
 public:
  int size() const { return rows_.size(); }
  bool empty() const { return size() == 0; }
  const RowPool& rows() const { return rows_; }
  std::span<const int> column() const { return column_; }
  bool complemented(int k) const { return complemented_[static_cast<std::size_t>(k)] != 0; }
  const NameTable& names() const { return rows_.names(); }

  void add(const NewIndicator& indicator);
  void rename(int count, const int* positions, const char* const* names) {
    rows_.rename(count, positions, names);
  }
  void clear_names() noexcept { rows_.clear_names(); }
  void clear() noexcept;
  void renumber(std::span<const int> renumber) noexcept;
  void renumber_columns(std::span<const int> renumber) noexcept;
  void remove_small(double eps) noexcept { rows_.remove_small(eps); }

 private:
  RowPool rows_{'i'};
  std::vector<int> column_;
  std::vector<char> complemented_;
  std::vector<int> position_;  // room for a renumbering, so that deleting columns cannot fail
};

}  // namespace tovik::model
