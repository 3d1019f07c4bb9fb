/* First points (S. Mehrotra, On the implementation of a primal-dual interior point method, 1992): least-squares
 * estimates of both sides, moved into the interior and levelled. One factorization with D = 1. */
#pragma once

#include "lp/barrier/session.h"

namespace tovik::lp::barrier {

/* False when the call is over. */
bool make_start(Session& session, Start start, Point& point);

}  // namespace tovik::lp::barrier
