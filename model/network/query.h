/* Queries of a network that those of models do not cover. */
#pragma once

#include "model/network/network.h"
#include "model/routines/query.h"

namespace tovik::model {

struct ArcOutput {
  int* count;
  int* begin;
  int* arcs;
  int space;
  int* surplus;
};
/* The arcs that begin or end at each node of the range, ascending, by the surplus protocol (surplus.h). A
 * loop comes once, any other arc with each of its nodes. */
Status get_node_arcs(Environment& env, const Network& network, const Range& range, const ArcOutput& out);

}  // namespace tovik::model
