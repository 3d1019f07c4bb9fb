/* Columns that are multiples of each other, a_k = g a_j. Their reduced costs hang together: d_k = (c_k - g
 * c_j) + g d_j. When d_j has a known sign (a bound of j is infinite) d_k may have one too, and k goes to a
 * bound. Otherwise, with costs in the same proportion and all bounds finite, the two become one column z =
 * x_j
 * + g x_k, which takes j's place. */
#pragma once

#include "lp/presolve/undo.h"
#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

/* One pass over all columns, by hashing. True when a column is gone. */
bool merge_parallel_columns(Workspace& ws);
void undo_parallel_columns(Record record, Undo& undo);

}  // namespace tovik::lp::presolve
