/* Rows that are multiples of each other become one row. */
#pragma once

#include "lp/presolve/undo.h"
#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

/* One pass over all rows, by hashing. True when a row is gone. Condemns the problem when two rows contradict
 * each other. */
bool merge_parallel_rows(Workspace& ws);
void undo_parallel_rows(Record record, Undo& undo);

}  // namespace tovik::lp::presolve
