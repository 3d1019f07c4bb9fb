#include "lp/simplex/primal.h"

#include <algorithm>
#include <cmath>

namespace tovik::lp::simplex {
namespace {
constexpr int kMaxRejections = 60;     // numerical rejections in a row before giving up
constexpr int kRestores = 8;           // times that changed bounds are put back before giving up
constexpr double kShiftLargest = 1e3;  // tolerances; second phase: smaller violations are mended by a shift
constexpr double kAttraction = 1e-7;   // largest tolerance of dual_infeasibility
constexpr double kTightest = 1e-9;     // least one: sharpens an optimum, completes a proof of infeasibility
constexpr int kSharpenSteps = 100;     // iterations that sharpening may take, besides a share of those before
constexpr double kSharpenShare = 0.05;
constexpr int kSpoilers = 200;               // columns that may enter to complete a proof of infeasibility
constexpr int kFalls = 40;                   // returns from the second phase to the first before giving up
constexpr std::int64_t kStuckLeast = 20000;  // iterations without measured progress before giving up
constexpr std::int64_t kStuckShare = 3;      // ... or this many times the variables
constexpr int kJudgePricing = 300;           // iterations before the cost of the pricing is judged
constexpr double kResidual = 1e-9;  // relative residual of the basic values that asks for a better factor
constexpr double kHighestThreshold = 0.9;
}  // namespace

Primal::Primal(Core& core) : core_(core) {
  column_.resize(core.m());
  rho_.resize(core.m());
  mu_.resize(core.m());
  changes_.resize(core.m());
  alpha_row_.resize(core.n());
  ratio_.resize(core);
  violation_.assign(static_cast<size_t>(core.m()), 0);
  row_index_.reserve(static_cast<size_t>(core.total()));
  row_alpha_.reserve(static_cast<size_t>(core.total()));
}

Outcome Primal::solve(std::int64_t iteration_budget) {
  iteration_end_ = core_.counters.iterations + iteration_budget;
  rejections_ = 0;
  factor_reason_ = FactorReason::check;
  restores_ = 0;
  degeneracy_ = 0;
  degenerate_total_ = 0;
  progress_ = 0;
  progress_mark_ = core_.counters.iterations;
  perturb_scale_ = 0;
  optimality_tolerance_ = std::min(kAttraction, core_.dual_tolerance());
  tightened_ = false;
  tighten_end_ = 0;
  start_ = marked_at_ = core_.counters.iterations;
  start_work_ = core_.total_work();
  marked_phase1_ = true;
  marked_value_ = kInf;
  falls_ = 0;
  spoiler_ = {};
  spoilers_ = 0;
  phase1_ = true;
  costs_are_phase1_ = false;
  accept_small_ = false;
  objective_ = kInf;
  wanted_ = core_.has_factor() ? Rebuild::recompute : Rebuild::refactor;
  if (wanted_ == Rebuild::refactor && core_.refactor() == FactorState::singular) return Outcome::singular;
  wanted_ = Rebuild::none;
  bounds_.restore(core_);
  core_.use_original_costs();
  partial_.start(core_);
  pricing_.start(core_, partial_.on());
  if (core_.observer != nullptr) core_.observer->pricing(pricing_.name(), false);
  if (core_.options.perturb_always) perturb_scale_ = 1;
  return finish(run());
}

Outcome Primal::run() {
  for (;;) {
    if (!rebuild()) return Outcome::singular;
    if (stuck()) return Outcome::numerical_failure;
    const std::int64_t before = core_.counters.iterations;
    Step step = Step::moved;
    while (step == Step::moved && wanted_ == Rebuild::none) {
      if (check_limits()) return stop_;
      if (wanted_ == Rebuild::none) step = iterate();
    }
    if (core_.counters.iterations > before) rejections_ = 0;
    switch (step) {
      case Step::moved:
        break;
      case Step::stopped:
        return stop_;
      case Step::unbounded:
        return Outcome::unbounded;
      case Step::numerical:
        if (++rejections_ > kMaxRejections && !end_tightening()) return Outcome::numerical_failure;
        if (rejections_ % 8 == 0) core_.raise_threshold();
        break;
      case Step::no_entering: {
        Outcome outcome;
        if (settle_optimum(outcome)) return outcome;
        break;
      }
    }
  }
}

/* No column is improving. Looks again on recomputed values, without distrusted columns, with the model's own
 * bounds. */
bool Primal::settle_optimum(Outcome& outcome) {
  if (wanted_ == Rebuild::none) wanted_ = Rebuild::recompute;
  if (!fresh_) return false;
  if (bounds_.changed()) {
    bounds_.restore(core_);
    phase1_ = true;  // the phase is decided anew, without shifts
    perturb_scale_ = 0;
    outcome = Outcome::numerical_failure;
    return ++restores_ > kRestores;
  }
  if (pricing_.banned_count() > 0) {
    pricing_.clear_banned();
    if (end_tightening()) return false;
    accept_small_ = rejections_ > 0;
    core_.raise_threshold();
    want_factor(FactorReason::check);
    outcome = Outcome::numerical_failure;
    return ++rejections_ > 5;
  }
  if (!phase1_) {
    outcome = Outcome::optimal;
    return !tighten_dual_tolerance();
  }
  spoiler_ = {};
  const bool is_proof = prove_infeasible();
  if (spoiler_.variable >= 0 && ++spoilers_ <= kSpoilers) return false;
  if (is_proof || spoiler_.variable >= 0) {
    outcome = Outcome::infeasible;
    return true;
  }
  outcome = Outcome::numerical_failure;
  if (optimality_tolerance_ <= kTightest) return true;
  optimality_tolerance_ = std::max(kTightest, 0.01 * optimality_tolerance_);
  return false;
}

/* An optimum within the tolerance may be far in its objective when many small reduced costs meet long ranges:
 * a few steps with the tightest tolerance mend that. True while there is something left to do. */
bool Primal::tighten_dual_tolerance() {
  const std::int64_t iterations = core_.counters.iterations;
  if (tightened_ || optimality_tolerance_ <= kTightest) return false;
  optimality_tolerance_ = kTightest;
  tighten_end_ = iterations + kSharpenSteps +
                 static_cast<std::int64_t>(kSharpenShare * static_cast<double>(iterations - start_));
  return true;
}

/* Back to the ordinary tolerance, for good; false when it is in force already. */
bool Primal::end_tightening() {
  if (tighten_end_ == 0 || tightened_) return false;
  tightened_ = true;
  rejections_ = 0;
  optimality_tolerance_ = std::min(kAttraction, core_.dual_tolerance());
  return true;
}

/* Measured at rebuilds, where values are exact: neither the infeasibility sum nor the objective has fallen
 * for long. */
bool Primal::stuck() {
  const std::int64_t iterations = core_.counters.iterations;
  const double value = phase1_ ? core_.primal_infeasibility().sum : objective_;
  if (phase1_ && !marked_phase1_ && ++falls_ > kFalls) return true;
  if (phase1_ != marked_phase1_ || marked_value_ == kInf ||
      value < marked_value_ - kTightest * std::fabs(marked_value_)) {
    marked_phase1_ = phase1_;
    marked_value_ = value;
    marked_at_ = iterations;
    return false;
  }
  return iterations - marked_at_ > std::max(kStuckLeast, kStuckShare * core_.total());
}

/* Puts the model's bounds and costs back and makes x and d belong to them. */
Outcome Primal::finish(Outcome outcome) {
  partial_.finish(core_);
  if (outcome == Outcome::singular) return outcome;
  const bool refactor = wanted_ == Rebuild::refactor || !core_.has_factor();
  if (refactor && factor() == FactorState::singular) return Outcome::singular;
  if (bounds_.changed() || refactor || wanted_ == Rebuild::recompute) {
    bounds_.restore(core_);
    core_.compute_primal();
  }
  const bool duals_stand = outcome == Outcome::optimal && fresh_ && !refactor;
  core_.use_original_costs();
  if (!duals_stand) core_.compute_dual();
  phase1_ = costs_are_phase1_ = false;
  wanted_ = Rebuild::none;
  core_.report_work();
  return outcome;
}

// ---- rebuild ----

bool Primal::rebuild() {
  bool refactor = wanted_ == Rebuild::refactor || !core_.has_factor();
  for (;;) {
    if (refactor) {
      const FactorState state = factor();
      if (state == FactorState::singular) return false;
      if (state == FactorState::repaired) pricing_.reset(core_);
    }
    core_.compute_primal();
    if (residual() <= kResidual) break;
    if (core_.factor.updates() == 0) {  // a fresh factor that is not accurate: larger pivots
      if (core_.threshold() >= kHighestThreshold) break;
      core_.raise_threshold();
    }
    refactor = true;
  }
  wanted_ = Rebuild::none;
  if (perturb_scale_ > 0 && !bounds_.perturbing()) bounds_.perturb(core_, perturb_scale_);
  choose_phase();
  core_.compute_dual();
  if (partial_.on()) {
    partial_.reselect(core_, optimality_tolerance_);
    pricing_.limit_to(partial_.universe());
  }
  if (core_.counters.iterations - start_ >= kJudgePricing &&
      pricing_.too_costly(core_.total_work() - start_work_)) {
    pricing_.switch_to_devex(core_);
    if (core_.observer != nullptr) core_.observer->pricing(pricing_.name(), true);
  }
  pricing_.refresh(core_, optimality_tolerance_);
  if (!phase1_) objective_ = core_.objective();
  fresh_ = true;
  return true;
}

void Primal::choose_phase() {
  const double tolerance = core_.primal_tolerance();
  infeasible_ = 0;
  for (int p = 0; p < core_.m(); ++p) {
    const double x = core_.values.x(p);
    const double below = core_.values.x_lower(p) - x;
    const double above = x - core_.values.x_upper(p);
    violation_[p] = 0;
    const double violation = std::max(below, above);
    if (violation <= tolerance) continue;
    if (!phase1_ && violation <= kShiftLargest * tolerance) {
      bounds_.shift_behind(core_, p);
      continue;
    }
    violation_[p] = below > 0 ? -1 : 1;
    ++infeasible_;
  }
  phase1_ = infeasible_ > 0;
  if (phase1_) {
    set_phase1_costs();
  } else if (costs_are_phase1_) {
    core_.use_original_costs();
    costs_are_phase1_ = false;
    optimality_tolerance_ = std::min(kAttraction, core_.dual_tolerance());
  }
}

void Primal::set_phase1_costs() {
  if (!costs_are_phase1_) core_.work.start_phase1_costs();
  costs_are_phase1_ = true;
  for (int p = 0; p < core_.m(); ++p) core_.work.set_phase1_cost(core_.basis.head(p), violation_[p]);
}

// ---- limits and stalls ----

bool Primal::check_limits() {
  const std::int64_t iterations = core_.counters.iterations;
  if (!phase1_ && objective_ < core_.options.objective_lower) {
    if (!bounds_.changed()) {
      stop_ = Outcome::objective_limit;
      return true;
    }
    bounds_.restore(core_);
    phase1_ = true;
    ++restores_;
    wanted_ = Rebuild::recompute;
    return false;
  }
  if (tighten_end_ > 0 && iterations >= tighten_end_ && end_tightening()) {
    wanted_ = Rebuild::recompute;
    return false;
  }
  return core_.must_stop({false, phase1_, objective_}, iteration_end_, stop_);
}

/* gain: decrease of the function being minimized in the last step. */
void Primal::watch_degeneracy(double gain) {
  constexpr double kMemory = 0.01;
  constexpr double kShare = 0.6;  // running share of steps without gain that starts a perturbation
  constexpr double kNoGain = 1e-12;
  constexpr double kProgress = 1e-9;  // relative gain that counts as progress
  constexpr double kLargestScale = 1e3;
  constexpr int kPerturbedRestores = 3;  // later rounds run on the model's bounds
  const double size = phase1_ ? 1.0 : std::max(1.0, std::fabs(objective_));
  const bool none = gain <= kNoGain * size;
  if (none) ++degenerate_total_;
  degeneracy_ += kMemory * ((none ? 1.0 : 0.0) - degeneracy_);
  progress_ += gain;
  if (progress_ > kProgress * size) {
    progress_ = 0;
    progress_mark_ = core_.counters.iterations;
  }
  if (restores_ >= kPerturbedRestores || tighten_end_ > 0) return;
  const int after = core_.options.perturb_after;
  const bool stalled = core_.counters.iterations - progress_mark_ > std::max(1000, core_.m() / 2);
  if (bounds_.perturbing() ? !stalled
      : after > 0          ? degenerate_total_ < after
                           : degeneracy_ < kShare && !stalled)
    return;
  perturb_scale_ = std::min(kLargestScale, bounds_.perturbing() ? 10 * perturb_scale_ : 1.0);
  progress_mark_ = core_.counters.iterations;
  degeneracy_ = 0;
  degenerate_total_ = 0;
  bounds_.perturb(core_, perturb_scale_);
  if (phase1_ && wanted_ == Rebuild::none) wanted_ = Rebuild::recompute;
}

}  // namespace tovik::lp::simplex
