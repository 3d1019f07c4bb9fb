/* The order in which the rules run. */
#pragma once

#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

/* Runs rounds until little is gained, a status is reached or presolve must stop. */
void run_rounds(Workspace& ws);

}  // namespace tovik::lp::presolve
