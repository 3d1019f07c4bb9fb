/* Rows with one entry become bounds of their column. */
#pragma once

#include "lp/presolve/undo.h"
#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

/* Row i has one entry. True when the row is gone. */
bool remove_singleton_row(Workspace& ws, int i);
void undo_singleton_row(Record record, Undo& undo);

}  // namespace tovik::lp::presolve
