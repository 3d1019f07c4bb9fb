/* Infeasible primal-dual method with predictor and corrector (S. Mehrotra, 1992) and centrality corrections (J. Gondzio,
 * Multiple centrality corrections in a primal-dual method for linear programming, 1996; M. Colombo, J. Gondzio, Further
 * development of multiple centrality correctors, 2008). */
#pragma once

#include "lp/barrier/session.h"

namespace tovik::lp::barrier {

/* Leaves its ending in the session. */
void run_predictor_corrector(Session& session);

}  // namespace tovik::lp::barrier
