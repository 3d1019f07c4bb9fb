/* Rows and columns that go and come while the engine keeps the rest of its basis, in the user's space.
 *
 * A row that goes must have its logical basic, a column that goes must be nonbasic; where they are not a
 * Relaxation pivots first. New columns are appended and become nonbasic, new rows are appended and their
 * logicals become basic. */
#pragma once

#include <span>
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

}  // namespace tovik::lp::simplex
