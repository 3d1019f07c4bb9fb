/* Equations that are linear combinations of other equations go. Found by sparse elimination: equations with a
 * column of their own are set aside first, the rest is reduced row by row. A dependency counts only when the
 * combination, formed again from the equations themselves, leaves nothing. */
#pragma once

#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

/* True when a row is gone. Declares the problem infeasible when a combination of equations reads 0 =
 * something else. The undo is that of a redundant row. */
bool remove_dependent_rows(Workspace& ws);

}  // namespace tovik::lp::presolve
