/* Columns with one entry are slacks of their row: they leave, and the row's sides widen by what they could
 * do.
 *
 * A cost is passed on to the other columns of the row, which must be an equation then; this is done only when
 * nothing of the row remains, for a column that is free or as good as free. An inequality is an equation
 * when nothing but the row keeps the column from moving the way that its cost likes: the row's dual has the
 * sign of cost / entry. A bound in that direction which the row implies is given up in the same step, so that
 * the dual of the row that is left cannot take the other sign. */
#pragma once

#include "lp/presolve/undo.h"
#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

/* Column s has one entry. True when it is gone. */
bool remove_slack_column(Workspace& ws, int s);
void undo_slack_in_equation(Record record, Undo& undo);
void undo_slack_in_row(Record record, Undo& undo);

}  // namespace tovik::lp::presolve
