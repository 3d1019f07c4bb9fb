/* Homogeneous self-dual embedding (Y. Ye, M. Todd, S. Mizuno, 1994; X. Xu, P. Hung, Y. Ye, A simplified homogeneous and
 * self-dual linear programming algorithm and its implementation, 1996).
 *
 *   A x = b tau,  x + w = u tau,  A'y + z - v = c tau,  kappa = b'y - u'v - c'x,   all pairs and tau kappa to 0
 *
 * Ends with tau > 0: a solution is x / tau; or with kappa > 0: y or x is a proof that there is none. */
#pragma once

#include "lp/barrier/session.h"

namespace tovik::lp::barrier {

/* Begins at the estimated point, or at the vector of ones. Leaves its ending in the session. */
void run_embedding(Session& session, bool from_estimate);

}  // namespace tovik::lp::barrier
