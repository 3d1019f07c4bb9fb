#include "lp/simplex/relaxation.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lp/base/sum.h"

namespace tovik::lp::simplex {
namespace {

constexpr int kCleanUps = 3;  // alternations of dual and primal on one resolve before it is done anew

Options without_sifting(Options options) {
  options.sifting = Sifting::never;
  return options;
}

}  // namespace

Relaxation::Relaxation(LpData lp, const Options& options, Control& control, Observer* observer)
    : Solver(std::move(lp), options, control, observer), pending_(*core_) {}

Relaxation::Relaxation(const Relaxation& other)
    : Solver(other),
      pending_(*core_),
      objective_(other.objective_),
      edits_(other.edits_),
      outcome_(other.outcome_) {}

std::unique_ptr<Relaxation> Relaxation::fork() {
  if (near_) follow_changes();
  std::unique_ptr<Relaxation> copy(new Relaxation(*this));
  if (near_) {
    const double objective = objective_;
    copy->start_near();
    copy->objective_ = objective;
  }
  return copy;
}

// ---- changes ----

void Relaxation::changed() {
  primal_made_ = duals_made_ = farkas_made_ = false;
}

/* The state is no longer one to go on from. */
void Relaxation::leave() {
  near_ = false;
  changed();
  pending_.clear();
}

void Relaxation::note(int variable) {
  changed();
  if (near_) pending_.note(variable);
}

void Relaxation::change_bounds(int column, double lower, double upper) {
  note(column);
  Solver::change_bounds(column, lower, upper);
}

void Relaxation::change_bounds(std::span<const BoundChange> changes) {
  for (const BoundChange& c : changes) change_bounds(c.column, c.lower, c.upper);
}

void Relaxation::change_cost(int column, double cost) {
  note(column);
  Solver::change_cost(column, cost);
}

void Relaxation::change_costs(std::span<const CostChange> changes) {
  for (const CostChange& c : changes) change_cost(c.column, c.cost);
}

void Relaxation::change_row_bounds(int row, double lower, double upper) {
  note(core_->n() + row);
  Solver::change_row_bounds(row, lower, upper);
}

void Relaxation::change_offset(double offset) {
  objective_ += offset - user_.lp.offset;
  Solver::change_offset(offset);
}

// ---- solving ----

/* The state of the core, which belongs to the model's bounds and costs, becomes the one to go on from. */
void Relaxation::start_near() {
  core_->ensure_rows();
  core_->basis.find_positions();
  core_->options = options_;
  Dual& dual = the_dual();
  if (!keep_norms_) dual.norms().reset(core_->m());
  dual.start_near();
  keep_norms_ = true;
  pending_.resize();
  crossing_.clear();
  wrong_.resize(core_->total());
  for (int j = 0; j < core_->total(); ++j) {
    const double d = core_->values.d(j);
    if (core_->model.lower(j) > core_->model.upper(j)) {
      crossing_.push_back(j);
      pending_.note(j);
    }
    if (!core_->basis.nonbasic(j) || core_->is_fixed(j)) continue;
    if (core_->basis.move(j) == 0 ? std::fabs(d) > core_->dual_tolerance()
                                  : core_->basis.move(j) * d < -core_->dual_tolerance())
      wrong_.add(j);
  }
  objective_ = core_->objective();
  near_ = true;
}

/* Brings the state in step. False where bounds cross: the problem is infeasible for as long as they do. */
bool Relaxation::follow_changes() {
  crossing_.clear();
  pending_.each([this](int j) {
    if (!close_bounds(j)) crossing_.push_back(j);
  });
  pending_.apply(the_dual(), objective_, wrong_);
  for (const int j : crossing_) pending_.note(j);  // to be looked at again
  return crossing_.empty();
}

/* Bounds that cross within the tolerance become equal; false when they cross by more. */
bool Relaxation::close_bounds(int j) {
  Core& core = *core_;
  if (core.model.lower(j) <= core.model.upper(j)) return true;
  const double gap = (core.model.lower(j) - core.model.upper(j)) *
                     (j < core.n() ? column_scale(j) : 1.0 / row_scale(j - core.n()));
  answer_.farkas_gap = gap;
  if (!(gap <= options_.primal_tolerance)) return false;
  core.close_bounds(j);
  return true;
}

/* Values and duals of the basis at hand, from the factor. */
void Relaxation::recompute() {
  core_->use_original_costs();
  core_->use_original_bounds();
  core_->compute_primal();
  core_->compute_dual();
  start_near();
}

/* A state to work on without pivots: in step with all changes. False when the basis is singular. */
bool Relaxation::ready() {
  reoptimization_.forget();  // only one of the two follows changes
  if (near_) {
    follow_changes();
    return true;
  }
  core_->set_tolerances(options_.primal_tolerance * kInnerShare, options_.dual_tolerance * kInnerShare);
  for (int j = 0; j < core_->total(); ++j) close_bounds(j);
  has_basis_ = true;
  if (!ensure_factor()) return false;
  recompute();
  return true;
}

void Relaxation::set_limits(const Limits& limits) {
  Options& options = core_->options;
  options.objective_upper = limits.cutoff;
  options.objective_lower = -kInf;
  options.iteration_limit = kUnlimited;
  core_->tick_end = limits.ticks < kUnlimited ? core_->total_work() + limits.ticks : kUnlimited;
  core_->forget_repairs();
}

/* One resolve from the carried state. False: do it anew. */
bool Relaxation::resolve_near(const Limits& limits, Outcome& outcome) {
  Core& core = *core_;
  set_limits(limits);
  if (!follow_changes()) {
    outcome = Outcome::infeasible;
    crossed_ = true;
    return true;
  }
  std::int64_t left = std::min(limits.iterations, kUnlimited);
  for (int round = 0; round < kCleanUps; ++round) {
    if (!wrong_.view().empty()) {
      if (!the_dual().at_rest()) return false;
      return clean_up(outcome, left);
    }
    const std::int64_t before = core.counters.iterations;
    outcome = the_dual().reoptimize(left, objective_);
    objective_ = the_dual().objective();
    left -= core.counters.iterations - before;
    if (outcome == Outcome::numerical_failure || outcome == Outcome::singular || !core.has_factor())
      return false;
    if (core.work.costs_perturbed()) return finish_near(outcome, left);
    pending_.remove_shifts(the_dual(), objective_, wrong_);
    if (outcome != Outcome::optimal) return true;
    if (wrong_.view().empty() && the_dual().at_rest()) return true;
  }
  return false;
}

/* After a long stall the dual has perturbed the costs: back to the model's by recomputing. */
bool Relaxation::finish_near(Outcome& outcome, std::int64_t iterations_left) {
  core_->use_original_costs();
  core_->compute_dual();
  start_near();
  if (outcome != Outcome::optimal) return true;
  if (wrong_.view().empty()) return true;
  return clean_up(outcome, iterations_left);
}

/* The primal goes on where the basis is primal feasible and the dual cannot: after changes of costs, freed
 * bounds or deleted rows. */
bool Relaxation::clean_up(Outcome& outcome, std::int64_t iterations_left) {
  near_ = false;
  outcome = the_primal().solve(iterations_left);
  keep_norms_ = false;
  if (outcome == Outcome::unbounded && !verify_ray()) return false;
  if (outcome == Outcome::infeasible || outcome == Outcome::numerical_failure || outcome == Outcome::singular)
    return false;
  start_near();
  return true;
}

/* By the rounds of the Solver, from the basis at hand. */
Outcome Relaxation::resolve_anew(const Limits& limits) {
  leave();
  const Options kept = options_;
  options_ = without_sifting(kept);
  options_.objective_upper = limits.cutoff;
  options_.objective_lower = -kInf;
  const std::int64_t done = core_->counters.iterations;
  options_.iteration_limit = done + std::min(limits.iterations, kUnlimited - done);
  core_->tick_end = limits.ticks < kUnlimited ? core_->total_work() + limits.ticks : kUnlimited;
  const Outcome outcome = Solver::solve(Method::dual);
  options_ = kept;
  reoptimization_.forget();
  const bool known = !answer_.column_status.empty() && core_->has_factor();
  if (known) start_near();
  crossed_ = outcome == Outcome::infeasible && known && !crossing_.empty();
  return outcome;
}

Outcome Relaxation::resolve(Control& control, const Limits& limits, Detail detail) {
  set_control(control, core_->observer);
  changed();
  reoptimization_.forget();
  answer_.withdraw();
  crossed_ = false;
  const std::int64_t before = core_->counters.iterations;
  if (!near_ || !resolve_near(limits, outcome_)) {
    const std::int64_t spent = core_->counters.iterations - before;
    Limits left = limits;
    left.iterations = std::max<std::int64_t>(0, limits.iterations - spent);
    outcome_ = resolve_anew(left);
  }
  core_->tick_end = kUnlimited;
  if (detail == Detail::verified) verify();
  if (outcome_ == Outcome::optimal && objective_ > limits.cutoff) outcome_ = Outcome::objective_limit;
  iterations_ = core_->counters.iterations - before;
  core_->report_work();
  if (detail == Detail::primal || detail == Detail::primal_dual) primal();
  if (detail == Detail::primal_dual) duals();
  return outcome_;
}

/* The claim at hand, judged on the user's data; what does not stand that is solved anew. */
void Relaxation::verify() {
  if (near_ && outcome_ == Outcome::infeasible && !crossed_ && farkas() == nullptr) {
    outcome_ = resolve_anew({});
  }
  if (!near_) return;
  extract();
  answer_.outcome = outcome_;
  if (outcome_ == Outcome::optimal && !(answer_.primal_feasible && answer_.dual_feasible))
    outcome_ = resolve_anew({});
  if (near_) start_near();
}

// ---- what was found ----

std::span<const double> Relaxation::primal() {
  if (primal_made_) return primal_;
  primal_.resize(static_cast<size_t>(core_->n()));
  for (int j = 0; j < core_->n(); ++j)
    primal_[j] = core_->basis.nonbasic(j) ? user_.nonbasic_value(j)
                                          : core_->values.x(core_->basis.position(j)) * column_scale(j);
  primal_made_ = true;
  return primal_;
}

std::span<const double> Relaxation::duals() {
  if (duals_made_) return duals_;
  duals_.resize(static_cast<size_t>(core_->m()));
  reduced_costs_.resize(static_cast<size_t>(core_->n()));
  for (int i = 0; i < core_->m(); ++i) duals_[i] = pending_.multiplier(i) * row_scale(i);
  for (int j = 0; j < core_->n(); ++j) {
    const double d = !core_->basis.nonbasic(j) ? 0.0
                     : core_->is_fixed(j)      ? pending_.reduced_cost(j)
                                               : core_->values.d(j);
    reduced_costs_[j] = d / column_scale(j);
  }
  duals_made_ = true;
  return duals_;
}

std::span<const double> Relaxation::reduced_costs() {
  duals();
  return reduced_costs_;
}

double Relaxation::safe_bound() {
  const std::span<const double> y = duals();
  const LpData& lp = user_.lp;
  CompensatedSum bound;
  bound.add(lp.offset);
  // A multiplier on a side that is not there proves nothing: it counts as zero.
  std::vector<double> used(y.begin(), y.end());
  for (int i = 0; i < lp.num_rows(); ++i) {
    if (used[i] == 0) continue;
    const double side = used[i] > 0 ? lp.row_lower[i] : lp.row_upper[i];
    if (std::isinf(side)) {
      used[i] = 0;
    } else {
      bound.add_product(used[i], side);
    }
  }
  for (int j = 0; j < lp.num_columns(); ++j) {
    CompensatedSum d;
    d.add(lp.cost[j]);
    double terms = std::fabs(lp.cost[j]);
    each_entry(j, [&](int i, double a) {
      d.add_product(-a, used[i]);
      terms = std::max(terms, std::fabs(a * used[i]));
    });
    const double z = d.value();
    if (z == 0) continue;
    const double at = z > 0 ? lp.lower[j] : lp.upper[j];
    if (!std::isinf(at)) {
      bound.add_product(z, at);
    } else if (std::fabs(z) > 1e-12 * terms) {
      return -kInf;
    }
  }
  return bound.value();
}

const verify::FarkasProof* Relaxation::farkas() {
  if (outcome_ != Outcome::infeasible) return nullptr;
  if (!farkas_made_) {
    farkas_ = {};
    if (crossed_) {
      farkas_.multipliers.assign(static_cast<size_t>(core_->m()), 0.0);
      farkas_.gap = answer_.farkas_gap;
    } else if (near_ && answer_.farkas.empty() && verify_infeasible(the_dual().farkas())) {
      farkas_ = {answer_.farkas, answer_.farkas_gap};
    } else if (!answer_.farkas.empty()) {
      farkas_ = {answer_.farkas, answer_.farkas_gap};
    }
    farkas_made_ = true;
  }
  return farkas_.gap > 0 ? &farkas_ : nullptr;
}

}  // namespace tovik::lp::simplex
