#include "lp/run/presolve_run.h"

#include <new>
#include <utility>

#include "env/channel.h"
#include "include/tovik.h"
#include "lp/binding/build_lp.h"
#include "lp/binding/engine_control.h"
#include "lp/presolve/crush.h"
#include "lp/presolve/dualize.h"
#include "lp/presolve_record/presolved.h"
#include "lp/run/barrier_run.h"
#include "lp/run/concurrent.h"
#include "lp/run/iteration_log.h"
#include "lp/run/network_start_run.h"
#include "lp/run/optimizer.h"
#include "lp/run/simplex_run.h"
#include "lp/run/user_point.h"
#include "lp/run/warm_simplex.h"
#include "param/hidden.h"

namespace tovik::lp::run {
namespace {

Outcome outcome_of(Stop stop) {
  switch (stop) {
    case Stop::time_limit:
      return Outcome::time_limit;
    case Stop::tick_limit:
      return Outcome::tick_limit;
    default:
      return Outcome::user_abort;
  }
}

/* One run: the pieces in the order in which they are done. */
class PresolvedRun {
 public:
  PresolvedRun(Environment& env, Problem& problem, const Algorithm& algorithm)
      : env_(env),
        problem_(problem),
        algorithm_(algorithm),
        options_(options_of(env, algorithm)),
        statistics_(statistics_of(problem)),
        record_(kept_record(problem)) {}

  Status run() {
    if (record_ == nullptr && !make_record()) return solve_original();
    const presolve::Reduction& reduction = record_->reduction;
    before_.presolve = statistics_of(*record_);
    if (record_->conclusion == Conclusion::infeasible) return store_infeasible();
    if (!reduction.changed && reduction.stop == Stop::none) {
      own_record_.reset();
      if (algorithm_.concurrent)
        return run_concurrent_unpresolved(env_, problem_, algorithm_, {.before = &before_});
      if (begins_with_barrier()) return cross_over_unpresolved(env_, problem_, algorithm_);
      if (algorithm_.network != nullptr) return start_from_network_unpresolved(env_, problem_, algorithm_);
      return run_simplex(env_, problem_, algorithm_, {.before = &before_});
    }
    const Outcome outcome = solve_reduced();
    if (!failure_.ok()) return failure_;
    switch (outcome) {
      case Outcome::infeasible:
        if (proves_infeasible(record_->original,
                              presolve::postsolve_proof(record_->original, reduction, answer_.farkas),
                              options_.primal_tolerance, record_->proof))
          return store_infeasible();
        if (answer_.column_status.empty()) return solve_original();
        [[fallthrough]];  // rounding on the way back has spoiled the proof: its basis is near one
      case Outcome::unbounded:
        postsolve_answer();
        return clean_up(Method::primal);
      case Outcome::infeasible_or_unbounded:
      case Outcome::singular:
      case Outcome::numerical_failure:
        return solve_original();
      default:
        return conclude(outcome);
    }
  }

 private:
  bool make_record() {
    try {
      own_record_ = make_presolved(env_, problem_);
    } catch (const std::bad_alloc&) {
      message(env_.warning_channel, "Insufficient memory for presolve.\n");
      return false;
    }
    record_ = own_record_.get();
    const int display = begins_with_barrier()           ? TVK_PARAM_BARDISPLAY
                        : algorithm_.network != nullptr ? TVK_PARAM_NETDISPLAY
                                                        : TVK_PARAM_SIMDISPLAY;
    if (env_.settings.integer(display) != 0)
      message(env_.results_channel, "Presolve time = %7.2f sec.\n", record_->seconds);
    return true;
  }

