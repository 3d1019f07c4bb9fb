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
#include <limits>
#include <vector>

#include "lp/simplex/core.h"
#include "lp/simplex/dual_pricing.h"
#include "lp/simplex/dual_ratio_test.h"
#include "lp/simplex/dual_weights.h"
#include "lp/simplex/implied_bounds.h"
#include "lp/simplex/observer.h"
#include "lp/simplex/pivot_undo.h"

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

  /* Goes on with the second phase from values and duals that are in step with the model's bounds and costs
   * (but for shifts), by unit of work what the pivots touch. start_near() once for such a state, then
   * reoptimize() any number of times, with touch() for each basic value or bound that has changed in between.
   * Optimal: no infeasible row at the carried values, which are as good as the factor's updates; infeasible:
   * proven by farkas(). Shifts are left in the working costs. */
  void start_near();
  void touch(int p) { pricing_rule_.update(core_, norms_.view(), p); }
  Outcome reoptimize(std::int64_t iterations, double objective);
  /* No row is infeasible at the carried values. */
  bool at_rest() const { return !pricing_rule_.any_listed(); }
  /* Iterations are to be taken back: reoptimize() then ends with numerical_failure where it would have to
   * refactor, and undo() takes it all back. Bounds that were changed are the caller's. */
  void record();
  void undo();
  bool records() const { return undo_.active(); }
  /* A bound on the objective by the present duals for the original costs, given the shifts since the costs
   * were the model's. -infinity where a shifted variable has no bound. Not while costs are perturbed. */
  double shift_free_bound() const;

  DualWeights& norms() { return norms_; }
  const DualRule& rule() const { return *rule_; }
  /* When the outcome is infeasible: the row y of B^-1 (by row, scaled space) whose combination of rows cannot
   * be met. */
  std::vector<double> farkas() const;
  double objective() const { return objective_; }

 private:
  enum class Step { moved, no_leaving, no_entering, boxes_dropped, numerical, stopped };
  enum class Rebuild { none, recompute, refactor };
  enum class PhaseEnd { optimal, dual_infeasible, unbounded, stopped, numerical_failure };

  PhaseEnd run_phase();
  bool rebuild(bool refactor);  // false: give up (singular beyond repair)
  void want_factor(FactorReason reason) {
    wanted_ = Rebuild::refactor;
    factor_reason_ = reason;
  }
  Step iterate();
  int choose_row();
  bool price_and_choose(DualRatioTest::Pick& pick);
  void solve_columns(int entering);
  void flip();
  void apply(int p, const DualRatioTest::Pick& pick);
  void update_duals(double theta);
  void shift(int j);
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
  void report(int entering, int leaving);
  void save(int p, const DualRatioTest::Pick& pick);
  bool resume(Step step);
  void keep_fixed_logicals(double theta);
  template <class Add>
  void each_row_term(Add add);

  Core& core_;
  DualWeights norms_;
  const DualRule* rule_;  // that keeps the weights
  DualPricing pricing_rule_;
  DualRatioTest ratio_test_;
  SparseVector rho_, alpha_row_, alpha_column_, flip_column_, tau_;
  double delta_ = 0;
  double objective_ = 0;
  bool phase1_ = false;
  Rebuild wanted_ = Rebuild::none;
  FactorReason factor_reason_ = FactorReason::check;  // of the next factorization
  bool fresh_ = false;                                // nothing has changed since the last rebuild
  Outcome stop_ = Outcome::numerical_failure;
  std::int64_t iteration_end_ = 0;
  int free_infeasible_ = 0;  // dual infeasibilities that neither flip nor shift may mend
  int rejections_ = 0;
  std::int64_t last_progress_iteration_ = 0;
  double last_progress_objective_ = 0;
  double perturb_scale_ = 1;
  ImpliedBounds box_;              // bounds of the second phase: the model's, and implied ones
  std::vector<int> farkas_index_;  // the proof's row of B^-1, its nonzeros
  std::vector<double> farkas_value_;
  SparseVector farkas_row_;           // of columns: the row's entries; work space of the proof
  std::vector<double> farkas_terms_;  // likewise: sizes of the terms of each entry
  bool near_ = false;                 // started near an optimum, see start_near()
  bool patient_ = false;              // a stall is borne for long, also without perturbation
  double drift_ = 0;  // largest relative gap of a pivot by row and by column since the last rebuild
  PivotUndo undo_;
};

}  // namespace tovik::lp::simplex
