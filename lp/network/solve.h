/* The door of this folder: one minimum-cost flow problem solved by the network simplex.
 *
 * - Gets: the problem; a basis to start from, or an empty one; options; a control, and an observer or null.
 * - Leaves: a FlowAnswer. It says optimal only for a flow whose balances and signs have been summed up anew from the
 *   problem's own numbers, infeasible with multipliers of the nodes and unbounded with a circulation.
 * - Cost: the solve counts its work; sizes up to 2^30 arcs that are no loops, free ones counted twice.
 * - Errors: bad_alloc passes through. */
#pragma once

#include "lp/base/control.h"
#include "lp/network/flow_problem.h"

namespace tovik::lp::network {

FlowAnswer solve(const FlowProblem& problem, const FlowBasis& start, const FlowOptions& options,
                 Control& control, FlowObserver* observer);

}  // namespace tovik::lp::network
