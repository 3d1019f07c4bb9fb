/* One iteration of the primal simplex. */
#include <algorithm>
#include <cmath>

#include "lp/simplex/primal.h"

namespace tovik::lp::simplex {
namespace {
constexpr double kPivotMismatch = 1e-7;  // relative gap of the pivot by row and by column: refactor
constexpr double kFreshMismatch = 1e-4;  // the same on a fresh factor: put the column aside
constexpr double kSmallPivot =
    1e-7;  // pivots below this share of the column's largest ask for a fresh factor first
constexpr double kFreshSmallPivot = 1e-9;  // ... and below this share the column is put aside on a fresh one
constexpr double kDualMismatch = 1e-6;  // relative gap of updated and recomputed reduced cost: recompute all
constexpr int kWrongSigns = 10;         // updated reduced costs found worthless in one choice: recompute all
constexpr double kHarris = 0.5;         // share of the feasibility tolerance that the ratio test may spend
}  // namespace

Primal::Step Primal::iterate() {
  if (!choose_column()) return Step::no_entering;
  if (wanted_ == Rebuild::recompute) return Step::moved;
  const int q = entering_;
  const double limit = direction_ > 0 ? core_.work.upper(q) - core_.basis.value(q)
                                      : core_.basis.value(q) - core_.work.lower(q);
  const PrimalPick pick =
      phase1_ ? ratio_.infeasible(core_, column_, direction_, std::fabs(core_.values.d(q)), limit)
              : ratio_.feasible(core_, column_, direction_, kHarris * core_.primal_tolerance());
  if (pick.position < 0 || pick.step >= limit) {
    if (limit == kInf) return blocked_by_nothing();
    flip(limit);
    return Step::moved;
  }
  switch (price_row(pick)) {
    case Trust::good:
      apply(pick);
      return Step::moved;
    case Trust::refactor:
      want_factor(FactorReason::pivot);
      return Step::numerical;
    case Trust::aside:
      reject_pivot(q);
      return Step::moved;
  }
  return Step::moved;
}

void Primal::reject_pivot(int q) {
  pricing_.ban(q);
}

void Primal::load_entering() {
  core_.model.load_column(entering_, column_);
  column_.want_pack = true;
  core_.ftran(column_, core_.column_density);
  column_.want_pack = false;
  column_largest_ = 0;
  for_nonzeros(column_,
               [&](int p) { column_largest_ = std::max(column_largest_, std::fabs(column_.array[p])); });
}

bool Primal::choose_column() {
  if (spoiler_.variable >= 0) return enter_spoiler();
  for (int wrong = 0;;) {
    const int q = pricing_.choose(core_);
    entering_ = q;
    if (q < 0) return false;
    load_entering();
    double d = core_.work.cost(q);
    for_nonzeros(column_, [&](int p) { d -= core_.work.cost(core_.basis.head(p)) * column_.array[p]; });
    const double gap = std::fabs(core_.values.d(q) - d);
    core_.values.set_dual(q, d);
    const bool improving = core_.basis.move(q) > 0   ? d < -optimality_tolerance_
                           : core_.basis.move(q) < 0 ? d > optimality_tolerance_
                                                     : std::fabs(d) > optimality_tolerance_;
    if (improving) {
      direction_ = d < 0 ? 1.0 : -1.0;
      if (gap > kDualMismatch * std::max(1.0, std::fabs(d)) && !fresh_) wanted_ = Rebuild::recompute;
      return true;
    }
    pricing_.touch(core_, q);
    if (++wrong > kWrongSigns && !fresh_) {
      wanted_ = Rebuild::recompute;
      return true;
    }
    if (wrong > kWrongSigns) reject_pivot(q);
  }
}

/* Nothing limits the entering variable: a ray in the second phase, rounding in the first. */
Primal::Step Primal::blocked_by_nothing() {
  if (!fresh_) {
    wanted_ = Rebuild::recompute;
    if (core_.factor.updates() > 0) want_factor(FactorReason::check);
    return Step::moved;
  }
  if (!phase1_) {
    if (bounds_.changed()) {
      bounds_.restore(core_);
      phase1_ = true;
      perturb_scale_ = 0;
      ++restores_;
      wanted_ = Rebuild::recompute;
      return Step::numerical;
    }
    if (prove_unbounded()) return Step::unbounded;
  }
  if (core_.factor.updates() > 0) {
    want_factor(FactorReason::check);
    return Step::numerical;
  }
  reject_pivot(entering_);
  return Step::moved;
}

/* Computes the pivot row and compares its pivot with the column's. */
Primal::Trust Primal::price_row(const PrimalPick& pick) {
  const int q = entering_;
  const double size = std::fabs(pick.alpha);
  const bool updated = core_.factor.updates() > 0;
  row_index_.clear();
  row_alpha_.clear();
  bool trusted = accept_small_ || size >= (updated ? kSmallPivot : kFreshSmallPivot) * column_largest_;
  if (trusted) {
    rho_.clear();
    rho_.set_unit(pick.position);
    rho_.want_pack = true;
    core_.btran(rho_, core_.row_ep_density);
    rho_.want_pack = false;
    alpha_row_.clear();
    core_.price(rho_, alpha_row_);
    const double by_row = q < core_.n() ? alpha_row_.array[q] : rho_.array[q - core_.n()];
    const double gap = std::fabs(by_row - pick.alpha);
    trusted = gap <= (updated ? kPivotMismatch : kFreshMismatch) * std::min(size, std::fabs(by_row));
  }
  if (!trusted) return updated ? Trust::refactor : Trust::aside;
  for_nonzeros(alpha_row_, [&](int j) {
    if (alpha_row_.array[j] == 0) return;
    row_index_.push_back(j);
    row_alpha_.push_back(alpha_row_.array[j]);
  });
  for_nonzeros(rho_, [&](int i) {
    const int j = core_.n() + i;
    if (rho_.array[i] == 0 || !core_.basis.nonbasic(j) || core_.is_fixed(j)) return;
    row_index_.push_back(j);
    row_alpha_.push_back(rho_.array[i]);
  });
  core_.charge(2 * static_cast<std::int64_t>(row_index_.size()));
  return Trust::good;
}

/* The entering variable goes to its other bound, `step` away; the basis stays. */
void Primal::flip(double step) {
  const int q = entering_;
  const bool to_upper = direction_ > 0;
  const double gain = std::fabs(core_.values.d(q)) * step;
  ++core_.counters.primal.bound_flips;
  update_values(step, -1);
  core_.basis.place(q, to_upper ? -1 : 1, to_upper ? core_.work.upper(q) : core_.work.lower(q));
  pricing_.touch(core_, q);
  if (phase1_) update_phase1_duals();
  objective_ -= gain;
  after_step(gain, -1, to_upper);
}

void Primal::apply(PrimalPick pick) {
  const int q = entering_;
  const int p = pick.position;
  const int out = core_.basis.head(p);
  if (pick.step < 0) {  // the leaving variable stands slightly beyond its bound: the bound follows
    pick.step = 0;
    bounds_.shift_to_value(core_, p, pick.leaving_move);
  }
  const double d = core_.values.d(q);
  const double theta = d / pick.alpha;
  const double gain = std::fabs(d) * pick.step;
  if (pricing_.kind() == PrimalPricing::Kind::steepest_edge) {
    mu_.copy(column_);
    const std::int64_t before = core_.factor.work();
    core_.btran(mu_, core_.dse_density);
    pricing_.charge_edges(core_.factor.work() - before);
  }
  pricing_.update_weights(core_, {q, out, pick.alpha}, column_, mu_, row_index_, row_alpha_);
  update_values(pick.step, p);
  const double entering_value = core_.basis.value(q) + direction_ * pick.step;
  bounds_.widen(core_, q);
  core_.change_basis(q, p, pick.leaving_move);
  core_.values.set_x(p, entering_value);
  core_.values.set_dual(out, -theta);
  if (violation_[p] != 0) {  // a nonbasic variable has no first-phase cost
    core_.values.add_dual(out, -violation_[p]);
    core_.work.set_phase1_cost(out, 0);
    violation_[p] = 0;
    --infeasible_;
  }
  update_duals(theta);
  core_.values.set_dual(q, 0);
  pricing_.touch(core_, q);
  if (!core_.is_fixed(out)) pricing_.touch(core_, out);
  const bool updated = core_.update_factor(column_, rho_, p);
  if (!updated) want_factor(FactorReason::update);
  if (phase1_ && wanted_ != Rebuild::refactor) update_phase1_duals();
  const int limit = core_.options.refactor_limit;
  if (updated && (core_.factor.wants_rebuild() || (limit > 0 && core_.factor.updates() >= limit)))
    want_factor(FactorReason::growth);
  accept_small_ = false;
  objective_ -= gain;
  after_step(gain, out, pick.leaving_move < 0);
}

/* x_B -= direction * step * column, without position `skip`. First phase: notes the changes of its costs.
 * Second phase: bounds that rounding or a refused tiny pivot has violated follow the value. */
void Primal::update_values(double step, int skip) {
  if (phase1_) changes_.clear();
  if (step == 0) return;
  const double change = direction_ * step;
  const double tolerance = core_.primal_tolerance();
  int changed = 0;
  core_.values.move_along(column_, change, [&](int p, double x) {
    if (p == skip) return;
    const int violation = x < core_.values.x_lower(p) - tolerance   ? -1
                          : x > core_.values.x_upper(p) + tolerance ? 1
                                                                    : 0;
    if (violation == violation_[p]) return;
    if (!phase1_) {
      bounds_.shift_behind(core_, p);
      return;
    }
    infeasible_ += (violation != 0) - (violation_[p] != 0);
    changes_.index[changed++] = p;
    changes_.array[p] = violation - violation_[p];
    violation_[p] = static_cast<signed char>(violation);
    core_.work.set_phase1_cost(core_.basis.head(p), violation);
  });
  if (phase1_) changes_.count = changed;
  core_.charge(2 * static_cast<std::int64_t>(column_.count < 0 ? core_.m() : column_.count));
}

void Primal::update_duals(double theta) {
  core_.values.update_duals(row_index_, row_alpha_, theta,
                            [this](int j, double) { pricing_.touch(core_, j); });
}

/* Carries the changes of first-phase costs into the reduced costs: d -= [A I]' B^-T change. */
void Primal::update_phase1_duals() {
  if (changes_.count == 0) return;
  core_.btran(changes_, core_.flip_density);
  alpha_row_.clear();
  core_.price(changes_, alpha_row_);
  for_nonzeros(alpha_row_, [&](int j) {
    core_.values.add_dual(j, -alpha_row_.array[j]);
    pricing_.touch(core_, j);
  });
  for_nonzeros(changes_, [&](int i) {
    const int j = core_.n() + i;
    if (!core_.basis.nonbasic(j) || core_.is_fixed(j)) return;
    core_.values.add_dual(j, -changes_.array[i]);
    pricing_.touch(core_, j);
  });
  core_.charge(2 * static_cast<std::int64_t>(std::max(0, alpha_row_.count)));
}

void Primal::after_step(double gain, int leaving, bool to_upper) {
  fresh_ = false;
  Counters& counters = core_.counters;
  ++counters.iterations;
  ++(phase1_ ? counters.primal.phase1 : counters.primal.phase2);
  if (core_.observer != nullptr) {
    IterationEvent event;
    event.phase1 = phase1_;
    event.dual = false;
    event.entering = entering_;
    event.leaving = leaving;
    event.entering_to_upper = to_upper;
    event.objective = objective_;
    core_.observer->iteration(core_, event);
  }
  watch_degeneracy(gain);
  if (phase1_ && infeasible_ == 0 && wanted_ == Rebuild::none) wanted_ = Rebuild::recompute;
}

}  // namespace tovik::lp::simplex
