#include "lp/simplex/dual.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

namespace tovik::lp::simplex {
namespace {

constexpr double kPivotMismatch = 1e-7;  // relative gap of the pivot by row and by column: refactor
constexpr double kFreshMismatch = 1e-4;  // the same on a fresh factor: give the row up for now
constexpr double kSmallPivot =
    1e-7;  // pivots below this share of the row's largest ask for a fresh factor first
constexpr double kBoxFree = 1000.0;       // bounds of free variables in the first phase
constexpr int kRounds = 12;               // phase changes before giving up
constexpr int kMaxRejections = 60;        // numerical rejections in a row before giving up
constexpr double kProgress = 1e-9;        // relative growth of the objective that counts as progress
constexpr int kUnperturbedPatience = 30;  // iterations without progress before the first perturbation
constexpr double kStrongestPerturbation = 1e4;
constexpr double kUsualMagnitude = 1e-6;  // perturbation magnitude that means a scale of 1

}  // namespace

Dual::Dual(Core& core) : core_(core), rule_(&dual_rule(core.options.dual_pricing)) {
  pricing_rule_.resize(core.m());
  rho_.resize(core.m());
  alpha_column_.resize(core.m());
  flip_column_.resize(core.m());
  tau_.resize(core.m());
  alpha_row_.resize(core.n());
}

// ---- phases
// ---------------------------------------------------------------------------------------------------------

void Dual::set_phase1_bounds() {
  phase1_ = true;
  for (int j = 0; j < core_.total(); ++j) {
    const bool has_lower = box_.lower[j] != -kInf;
    const bool has_upper = box_.upper[j] != kInf;
    core_.work.set_bounds(j,
                          has_lower   ? 0.0
                          : has_upper ? -1.0
                                      : -kBoxFree,
                          has_upper   ? 0.0
                          : has_lower ? 1.0
                                      : kBoxFree);
    if (core_.basis.nonbasic(j)) core_.place_nonbasic(j, core_.values.d(j) >= 0 ? 1 : -1);
  }
}

void Dual::clear_phase1_bounds() {
  phase1_ = false;
  core_.work.use_bounds(box_.lower, box_.upper);
  for (int j = 0; j < core_.total(); ++j) {
    if (core_.basis.nonbasic(j))
      core_.place_nonbasic(j, core_.values.d(j) > 0 ? 1 : core_.values.d(j) < 0 ? -1 : core_.basis.move(j));
  }
}

void Dual::drop_implied_bounds() {
  box_.lower = core_.model.lower();
  box_.upper = core_.model.upper();
  box_.found = 0;
}

/* Drops perturbation and shifts, says so, and recomputes the reduced costs. */
void Dual::restore_costs() {
  if (!core_.work.costs_perturbed() && !core_.work.costs_shifted()) return;
  if (core_.work.costs_perturbed()) {
    core_.log("Removing perturbation.\n");
  } else {
    char line[48];
    std::snprintf(line, sizeof line, "Removing shift (%d).\n", static_cast<int>(core_.counters.shifts));
    core_.log(line);
  }
  core_.use_original_costs();
  core_.compute_dual();
}

void Dual::start_norms(const Settings& settings) {
  rule_ = &dual_rule(core_.options.dual_pricing);
  if (core_.observer != nullptr && core_.counters.iterations == 0 && rule_->name() != nullptr)
    core_.observer->pricing(rule_->name(), false);
  rule_->start(core_, settings.keep_norms, norms_, rho_);
}

/* Few and only primal infeasibilities: such a start is left alone, no perturbation, no boxes. */
bool Dual::near_optimal() {
  core_.compute_dual();
  if (core_.dual_infeasibility().count > 0) return false;
  core_.compute_primal();
  return core_.primal_infeasibility().count <= 30 + core_.m() / 100;
}

Outcome Dual::solve(const Settings& settings, std::int64_t iteration_budget) {
  iteration_end_ = core_.counters.iterations + iteration_budget;
  near_ = false;
  rejections_ = 0;
  factor_reason_ = FactorReason::check;
  phase1_ = false;
  pricing_rule_.resize(core_.m());
  core_.use_original_bounds();
  core_.use_original_costs();
  const bool fresh_basis = !core_.has_factor();
  if (fresh_basis && core_.refactor() == FactorState::singular) return Outcome::singular;
  start_norms(settings);
  drop_implied_bounds();
  perturb_scale_ = core_.options.perturb_magnitude / kUsualMagnitude;
  patient_ = !settings.warm || !near_optimal();
  if (patient_) {
    if (settings.imply_bounds) box_ = imply_bounds(core_);
    if (settings.perturb) {
      core_.perturb_costs(perturb_scale_);
      core_.log("Perturbation started.\n");
    }
  }
  core_.compute_dual();
  clear_phase1_bounds();  // boxed variables to their dual feasible bounds
  for (int round = 0; round < kRounds; ++round) {
    if (core_.dual_infeasibility().count > 0) {
      set_phase1_bounds();
      const PhaseEnd end = run_phase();
      core_.compute_dual();
      clear_phase1_bounds();
      if (end == PhaseEnd::stopped) return stop_;
      if (end == PhaseEnd::numerical_failure) return Outcome::numerical_failure;
      if (core_.dual_infeasibility().count > 0) {
        if (!core_.work.costs_perturbed() && !core_.work.costs_shifted())
          return Outcome::infeasible_or_unbounded;
        restore_costs();
        clear_phase1_bounds();
        continue;
      }
    }
    const PhaseEnd end = run_phase();
    if (end == PhaseEnd::stopped) return stop_;
    if (end == PhaseEnd::numerical_failure) return Outcome::numerical_failure;
    if (end == PhaseEnd::unbounded) return Outcome::infeasible;
    if (end == PhaseEnd::optimal) {
      restore_costs();
      if (box_.found > 0) {
        // No feasible point stands at an implied bound, but rounding may leave a column there.
        drop_implied_bounds();
        core_.use_original_bounds();
        core_.compute_primal();
        if (core_.primal_infeasibility().count > 0) continue;
      }
      return Outcome::optimal;
    }
    core_.compute_dual();
    clear_phase1_bounds();
  }
  return Outcome::numerical_failure;
}

Dual::PhaseEnd Dual::run_phase() {
  last_progress_iteration_ = core_.counters.iterations;
  last_progress_objective_ = -kInf;
  bool refactor = false;
  bool keep_banned = false;
  for (;;) {
    if (!rebuild(refactor || !core_.has_factor())) {
      stop_ = Outcome::singular;
      return PhaseEnd::stopped;
    }
    pricing_rule_.rebuild(core_, norms_.view(), keep_banned);
    keep_banned = false;
    if (free_infeasible_ > 0 && !phase1_) return PhaseEnd::dual_infeasible;
    const std::int64_t before = core_.counters.iterations;
    Step step = Step::moved;
    while (step == Step::moved) {
      if (check_limits()) return PhaseEnd::stopped;
      step = iterate();
      if (step == Step::moved && wanted_ != Rebuild::none) break;
    }
    refactor = wanted_ == Rebuild::refactor;
    if (core_.counters.iterations > before) rejections_ = 0;
    if (step == Step::moved) continue;
    if (step == Step::stopped) return PhaseEnd::stopped;
    if (step == Step::numerical) {
      if (++rejections_ > kMaxRejections) return PhaseEnd::numerical_failure;
      if (rejections_ % 8 == 0) core_.raise_threshold();
      keep_banned = pricing_rule_.banned_count() > 0 && core_.counters.iterations == before;
      refactor = true;
      continue;
    }
    if (step == Step::no_leaving) {
      if (!fresh_) continue;  // look again with recomputed values
      if (pricing_rule_.banned_count() == 0) return PhaseEnd::optimal;
      if (++rejections_ > kMaxRejections) return PhaseEnd::numerical_failure;
      core_.raise_threshold();
      refactor = true;
      continue;
    }
    if (step == Step::boxes_dropped) return PhaseEnd::dual_infeasible;
    return PhaseEnd::unbounded;  // no entering column, proven
  }
}

bool Dual::rebuild(bool refactor) {
  if (refactor) {
    norms_.save(core_);
    const FactorState state = core_.refactor(std::exchange(factor_reason_, FactorReason::check));
    if (state == FactorState::singular) return false;
    norms_.restore(core_);
  }
  core_.compute_dual();
  correct_duals();
  core_.compute_primal();
  core_.basis.count_free(core_.work);
  ratio_test_.prepare(core_);
  objective_ = dual_objective();
  wanted_ = Rebuild::none;
  fresh_ = true;
  drift_ = 0;
  return true;
}

void Dual::correct_duals() {
  free_infeasible_ = 0;
  const double tolerance = core_.dual_tolerance();
  for (int j = 0; j < core_.total(); ++j) {
    if (!core_.basis.nonbasic(j)) continue;
    const double low = core_.work.lower(j);
    const double high = core_.work.upper(j);
    if (low == high) continue;
    if (low == -kInf && high == kInf) {
      if (std::fabs(core_.values.d(j)) > tolerance) ++free_infeasible_;
      continue;
    }
    if (core_.basis.move(j) * core_.values.d(j) >= -tolerance) continue;
    if (high - low < kInf) {
      core_.place_nonbasic(j, -core_.basis.move(j));
    } else {
      core_.shift_to_feasible(j);
    }
  }
}

double Dual::dual_objective() const {
  double sum = phase1_ ? 0.0 : core_.model.offset();
  for (int j = 0; j < core_.total(); ++j) {
    if (core_.basis.nonbasic(j) && core_.basis.value(j) != 0) sum += core_.values.d(j) * core_.basis.value(j);
  }
  return sum;
}

bool Dual::check_limits() {
  if (beyond_objective_limit()) {
    stop_ = Outcome::objective_limit;
    return true;
  }
  return core_.must_stop(iteration_end_, stop_);
}

// ---- one iteration
// --------------------------------------------------------------------------------------------------

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
