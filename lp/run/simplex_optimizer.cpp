#include "lp/run/simplex_optimizer.h"

#include <utility>

#include "include/tovik.h"
#include "lp/run/synchronize.h"
#include "model/store/model.h"

namespace tovik::lp::run {
namespace {

struct DataSource {
  const LpData& lp;
  verify::Limits column_bounds(int j) const { return {lp.lower[j], lp.upper[j]}; }
  double cost(int j) const { return lp.cost[j]; }
  verify::Limits row_bounds(int i) const { return {lp.row_lower[i], lp.row_upper[i]}; }
  double offset() const { return lp.offset; }
};

/* The last rows of lp. */
simplex::ModelEdit added_rows(const LpData& lp, int count) {
  const int first = lp.num_rows() - count;
  simplex::ModelEdit edit;
  edit.columns.rows = lp.num_rows();
  edit.row_lower.assign(lp.row_lower.begin() + first, lp.row_lower.end());
  edit.row_upper.assign(lp.row_upper.begin() + first, lp.row_upper.end());
  const Matrix& matrix = lp.matrix;
  Matrix columns;
  columns.rows = count;
  columns.columns = lp.num_columns();
  for (int j = 0; j < lp.num_columns(); ++j) {
    for (int k = matrix.start[j]; k < matrix.start[j + 1]; ++k) {
      if (matrix.index[k] < first) continue;
      columns.index.push_back(matrix.index[k] - first);
      columns.value.push_back(matrix.value[k]);
    }
    columns.start.push_back(static_cast<int>(columns.index.size()));
  }
  edit.rows = transpose(columns);
  return edit;
}

}  // namespace

SimplexOptimizer::SimplexOptimizer(LpData lp, const RunContext& context)
    : engine_(std::move(lp), options_of(context.env, context.algorithm), context.control, context.observer) {}

bool SimplexOptimizer::fits(const Environment& env) const {
  return engine_.options().scaling == env.settings.integer(TVK_PARAM_SCAIND);
}

bool SimplexOptimizer::synchronize(const LpData& lp, const Journal& changes) {
  if (changes.structure_lost() || changes.columns().structure_changed() || !changes.rows().deleted().empty())
    return false;
  if (const int added = changes.rows().added(); added > 0) {
    if (mostly_new(added, lp.num_rows()) || !engine_.edit(added_rows(lp, added))) return false;
  }
  synchronize_values(DataSource{lp}, changes, engine_);
  return true;
}

void SimplexOptimizer::set_start(const Basis& start) {
  const Answer& last = engine_.answer();
  if (engine_.has_basis() && last.column_status == start.columns && last.row_status == start.rows) return;
  engine_.set_basis(start.columns, start.rows);
}

Outcome SimplexOptimizer::optimize(const RunContext& context) {
  engine_.set_control(context.control, context.observer);
  engine_.set_options(options_of(context.env, context.algorithm));
  set_objective_limits(context.env, context.problem, engine_);
  engine_.begin_count();
  if (context.env.callbacks.lp) engine_.invalidate();  // it is called by the algorithms
  const Outcome outcome = engine_.solve(context.algorithm.method);
  engine_.detach();
  return outcome;
}

void set_objective_limits(const Environment& env, const Problem& problem, simplex::Solver& solver) {
  const double low = env.settings.real(TVK_PARAM_OBJLLIM);
  const double high = env.settings.real(TVK_PARAM_OBJULIM);
  const bool maximize = problem.model->objective_sense() < 0;
  solver.set_objective_limits(maximize ? -high : low, maximize ? -low : high);
}

}  // namespace tovik::lp::run
