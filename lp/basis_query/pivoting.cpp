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
#include "model/store/model.h"

namespace tovik::lp::run {
namespace {

constexpr double kWorst = 1e75;
constexpr double kPivotShare = 0.1;  // pivots below this share of the column's largest are not taken

/* Largest entry of the column whose basic variable may leave; -1 when none is large enough. */
int best_position(const SparseVector& column, const std::vector<char>& may_leave) {
  double largest = 0;
  double best_size = 0;
  int best = -1;
  for (int p = 0; p < column.dimension(); ++p) {
    const double size = std::fabs(column.array[p]);
    largest = std::max(largest, size);
    if (may_leave[p] && size > best_size) {
      best_size = size;
      best = p;
    }
  }
  return best_size >= kPivotShare * largest && best_size > 1e-9 ? best : -1;
}

/* One exchange with the factor kept up. */
bool exchange(simplex::Core& core, int entering, int position, SparseVector& column, SparseVector& row) {
  row.clear();
  row.set_unit(position);
  row.want_pack = true;
  core.btran(row, core.row_ep_density);
  row.want_pack = false;
  core.change_basis(entering, position, 0);
  if (core.factor.update(column, row, position) && !core.factor.wants_rebuild()) return true;
  return core.refactor() != simplex::FactorState::singular;
}

void load(simplex::Core& core, int variable, SparseVector& column) {
  core.load_column(variable, column);
  column.want_pack = true;
  core.ftran(column, core.column_density);
  column.want_pack = false;
}

/* The moved basis becomes the problem's start; what was solved no longer holds. */
void adopt(Problem& problem, BasisView& view) {
  view.solver().extract();
  publish(problem, view.solver());
  problem.solution.reset();
  problem.status = TVK_STATUS_NONE;
  static_cast<LiveSimplex*>(problem.simplex.get())->start_is_mine = true;
}

}  // namespace

Status pivot_in(Environment& env, Problem& problem, const int* rows, int count) {
  if (count < 0) return Status(TVK_ERROR_BAD_ARGUMENT);
  if (count > 0 && rows == nullptr) return Status(TVK_ERROR_NULL_POINTER);
  for (int k = 0; k < count; ++k) {
    if (rows[k] < 0 || rows[k] >= problem.model->num_rows()) return fail(env, TVK_ERROR_ROW_INDEX_RANGE, k);
  }
  BasisView view;
  if (const Status status = view.open(env, problem); !status.ok()) return status;
  simplex::Core& core = view.core();
  EngineGuard guard(problem);
  EngineControl control(env, problem, CalledFrom::simplex);
  core.control = &control;
  SparseVector column, row;
  column.resize(core.m);
  row.resize(core.m);
  std::vector<char> wanted(static_cast<size_t>(core.total), 0);
  for (int k = 0; k < count; ++k) wanted[core.n + rows[k]] = 1;
  for (int k = 0; k < count; ++k) {
    const int entering = core.n + rows[k];
    if (!core.nonbasic[entering]) continue;
    load(core, entering, column);
    std::vector<char> may_leave(static_cast<size_t>(core.m));
    for (int p = 0; p < core.m; ++p) may_leave[p] = static_cast<char>(!wanted[core.head[p]]);
    const int p = best_position(column, may_leave);
    if (p >= 0 && !exchange(core, entering, p, column, row)) return Status(TVK_ERROR_BASIS_SINGULAR);
  }
  adopt(problem, view);
  view.solver().detach();
  guard.arrived();
  return {};
}

Status pivot_out(Environment& env, Problem& problem, const int* columns, int count) {
  if (count < 0) return Status(TVK_ERROR_BAD_ARGUMENT);
  if (count > 0 && columns == nullptr) return Status(TVK_ERROR_NULL_POINTER);
  for (int k = 0; k < count; ++k) {
    if (columns[k] < 0 || columns[k] >= problem.model->num_columns())
      return fail(env, TVK_ERROR_COLUMN_INDEX_RANGE, k);
    if (problem.model->lower()[columns[k]] != problem.model->upper()[columns[k]])
      return Status(TVK_ERROR_NOT_FIXED);
  }
  BasisView view;
  if (const Status status = view.open(env, problem); !status.ok()) return status;
  simplex::Core& core = view.core();
  EngineGuard guard(problem);
  EngineControl control(env, problem, CalledFrom::simplex);
  core.control = &control;
  SparseVector column, row, alpha;
  column.resize(core.m);
  row.resize(core.m);
  alpha.resize(core.n);
  for (int k = 0; k < count; ++k) {
    int position = -1;
    for (int p = 0; p < core.m && position < 0; ++p) {
      if (core.head[p] == columns[k]) position = p;
    }
    if (position < 0) continue;
    row.clear();
    row.set_unit(position);
    core.btran(row, core.row_ep_density);
    alpha.clear();
    core.price(row, alpha);
    int entering = -1;
    double size = 1e-9;
    for (int i = 0; i < core.m; ++i) {  // slacks first: they keep the factor sparse
      if (core.nonbasic[core.n + i] && std::fabs(row.array[i]) > size) {
        size = std::fabs(row.array[i]);
        entering = core.n + i;
      }
    }
    for (int j = 0; j < core.n; ++j) {
      if (core.nonbasic[j] && !core.is_fixed(j) && std::fabs(alpha.array[j]) > 10 * size) {
        size = std::fabs(alpha.array[j]) / 10;
        entering = j;
      }
    }
    if (entering < 0) continue;
    load(core, entering, column);
    if (!exchange(core, entering, position, column, row)) return Status(TVK_ERROR_BASIS_SINGULAR);
  }
  adopt(problem, view);
  view.solver().detach();
  guard.arrived();
  return {};
}

Status strong_branch(Environment& env, Problem& problem, const Branching& request) {
  if (request.count < 0 || request.iteration_limit < 0) return Status(TVK_ERROR_BAD_ARGUMENT);
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
  EngineControl control(env, problem, CalledFrom::simplex);
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
  guard.arrived();
  return result;
}

}  // namespace tovik::lp::run
