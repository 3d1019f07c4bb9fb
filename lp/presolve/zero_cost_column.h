/* Columns without cost that can run to infinity in a direction that helps all their rows: the rows hold for
 * any values of the other columns, and go together with the column. */
#pragma once

#include "lp/presolve/undo.h"
#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

/* True when column j is gone, and its rows. */
bool remove_zero_cost_column(Workspace& ws, int j);
void undo_zero_cost_column(Record record, Undo& undo);

}  // namespace tovik::lp::presolve
