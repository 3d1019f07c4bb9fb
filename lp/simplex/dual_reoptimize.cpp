/* The dual near an optimum: no perturbation, no implied bounds, no pass over the model but where the factor
 * is rebuilt; and its iterations on trial. */
#include <algorithm>
#include <cmath>
#include <limits>

#include "lp/simplex/dual.h"

namespace tovik::lp::simplex {
namespace {

constexpr double kTrusted =
    1e-9;  // relative gap of pivots by row and by column up to which carried values stand
constexpr int kMaxRejections = 20;  // numerical rejections in a row before giving up

double bound_product(double d, double low, double high) {
  return d > 0 ? d * low : d < 0 ? d * high : 0.0;
}

}  // namespace

void Dual::start_near() {
  near_ = true;
  patient_ = false;
  phase1_ = false;
  drop_implied_bounds();
  rule_ = &dual_rule(core_.options.dual_pricing);
  if (!norms_.fits(core_.m()) || norms_.kind() != rule_->kind()) norms_.reset(core_.m());
  norms_.set_kind(rule_->kind());
  core_.basis.count_free(core_.work);
  ratio_test_.prepare(core_);
  pricing_rule_.resize(core_.m());
  pricing_rule_.rebuild_listed(core_);
}

Outcome Dual::reoptimize(std::int64_t iterations, double objective) {
  iteration_end_ = core_.counters.iterations + std::min(iterations, kUnlimited);
  objective_ = objective;
  rejections_ = 0;
  perturb_scale_ = 1;
  fresh_ = false;
  wanted_ = Rebuild::none;
  factor_reason_ = FactorReason::check;
  last_progress_iteration_ = core_.counters.iterations;
  last_progress_objective_ = -kInf;
  for (;;) {
    const std::int64_t before = core_.counters.iterations;
    Step step = Step::moved;
    while (step == Step::moved && wanted_ == Rebuild::none) {
      if (check_limits()) return stop_;
      step = iterate();
    }
    if (core_.counters.iterations > before) rejections_ = 0;
    if (step == Step::no_entering) return Outcome::infeasible;
    if (step == Step::no_leaving && pricing_rule_.banned_count() == 0) {
      if (drift_ <= kTrusted || fresh_ || undo_.active()) return Outcome::optimal;
      step = Step::moved;  // look again at recomputed values
      wanted_ = Rebuild::recompute;
      if (core_.factor.updates() > 0) want_factor(FactorReason::check);
    }
    if (undo_.active() || !resume(step)) return Outcome::numerical_failure;
  }
}

/* A rebuild that an iteration asked for. False when this is no way to go on. */
bool Dual::resume(Step step) {
  if (step != Step::moved && ++rejections_ > kMaxRejections) return false;
  const bool banned = pricing_rule_.banned_count() > 0;
  if (step == Step::no_leaving) core_.raise_threshold();
  if (!rebuild(wanted_ == Rebuild::refactor || step != Step::moved || !core_.has_factor())) return false;
  if (free_infeasible_ > 0) return false;
  if (banned && step == Step::numerical) {
    pricing_rule_.rebuild(core_, norms_.view(), true);
  } else {
    pricing_rule_.rebuild_listed(core_);
  }
  return true;
}

void Dual::record() {
  undo_.start(core_);
  core_.factor.record_updates();
}

void Dual::undo() {
  core_.undo_factor_updates();
  undo_.undo(core_, norms_, pricing_rule_);
}

/* All that an iteration with this pivot is about to overwrite. */
void Dual::save(int p, const DualRatioTest::Pick& pick) {
  for (const int j : ratio_test_.row_index()) undo_.save_dual(core_, j);
  undo_.save_dual(core_, pick.variable);
  undo_.save_dual(core_, core_.basis.head(p));
  for_listed(rho_, [&](int i) { undo_.save_dual(core_, core_.n() + i); });
  undo_.save_basics(core_, norms_, alpha_column_);
  undo_.save_basic(core_, norms_, p);
  if (!ratio_test_.flips().empty()) {
    for (const int j : ratio_test_.flips()) undo_.save_nonbasic(core_, j);
    undo_.save_basics(core_, norms_, flip_column_);
  }
  undo_.save_pivot(core_, pick.variable, p);
}

double Dual::shift_free_bound() const {
  double bound = objective_;
  std::vector<int> shifted = core_.work.shifted();
  std::sort(shifted.begin(), shifted.end());
  shifted.erase(std::unique(shifted.begin(), shifted.end()), shifted.end());
  for (const int j : shifted) {
    const double shift = core_.work.cost(j) - core_.model.cost(j);
    if (shift == 0) continue;
    const double d = core_.basis.nonbasic(j) ? core_.values.d(j) : 0.0;
    if (core_.basis.nonbasic(j)) bound -= d * core_.basis.value(j);
    bound += bound_product(d - shift, core_.model.lower(j), core_.model.upper(j));
  }
  return bound;
}

}  // namespace tovik::lp::simplex
