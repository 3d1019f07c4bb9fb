#include "lp/network/solve.h"

#include <algorithm>
#include <cmath>

#include "lp/base/sum.h"
#include "lp/network/flow_simplex.h"

namespace tovik::lp::network {
namespace {

std::size_t at(int k) {
  return static_cast<std::size_t>(k);
}

bool bounds_cross(const FlowProblem& problem, int a, double tolerance) {
  return problem.lower[at(a)] > problem.upper[at(a)] + tolerance;
}

/* Flows, statuses and rays of what the simplex leaves; then what follows from them. */
class AnswerMaker {
 public:
  AnswerMaker(const FlowProblem& problem, const FlowOptions& options, FlowAnswer& answer)
      : problem_(problem), options_(options), answer_(answer) {}

  /* All flows at the bounds next to zero, and no arc basic. Called once a solve's own arrays are at their largest, so
   * that the answer comes on top of no start. */
  void take_bounds() {
    const std::size_t arcs = at(problem_.num_arcs()), nodes = at(problem_.num_nodes());
    answer_.flow.assign(problem_.lower.begin(), problem_.lower.end());
    answer_.basis.arcs.assign(arcs, BasisStatus::lower);
    answer_.potential.assign(nodes, 0);
    answer_.basis.nodes.assign(nodes, BasisStatus::basic);
    for (int a = 0; a < problem_.num_arcs(); ++a)
      if (problem_.lower[at(a)] == -kInf) place(a);
  }

  void take(const FlowSimplex& simplex) {
    take_bounds();
    const WorkingArcs& arcs = simplex.arcs();
    for (int a = 0; a < arcs.count(); ++a) {
      if (arcs.state(a) >= 0) continue;
      answer_.flow[at(arcs.origin(a))] = arcs.original_bound(a);
      answer_.basis.arcs[at(arcs.origin(a))] = arcs.is_reversed(a) ? BasisStatus::lower : BasisStatus::upper;
    }
    const SpanningTree& tree = simplex.tree();
    for (int v = 0; v < tree.root(); ++v) {
      const SpanningTree::Node& node = tree[v];
      if (node.is_artificial()) continue;
      answer_.basis.nodes[at(v)] = BasisStatus::lower;
      answer_.basis.arcs[at(arcs.origin(node.arc()))] = BasisStatus::basic;
      add_flow(arcs, node.arc(), arcs.original_flow(node.arc(), node.points_up() ? node.down : node.up));
    }
    take_potentials(simplex);
    for (const FlowSimplex::RayArc& part : simplex.ray()) {
      answer_.ray.resize(answer_.flow.size());
      const bool reversed = arcs.is_reversed(part.arc);
      answer_.ray[at(arcs.origin(part.arc))] += reversed ? -part.direction : part.direction;
    }
  }

  void place_loops() {
    for (int a = 0; a < problem_.num_arcs(); ++a)
      if (problem_.tail[at(a)] == problem_.head[at(a)]) place_at_better_bound(a);
  }

  void complete() {
    CompensatedSum objective;
    std::vector<CompensatedSum> balance(answer_.potential.size());
    for (std::size_t i = 0; i < balance.size(); ++i) balance[i].add(problem_.supply[i]);
    answer_.dual_feasible = true;
    answer_.reduced_cost.reserve(answer_.flow.size());
    for (std::size_t a = 0; a < answer_.flow.size(); ++a) {
      const int tail = problem_.tail[a], head = problem_.head[a];
      const double flow = answer_.flow[a];
      double d = problem_.cost[a];
      if (tail != head) d += answer_.potential[at(head)] - answer_.potential[at(tail)];
      if (tail != head && answer_.basis.arcs[a] == BasisStatus::basic) d = 0;
      answer_.reduced_cost.push_back(d);
      if ((d < -2 * options_.optimality && flow < problem_.upper[a]) ||
          (d > 2 * options_.optimality && flow > problem_.lower[a]))
        answer_.dual_feasible = false;
      if (flow == 0) continue;
      objective.add_product(problem_.cost[a], flow);
      if (tail == head) continue;
      balance[at(tail)].add(-flow);
      balance[at(head)].add(flow);
    }
    answer_.objective = objective.value();
    double worst = 0;
    for (const CompensatedSum& missing : balance) {
      const double amount = std::fabs(missing.value());
      worst = std::max(worst, amount);
      answer_.infeasibility += amount;
    }
    const double allowed = options_.feasibility;
    answer_.primal_feasible = worst <= allowed && answer_.crossed_arc < 0;
    if (answer_.primal_feasible && answer_.infeasibility <= allowed) answer_.infeasibility = 0;
  }

