/* Columns that leave at one of their bounds: equal bounds, empty columns, and columns that the signs of their
 * entries send to a bound. */
#pragma once

#include "lp/presolve/undo.h"
#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

/* Column j has (nearly) equal bounds. True when it is gone. */
bool remove_fixed_column(Workspace& ws, int j);
/* Column j has no entries. */
bool remove_empty_column(Workspace& ws, int j);
/* No row stops column j from moving the way that its cost likes. */
bool fix_by_signs(Workspace& ws, int j);
void undo_fixed_column(Record record, Undo& undo);

/* Does a row stop column j from decreasing, from increasing? */
struct Locks {
  bool down = false, up = false;
};
Locks locks_of(Workspace& ws, int j);

}  // namespace tovik::lp::presolve
