#include "lp/run/barrier_run.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>
#include <utility>

#include "env/channel.h"
#include "env/method_code.h"
#include "include/tovik.h"
#include "lp/base/sum.h"
#include "lp/binding/build_lp.h"
#include "lp/binding/engine_control.h"
#include "lp/presolve_record/presolved.h"
#include "lp/run/barrier_optimizer.h"
#include "lp/run/crossover_run.h"
#include "lp/run/iteration_log.h"
#include "lp/run/presolve_run.h"
#include "lp/run/simplex_run.h"
#include "lp/run/statistics.h"
#include "lp/run/user_point.h"
#include "lp/run/warm_simplex.h"
#include "lp/verify/bounds.h"
#include "lp/verify/point.h"
#include "model/store/model.h"

namespace tovik::lp::run {
namespace {

using barrier::Ending;

/* What a point with multipliers but without a basis leaves open, on the LP's own data. */
struct Judgement {
  double primal = 0;  // largest violation of a row or column
  double dual = 0;    // largest multiplier that asks for a bound that is not there
  double gap = 0;     // between the objectives, relative
};

Judgement judge(const LpData& lp, const Answer& answer) {
  Judgement found;
  CompensatedSum dual_objective;
  dual_objective.add(lp.offset);
  const auto look = [&](double value, double multiplier, double lower, double upper) {
    found.primal = std::max(found.primal, verify::outside(value, lower, upper));
    const double bound = multiplier > 0 ? lower : upper;
    if (!std::isinf(bound)) {
      dual_objective.add_product(multiplier, bound);
    } else {
      found.dual = std::max(found.dual, std::fabs(multiplier));
    }
  };
  for (int j = 0; j < lp.num_columns(); ++j) look(answer.x[j], answer.d[j], lp.lower[j], lp.upper[j]);
  for (int i = 0; i < lp.num_rows(); ++i)
    look(answer.activity[i], answer.y[i], lp.row_lower[i], lp.row_upper[i]);
  const double difference = std::fabs(answer.objective - dual_objective.value());
  found.gap = difference / (1 + std::fabs(answer.objective));
  return found;
}

/* From presolve to the end, with what was done before added up in `counts`. */
Status cross_over(Environment& env, Problem& problem, Method method, BarrierCounts& counts) {
  const Algorithm algorithm{method, false, &counts};
  const Status status = env.settings.integer(TVK_PARAM_PREIND) != 0
                            ? run_presolved(env, problem, algorithm)
                            : cross_over_unpresolved(env, problem, algorithm);
  if (status.ok()) store_counts(counts, problem);
  return status;
}

/* Tells, when it ends, how long its run by several threads has taken. */
class TotalTime {
 public:
  explicit TotalTime(const Environment& env)
      : env_(env), threads_(barrier_options(env).factorization.threads), begin_(clock_seconds(env)) {}
  ~TotalTime() {
    if (threads_ > 1 && env_.settings.integer(TVK_PARAM_BARDISPLAY) > 0)
      message(env_.results_channel, "\nTotal real time on %d threads = %7.2f sec.\n", threads_,
              clock_seconds(env_) - begin_);
  }
  TotalTime(const TotalTime&) = delete;
  TotalTime& operator=(const TotalTime&) = delete;

 private:
  const Environment& env_;
  const int threads_;
  const double begin_;
};

class BarrierRun {
 public:
  BarrierRun(Environment& env, Problem& problem)
      : env_(env),
        problem_(problem),
        options_(barrier_options(env)),
        control_(env, problem),
        record_(kept_record(problem)) {}

  Status run() {
    const bool presolved =
        env_.settings.integer(TVK_PARAM_PREIND) != 0 && (record_ != nullptr || make_record());
    if (!presolved) return solve_original();
    if (record_->conclusion == Conclusion::infeasible) {
      barrier::Result nothing;
      answer_ = answer_near(record_->original, nothing);
      answer_.farkas = record_->proof.multipliers;
      answer_.farkas_gap = record_->proof.gap;
      return store(TVK_STATUS_INFEASIBLE);
    }
    const presolve::Reduction& reduction = record_->reduction;
    if (record_->conclusion == Conclusion::unbounded || record_->conclusion == Conclusion::undecided ||
        has_crossed_bounds(reduction.lp))
      return solve_original();
    barrier::Result result;
    result.ending = reduction.stop == Stop::none         ? Ending::optimal
                    : reduction.stop == Stop::time_limit ? Ending::time_limit
                    : reduction.stop == Stop::tick_limit ? Ending::tick_limit
                                                         : Ending::user_abort;
    if (result.ending == Ending::optimal && !record_->all_removed())
      result = run_interior_point(env_, problem_, reduction.lp, options_, control_, counts_);
    return conclude_presolved(result);
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
    if (env_.settings.integer(TVK_PARAM_BARDISPLAY) > 0)
      message(env_.results_channel, "Presolve time = %7.2f sec.\n", record_->seconds);
    return true;
  }

