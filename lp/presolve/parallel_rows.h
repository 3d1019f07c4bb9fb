/* Rows that are multiples of each other become one row. */
#pragma once

#include <vector>

#include "lp/presolve/crush_types.h"
#include "lp/presolve/undo.h"
#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

/* Row `gone` = ratio * row `kept`. */
struct ParallelRows {
  static constexpr Op kOp = Op::parallel_rows;
  int kept, gone;
  bool tighter_lower, tighter_upper;  // sides of `kept` that the other one gave
  bool collapsed;                     // its sides are equal now
  double ratio;
  template <class Self, class Archive>
  static constexpr void fields(Self& r, Archive& archive) {
    archive(r.kept, r.gone, r.tighter_lower, r.tighter_upper, r.collapsed, r.ratio);
  }
};

/* One pass over all rows, by hashing. True when a row is gone. Declares the problem infeasible when two rows
 * contradict each other. */
bool merge_parallel_rows(Workspace& ws);
void undo_parallel_rows(const ParallelRows& record, Undo& undo);
void duals_of_parallel_rows(const ParallelRows& record, std::vector<double>& y);
void basis_of_parallel_rows(const ParallelRows& record, Basis& basis);

}  // namespace tovik::lp::presolve
