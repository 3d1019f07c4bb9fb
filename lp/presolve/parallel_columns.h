/* Columns that are multiples of each other, a_k = g a_j. Their reduced costs hang together: d_k = (c_k - g
 * c_j) + g d_j. When d_j has a known sign (a bound of j is infinite) d_k may have one too, and k goes to a
 * bound. Otherwise, with costs in the same proportion and all bounds finite, the two become one column
 * z = x_j + g x_k, which takes j's place. */
#pragma once

#include <vector>

#include "lp/presolve/crush_types.h"
#include "lp/presolve/undo.h"
#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

/* Column `gone` = ratio * column `kept`, which stands for x_kept + ratio * x_gone. */
struct ParallelColumns {
  static constexpr Op kOp = Op::parallel_columns;
  int kept, gone;
  double ratio;
  double kept_lower, kept_upper, gone_lower, gone_upper;  // bounds of the two
  template <class Self, class Archive>
  static constexpr void fields(Self& r, Archive& archive) {
    archive(r.kept, r.gone, r.ratio, r.kept_lower, r.kept_upper, r.gone_lower, r.gone_upper);
  }
};

/* One pass over all columns, by hashing. True when a column is gone. */
bool merge_parallel_columns(Workspace& ws);
void undo_parallel_columns(const ParallelColumns& record, Undo& undo);
void point_of_parallel_columns(const ParallelColumns& record, std::vector<double>& x);
void basis_of_parallel_columns(const ParallelColumns& record, Basis& basis);
/* Only forms that treat both alike have an image. */
bool form_of_parallel_columns(const ParallelColumns& record, LinearForm& form);
void form_back_of_parallel_columns(const ParallelColumns& record, LinearForm& form);

}  // namespace tovik::lp::presolve
