/* Rows that hold only with each column at the bound where the row's activity is extreme: the columns are
 * fixed there. */
#pragma once

#include "lp/presolve/undo.h"
#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

/* True when row i was forcing; it is gone then, with all its columns. */
bool remove_forcing_row(Workspace& ws, int i);
void undo_forcing_row(Record record, Undo& undo);

}  // namespace tovik::lp::presolve
