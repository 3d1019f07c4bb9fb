/* The primal simplex driver: it orders the steps of an iteration; the work is done by Core and the primal's
 * own components.
 *
 * solve() starts from the core's present basis, whatever it is. While basic variables lie outside their
 * bounds it minimizes the sum of infeasibilities (costs -1, +1 in place of the model's), then the model's
 * costs. Bounds of basic variables are widened when steps of length zero pile up. On return bounds and costs
 * are the model's own, and x and d belong to them, unless the factor broke down (Outcome::singular).
 *
 *   optimal            no improving column and no infeasible basic on recomputed values with the model's
 *                      bounds and costs
 *   infeasible         first phase at its optimum, and infeasibility_duals() combines the rows to one that
 *                      no point can meet
 *   unbounded          the ray was checked against the model's bounds, matrix and costs
 *   numerical_failure  the budget ran out, or nothing could be proven
 *
 * The basis after `optimal` may hold nonbasic values between bounds only if the caller's start had them and
 * their reduced cost is zero. */
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "lp/simplex/core.h"
#include "lp/simplex/observer.h"
#include "lp/simplex/partial_pricing.h"
#include "lp/simplex/primal_bounds.h"
#include "lp/simplex/primal_pricing.h"
#include "lp/simplex/primal_ratio_test.h"
#include "lp/verify/certificates.h"

namespace tovik::lp::simplex {

class Primal {
 public:
  explicit Primal(Core& core);

  Outcome solve(std::int64_t iteration_budget);

  /* After unbounded: x_B - direction * ray_column * t, x_q + direction * t improves for ever. */
  const SparseVector& ray_column() const { return column_; }
  int ray_variable() const { return entering_; }
  double ray_direction() const { return direction_; }
  /* After infeasible: y (size m, by row, scaled space). Every feasible point satisfies sum_j z_j x_j = 0 with
   * z = y'[A I]; within the bounds that sum is always negative. */
  const std::vector<double>& infeasibility_duals() const { return farkas_; }

 private:
  enum class Step { moved, no_entering, unbounded, numerical, stopped };
  enum class Rebuild { none, recompute, refactor };
  enum class Trust { good, refactor, aside };  // of a pivot; aside: not with this factor, and it is fresh

  Outcome run();
  bool rebuild();  // false: singular beyond repair
  void want_factor(FactorReason reason) {
    wanted_ = Rebuild::refactor;
    factor_reason_ = reason;
  }
  FactorState factor() { return core_.refactor(std::exchange(factor_reason_, FactorReason::check)); }
  void choose_phase();
  void set_phase1_costs();
  Step iterate();
  bool choose_column();  // entering_, direction_, column_; false: none
  Step blocked_by_nothing();
  Trust price_row(const PrimalPick& pick);  // rho_, row_index_, row_alpha_
  void flip(double step);
  void apply(PrimalPick pick);
  void update_values(double step, int skip);
  void update_duals(double theta);
  void update_phase1_duals();
  void after_step(double step, int leaving, bool to_upper);
  void watch_degeneracy(double gain);
  void reject_pivot(int q);
  bool check_limits();
  Outcome finish(Outcome outcome);
  bool stuck();
  bool tighten_dual_tolerance();
  bool end_tightening();
  bool settle_optimum(Outcome& outcome);  // false: go on
  bool prove_infeasible();
  /* A column that keeps multipliers from proving infeasibility, by its entry of y'[A I]. */
  struct Spoiler {
    int variable = -1;
    double entry = 0;
  };
  Spoiler find_spoiler(const verify::Multipliers& y) const;
  bool enter_spoiler();
  void load_entering();  // column_, column_largest_
  bool prove_unbounded();
  double residual() const;

  Core& core_;
  PrimalPricing pricing_;
  PrimalRatioTest ratio_;
  PrimalBounds bounds_;
  PartialPricing partial_;
  SparseVector column_, rho_, alpha_row_, mu_, changes_;
  std::vector<int> row_index_;  // packed pivot row: movable nonbasics
  std::vector<double> row_alpha_;
  std::vector<signed char> violation_;  // by position: first-phase cost of its basic variable
  std::vector<double> farkas_;
  Spoiler spoiler_;   // to enter next
  int spoilers_ = 0;  // that have entered in this solve
  int entering_ = -1;
  double direction_ = 0;
  double column_largest_ = 0;
  bool phase1_ = false;
  bool costs_are_phase1_ = false;
  int infeasible_ = 0;  // basics with a violation
  Rebuild wanted_ = Rebuild::none;
  FactorReason factor_reason_ = FactorReason::check;  // of the next factorization
  bool fresh_ = false;                                // nothing has moved since the last rebuild
  bool accept_small_ = false;                         // only distrusted pivots are left
  Outcome stop_ = Outcome::numerical_failure;
  double objective_ = 0;
  double optimality_tolerance_ = 0;  // tolerance of improving reduced costs in force
  bool tightened_ = false;           // the optimum has been sharpened, or that took too long
  std::int64_t tighten_end_ = 0;
  std::int64_t start_work_ = 0;  // ticks at the start of the solve
  std::int64_t start_ = 0;       // iterations at the start of the solve
  std::int64_t iteration_end_ = 0;
  int rejections_ = 0;
  int restores_ = 0;       // times the bounds have been put back in this solve
  double degeneracy_ = 0;  // running share of steps without gain
  std::int64_t degenerate_total_ = 0;
  double progress_ = 0;  // gain since the last mark
  std::int64_t progress_mark_ = 0;
  double perturb_scale_ = 0;
  bool marked_phase1_ = false;  // phase of the marked value
  double marked_value_ = 0;     // infeasibility sum or objective, measured at rebuilds
  std::int64_t marked_at_ = 0;
  int falls_ = 0;  // returns to the first phase
};

}  // namespace tovik::lp::simplex
