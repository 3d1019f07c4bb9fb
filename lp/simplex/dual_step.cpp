/* One iteration of the dual simplex, and what is watched between iterations. */
#include <algorithm>
#include <array>
#include <cmath>

#include "lp/simplex/dual.h"

namespace tovik::lp::simplex {
namespace {

constexpr double kPivotMismatch = 1e-7;  // relative gap of the pivot by row and by column: refactor
constexpr double kFreshMismatch = 1e-4;  // the same on a fresh factor: give the row up for now
constexpr double kSmallPivot =
    1e-7;  // pivots below this share of the row's largest ask for a fresh factor first
constexpr double kProgress = 1e-9;        // relative growth of the objective that counts as progress
constexpr int kUnperturbedPatience = 30;  // iterations without progress before the first perturbation
constexpr double kStrongestPerturbation = 1e4;

}  // namespace

/* The running objective is of the perturbed problem: when it passes the limit, the bound that the present
 * duals give for the original costs decides. That costs a pass over the matrix, so it is asked every now and
 * then only. */
bool Dual::beyond_objective_limit() {
  constexpr int kAskEvery = 20;
  if (phase1_ || !(objective_ > core_.options.objective_upper)) return false;
  if (!core_.work.costs_perturbed())
    return !core_.work.costs_shifted() || shift_free_bound() > core_.options.objective_upper;
  if (core_.counters.iterations % kAskEvery != 0) return false;
  return core_.original_dual_bound() > core_.options.objective_upper;
}

int Dual::choose_row() {
  for (;;) {
    const int p = pricing_rule_.choose(core_, norms_.view());
    if (p < 0) return p;
    rho_.clear();
    rho_.set_unit(p);
    rho_.want_pack = true;
    core_.btran(rho_, core_.row_ep_density);
    rho_.want_pack = false;
    if (undo_.active()) undo_.save_basic(core_, norms_, p);
    const bool stands = rule_->accept(p, rho_, norms_);
    const double low = core_.values.x_lower(p);
    const double high = core_.values.x_upper(p);
    delta_ = core_.values.x(p) < low ? core_.values.x(p) - low : core_.values.x(p) - high;
    if (stands) return p;
    ++core_.counters.rows_rejected;
  }
}

Dual::Step Dual::iterate() {
  const int p = choose_row();
  if (p < 0) return Step::no_leaving;
  DualRatioTest::Pick pick;
  if (!price_and_choose(pick)) {
    if (near_ && prove_infeasible()) return Step::no_entering;
    if (!fresh_) {
      wanted_ = Rebuild::recompute;
      if (core_.factor.updates() > 0) want_factor(FactorReason::check);
      return Step::moved;
    }
    if (phase1_) {  // cannot happen but for rounding: every column is boxed
      pricing_rule_.ban(p);
      return Step::numerical;
    }
    if (prove_infeasible()) return Step::no_entering;
    if (box_.found > 0) {
      // The row is infeasible by implied bounds at most; only the model's own bounds may prove that.
      drop_implied_bounds();
      core_.compute_dual();
      clear_phase1_bounds();
      wanted_ = Rebuild::recompute;
      return core_.dual_infeasibility().count > 0 ? Step::boxes_dropped : Step::moved;
    }
    pricing_rule_.ban(p);
    return Step::moved;
  }
  if (core_.factor.updates() > 0 && std::fabs(pick.alpha) < kSmallPivot * ratio_test_.largest_alpha()) {
    want_factor(FactorReason::pivot);
    return Step::numerical;
  }
  solve_columns(pick.variable);
  const double by_column = alpha_column_.array[p];
  const double gap = std::fabs(by_column - pick.alpha);
  const double size = std::min(std::fabs(by_column), std::fabs(pick.alpha));
  drift_ = std::max(drift_, gap / size);
  if (core_.factor.updates() > 0 ? gap > kPivotMismatch * size : gap > kFreshMismatch * size) {
    if (core_.factor.updates() == 0) pricing_rule_.ban(p);
    want_factor(FactorReason::pivot);
    return Step::numerical;
  }
  apply(p, pick);
  return Step::moved;
}

bool Dual::price_and_choose(DualRatioTest::Pick& pick) {
  alpha_row_.clear();
  core_.price_unlisted(rho_, alpha_row_);
  ratio_test_.load(core_, rho_, alpha_row_, delta_);
  pick = ratio_test_.choose(core_, delta_);
  return pick.variable >= 0;
}

/* The iteration's solves: the entering column, the change of the basic values by flips, and the pivot row's
 * product with the inverse for the weights. */
void Dual::solve_columns(int entering) {
  std::array<Core::Solve, 3> solves;
  size_t count = 0;
  core_.model.load_column(entering, alpha_column_);
  alpha_column_.want_pack = true;
  solves[count++] = {&alpha_column_, &core_.column_density};
  if (rule_->needs_tau()) {
    tau_.copy(rho_);
    solves[count++] = {&tau_, &core_.dse_density};
  }
  if (!ratio_test_.flips().empty()) {
    flip_column_.clear();
    for (int j : ratio_test_.flips())
      core_.model.add_column(j, core_.basis.move(j) * (core_.work.upper(j) - core_.work.lower(j)),
                             flip_column_);
    solves[count++] = {&flip_column_, &core_.flip_density};
  }
  core_.ftran({solves.data(), count});
  alpha_column_.want_pack = false;
}

/* Moves the flipped variables to their other bounds. */
void Dual::flip() {
  core_.counters.dual.bound_flips += static_cast<std::int64_t>(ratio_test_.flips().size());
  for (int j : ratio_test_.flips()) {
    objective_ += core_.values.d(j) * core_.basis.move(j) * (core_.work.upper(j) - core_.work.lower(j));
    core_.flip_nonbasic(j);
  }
}

void Dual::apply(int p, const DualRatioTest::Pick& pick) {
  const int q = pick.variable;
  const int out = core_.basis.head(p);
  if (undo_.active()) save(p, pick);
  if (pick.shift) {
    objective_ -= core_.values.d(q) * core_.basis.value(q);
    core_.shift_cost(q, 0);
  }
  const int leaving_move = delta_ < 0 ? 1 : -1;
  const double bound = leaving_move > 0 ? core_.values.x_lower(p) : core_.values.x_upper(p);
  if (!ratio_test_.flips().empty()) {
    flip();
    update_values(-1, 1.0);
    delta_ = core_.values.x(p) - bound;
  }
  objective_ += pick.theta * delta_;
  update_duals(pick.theta);
  core_.values.set_dual(q, 0);
  core_.values.set_dual(out, -pick.theta);
  const double pivot = alpha_column_.array[p];
  const double step = delta_ / pivot;
  const double entering_value = core_.basis.value(q) + step;
  if (rule_->update({p, alpha_column_, tau_}, norms_)) ++core_.counters.dual.weight_resets;
  update_values(p, step);
  core_.change_basis(q, p, leaving_move);
  core_.values.set_x(p, entering_value);
  pricing_rule_.set(p,
                    DualPricing::violation2(entering_value, core_.values.x_lower(p), core_.values.x_upper(p),
                                            core_.primal_tolerance()),
                    norms_.view()[p]);
  if (!core_.update_factor(alpha_column_, rho_, p)) want_factor(FactorReason::update);
  // On trial the factor lasts as long as it takes updates at all.
  const int limit = core_.options.refactor_limit;
  if (core_.has_factor() && !undo_.active() &&
      (core_.factor.wants_rebuild() || (limit > 0 && core_.factor.updates() >= limit)))
    want_factor(FactorReason::growth);
  fresh_ = false;
  ++core_.counters.iterations;
  ++(phase1_ ? core_.counters.dual.phase1 : core_.counters.dual.phase2);
  if (core_.values.d(out) * core_.basis.move(out) < -core_.dual_tolerance() &&
      core_.work.lower(out) != core_.work.upper(out)) {
    shift(out);
  }
  report(q, out);
  watch_progress();
}

/* A feasible reduced cost for nonbasic j, and what that does to the objective of the working costs. */
void Dual::shift(int j) {
  const double before = core_.work.cost(j);
  core_.shift_to_feasible(j);
  objective_ += (core_.work.cost(j) - before) * core_.basis.value(j);
}

void Dual::update_duals(double theta) {
  if (theta == 0) return;
  const std::span<const int> index = ratio_test_.row_index();
  const std::span<const double> alpha = ratio_test_.row_alpha();
  const double tolerance = core_.dual_tolerance();
  core_.values.update_duals(index, alpha, theta, [&](int j, double d) {
    if (core_.basis.move(j) * d < -tolerance) shift(j);
  });
  core_.charge(static_cast<std::int64_t>(index.size()));
  if (near_) keep_fixed_logicals(theta);
}

/* Fixed logicals take no part in the ratio test, but the multipliers of their rows are needed when columns
 * come back from being fixed. */
void Dual::keep_fixed_logicals(double theta) {
  const auto keep = [&](int i) {
    const int j = core_.n() + i;
    if (core_.basis.nonbasic(j) && core_.is_fixed(j)) core_.values.add_dual(j, -theta * rho_.array[i]);
  };
  for_listed(rho_, keep);
}

/* x -= step * column: the entering column's when p >= 0 (without row p), the flips' otherwise. */
void Dual::update_values(int p, double step) {
  const SparseVector& column = p >= 0 ? alpha_column_ : flip_column_;
  const double tolerance = core_.primal_tolerance();
  if (column.list_pays()) {
    const double* const weight = norms_.view().data();
    core_.values.move_along(column, step, [&](int i, double x) {
      pricing_rule_.set(
          i, DualPricing::violation2(x, core_.values.x_lower(i), core_.values.x_upper(i), tolerance),
          weight[i]);
    });
    core_.charge(3 * static_cast<std::int64_t>(column.count));
    return;
  }
  core_.values.move_along(column.array, step);
  pricing_rule_.set_all(core_, norms_.view());
  core_.charge(2 * static_cast<std::int64_t>(core_.m()));
}

void Dual::report(int entering, int leaving) {
  if (core_.observer == nullptr) return;
  IterationEvent event;
  event.phase1 = phase1_;
  event.entering = entering;
  event.leaving = leaving;
  event.objective = objective_;
  core_.observer->iteration(core_, event);
}

/* A long stall is answered by a stronger perturbation; a start that went without one waits only a little. */
void Dual::watch_progress() {
  const double size = std::max(1.0, std::fabs(objective_));
  if (objective_ > last_progress_objective_ + kProgress * size) {
    last_progress_objective_ = objective_;
    last_progress_iteration_ = core_.counters.iterations;
    return;
  }
  const std::int64_t patience =
      patient_ || core_.work.costs_perturbed() ? std::max(1000, core_.m() / 2) : kUnperturbedPatience;
  if (core_.counters.iterations - last_progress_iteration_ < patience || undo_.active()) return;
  last_progress_iteration_ = core_.counters.iterations;
  if (perturb_scale_ >= kStrongestPerturbation) return;
  if (core_.work.costs_perturbed()) perturb_scale_ *= 10;
  core_.log(core_.work.costs_perturbed() ? "Reperturbation started.\n" : "Perturbation started.\n");
  core_.perturb_costs(perturb_scale_);
  if (wanted_ == Rebuild::none) wanted_ = Rebuild::recompute;
}

}  // namespace tovik::lp::simplex
