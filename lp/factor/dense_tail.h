/* Dense LU with partial pivoting for the end of the kernel, where fill has made sparse storage pointless.
 *
 * A matrix stored by columns. eliminate() is blocked and right-looking; a column without an entry of
 * at least the absolute tolerance in the remaining rows is skipped, so the rank can be below both dimensions.
 * After it, pivot k (0 <= k < rank()) stands in column pivot_column(k) at place k; entries above place k in a
 * column are of U, those below are multipliers of L. row_at(i) names the original row that has moved to place
 * i. */
#pragma once

#include <cstdint>
#include <vector>

namespace tovik::lp::factor {

class DenseTail {
 public:
  void reset(int rows, int columns);  // all zero
  double& at(int row, int column) { return values_[static_cast<std::size_t>(column) * rows_ + row]; }
  const double* column(int j) const { return values_.data() + static_cast<std::size_t>(j) * rows_; }

  void eliminate(double absolute_tolerance);

  int rank() const { return static_cast<int>(pivot_column_.size()); }
  int pivot_column(int k) const { return pivot_column_[k]; }
  int row_at(int place) const { return row_at_[place]; }
  std::int64_t work() const { return work_; }

 private:
  void factor_panel(int first, int end, double tolerance);
  void swap_rows(int rank, int from, int first, int end);
  void update_trailing(int first_rank, int column);

  int rows_ = 0, columns_ = 0;
  std::vector<double> values_;
  std::vector<int> row_at_, pivot_column_;
  std::vector<int> swapped_with_;  // per pivot: the place its row came from
  std::int64_t work_ = 0;
};

}  // namespace tovik::lp::factor
