/* Equations with two columns: one of them is a linear function of the other and leaves with the row. Its
 * bounds become bounds of the one that stays. */
#pragma once

#include "lp/presolve/undo.h"
#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

/* Row i has two entries. True when the row is gone, with one of its columns. */
bool substitute_doubleton(Workspace& ws, int i);
void undo_doubleton(Record record, Undo& undo);

}  // namespace tovik::lp::presolve
