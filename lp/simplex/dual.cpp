#include "lp/simplex/dual.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

namespace tovik::lp::simplex {
namespace {

constexpr double kBoxFree = 1000.0;       // bounds of free variables in the first phase
constexpr int kRounds = 12;               // phase changes before giving up
constexpr int kMaxRejections = 60;        // numerical rejections in a row before giving up
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
  rule_->start(core_, settings.keep_norms && norms_.kind() == rule_->kind(), norms_, rho_);
  norms_.set_kind(rule_->kind());
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
  return core_.must_stop({true, phase1_, objective_}, iteration_end_, stop_);
}

}  // namespace tovik::lp::simplex