 private:
  void add_flow(const WorkingArcs& arcs, int a, double flow) {
    double& whole = answer_.flow[at(arcs.origin(a))];
    whole = arcs.is_free(a) ? whole + flow : flow;
  }

  /* From the true costs; nodes under the root have none. Those of an infeasible problem are its proof. */
  void take_potentials(const FlowSimplex& simplex) {
    const SpanningTree& tree = simplex.tree();
    const WorkingArcs& arcs = simplex.arcs();
    if (answer_.outcome == Outcome::infeasible) {
      for (int v = 0; v < tree.root(); ++v)
        answer_.farkas.push_back(simplex.potential(v) - simplex.potential(tree.root()));
    }
    for (int v = tree.next(tree.root()); v != tree.root(); v = tree.next(v)) {
      const SpanningTree::Node& node = tree[v];
      if (node.is_artificial()) continue;
      const int a = node.arc();
      const double cost =
          arcs.is_reversed(a) ? -problem_.cost[at(arcs.origin(a))] : problem_.cost[at(arcs.origin(a))];
      answer_.potential[at(v)] = answer_.potential[at(tree.parent(v))] + (node.points_up() ? cost : -cost);
    }
  }

  void place(int a) {
    const double lower = problem_.lower[at(a)], upper = problem_.upper[at(a)];
    answer_.flow[at(a)] = lower > -kInf ? lower : upper < kInf ? upper : 0;
    answer_.basis.arcs[at(a)] = lower > -kInf  ? BasisStatus::lower
                                : upper < kInf ? BasisStatus::upper
                                               : BasisStatus::free;
  }

  /* A loop carries what its cost says and touches no balance. */
  void place_at_better_bound(int a) {
    const double cost = problem_.cost[at(a)], lower = problem_.lower[at(a)], upper = problem_.upper[at(a)];
    place(a);
    if (std::fabs(cost) <= options_.optimality) return;
    const double wanted = cost < 0 ? upper : lower;
    if (std::isfinite(wanted)) {
      answer_.flow[at(a)] = wanted;
      answer_.basis.arcs[at(a)] = cost < 0 ? BasisStatus::upper : BasisStatus::lower;
    } else if (answer_.outcome == Outcome::optimal) {
      answer_.outcome = Outcome::unbounded;
      answer_.ray.assign(answer_.flow.size(), 0);
      answer_.ray[at(a)] = cost < 0 ? 1 : -1;
    }
  }

  const FlowProblem& problem_;
  const FlowOptions& options_;
  FlowAnswer& answer_;
};

}  // namespace

FlowAnswer solve(const FlowProblem& problem, const FlowBasis& start, const FlowOptions& options,
                 Control& control, FlowObserver* observer) {
  FlowAnswer answer;
  AnswerMaker maker(problem, options, answer);
  for (int a = 0; a < problem.num_arcs() && answer.crossed_arc < 0; ++a)
    if (bounds_cross(problem, a, options.feasibility)) answer.crossed_arc = a;
  if (answer.crossed_arc >= 0) {
    answer.outcome = Outcome::infeasible;
    maker.take_bounds();
  } else {
    FlowSimplex simplex(problem, start, options, control, observer);
    answer.outcome = simplex.run();
    answer.iterations = simplex.iterations();
    answer.phase1_iterations = simplex.is_feasible() ? simplex.phase1_iterations() : simplex.iterations();
    maker.take(simplex);
    maker.place_loops();
  }
  maker.complete();
  if (answer.outcome == Outcome::optimal && !(answer.primal_feasible && answer.dual_feasible))
    answer.outcome = Outcome::numerical_failure;
  return answer;
}

}  // namespace tovik::lp::network
