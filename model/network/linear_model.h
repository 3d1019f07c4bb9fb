/* A network as a linear model: one column for each arc, one row for each node. */
#pragma once

#include "env/network_problem.h"
#include "env/problem.h"
#include "model/store/load.h"

namespace tovik::model {

class Network;

/* Row i is the balance of node i: sense 'E', right-hand side supply[i]; column a has +1 in the row of its
 * tail and -1 in the row of its head, a loop nothing. Costs, bounds, objective sense and names are the
 * network's. */
ModelData lp_of(const Network& network);

/* Replaces the model of `problem` by that of the network, with its name (an empty one leaves the problem's).
 * 1023 for a problem of a fixed type. On failure the problem stays as it was. */
Status copy_network_to_lp(Environment& env, Problem& problem, const NetworkProblem& network);

}  // namespace tovik::model
