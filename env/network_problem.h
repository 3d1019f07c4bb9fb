/* The network record: one minimum-cost flow problem behind a caller's handle. It belongs to the environment
 * in which it was created and goes with it at the latest. */
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "env/access_state.h"
#include "env/environment.h"
#include "env/registry.h"

namespace tovik {

namespace model {
class Network;
}

/* What the last optimization of a network has found, in the network's sense of objective. */
struct NetworkSolution {
  int status = 0;
  bool primal_feasible = false, dual_feasible = false;
  double objective = 0;
  std::vector<double> flow, reduced_cost;  // by arc
  std::vector<double> potential, slack;    // by node
};

struct NetworkProblem {
  explicit NetworkProblem(Environment& environment);
  ~NetworkProblem();
  NetworkProblem(const NetworkProblem&) = delete;
  NetworkProblem& operator=(const NetworkProblem&) = delete;

  Environment* env;
  std::string name;
  AccessState use;  // by routines that are running
  std::unique_ptr<model::Network> network;
  std::unique_ptr<NetworkSolution> solution;  // null before the first optimization and after changes
  /* The basis to start from, by arc and by node, in the codes of TVKgetbase; empty: none. */
  std::vector<int> arc_status, node_status;
  int iterations = 0, phase1_iterations = 0;  // of the last optimization; they survive changes

  void values_changed() { solution.reset(); }
  void structure_changed() {
    solution.reset();
    arc_status.clear();
    node_status.clear();
  }
  LiveHandle live;  // last: a handle is live while the record is whole
};

}  // namespace tovik