  Status conclude_presolved(barrier::Result& result) {
    if (const Status status = status_of(result.ending); !status.ok()) return status;
    const presolve::Reduction& reduction = record_->reduction;
    switch (result.ending) {
      case Ending::infeasible: {
        verify::FarkasProof proof;
        if (!proves_infeasible(record_->original,
                               presolve::postsolve_proof(record_->original, reduction, result.farkas),
                               options_.primal_tolerance, proof))
          return solve_original();
        result.farkas = std::move(proof.multipliers);
        result.farkas_gap = proof.gap;
        break;
      }
      case Ending::unbounded:
      case Ending::infeasible_or_unbounded:
        return solve_original();  // whose ray is asked for
      default:
        break;
    }
    std::vector<double> farkas = std::move(result.farkas);
    const Answer reduced = answer_near(reduction.lp, result);
    Answer point = presolve::postsolve_interior(record_->original, reduction, reduced);
    barrier::Result original;
    original.has_point = true;
    original.ending = result.ending;
    original.x = std::move(point.x);
    original.y = std::move(point.y);
    original.farkas = std::move(farkas);
    original.farkas_gap = result.farkas_gap;
    const LpData& lp = record_->original;
    for (int j = 0; j < lp.num_columns(); ++j)
      original.x[j] = std::clamp(original.x[j], lp.lower[j], std::max(lp.lower[j], lp.upper[j]));
    return conclude(lp, original, true);
  }

  Status solve_original() {
    const LpData lp = record_ != nullptr ? record_->original : build_lp(*problem_.model);
    if (has_crossed_bounds(lp)) return as_point(run_simplex(env_, problem_, {Method::dual}));
    barrier::Result result = run_interior_point(env_, problem_, lp, options_, control_, counts_);
    if (const Status status = status_of(result.ending); !status.ok()) return status;
    return conclude(lp, result, false);
  }

  Status conclude(const LpData& lp, barrier::Result& result, bool may_try_again) {
    const Ending ending = result.ending;
    std::vector<double> ray = std::move(result.ray);
    answer_ = answer_near(lp, result);
    const Judgement judgement = judge(lp, answer_);
    const double tolerance = kShare * options_.tolerance;
    answer_.primal_feasible = judgement.primal <= options_.primal_tolerance;
    answer_.dual_feasible = judgement.dual <= options_.dual_tolerance;
    const bool near = judgement.gap <= tolerance && answer_.dual_feasible;
    if (ending == Ending::optimal && may_try_again && !(near && answer_.primal_feasible))
      return solve_original();
    answer_.ray = std::move(ray);
    return store(solution_status(ending, judgement, near));
  }

  /* `optimal` is told of what the problem's own data bear out. */
  int solution_status(Ending ending, const Judgement& judgement, bool near) const {
    switch (ending) {
      case Ending::optimal:
        if (near && answer_.primal_feasible) return TVK_STATUS_OPTIMAL;
        return near && judgement.primal <= kShare * options_.primal_tolerance
                   ? TVK_STATUS_OPTIMAL_UNSCALED_INFEASIBLE
                   : TVK_STATUS_NON_OPTIMAL;
      case Ending::infeasible:
        return TVK_STATUS_INFEASIBLE;
      case Ending::unbounded:
        return TVK_STATUS_UNBOUNDED;
      case Ending::infeasible_or_unbounded:
        return TVK_STATUS_UNBOUNDED_OR_INFEASIBLE;
      case Ending::primal_objective_limit:
        return TVK_STATUS_PRIMAL_OBJECTIVE_LIMIT;
      case Ending::dual_objective_limit:
        return TVK_STATUS_DUAL_OBJECTIVE_LIMIT;
      case Ending::unbounded_face:
        return near && answer_.primal_feasible ? TVK_STATUS_OPTIMAL_FACE_UNBOUNDED : TVK_STATUS_NON_OPTIMAL;
      case Ending::iteration_limit:
        return TVK_STATUS_ITERATION_LIMIT;
      case Ending::time_limit:
        return TVK_STATUS_TIME_LIMIT;
      case Ending::tick_limit:
        return TVK_STATUS_TICK_LIMIT;
      case Ending::user_abort:
        return TVK_STATUS_USER_ABORT;
      default:
        return TVK_STATUS_NON_OPTIMAL;
    }
  }