  /* Fills answer_ with the answer to the reduced problem; where presolve was stopped, with its slack basis.
   */
  Outcome solve_reduced() {
    const presolve::Reduction& reduction = record_->reduction;
    if (record_->all_removed()) {
      answer_.method = algorithm_.method;
      return Outcome::optimal;
    }
    Algorithm algorithm = algorithm_;
    algorithm.dual_form = wants_dual_form();
    if (algorithm.dual_form) announce_dual_form();
    if (algorithm.concurrent && reduction.stop == Stop::none) return solve_all_at_once(algorithm);
    EngineControl control(env_, problem_, algorithm.dual_form ? Numbers::of_dual_form : Numbers::of_problem);
    IterationLog log(env_, problem_, env_.settings.integer(TVK_PARAM_SIMDISPLAY));
    log.set_origin(reduction.row_map, reduction.column_map);
    const RunContext context{env_, problem_, algorithm, control, algorithm.dual_form ? nullptr : &log};
    std::unique_ptr<Optimizer> optimizer = take_ready_optimizer(algorithm);
    if (optimizer == nullptr) {
      optimizer = make_optimizer(reduction.lp, context);
      install_start(*optimizer, false);
    }
    Outcome outcome = outcome_of(reduction.stop);
    if (reduction.stop == Stop::none) {
      outcome = optimizer->optimize(context);
      failure_ = optimizer->failure();
      if (!failure_.ok()) return outcome;
    } else {
      optimizer->evaluate_start();
    }
    take_answer(std::move(optimizer), outcome);
    return outcome;
  }

  void announce_dual_form() {
    if (env_.settings.integer(param::kPresolveDisplay) != 0)
      message(env_.results_channel, "DUAL formed by presolve\n");
    before_.presolve->dual_form = true;
  }

  void take_answer(std::unique_ptr<Optimizer> optimizer, Outcome outcome) {
    before_.simplex = optimizer->statistics();
    if (keeps_optimizer(outcome) && optimizer->fits(env_)) {
      const presolve::Reduction& reduction = record_->reduction;
      record_->optimizer_changes.start(reduction.row_map.size(), reduction.column_map.size());
      answer_ = optimizer->answer();
      optimizer_ = std::move(optimizer);
    } else {
      answer_ = optimizer->release_answer();
    }
  }

  Outcome solve_all_at_once(const Algorithm& algorithm) {
    const presolve::Reduction& reduction = record_->reduction;
    Basis start;
    if (starts_from_basis()) start = presolve::crush_basis(reduction, starting_basis(problem_));
    Question question{.lp = reduction.lp,
                      .start = starts_from_basis() ? &start : nullptr,
                      .origin = {&reduction.row_map, &reduction.column_map},
                      .dual_form = algorithm.dual_form,
                      .ready = take_ready_optimizer(algorithm)};
    Contest contest = solve_concurrently(env_, problem_, algorithm.method, std::move(question));
    failure_ = contest.status;
    if (!failure_.ok()) return Outcome::user_abort;
    if (algorithm_.barrier != nullptr) *algorithm_.barrier = contest.barrier;
    take_answer(std::move(contest.optimizer), contest.outcome);
    return contest.outcome;
  }

  /* The one that solved the reduced problem before, at its start; null where there is none that fits. */
  std::unique_ptr<Optimizer> take_ready_optimizer(const Algorithm& algorithm) {
    std::unique_ptr<Optimizer> kept = take_kept_optimizer();
    if (algorithm.dual_form || algorithm.network != nullptr) kept.reset();
    if (kept != nullptr) install_start(*kept, true);
    return kept;
  }

  /* The one that solved the reduced problem before, up to date with it. It is gone unless this run ends in order. */
  std::unique_ptr<Optimizer> take_kept_optimizer() {
    std::unique_ptr<Optimizer> kept(static_cast<Optimizer*>(record_->optimizer.release()));
    if (kept == nullptr || !kept->fits(env_) ||
        !kept->synchronize(record_->reduction.lp, record_->optimizer_changes))
      return nullptr;
    return kept;
  }

  /* With a record that stays, unless memory is to be saved or its state is none to go on from. */
  bool keeps_optimizer(Outcome outcome) const {
    return own_record_ == nullptr && env_.settings.integer(TVK_PARAM_MEMORYEMPHASIS) == 0 &&
           outcome != Outcome::singular && outcome != Outcome::numerical_failure;
  }

  /* Not with a basis to start from, nor with limits on an objective that the dual approaches from the other
   * side.
   */
  bool wants_dual_form() const {
    constexpr double kNoLimit = 1e75;
    const Settings& s = env_.settings;
    const int wish = s.integer(TVK_PARAM_PREDUAL);
    if (wish < 0 || begins_with_barrier() || algorithm_.network != nullptr ||
        record_->reduction.stop != Stop::none || starts_from_basis() ||
        s.real(TVK_PARAM_OBJULIM) < kNoLimit || s.real(TVK_PARAM_OBJLLIM) > -kNoLimit) {
      return false;
    }
    return wish > 0 || presolve::dualization_pays(record_->reduction.lp);
  }

