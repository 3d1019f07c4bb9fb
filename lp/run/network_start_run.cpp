#include "lp/run/network_start_run.h"

#include "include/tovik.h"
#include "lp/binding/build_lp.h"
#include "lp/binding/engine_control.h"
#include "lp/presolve_record/presolved.h"
#include "lp/run/barrier_optimizer.h"
#include "lp/run/iteration_log.h"
#include "lp/run/network_start_optimizer.h"
#include "lp/run/presolve_run.h"
#include "lp/run/simplex_run.h"
#include "lp/run/statistics.h"
#include "lp/run/user_point.h"
#include "lp/run/warm_simplex.h"
#include "model/store/model.h"

namespace tovik::lp::run {

Status start_from_network_unpresolved(Environment& env, Problem& problem, const Algorithm& algorithm) {
  const LpData lp = build_lp(*problem.model);
  if (has_crossed_bounds(lp)) return run_simplex(env, problem, {algorithm.method});
  EngineControl control(env, problem);
  IterationLog log(env, problem, env.settings.integer(TVK_PARAM_SIMDISPLAY));
  NetworkStartOptimizer optimizer(lp);
  const Outcome outcome = optimizer.optimize({env, problem, algorithm, control, &log});
  OptimizationStatistics before;
  before.simplex = optimizer.statistics();
  const Answer& answer = optimizer.answer();
  if (answer.column_status.empty()) return run_simplex(env, problem, {algorithm.method}, {.before = &before});
  problem.norms = Norms{};
  release_engine(problem);
  store_answer(problem, answer, before.simplex.counters);
  if (is_limit(outcome)) {
    problem.status = status_code(outcome, false);
    statistics_of(problem) = before;
    return {};
  }
  // From its basis it takes no step, but where the conclusion was in doubt.
  const Method method = outcome == Outcome::unbounded ? Method::primal : answer.method;
  return run_simplex(env, problem, {method}, {.from_basis = true, .before = &before});
}

Status run_from_network(Environment& env, Problem& problem, Method simplex) {
  NetworkCounts counts;
  const Algorithm algorithm{.method = simplex, .network = &counts};
  const bool with_matrix = kept_record(problem) == nullptr;
  if (const Status finite = check_finite(env, *problem.model, with_matrix); !finite.ok()) return finite;
  const Status status = env.settings.integer(TVK_PARAM_PREIND) != 0
                            ? run_presolved(env, problem, algorithm)
                            : start_from_network_unpresolved(env, problem, algorithm);
  if (status.ok()) statistics_of(problem).network = counts;
  return status;
}

Status resolve_simplex(int argument, Method* method) {
  switch (argument) {
    case 1:
    case 'o':
    case 'O':
    case 'p':
    case 'P':
      *method = Method::primal;
      return {};
    case 2:
    case 'd':
    case 'D':
    case 't':
    case 'T':
      *method = Method::dual;
      return {};
    default:
      return Status(TVK_ERROR_OPTIMIZATION_METHOD);
  }
}

}  // namespace tovik::lp::run
