/* What is left of a problem when some of its columns are fixed: the other columns with the domain's bounds, and the rows that
 * these bounds do not satisfy in any case. Columns of objects stay, fixed or not. Cost: what is left, and one pass over
 * columns and rows. */
#pragma once

#include <span>
#include <vector>

#include "mip/domain/domain.h"

namespace tovik::mip {

class ReducedProblem {
 public:
  /* domain: of the problem that is reduced, propagated; read here only. */
  explicit ReducedProblem(const Domain& domain);

  const Problem& problem() const { return reduced_; }
  /* One row more: lower <= values x <= upper, on columns of the whole problem. */
  void add_row(std::span<const int> columns, std::span<const double> values, double lower, double upper);
  /* A point of the whole problem from one of what is left. */
  std::vector<double> expand(std::span<const double> x) const;

 private:
  void choose_columns(const Domain& domain);
  void choose_rows(const Domain& domain);
  void copy_entries(const Domain& domain);
  void copy_objects(const Problem& whole);

  Problem reduced_;
  std::vector<double> fixed_;           // by column of the whole
  std::vector<int> new_column_;         // by column of the whole; -1: removed
  std::vector<int> new_row_;            // by row of the whole; -1: removed
  std::vector<double> fixed_activity_;  // by row of the whole
};

}  // namespace tovik::mip
