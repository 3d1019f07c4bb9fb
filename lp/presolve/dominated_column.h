/* Conclusions from bounds on duals: columns whose reduced cost has a known sign are fixed at a bound, and
 * inequalities whose dual cannot be zero become equations. */
#pragma once

#include "lp/presolve/undo.h"
#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

/* One pass over the problem. True when it changed something. Condemns the problem when no duals fit. */
bool use_dual_bounds(Workspace& ws);
void undo_row_made_equation(Record record, Undo& undo);

}  // namespace tovik::lp::presolve
