/* One optimization of a network object: plain data, log, limits and callback, the answer into the object. */
#pragma once

#include "env/environment.h"
#include "env/error.h"
#include "env/network_problem.h"

namespace tovik::lp::run {

/* Runs the network simplex from the object's basis, if it has one and TVK_PARAM_ADVIND says so; leaves solution, basis
 * and counters. 1225 or 1233 with the position for supplies, costs or bounds that are no numbers. */
Status run_network(Environment& env, NetworkProblem& problem);

/* A starting basis; null arrays are 1004, entries outside 0..3 are 1253 with the position. */
Status copy_network_base(Environment& env, NetworkProblem& problem, const int* arc_status,
                         const int* node_status);

}  // namespace tovik::lp::run
