/* Bounds of columns that a binary column sets: x <= slope z + constant, or >=, from the rows.
 *
 * - Holds: by column that is not binary, the bounds of each side, at most kPerSide, in the order of the rows. A row gives
 *   one where its other columns have a finite least activity; it is kept where it beats the column's own bound for a
 *   value of z. All hold wherever the problem's rows and bounds do.
 * - Cost: built in one pass over the entries, with a limit on the pairs that a long row may give.
 * - Errors: bad_alloc. */
#pragma once

#include <span>
#include <vector>

#include "mip/domain/problem.h"

namespace tovik::mip {

struct VariableBound {
  int binary;
  double slope, constant;
  double at(double z) const { return slope * z + constant; }
};

class VariableBounds {
 public:
  explicit VariableBounds(const Problem& problem);

  std::span<const VariableBound> lower(int column) const { return lower_[column]; }
  std::span<const VariableBound> upper(int column) const { return upper_[column]; }
  /* Columns that have any, ascending. */
  std::span<const int> columns() const { return columns_; }

 private:
  std::vector<std::vector<VariableBound>> lower_, upper_;
  std::vector<int> columns_;
};

}  // namespace tovik::mip