  /* No point was good enough: a vertex is, and stands here as a point like another. */
  Status settle_by_vertex() { return as_point(cross_over(env_, problem_, Method::primal, counts_)); }

  /* What a run by the simplex has left. */
  Status as_point(Status status) {
    if (!status.ok() || problem_.solution == nullptr) return status;
    drop_basis();
    problem_.solution->method = method_code::kBarrier;
    return {};
  }

  void drop_basis() {
    problem_.norms = Norms{};
    release_engine(problem_);
    problem_.start = Start{};
    problem_.solution->has_basis = false;
  }

  Status store(int status) {
    if (status == TVK_STATUS_NON_OPTIMAL) return settle_by_vertex();
    OptimizationStatistics& statistics = statistics_of(problem_);
    OptimizationStatistics counted;
    if (record_ != nullptr) counted.presolve = statistics_of(*record_);
    release_engine(problem_);
    store_answer(problem_, answer_, {});
    drop_basis();
    problem_.solution->method = method_code::kBarrier;
    problem_.solution->barrier_iterations = counts_.iterations;
    problem_.status = status;
    counted.barrier = counts_;
    statistics = counted;
    return {};
  }

  static constexpr double kShare =
      100;  // times its tolerance: what may be lost on the way back to the problem

  Environment& env_;
  Problem& problem_;
  const barrier::Options options_;
  EngineControl control_;
  std::unique_ptr<Presolved> own_record_;
  Presolved* record_;
  Answer answer_;
  BarrierCounts counts_;
};

}  // namespace

Status run_barrier(Environment& env, Problem& problem) {
  const bool with_matrix = kept_record(problem) == nullptr;
  if (const Status finite = check_finite(env, *problem.model, with_matrix); !finite.ok()) return finite;
  const TotalTime total(env);
  return BarrierRun(env, problem).run();
}

Status cross_over_unpresolved(Environment& env, Problem& problem, const Algorithm& algorithm) {
  const LpData lp = build_lp(*problem.model);
  if (has_crossed_bounds(lp)) return run_simplex(env, problem, {algorithm.method});
  EngineControl control(env, problem);
  IterationLog log(env, problem, env.settings.integer(TVK_PARAM_SIMDISPLAY));
  OptimizationStatistics before;
  Outcome outcome;
  Answer answer;
  {
    BarrierOptimizer optimizer(lp);
    outcome = optimizer.optimize({env, problem, algorithm, control, &log});
    if (const Status status = optimizer.failure(); !status.ok()) return status;
    before.simplex = optimizer.statistics();
    answer = optimizer.release_answer();
  }
  problem.norms = Norms{};
  release_engine(problem);
  store_answer(problem, complete_point(lp, std::move(answer)), before.simplex.counters);
  if (is_limit(outcome)) {
    problem.status = status_code(outcome, false);
    statistics_of(problem) = before;
    return {};
  }
  // From its basis it takes no step, but where the conclusion was in doubt.
  return run_simplex(env, problem, {answer.method}, {.from_basis = true, .before = &before});
}

Status run_barrier_with_crossover(Environment& env, Problem& problem, Method method) {
  const bool with_matrix = kept_record(problem) == nullptr;
  if (const Status finite = check_finite(env, *problem.model, with_matrix); !finite.ok()) return finite;
  const TotalTime total(env);
  BarrierCounts counts;
  return cross_over(env, problem, method, counts);
}

Status resolve_crossover(const Environment& env, int argument, Crossover* crossover) {
  if (argument == 0) {
    argument = env.settings.integer(TVK_PARAM_BARCROSSALG);
    if (argument == 0) argument = 1;
  }
  switch (argument) {
    case -1:
    case 'n':
      *crossover = {};
      return {};
    case 1:
    case 'o':
    case 'O':
    case 'p':
    case 'P':
      *crossover = {true, Method::primal};
      return {};
    case 2:
    case 'd':
    case 'D':
    case 't':
    case 'T':
      *crossover = {true, Method::dual};
      return {};
    default:
      return Status(TVK_ERROR_OPTIMIZATION_METHOD);
  }
}

}  // namespace tovik::lp::run
