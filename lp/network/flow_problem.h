/* One minimum-cost flow problem as plain data, what may be asked of the network simplex, and what it answers.
 *
 *     minimize cost'flow   subject to   flow out of i - flow into i = supply[i],   lower <= flow <= upper
 *
 * Infinite bounds are +-kInf. Parallel arcs, loops and bounds of any sign are allowed; crossed bounds make a problem
 * infeasible. The caller owns the arrays and keeps them while a solve runs. */
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "lp/base/basis_status.h"
#include "lp/base/lp_data.h"
#include "lp/base/outcome.h"

namespace tovik::lp::network {

struct FlowProblem {
  std::span<const double> supply;  // by node
  std::span<const int> tail, head;
  std::span<const double> cost, lower, upper;
  int num_nodes() const { return static_cast<int>(supply.size()); }
  int num_arcs() const { return static_cast<int>(tail.size()); }
};

/* Of arcs and of nodes; a node is basic where its row is covered by its own logical, elsewhere `lower`. */
struct FlowBasis {
  std::vector<BasisStatus> arcs, nodes;
  bool empty() const { return nodes.empty(); }
};

enum class FlowPricing { block, candidate_list, sorted_list };

struct FlowOptions {
  double optimality = 1e-6;   // largest reduced cost of the wrong sign
  double feasibility = 1e-6;  // largest amount by which a node's balance may be missed
  std::int64_t iteration_limit = INT64_MAX;
  FlowPricing pricing = FlowPricing::block;
  std::int64_t report_interval = INT64_MAX;  // iterations between two calls of the observer
};

/* Where the simplex stands. */
struct FlowProgress {
  bool phase1 = true;
  std::int64_t iterations = 0;
  double infeasibility = 0;  // sum of missing and superfluous flow over all nodes
  double objective = 0;      // cost of the flow as it is
  double penalized = 0;      // the same with what infeasibility is charged for
};

class FlowObserver {
 public:
  virtual ~FlowObserver() = default;
  virtual void report(const FlowProgress& now) = 0;
};

/* Values are those of the last basis, however the run ended. Signs are those of the linear program with +1 in the
 * tail's row: reduced_cost = cost - potential[tail] + potential[head]. */
struct FlowAnswer {
  Outcome outcome = Outcome::numerical_failure;
  std::vector<double> flow, reduced_cost;  // by arc
  std::vector<double> potential;           // by node
  FlowBasis basis;
  bool primal_feasible = false, dual_feasible = false;
  double objective = 0;
  double infeasibility = 0;  // sum over the nodes
  std::vector<double> ray;   // unbounded: a circulation of negative cost, by arc
  // Infeasible: y by node; no flow within bounds has balances b with y'b as large as y'supply.
  std::vector<double> farkas;
  int crossed_arc = -1;  // infeasible: bounds that exclude each other
  std::int64_t iterations = 0, phase1_iterations = 0;
};

}  // namespace tovik::lp::network
