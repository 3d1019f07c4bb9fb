/* The primal network simplex on strongly feasible trees.
 *
 * - Phases: artificial arcs between the nodes and the root carry what a node misses. They are charged a penalty beside
 *   the true costs; when that ends and some still carry flow, true costs are left out and the sum of infeasibilities
 *   alone is brought down, which decides feasibility without a large number. As soon as no artificial arc carries
 *   flow those left in the tree cost nothing and point to the root: none can carry flow again, as no arc leaves it.
 * - Cycling: the leaving arc is the last one of the cycle that blocks, seen from its highest node along the flow. With
 *   that rule the tree stays strongly feasible and no tree comes back.
 * - Exactness: sums and differences of whole numbers are not rounded, so flows of whole data are whole. Other data
 *   have residuals below a share of the largest number set to zero.
 * - Order: run() once; then the accessors.
 * - Cost: a pivot costs the arcs priced, the cycle, and the smaller side of the tree that the leaving arc cuts.
 *   Counted as work.
 * - Errors: bad_alloc passes through.
 * - Paper: "A network simplex method" (1976). */
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "lp/base/control.h"
#include "lp/base/outcome.h"
#include "lp/network/flow_problem.h"
#include "lp/network/pricing.h"
#include "lp/network/spanning_tree.h"
#include "lp/network/working_arcs.h"

namespace tovik::lp::network {

class FlowSimplex : private ProgressSource {
 public:
  /* Starts from `start`, or from shortest paths where it is empty. */
  FlowSimplex(const FlowProblem& problem, const FlowBasis& start, const FlowOptions& options,
              Control& control, FlowObserver* observer);
  Outcome run();

  const SpanningTree& tree() const { return tree_; }
  const WorkingArcs& arcs() const { return arcs_; }
  double potential(int v) const { return potential_[static_cast<std::size_t>(v)]; }
  bool is_feasible() const { return phase_ == Phase::cost; }
  std::int64_t iterations() const { return iterations_; }
  std::int64_t phase1_iterations() const { return phase1_iterations_; }
  /* Arcs of the cycle along which flow can grow for ever, with the direction +1 or -1. */
  struct RayArc {
    int arc, direction;
  };
  const std::vector<RayArc>& ray() const { return ray_; }
  /* What the artificial arcs carry. */
  double infeasibility() const;
  FlowProgress flow_progress() const;
  CallOrigin origin() const override { return CallOrigin::network; }

 private:
  enum class Phase { penalty, infeasibility, cost };
  enum class Step { pivot, no_candidate, endless };

  // ---- Starts
  /* Parents before children in `order`; parent n is the root. */
  struct StartTree {
    explicit StartTree(int nodes)
        : parent(static_cast<std::size_t>(nodes), kNoNode),
          arc(static_cast<std::size_t>(nodes), kArtificial) {
      order.reserve(static_cast<std::size_t>(nodes));
    }
    std::vector<int> parent, arc, order;
  };
  void start_from_shortest_paths();
  void start_from(const FlowBasis& start);
  void plant(StartTree& draft, std::vector<double> excess, const std::unordered_map<int, int>& halves);
  void hang_on_root(int v, double excess);

  // ---- Phases
  void begin_phase(Phase phase);
  void begin_cost_phase_if_feasible();
  void compute_potentials();
  void compute_objective();
  double artificial_cost(const SpanningTree::Node& node) const;
  Outcome conclude(Step step);

  // ---- One iteration
  struct Cycle {
    int arc, first, second;  // flow runs first -> second over the entering arc
    int join;
    double step;
    int out;            // node under the leaving arc; kNoNode: the entering arc goes to its other bound
    bool out_on_first;  // it is met on the way from `first`
    int top_first, top_second;  // last nodes before the join
  };
  Step iterate();
  Cycle find_cycle(int arc);
  void find_join(Cycle& cycle);
  void push(const Cycle& cycle);
  void exchange(const Cycle& cycle, double gain);
  void shift_potentials(int top, double shift);
  void store_ray(const Cycle& cycle);
  Stop poll();
  double snapped(double residual) const { return residual <= snap_ ? 0 : residual; }
  Progress progress() const override;

  const FlowProblem& problem_;
  const FlowOptions options_;
  Control& control_;
  FlowObserver* observer_;
  WorkingArcs arcs_;
  SpanningTree tree_;
  std::vector<double> potential_;
  Pricing pricing_;
  Phase phase_ = Phase::penalty;
  double penalty_ = 0;
  double snap_ = 0;
  double objective_ = 0;  // of the phase's own costs
  double running_infeasibility_ = 0;
  std::int64_t iterations_ = 0, phase1_iterations_ = 0;
  std::uint64_t work_ = 0;        // since the last poll
  std::uint64_t clock_work_ = 0;  // since the clock was read
  std::vector<RayArc> ray_;
};

}  // namespace tovik::lp::network
