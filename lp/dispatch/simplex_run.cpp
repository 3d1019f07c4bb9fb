#include "lp/dispatch/simplex_run.h"

#include <utility>

#include "include/tovik.h"
#include "lp/dispatch/build_lp.h"
#include "lp/dispatch/engine_control.h"
#include "lp/dispatch/iteration_log.h"
#include "lp/dispatch/live_simplex.h"
#include "model/model.h"

namespace tovik::lp::dispatch {
namespace {

int start_code(simplex::At at) {
  return static_cast<int>(at);
}

/* Row statuses as users write them: 0 for a row standing at its right-hand side; 0 or 2 for the lower or
 * upper end of a ranged row. */
int row_start_code(simplex::At at, char sense) {
  if (at == simplex::At::basic || sense == 'R') return start_code(at);
  return start_code(simplex::At::lower);
}

std::vector<double> times(double sign, std::vector<double> values) {
  if (sign < 0) {
    for (double& v : values) v = v == 0 ? 0 : -v;
  }
  return values;
}

}  // namespace

int status_code(simplex::Outcome outcome, bool unscaled_infeasible) {
  switch (outcome) {
    case simplex::Outcome::optimal:
      return unscaled_infeasible ? 5 : 1;
    case simplex::Outcome::unbounded:
      return 2;
    case simplex::Outcome::infeasible:
      return 3;
    case simplex::Outcome::infeasible_or_unbounded:
      return 4;
    case simplex::Outcome::objective_limit:
      return 12;
    case simplex::Outcome::iteration_limit:
      return 10;
    case simplex::Outcome::time_limit:
      return 11;
    case simplex::Outcome::tick_limit:
      return 900;
    case simplex::Outcome::user_abort:
      return 13;
    default:
      return 6;
  }
}

void publish(Problem& problem, simplex::Answer answer, const simplex::Counters& counters) {
  const model::Model& model = *problem.model;
  const double sign = model.objective_sense();
  auto solution = std::make_unique<Solution>();
  solution->objective = sign * answer.objective + 0.0;  // never -0
  solution->x = std::move(answer.x);
  const auto rhs = model.rhs();
  solution->slack = std::move(answer.activity);
  for (size_t i = 0; i < solution->slack.size(); ++i) solution->slack[i] = rhs[i] - solution->slack[i];
  solution->pi = times(sign, std::move(answer.y));
  solution->dj = times(sign, std::move(answer.d));
  solution->method = answer.method == simplex::Method::primal ? 1 : 2;
  solution->has_basis = true;
  solution->primal_feasible = answer.primal_feasible;
  solution->dual_feasible = answer.dual_feasible;
  solution->iterations = static_cast<int>(counters.iterations);
  solution->phase1_iterations = static_cast<int>(counters.phase1_iterations);
  solution->factorizations = static_cast<int>(counters.factorizations);
  solution->ray = std::move(answer.ray);
  solution->farkas = std::move(answer.farkas);
  solution->farkas_gap = answer.farkas_gap;
  std::vector<int> column_status(answer.column_status.size());
  std::vector<int> row_status(answer.row_status.size());
  for (size_t j = 0; j < column_status.size(); ++j) column_status[j] = start_code(answer.column_status[j]);
  for (size_t i = 0; i < row_status.size(); ++i)
    row_status[i] = row_start_code(answer.row_status[i], model.sense()[i]);
  problem.solution = std::move(solution);
  problem.start.column_status.swap(column_status);
  problem.start.row_status.swap(row_status);
  problem.start.change_level = 0;
}

void set_objective_limits(const Environment& env, const Problem& problem, simplex::Solver& solver) {
  const double low = env.settings.real(TVK_PARAM_OBJLLIM);
  const double high = env.settings.real(TVK_PARAM_OBJULIM);
  const bool maximize = problem.model->objective_sense() < 0;
  solver.set_objective_limits(maximize ? -high : low, maximize ? -low : high);
}

Status run_simplex(Environment& env, Problem& problem, simplex::Method method, const Beginning& beginning) {
  const Status finite = check_finite(env, *problem.model, problem.simplex == nullptr);
  if (!finite.ok()) return finite;
  EngineGuard guard(problem);
  EngineControl control(env, problem, 1);
  IterationLog log(env, problem, env.settings.integer(TVK_PARAM_SIMDISPLAY));
  LiveSimplex& live = live_simplex(env, problem, control, &log);
  if (beginning.from_start) {
    install_basis(problem, live);
  } else {
    install_start(env, problem, live);
  }
  live.start_is_mine = false;  // until this run has ended in order
  set_objective_limits(env, problem, live.solver);
  live.solver.core().counters = beginning.counters;
  const simplex::Outcome outcome = live.solver.solve(method);
  live.solver.detach();
  if (outcome == simplex::Outcome::singular) return Status(1256);
  const int status = status_code(outcome, live.solver.answer().unscaled_infeasible);
  publish(problem, live.solver.release_answer(), live.solver.core().counters);
  problem.status = status;
  problem.factor_current = true;
  live.start_is_mine = true;
  guard.arrived();
  return {};
}

}  // namespace tovik::lp::dispatch
