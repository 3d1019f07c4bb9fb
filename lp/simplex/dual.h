/* The dual simplex driver: it orders the steps of an iteration; the work is done by Core and the dual's own
 * components.
 *
 * solve() starts from the core's present basis. Boxed variables are put on their dual feasible bound;
 * remaining dual infeasibilities are first driven out by a first phase on the boxed subproblem (free [-1000,
 * 1000], lower-bounded [0, 1], upper-bounded [-1, 0], others 0), then the second phase runs with bound
 * flipping on perturbed costs. On optimal the basis is primal feasible and dual feasible for the WORKING
 * costs; the original costs have been put back and d recomputed, so that remaining dual infeasibilities
 * (core.dual_infeasibility()) are left to a primal clean-up. Papers: Forrest, Goldfarb (1992); Koberstein
 * (2005); Huangfu, Hall, Math. Programming Computation 10 (2018). */
#pragma once

#include <cstdint>
#include <vector>

#include "lp/simplex/core.h"
#include "lp/simplex/dual_norms.h"
#include "lp/simplex/dual_pricing.h"
#include "lp/simplex/dual_ratio_test.h"
#include "lp/simplex/implied_bounds.h"
#include "lp/simplex/observer.h"

namespace tovik::lp::simplex {

class Dual {
 public:
  explicit Dual(Core& core);

  struct Settings {
    bool perturb = true;
    bool keep_norms = false;   // weights are those of the present basis
    bool warm = false;         // the start may be near the optimum: perturb only when it is not
    bool imply_bounds = true;  // box columns by bounds that the rows imply
  };
  Outcome solve(const Settings& settings, std::int64_t iteration_budget);

  DualNorms& norms() { return norms_; }
  /* When the outcome is infeasible: the row y of B^-1 (by row, scaled space) whose combination of rows cannot
   * be met. */
  const std::vector<double>& farkas() const { return farkas_; }
  double objective() const { return objective_; }

 private:
  enum class Step { moved, no_leaving, no_entering, boxes_dropped, numerical, stopped };
  enum class Rebuild { none, recompute, refactor };
  enum class PhaseEnd { optimal, dual_infeasible, unbounded, stopped, numerical_failure };

  PhaseEnd run_phase();
  bool rebuild(bool refactor);  // false: give up (singular beyond repair)
  Step iterate();
  int choose_row();
  bool price_and_choose(DualRatioTest::Pick& pick);
  void solve_columns(int entering);
  void flip();
  void apply(int p, const DualRatioTest::Pick& pick);
  void update_duals(double theta);
  void update_values(int p, double step);
  void correct_duals();
  void set_phase1_bounds();
  void clear_phase1_bounds();
  void drop_implied_bounds();
  bool check_limits();
  bool beyond_objective_limit();
  bool prove_infeasible();
  double dual_objective() const;
  void watch_progress();
  bool near_optimal();
  void start_norms(const Settings& settings);
  void restore_costs();
  void report(int entering, int leaving, bool to_upper);

  Core& core_;
  DualNorms norms_;
  DualPricing pricing_rule_;
  DualRatioTest ratio_test_;
  SparseVector rho_, alpha_row_, alpha_column_, flip_column_, tau_;
  double delta_ = 0;
  double objective_ = 0;
  bool phase1_ = false;
  Pricing pricing_ = Pricing::steepest_edge;  // steepest edge, devex or plain (weights all 1)
  Rebuild wanted_ = Rebuild::none;
  bool fresh_ = false;  // nothing has changed since the last rebuild
  Outcome stop_ = Outcome::numerical_failure;
  std::int64_t iteration_end_ = 0;
  int free_infeasible_ = 0;  // dual infeasibilities that neither flip nor shift may mend
  int rejections_ = 0;
  std::int64_t last_progress_iteration_ = 0;
  double last_progress_objective_ = 0;
  double perturb_scale_ = 1;
  ImpliedBounds box_;  // bounds of the second phase: the model's, and implied ones
  std::vector<double> farkas_;
};

}  // namespace tovik::lp::simplex
