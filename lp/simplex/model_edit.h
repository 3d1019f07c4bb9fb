/* Rows and columns that go and come while the engine keeps the rest of its basis, in the user's space.
 *
 * A row that goes must have its logical basic, a column that goes must be nonbasic; where they are not a
 * Relaxation pivots first. New columns are appended and become nonbasic, new rows are appended and their
 * logicals become basic. */
#pragma once

#include <span>
#include <utility>
#include <vector>

#include "lp/base/lp_data.h"

namespace tovik::lp::simplex {

struct ModelEdit {
  std::span<const int> deleted_rows, deleted_columns;  // ascending, in the numbering before
  Matrix columns;                          // new columns: rows in the numbering after, new rows included
  std::vector<double> cost, lower, upper;  // of the new columns
  Matrix rows;  // new rows, one a column of this matrix: their entries in old columns,
                // which have the numbering after
  std::vector<double> row_lower, row_upper;  // of the new rows

  int new_columns() const { return static_cast<int>(cost.size()); }
  int new_rows() const { return static_cast<int>(row_lower.size()); }
  bool moves_rows() const { return !deleted_rows.empty() || new_rows() > 0; }
};

/* Takes the places `gone`, counted from `offset`, out of v. */
template <class T>
void erase_indices(std::vector<T>& v, std::span<const int> gone, int offset = 0) {
  if (gone.empty()) return;
  auto to = v.begin() + offset + gone.front();
  for (size_t k = 0; k < gone.size(); ++k) {
    const auto from = v.begin() + offset + gone[k] + 1;
    const auto end = k + 1 < gone.size() ? v.begin() + offset + gone[k + 1] : v.end();
    to = std::move(from, end, to);
  }
  v.erase(to, v.end());
}

/* Number of each of `count` lines after those that are gone: -1 for them. */
inline std::vector<int> renumbering(int count, std::span<const int> gone) {
  std::vector<int> number(static_cast<size_t>(count));
  size_t next = 0;
  for (int k = 0; k < count; ++k) {
    const bool goes = next < gone.size() && gone[next] == k;
    number[k] = goes ? -1 : k - static_cast<int>(next);
    next += goes;
  }
  return number;
}

/* An edit as vectors by variable and by position see it, from sizes n and m. The positions are those of the
 * deleted rows' logicals, which are basic. */
class IndexEdit {
 public:
  IndexEdit(const ModelEdit& change, int n, int m, std::vector<int> positions)
      : change_(change),
        positions_(std::move(positions)),
        old_n_(n),
        kept_columns_(n - static_cast<int>(change.deleted_columns.size())),
        kept_rows_(m - static_cast<int>(change.deleted_rows.size())) {
    if (!change.deleted_rows.empty()) row_number_ = renumbering(m, change.deleted_rows);
    if (!change.deleted_columns.empty()) column_number_ = renumbering(n, change.deleted_columns);
  }

  int kept_columns() const { return kept_columns_; }
  int kept_rows() const { return kept_rows_; }
  int n() const { return kept_columns_ + change_.new_columns(); }  // after the edit
  int m() const { return kept_rows_ + change_.new_rows(); }
  const std::vector<int>& row_number() const { return row_number_; }  // empty: no row goes
  /* Number of variable j after the edit. */
  int renumber(int j) const {
    if (j < old_n_) return column_number_.empty() ? j : column_number_[j];
    return n() + (row_number_.empty() ? j - old_n_ : row_number_[j - old_n_]);
  }
  /* A vector of n + m entries: those that go are erased, new ones are 0. */
  template <class T>
  void edit_variables(std::vector<T>& v) const {
    erase_indices(v, change_.deleted_rows, old_n_);
    erase_indices(v, change_.deleted_columns);
    v.insert(v.begin() + kept_columns_, static_cast<size_t>(change_.new_columns()), T{});
    v.resize(v.size() + static_cast<size_t>(change_.new_rows()), T{});
  }
  /* A vector of m entries by position: new rows' logicals come last, with 0. */
  template <class T>
  void edit_positions(std::vector<T>& v) const {
    erase_indices(v, positions_);
    v.resize(static_cast<size_t>(m()), T{});
  }

 private:
  const ModelEdit& change_;
  std::vector<int> positions_, row_number_, column_number_;
  int old_n_, kept_columns_, kept_rows_;
};

}  // namespace tovik::lp::simplex
