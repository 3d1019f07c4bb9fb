/* One linear model: objective, rows, columns, the sparse matrix, bounds, ranges, names and column types.
 *
 * Values are in the caller's units. Infinite bounds are stored as +-1e20. The matrix is kept column-wise with room to grow
 * (a column that outgrows its place moves to the end of the file; the file is compacted when half of it is waste), so that
 * appending rows one by one or setting coefficients one by one costs amortised time proportional to what is touched. */
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace tovik::model {

struct ColumnView {
  const int* index;      // rows, in no particular order
  const double* value;
  int count;
};

class Model {
 public:
  int num_rows() const { return static_cast<int>(rhs_.size()); }
  int num_columns() const { return static_cast<int>(objective_.size()); }
  std::int64_t num_nonzeros() const { return nonzeros_; }
  int objective_sense() const { return objective_sense_; }  // 1 minimize, -1 maximize
  double objective_offset() const { return objective_offset_; }
  std::span<const double> objective() const { return objective_; }
  std::span<const double> lower() const { return lower_; }
  std::span<const double> upper() const { return upper_; }
  std::span<const double> rhs() const { return rhs_; }
  std::span<const char> sense() const { return sense_; }
  std::span<const double> range() const { return range_; }        // one per row; 0 for rows other than 'R'
  std::span<const char> column_types() const { return types_; }   // empty for a continuous problem
  ColumnView column(int j) const {
    return {index_.data() + start_[j], value_.data() + start_[j], count_[j]};
  }
  // ... modification, names and index: the model component's own interface follows.

 private:
  int objective_sense_ = 1;
  double objective_offset_ = 0;
  std::int64_t nonzeros_ = 0;
  std::vector<double> objective_, lower_, upper_, rhs_, range_;
  std::vector<char> sense_, types_;
  std::vector<std::int64_t> start_;
  std::vector<int> count_, capacity_;
  std::vector<int> index_;
  std::vector<double> value_;
};

}  // namespace tovik::model
