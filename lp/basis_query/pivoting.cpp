#include "lp/basis_query/pivoting.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "env/solution_access.h"
#include "include/tovik.h"
#include "lp/binding/engine_control.h"
#include "lp/run/basis_view.h"
#include "lp/run/simplex_run.h"
#include "model/routines/check.h"
#include "model/store/model.h"

namespace tovik::lp::run {
namespace {

constexpr double kWorst = 1e75;

/* The moved basis becomes the problem's start; what was solved no longer holds. */
void adopt(Problem& problem, BasisView& view) {
  view.solver().extract();
  store_answer(problem, view.solver());
  problem.solution.reset();
  problem.status = TVK_STATUS_NONE;
  static_cast<WarmSimplex*>(problem.simplex.get())->start_installed = true;
}

}  // namespace

Status pivot_in(Environment& env, Problem& problem, const int* rows, int count) {
  if (const Status s = model::check_count({count}); !s.ok()) return s;
  if (count > 0 && rows == nullptr) return Status(TVK_ERROR_NULL_POINTER);
  for (int k = 0; k < count; ++k) {
    if (rows[k] < 0 || rows[k] >= problem.model->num_rows()) return fail(env, TVK_ERROR_ROW_INDEX_RANGE, k);
  }
  BasisView view;
  if (const Status status = view.open(env, problem); !status.ok()) return status;
  EngineGuard guard(problem);
  EngineControl control(env, problem);
  view.engine().set_control(control, nullptr);
  if (!view.engine().pivot_rows_in({rows, static_cast<size_t>(count)}))
    return Status(TVK_ERROR_BASIS_SINGULAR);
  adopt(problem, view);
  view.solver().detach();
  guard.commit();
  return {};
}

Status pivot_out(Environment& env, Problem& problem, const int* columns, int count) {
  if (const Status s = model::check_count({count}); !s.ok()) return s;
  if (count > 0 && columns == nullptr) return Status(TVK_ERROR_NULL_POINTER);
  for (int k = 0; k < count; ++k) {
    if (columns[k] < 0 || columns[k] >= problem.model->num_columns())
      return fail(env, TVK_ERROR_COLUMN_INDEX_RANGE, k);
    if (problem.model->lower()[columns[k]] != problem.model->upper()[columns[k]])
      return Status(TVK_ERROR_NOT_FIXED);
  }
  BasisView view;
  if (const Status status = view.open(env, problem); !status.ok()) return status;
  EngineGuard guard(problem);
  EngineControl control(env, problem);
  view.engine().set_control(control, nullptr);
  if (!view.engine().pivot_columns_out({columns, static_cast<size_t>(count)}))
    return Status(TVK_ERROR_BASIS_SINGULAR);
  adopt(problem, view);
  view.solver().detach();
  guard.commit();
  return {};
}

Status strong_branch(Environment& env, Problem& problem, const Branching& request) {
  if (const Status s = model::check_count({request.count}); !s.ok()) return s;
  if (request.iteration_limit < 0) return Status(TVK_ERROR_BAD_ARGUMENT);
  if (request.count == 0) return {};
  if (request.columns == nullptr || request.down == nullptr || request.up == nullptr)
    return Status(TVK_ERROR_NULL_POINTER);
  for (int k = 0; k < request.count; ++k) {
    if (request.columns[k] < 0 || request.columns[k] >= problem.model->num_columns())
      return fail(env, TVK_ERROR_COLUMN_INDEX_RANGE, k);
  }
  if (!is_optimal(problem)) return Status(TVK_ERROR_NEED_OPTIMAL_SOLUTION);
  BasisView view;
  if (const Status status = view.open(env, problem); !status.ok()) return status;
  simplex::Relaxation& engine = view.engine();
  EngineGuard guard(problem);
  EngineControl control(env, problem);
  const double sign = problem.model->objective_sense();
  Status result;
  const auto branch = [&](int j, double bound, simplex::Side side) {
    simplex::Limits limits;
    limits.iterations = request.iteration_limit;
    const simplex::BranchBound found = engine.probe(control, j, bound, side, limits);
    if (found.outcome == Outcome::time_limit) result = Status(TVK_ERROR_STRONG_BRANCHING_TIME_LIMIT);
    if (found.outcome == Outcome::tick_limit) result = Status(TVK_ERROR_STRONG_BRANCHING_TICK_LIMIT);
    if (found.outcome == Outcome::user_abort) result = Status(TVK_ERROR_STRONG_BRANCHING_ABORTED);
    return sign * (found.outcome == Outcome::infeasible ? kWorst : found.bound);
  };
  for (int k = 0; k < request.count && result.ok(); ++k) {
    const int j = request.columns[k];
    const double x = problem.solution->x[j];
    request.down[k] = branch(j, std::floor(x), simplex::Side::down);
    if (!result.ok()) break;
    request.up[k] = branch(j, std::ceil(x), simplex::Side::up);
  }
  engine.detach();
  guard.commit();
  return result;
}

}  // namespace tovik::lp::run