  bool begins_with_barrier() const { return algorithm_.barrier != nullptr && !algorithm_.concurrent; }

  bool starts_from_basis() const {
    return env_.settings.integer(TVK_PARAM_ADVIND) != 0 && problem_.start.has_statuses();
  }

  /* The problem's starting basis in the reduced problem; the optimizer completes and repairs it. Statuses that came
   * from where it stands need not be brought back there. */
  void install_start(Optimizer& optimizer, bool is_kept) const {
    if (!starts_from_basis()) {
      optimizer.forget_start();
    } else if (!is_kept || problem_.start.live_engine != &optimizer) {
      optimizer.set_start(presolve::crush_basis(record_->reduction, starting_basis(problem_)));
    }
  }

  /* answer_ becomes the answer to the problem itself. */
  void postsolve_answer() {
    const Method moved = answer_.method;
    const LpData& lp = record_->original;
    answer_ = complete_point(lp, presolve::postsolve(lp, record_->reduction, answer_));
    answer_.method = moved;
    answer_.primal_feasible = answer_.violation.primal() <= options_.primal_tolerance;
    answer_.dual_feasible = answer_.violation.dual <= options_.dual_tolerance;
  }

  Status conclude(Outcome outcome) {
    postsolve_answer();
    if (outcome == Outcome::optimal && !is_final(record_->original, answer_, options_))
      return clean_up(algorithm_.method);
    const Status result = finish(status_code(outcome, false));
    problem_.start.live_engine = optimizer_.get();
    record_->optimizer = std::move(optimizer_);
    return result;
  }

  /* The answer stands; the problem's own engine is made when something asks for it. */
  Status finish(int status) {
    forget_earlier_basis();
    store_answer(problem_, answer_, before_.simplex.counters);
    problem_.status = status;
    statistics_ = before_;
    return {};
  }

  /* The point of an infeasible problem: all rows basic, columns at their bounds. */
  Status store_infeasible() {
    answer_ = slack_point(record_->original);
    answer_.method = algorithm_.method;
    answer_.farkas = record_->proof.multipliers;
    answer_.farkas_gap = record_->proof.gap;
    return finish(status_code(Outcome::infeasible, false));
  }

  /* From the point that was brought back. */
  Status clean_up(Method method) {
    forget_earlier_basis();
    optimizer_.reset();  // the next basis to start from will not be where it stands
    own_record_.reset();
    store_answer(problem_, answer_, before_.simplex.counters);
    return run_simplex(env_, problem_, {method, algorithm_.sift}, {.from_basis = true, .before = &before_});
  }

  /* Presolve did not help: it is gone with what it left. */
  Status solve_original() {
    optimizer_.reset();
    own_record_.reset();
    problem_.presolve.reset();
    return run_simplex(env_, problem_, algorithm_, {.before = &before_});
  }

  /* Stored norms and the problem's own engine belong to the basis before. */
  void forget_earlier_basis() {
    problem_.norms = Norms{};
    release_engine(problem_);
  }

  Environment& env_;
  Problem& problem_;
  const Algorithm algorithm_;
  const simplex::Options options_;
  OptimizationStatistics& statistics_;  // the problem's, stored when all is done
  OptimizationStatistics before_;       // of presolve and the reduced problem
  std::unique_ptr<Presolved> own_record_;
  Presolved* record_;                     // the one that the problem keeps, or own_record_
  std::unique_ptr<Optimizer> optimizer_;  // to be kept with the record
  Answer answer_;
  Status failure_;  // of a run that has none
};

}  // namespace

bool wants_presolve(const Environment& env, const Problem& problem) {
  if (env.settings.integer(TVK_PARAM_PREIND) == 0) return false;
  if (kept_record(problem) != nullptr || !problem.start.has_statuses()) return true;
  return env.settings.integer(TVK_PARAM_ADVIND) != 1;
}

Status run_presolved(Environment& env, Problem& problem, const Algorithm& algorithm) {
  // Entries that a record stands on have been looked at when it was made.
  const bool with_matrix = kept_record(problem) == nullptr;
  if (const Status finite = check_finite(env, *problem.model, with_matrix); !finite.ok()) return finite;
  return PresolvedRun(env, problem, algorithm).run();
}

}  // namespace tovik::lp::run
