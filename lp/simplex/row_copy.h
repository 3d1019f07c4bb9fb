/* Row-wise copy of the matrix for pricing a row: alpha = rho' A over the columns that may enter.
 *
 * - Holds: each row's entries, those of active columns (nonbasic and not fixed) first; active_end[i] is the
 *   border.
 * - Order: activate(j) / deactivate(j) when a column leaves or enters the basis: O(entries of the column)
 *   through a cross index between the column file and the row file.
 * - Cost: 24 bytes an entry beside the column file. */
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "lp/base/lp_data.h"
#include "lp/base/sparse_vector.h"

namespace tovik::lp::simplex {

class RowCopy {
 public:
  void build(const Matrix& columns, std::span<const char> active);  // active: one flag a column
  void activate(int j);
  void deactivate(int j);

  /* out += rho' A over active columns; out must be clear and has dimension columns. Starts with an index list
   * and turns to plain scattering when the result fills up. With `list_always` the list is then rebuilt at
   * the end; without it a result that filled up comes back with count -1. Returns the entries touched. */
  std::int64_t price_by_rows(const SparseVector& rho, double expected_density, bool list_always,
                             SparseVector& out) const;
  /* The same by dot products with the active columns; for dense rho. */
  std::int64_t price_by_columns(const SparseVector& rho, SparseVector& out) const;
  /* Entries that price_by_rows would touch. */
  std::int64_t row_work(const SparseVector& rho) const;
  std::int64_t active_entries() const { return active_entries_; }
  int row_length(int i) const { return start_[i + 1] - start_[i]; }
  std::span<const int> row_index(int i) const {
    return {index_.data() + start_[i], index_.data() + start_[i + 1]};
  }
  std::span<const double> row_value(int i) const {
    return {value_.data() + start_[i], value_.data() + start_[i + 1]};
  }

 private:
  void exchange(int a, int b);
  const Matrix* columns_ = nullptr;
  std::vector<int> start_, active_end_;
  std::vector<int> index_;  // column of each row-file entry
  std::vector<double> value_;
  std::vector<int> back_;   // row-file slot -> column-file slot
  std::vector<int> place_;  // column-file slot -> row-file slot
  std::vector<char> active_;
  std::int64_t active_entries_ = 0;
};

}  // namespace tovik::lp::simplex
