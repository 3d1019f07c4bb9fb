/* Modification of a network by the exported routines: each worker checks its arguments in the documented
 * order and then changes the data. A failed call leaves the network as it was. */
#pragma once

#include "env/environment.h"
#include "env/network_problem.h"
#include "model/network/network.h"
#include "model/routines/changes.h"

namespace tovik::model {

struct NewNodes {
  int count;
  const double* supply;      // may be null
  const char* const* names;  // may be null
};

/* Replaces the whole network. */
Status copy_network(Environment& env, NetworkProblem& problem, int sense, const NewNodes& nodes,
                    const NewArcs& arcs);

// ---- Adding and deleting
Status add_nodes(Environment& env, NetworkProblem& problem, const NewNodes& nodes);
Status add_arcs(Environment& env, NetworkProblem& problem, const NewArcs& arcs);
Status delete_nodes(Environment& env, NetworkProblem& problem, int begin, int end);
Status delete_arcs(Environment& env, NetworkProblem& problem, int begin, int end);
Status delete_node_set(NetworkProblem& problem, int* delstat);
Status delete_arc_set(NetworkProblem& problem, int* delstat);

// ---- Values
Status change_supply(Environment& env, NetworkProblem& problem, const ValueChanges& changes);
Status change_costs(Environment& env, NetworkProblem& problem, const ValueChanges& changes);
Status change_arc_bounds(Environment& env, NetworkProblem& problem, const BoundChanges& changes);
struct EndChanges {
  int count;
  const int* indices;
  const int* tail;
  const int* head;
};
Status change_arc_ends(Environment& env, NetworkProblem& problem, const EndChanges& changes);

// ---- Names
Status change_node_names(Environment& env, NetworkProblem& problem, const NameChanges& changes);
Status change_arc_names(Environment& env, NetworkProblem& problem, const NameChanges& changes);
Status change_network_name(NetworkProblem& problem, const char* name);

}  // namespace tovik::model
