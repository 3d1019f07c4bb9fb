#include "lp/run/simplex_run.h"

#include <memory>
#include <span>
#include <utility>

#include "env/method_code.h"
#include "include/tovik.h"
#include "lp/binding/engine_control.h"
#include "lp/run/iteration_log.h"
#include "lp/run/numbers.h"
#include "lp/run/simplex_optimizer.h"
#include "lp/run/unsettled.h"
#include "lp/run/warm_simplex.h"
#include "model/store/model.h"

namespace tovik::lp::run {
namespace {

int start_code(BasisStatus at) {
  return static_cast<int>(at);
}

/* Row statuses as users write them: 0 for a row standing at its right-hand side; 0 or 2 for the lower or
 * upper end of a ranged row. */
int row_start_code(BasisStatus at, char sense) {
  if (at == BasisStatus::basic || sense == 'R') return start_code(at);
  return start_code(BasisStatus::lower);
}

}  // namespace

int status_code(Outcome outcome, bool unscaled_infeasible) {
  switch (outcome) {
    case Outcome::optimal:
      return unscaled_infeasible ? TVK_STATUS_OPTIMAL_UNSCALED_INFEASIBLE : TVK_STATUS_OPTIMAL;
    case Outcome::unbounded:
      return TVK_STATUS_UNBOUNDED;
    case Outcome::infeasible:
      return TVK_STATUS_INFEASIBLE;
    case Outcome::infeasible_or_unbounded:
      return TVK_STATUS_UNBOUNDED_OR_INFEASIBLE;
    case Outcome::objective_limit:
      return TVK_STATUS_OBJECTIVE_LIMIT;
    case Outcome::iteration_limit:
      return TVK_STATUS_ITERATION_LIMIT;
    case Outcome::time_limit:
      return TVK_STATUS_TIME_LIMIT;
    case Outcome::tick_limit:
      return TVK_STATUS_TICK_LIMIT;
    case Outcome::user_abort:
      return TVK_STATUS_USER_ABORT;
    default:
      return TVK_STATUS_NON_OPTIMAL;
  }
}

namespace {

/* Writes entries of an answer into arrays that have its size. */
class AnswerWriter {
 public:
  AnswerWriter(const model::Model& model, const Answer& answer, Solution& solution, Start& start)
      : sign_(model.objective_sense()),
        rhs_(model.rhs()),
        sense_(model.sense()),
        answer_(answer),
        solution_(solution),
        start_(start) {}

  void column(int j) {
    column_values(j);
    column_status(j);
  }
  void row(int i) {
    row_values(i);
    row_status(i);
  }
  /* Without a factor there are values but no statuses. */
  void all() {
    for (size_t j = 0; j < answer_.x.size(); ++j) column_values(static_cast<int>(j));
    for (size_t i = 0; i < answer_.activity.size(); ++i) row_values(static_cast<int>(i));
    for (size_t j = 0; j < answer_.column_status.size(); ++j) column_status(static_cast<int>(j));
    for (size_t i = 0; i < answer_.row_status.size(); ++i) row_status(static_cast<int>(i));
  }

 private:
  void column_values(int j) {
    solution_.x[j] = answer_.x[j];
    solution_.dj[j] = times(sign_, answer_.d[j]);
  }
  void row_values(int i) {
    solution_.slack[i] = rhs_[i] - answer_.activity[i];
    solution_.pi[i] = times(sign_, answer_.y[i]);
  }
  void column_status(int j) { start_.column_status[j] = start_code(answer_.column_status[j]); }
  void row_status(int i) { start_.row_status[i] = row_start_code(answer_.row_status[i], sense_[i]); }

