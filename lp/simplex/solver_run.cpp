/* The rounds of a solve: the look at a standing optimum, dual and primal in turn, tolerances tightened until the
 * answer keeps the user's. */
#include <algorithm>
#include <utility>

#include "lp/simplex/sifting.h"
#include "lp/simplex/solver.h"
#include "lp/simplex/tolerance.h"

namespace tovik::lp::simplex {
namespace {

constexpr double kTightest = 1e-10;  // no tolerance of the engine is tightened below this
constexpr int kTightenings = 4;
constexpr int kRounds = 4;  // dual/primal alternations before giving up

}  // namespace

void Solver::prepare() {
  core_->options = options_;
  core_->set_tolerances(options_.primal_tolerance * kInnerShare, options_.dual_tolerance * kInnerShare);
  core_->forget_repairs();
  answer_.withdraw();
}

/* A column or row whose bounds cross by more than the tolerance decides the problem; smaller gaps are closed.
 */
bool Solver::bounds_cross() {
  Core& core = *core_;
  for (int j = 0; j < core.total(); ++j) {
    if (core.model.lower(j) <= core.model.upper(j)) continue;
    const double scale = j < core.n() ? column_scale(j) : 1.0 / row_scale(j - core.n());
    const double gap = (core.model.lower(j) - core.model.upper(j)) * scale;
    if (!(gap <= options_.primal_tolerance)) {
      answer_.farkas_gap = gap;
      return true;
    }
    core.close_bounds(j);
  }
  return false;
}

/* The complete check of a standing optimum, from recomputed values. */
Reoptimization::State Solver::recheck() {
  const bool cross = bounds_cross();
  extract();
  if (!cross && answer_.primal_feasible && answer_.dual_feasible &&
      core_->primal_infeasibility().count == 0 && core_->dual_infeasibility().count == 0) {
    reoptimization_.settle(options_);
    return Reoptimization::State::optimal;
  }
  return Reoptimization::State::unknown;
}

Reoptimization::State Solver::standing() {
  if (reoptimization_.holds() && reoptimization_.is_due()) return recheck();
  if (!core_->has_factor() && reoptimization_.needs_factor()) ensure_factor();
  return reoptimization_.refresh(options_);
}

void Solver::answer_taken() {
  reoptimization_.taken();
  answer_is_new_ = false;
}

/* The optimum of the last solve is that of the changed problem. Whatever may end a run early is left to the
 * run. */
bool Solver::is_still_optimal(Method method) {
  known_infeasible_ = false;
  if (!reoptimization_.holds() || core_->control->poll() != Stop::none) return false;
  if (method == Method::primal && options_.iteration_limit <= 0) return false;
  const Reoptimization::State state = standing();
  answer_.objective = sums_.objective();  // the offset may have changed
  known_infeasible_ = state == Reoptimization::State::primal_infeasible;
  if (state != Reoptimization::State::optimal || answer_.objective < options_.objective_lower ||
      answer_.objective > options_.objective_upper) {
    return false;
  }
  answer_.outcome = Outcome::optimal;
  answer_.method = method;
  answer_.has_values = answer_.primal_feasible = answer_.dual_feasible = true;
  core_->report_work();
  return true;
}

Outcome Solver::solve(Method method) {
  prepare();
  if (is_still_optimal(method)) return Outcome::optimal;
  in_step_ = reoptimization_.in_step();
  reoptimization_.forget();
  if (bounds_cross()) {
    extract();
    answer_.method = method;
    answer_.farkas.assign(static_cast<size_t>(core_->m()), 0.0);
    answer_.outcome = Outcome::infeasible;
    return answer_.outcome;
  }
  // Columns that sifting left out are for the primal to bring in.
  sifted_ = start_by_sifting() && !already_optimal();
  if (sifted_) method = Method::primal;
  const Outcome outcome = run_to_tolerance(method);
  if (outcome == Outcome::optimal && answer_.has_values && !answer_.unscaled_infeasible) {
    reoptimization_.settle(options_);
  }
  return outcome;
}

/* Runs until the answer keeps the user's tolerances on the user's own LP; the engine's are tightened where it
 * does not. What exceeds them may be rounding noise of large values, which no pivot removes: rounds after the
 * first have a budget, and the best of the optimal bases found is the answer. */
Outcome Solver::run_to_tolerance(Method method) {
  BestBasis best;
  for (int round = 0;; ++round) {
    if (round > 0) {
      const std::int64_t budget = std::max<std::int64_t>(1000, core_->counters.iterations / 4);
      core_->options.iteration_limit =
          std::min<std::int64_t>(options_.iteration_limit, core_->counters.iterations + budget);
    }
    const Outcome outcome = run(method);
    core_->options.iteration_limit = options_.iteration_limit;
    extract();
    answer_.outcome = outcome;
    has_basis_ = true;
    if (outcome != Outcome::optimal) {
      const bool out_of_budget =
          outcome == Outcome::iteration_limit && core_->counters.iterations < options_.iteration_limit;
      const bool astray =
          out_of_budget || outcome == Outcome::numerical_failure || outcome == Outcome::singular;
      return round > 0 && astray ? restore_best_basis(best.basis) : outcome;
    }
    const double primal_excess = answer_.violation.primal() / options_.primal_tolerance;
    const double dual_excess = answer_.violation.dual / options_.dual_tolerance;
    const double excess = std::max(primal_excess, dual_excess);
    answer_.unscaled_infeasible = excess > 1;
    if (!answer_.unscaled_infeasible) return outcome;
    if (round == kTightenings) return excess <= best.excess ? outcome : restore_best_basis(best.basis);
    if (excess < best.excess) best = {{answer_.column_status, answer_.row_status, {}}, excess};
    tighten_tolerances(primal_excess, dual_excess);
    core_->drop_factor();  // a fresh factor for the last digits
  }
}

/* To what should bring violations that exceed the user's tolerances so many times within them. */
void Solver::tighten_tolerances(double primal_excess, double dual_excess) {
  double primal = core_->primal_tolerance();
  double dual = core_->dual_tolerance();
  const double primal_goal = primal / (3 * primal_excess);
  while (primal_excess > 1 && primal > std::max(kTightest, primal_goal)) primal = tighten_feasibility(primal);
  const double dual_goal = dual / (3 * dual_excess);
  while (dual_excess > 1 && dual > std::max(kTightest, dual_goal)) dual = tighten_optimality(dual);
  core_->set_tolerances(primal, dual);
}

/* Back to an optimal basis that misses the user's tolerances. */
Outcome Solver::restore_best_basis(const Basis& basis) {
  set_basis(basis.columns, basis.rows);
  values_are_fresh_ = false;
  extract();
  answer_.outcome = answer_.column_status.empty() ? Outcome::singular : Outcome::optimal;
  answer_.unscaled_infeasible = !answer_.primal_feasible || !answer_.dual_feasible;
  return answer_.outcome;
}

LpData Solver::user_copy() const {
  LpData lp = user_.lp;
  lp.matrix.start.assign(1, 0);
  for (int j = 0; j < core_->n(); ++j) {
    each_entry(j, [&](int i, double a) {
      lp.matrix.index.push_back(i);
      lp.matrix.value.push_back(a);
    });
    lp.matrix.start.push_back(static_cast<int>(lp.matrix.index.size()));
  }
  return lp;
}

bool Solver::start_by_sifting() {
  const bool wanted = options_.sifting == Sifting::always ||
                      (options_.sifting == Sifting::when_it_pays && sifting_pays(core_->m(), core_->n()));
  if (has_basis_ || !wanted || core_->m() == 0 || core_->n() == 0) return false;
  const SiftingResult found = sift(user_copy(), options_, *core_->control);
  core_->counters.iterations += found.iterations;
  core_->counters.sifting_iterations += found.iterations;
  core_->counters.sifting_rounds += found.rounds;
  sifting_ticks_ += found.ticks;
  if (!found.usable) return false;
  set_basis(found.basis.columns, found.basis.rows);
  return true;
}

Outcome Solver::run(Method method) {
  values_are_fresh_ = false;
  core_->ensure_rows();
  if (std::exchange(sifted_, false)) {
    Outcome outcome;
    if (run_primal_once(patience_after_sifting(), outcome)) return outcome;
    core_->set_logical_basis();  // a start that leads nowhere
    has_basis_ = false;
    return run_dual();
  }
  return method == Method::dual ? run_dual() : run_primal();
}

/* A start that is final needs no iteration; the dual would leave it when it perturbs the costs of boxed
 * variables. Whatever may end a run early is left to the run. */
bool Solver::already_optimal() {
  Core& core = *core_;
  if (!has_basis_ || known_infeasible_ || core.control->poll() != Stop::none || !ensure_factor())
    return false;
  core.use_original_costs();
  core.use_original_bounds();
  core.compute_primal();
  core.compute_dual();
  if (core.primal_infeasibility().count > 0 || core.dual_infeasibility().count > 0) return false;
  const double objective = core.objective();
  values_are_fresh_ = objective >= options_.objective_lower && objective <= options_.objective_upper;
  return values_are_fresh_;
}

/* The dual from values that have followed the changes since the last optimum: no pass over the model until it ends.
 * False: the usual way. */
bool Solver::run_dual_near(Outcome& outcome) {
  Core& core = *core_;
  if (!std::exchange(in_step_, false) || !core.has_factor() || !keep_norms_) return false;
  if (core.dual_infeasibility().count > 0) return false;
  Dual& dual = the_dual();
  dual.start_near();
  outcome = dual.reoptimize(options_.iteration_limit - core.counters.iterations, core.objective());
  if (outcome == Outcome::numerical_failure || outcome == Outcome::singular || !core.has_factor())
    return false;
  if (outcome == Outcome::infeasible) return verify_infeasible(dual.farkas());
  if (outcome != Outcome::optimal) return true;
  core.use_original_costs();
  core.compute_primal();
  core.compute_dual();
  if (core.primal_infeasibility().count > 0 || core.dual_infeasibility().count > 0) return false;
  values_are_fresh_ = true;
  if (core.objective() > options_.objective_upper) outcome = Outcome::objective_limit;
  return true;
}

/* Iterations after which an algorithm that has not ended is taken to cycle. */
std::int64_t Solver::patience() const {
  constexpr std::int64_t kLeast = 2000;
  constexpr std::int64_t kByLine = 50;  // for each row and column
  return kLeast + kByLine * core_->total();
}

/* The same for the primal from where sifting left off: few columns are missing, or nearly parallel ones keep changing
 * places. */
std::int64_t Solver::patience_after_sifting() const {
  constexpr std::int64_t kLeast = 2000;
  return kLeast + core_->m() + core_->counters.sifting_iterations;
}

/* An algorithm that has spent its budget, not the caller's limit, has failed. */
Outcome Solver::stalled(Outcome outcome) const {
  const bool by_budget =
      outcome == Outcome::iteration_limit && core_->counters.iterations < core_->options.iteration_limit;
  return by_budget ? Outcome::numerical_failure : outcome;
}

/* True where what it ends with stands: proven, or a limit. */
bool Solver::run_primal_once(std::int64_t budget, Outcome& ended) {
  answer_.method = Method::primal;
  keep_norms_ = false;
  ended = stalled(the_primal().solve(budget));
  if (ended == Outcome::infeasible) return verify_infeasible(the_primal().infeasibility_duals());
  if (ended == Outcome::unbounded) return verify_ray();
  return ended != Outcome::numerical_failure && ended != Outcome::singular;
}

Outcome Solver::run_dual() {
  answer_.method = Method::dual;
  Outcome near;
  if (run_dual_near(near)) return near;
  if (already_optimal()) return Outcome::optimal;
  if (keep_norms_) ensure_factor();  // takes the norms along
  Dual::Settings settings;
  Outcome last = Outcome::numerical_failure;
  for (int round = 0; round < kRounds; ++round) {
    settings.keep_norms = keep_norms_;
    settings.perturb = round < kRounds / 2;
    settings.warm = has_basis_ && round == 0;
    answer_.method = Method::dual;
    last = stalled(the_dual().solve(settings, patience()));
    keep_norms_ = true;
    if (last == Outcome::infeasible && verify_infeasible(the_dual().farkas())) return last;
    if (last == Outcome::optimal && core_->dual_infeasibility().count == 0) {
      // While costs were perturbed the limit was looked at now and then only.
      return core_->objective() > options_.objective_upper ? Outcome::objective_limit : last;
    }
    if (last != Outcome::optimal && last != Outcome::infeasible && last != Outcome::infeasible_or_unbounded &&
        last != Outcome::numerical_failure && last != Outcome::singular) {
      return last;
    }
    // Clean up by the primal; a budget keeps it from wandering while the dual could do better.
    const bool cleaning = last == Outcome::optimal && round + 2 < kRounds;
    const std::int64_t budget =
        cleaning ? std::max<std::int64_t>(1000, core_->counters.iterations / 10) : patience();
    if (run_primal_once(budget, last)) return last;
    if (cleaning) continue;  // the budget ran out: the dual goes on from here
    core_->raise_threshold();
    core_->set_logical_basis();  // what led here is not to be trusted: start over with stricter pivots
  }
  return last == Outcome::singular ? last : Outcome::numerical_failure;  // no claim that was not verified
}

Outcome Solver::run_primal() {
  Outcome last = Outcome::numerical_failure;
  for (int round = 0; round < kRounds; ++round) {
    if (run_primal_once(patience(), last)) return last;
    core_->raise_threshold();
    Dual::Settings settings;
    answer_.method = Method::dual;
    last = stalled(the_dual().solve(settings, patience()));
    if (last == Outcome::infeasible && verify_infeasible(the_dual().farkas())) return last;
    if (last == Outcome::optimal && core_->dual_infeasibility().count == 0) return last;
    if (last == Outcome::iteration_limit || last == Outcome::time_limit || last == Outcome::tick_limit ||
        last == Outcome::user_abort) {
      return last;
    }
  }
  return last == Outcome::singular ? last : Outcome::numerical_failure;
}

}  // namespace tovik::lp::simplex
