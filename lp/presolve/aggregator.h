/* One round of substitutions: doubleton equations, then free and implied free columns in the order of the
 * entries that they may create (Markowitz 1957). */
#pragma once

#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

/* True when it substituted something. */
bool aggregate(Workspace& ws);

}  // namespace tovik::lp::presolve