  double sign_;
  std::span<const double> rhs_;
  std::span<const char> sense_;
  const Answer& answer_;
  Solution& solution_;
  Start& start_;
};

/* All that is not one entry a row or column. */
void write_summary(const Answer& answer, const simplex::Counters& counters, double sign, Solution& solution) {
  solution.objective = sign * answer.objective + 0.0;  // never -0
  solution.method = answer.method == Method::primal ? method_code::kPrimal : method_code::kDual;
  solution.has_basis = true;
  solution.primal_feasible = answer.primal_feasible;
  solution.dual_feasible = answer.dual_feasible;
  solution.iterations = static_cast<int>(counters.iterations);
  solution.phase1_iterations = static_cast<int>(counters.phase1_iterations());
  solution.factorizations = static_cast<int>(counters.factorizations);
  solution.farkas_gap = answer.farkas_gap;
}

/* Gives arrays the sizes of the answer's; where memory is short nothing changes. */
void fit(const Answer& answer, Solution& solution, Start& start) {
  const auto each = [&](auto f) {
    f(solution.x, answer.x.size());
    f(solution.dj, answer.d.size());
    f(solution.slack, answer.activity.size());
    f(solution.pi, answer.y.size());
    f(start.column_status, answer.column_status.size());
    f(start.row_status, answer.row_status.size());
  };
  each([](auto& v, size_t size) {
    if (size > v.capacity()) v.reserve(size + size / 8);
  });
  each([](auto& v, size_t size) { v.resize(size); });
}

/* Into arrays of the right size. */
void store_in_place(Problem& problem, const simplex::Solver& solver) {
  AnswerWriter writer(*problem.model, solver.answer(), *problem.solution, problem.start);
  if (solver.answer_is_new()) {
    writer.all();
  } else {
    for (const int j : solver.changed_columns()) writer.column(j);
    for (const int i : solver.changed_rows()) writer.row(i);
  }
  write_summary(solver.answer(), solver.counters(), problem.model->objective_sense(), *problem.solution);
  problem.solution->ray.clear();
  problem.solution->farkas.clear();
  problem.start.change_level = 0;
  problem.start.balanced = true;
}

}  // namespace

void store_answer(Problem& problem, const Answer& answer, const simplex::Counters& counters) {
  auto solution = std::make_unique<Solution>();
  Start start;
  solution->x.resize(answer.x.size());
  solution->dj.resize(answer.d.size());
  solution->slack.resize(answer.activity.size());
  solution->pi.resize(answer.y.size());
  start.column_status.resize(answer.column_status.size());
  start.row_status.resize(answer.row_status.size());
  solution->ray = answer.ray;
  solution->farkas = answer.farkas;
  AnswerWriter(*problem.model, answer, *solution, start).all();
  write_summary(answer, counters, problem.model->objective_sense(), *solution);
  problem.solution = std::move(solution);
  problem.start = std::move(start);  // values to start from belonged to the basis before
}

void store_answer(Problem& problem, simplex::Solver& solver) {
  const Answer& answer = solver.answer();
  const bool kept = problem.solution != nullptr && problem.solution->live_engine == &solver &&
                    problem.start.live_engine == &solver && answer.ray.empty() && answer.farkas.empty();
  if (kept) {
    fit(answer, *problem.solution, problem.start);
    store_in_place(problem, solver);
  } else {
    store_answer(problem, answer, solver.counters());
    problem.solution->live_engine = problem.start.live_engine = &solver;
  }
  solver.answer_taken();
}

namespace {

/* Those of the engine, and of what was done before it. */
void write_statistics(const simplex::Solver& solver, const OptimizationStatistics* before,
                      OptimizationStatistics& statistics) {
  solver.write_statistics(statistics.simplex);
  statistics.search.reset();
  statistics.barrier.reset();
  statistics.network.reset();
  if (before == nullptr) {
    statistics.presolve.reset();
  } else {
    statistics.presolve = before->presolve;
    statistics.simplex.work.add(before->simplex.work);
  }
}

}  // namespace

Status run_simplex(Environment& env, Problem& problem, const Algorithm& algorithm,
                   const Continuation& continuation) {
  OptimizationStatistics& statistics = statistics_of(problem);
  EngineGuard guard(problem);
  EngineControl control(env, problem);
  IterationLog log(env, problem, env.settings.integer(TVK_PARAM_SIMDISPLAY));
  WarmSimplex* engine = nullptr;
  if (const Status status = warm_simplex(env, problem, {options_of(env, algorithm), control, &log}, &engine);
      !status.ok()) {
    guard.commit();
    return status;
  }
  WarmSimplex& warm = *engine;
  if (continuation.from_basis) {
    install_basis(problem, warm);
  } else {
    install_start(env, problem, warm);
  }
  warm.start_installed = false;  // until this run has ended in order
  set_objective_limits(env, problem, warm.solver);
  if (continuation.before != nullptr) {
    warm.solver.continue_count(continuation.before->simplex.counters);
  } else {
    warm.solver.begin_count();
  }
  if (env.callbacks.lp) warm.solver.invalidate();  // it is called by the algorithms
  const Outcome outcome = warm.solver.solve(algorithm.method);
  EngineControl auxiliary(env, problem, Numbers::hidden);
  const std::unique_ptr<const SettledRun> settled = settle_run(warm.solver, outcome, auxiliary);
  warm.solver.detach();
  write_statistics(warm.solver, continuation.before, statistics);
  if (settled != nullptr) statistics.simplex.counters.iterations += settled->iterations;
  const Outcome ended = settled != nullptr ? settled->outcome : outcome;
  if (ended == Outcome::singular) return Status(TVK_ERROR_BASIS_SINGULAR);
  const bool replaced = settled != nullptr && settled->replaces;
  const Answer& answer = replaced ? settled->answer : warm.solver.answer();
  const int status = status_code(ended, answer.unscaled_infeasible);
  if (replaced) {
    store_answer(problem, answer, statistics.simplex.counters);
  } else {
    store_answer(problem, warm.solver);
  }
  problem.status = status;
  warm.start_installed = true;
  warm.norms_current = true;
  guard.commit();
  return {};
}

}  // namespace tovik::lp::run
