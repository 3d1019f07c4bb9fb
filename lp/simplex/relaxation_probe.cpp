/* Strong branching, checkpoints, the basis as data, and rows of the tableau. */
#include <algorithm>
#include <cmath>
#include <limits>

#include "lp/simplex/checkpoint.h"
#include "lp/simplex/relaxation.h"

namespace tovik::lp::simplex {

// ---- strong branching ----

BranchBound Relaxation::probe(Control& control, int column, double bound, Side side, const Limits& limits) {
  set_control(control, core_->observer);
  BranchBound result;
  if (!ready()) return result;
  if (!crossing_.empty()) return {Outcome::infeasible, kInf, 0};
  Core& core = *core_;
  BoundChange branch{column, user_.lp.lower[column], user_.lp.upper[column]};
  if (side == Side::down) branch.upper = std::min(branch.upper, bound);
  if (side == Side::up) branch.lower = std::max(branch.lower, bound);
  if (branch.lower > branch.upper) return {Outcome::infeasible, kInf, 0};
  // An optimum within the user's tolerance may not be one within the engine's: a resolve mends that first.
  if (!wrong_.view().empty()) return probe_by_checkpoint(control, branch, limits);
  result = {Outcome::optimal, objective_, 0};
  const double scale = column_scale(column);
  if (core.basis.nonbasic(column)) {
    const double at = core.basis.value(column) * scale;
    if (branch.lower <= at && at <= branch.upper) return result;
    return probe_by_checkpoint(control, branch, limits);
  }
  if (core.factor.wants_rebuild()) {
    core.drop_factor();
    if (!ensure_factor()) return {};
    recompute();
  }
  set_limits(limits);
  const Counters counters = core.counters;
  const double old_lower = core.model.lower(column);
  const double old_upper = core.model.upper(column);
  const int p = core.basis.position(column);
  Dual& dual = the_dual();
  const auto set = [&](double lower, double upper) {
    core.force_bounds(column, lower, upper);
    dual.touch(p);
  };
  dual.record();
  set(branch.lower / scale, branch.upper / scale);
  result.outcome = dual.reoptimize(limits.iterations, objective_);
  result.iterations = core.counters.iterations - counters.iterations;
  result.bound = result.outcome == Outcome::infeasible ? kInf : std::max(objective_, dual.shift_free_bound());
  dual.undo();
  set(old_lower, old_upper);
  core.counters = counters;
  core.tick_end = kUnlimited;
  if (result.outcome == Outcome::numerical_failure) return probe_by_checkpoint(control, branch, limits);
  return result;
}

/* Where a probe moves nonbasic variables or outlasts the factor: a resolve that is taken back as a whole. */
BranchBound Relaxation::probe_by_checkpoint(Control& control, const BoundChange& branch,
                                            const Limits& limits) {
  const std::shared_ptr<const Checkpoint> saved = save();
  if (saved == nullptr) return {};
  const Counters counters = core_->counters;
  // With a reduced cost of the wrong sign the present objective bounds nothing.
  const double parent = wrong_.view().empty() ? saved->objective : -kInf;
  BranchBound result;
  change_bounds(branch.column, branch.lower, branch.upper);
  result.outcome = resolve(control, limits, Detail::objective);
  result.iterations = iterations_;
  result.bound = result.outcome == Outcome::infeasible ? kInf : std::max(parent, safe_bound());
  restore(*saved);
  core_->counters = counters;
  return result;
}

// ---- checkpoints ----

std::shared_ptr<const Relaxation::Checkpoint> Relaxation::save() {
  if (!ready()) return nullptr;
  auto saved = std::make_shared<Checkpoint>();
  saved->edits = edits_;
  saved->user_cost = user_.lp.cost;
  saved->user_lower = user_.lp.lower;
  saved->user_upper = user_.lp.upper;
  saved->user_row_lower = user_.lp.row_lower;
  saved->user_row_upper = user_.lp.row_upper;
  saved->core = core_->save();
  saved->weights = the_dual().norms();
  saved->offset = user_.lp.offset;
  saved->objective = objective_;
  saved->outcome = outcome_;
  return saved;
}

bool Relaxation::restore(const Checkpoint& saved) {
  if (saved.edits != edits_) return false;
  changed();
  answer_.withdraw();
  reoptimization_.forget();
  user_.lp.cost = saved.user_cost;
  user_.lp.lower = saved.user_lower;
  user_.lp.upper = saved.user_upper;
  user_.lp.row_lower = saved.user_row_lower;
  user_.lp.row_upper = saved.user_row_upper;
  Solver::change_offset(saved.offset);
  core_->restore(saved.core);
  the_dual().norms() = saved.weights;
  keep_norms_ = has_basis_ = true;
  start_near();
  objective_ = saved.objective;
  outcome_ = saved.outcome;
  return true;
}

// ---- the basis as data ----

Basis Relaxation::basis() {
  const Core& core = *core_;
  Basis basis;
  basis.columns.resize(static_cast<size_t>(core.n()));
  basis.rows.resize(static_cast<size_t>(core.m()));
  for (int j = 0; j < core.n(); ++j) basis.columns[j] = core.status(j);
  for (int i = 0; i < core.m(); ++i) basis.rows[i] = activity_status(core.status(core.n() + i));
  if (keep_norms_) {
    basis.dual_weights.assign(static_cast<size_t>(core.total()), 1.0);
    const std::vector<double>& weights = dual_norms();
    for (int p = 0; p < core.m(); ++p) basis.dual_weights[core.basis.head(p)] = weights[p];
  }
  return basis;
}

void Relaxation::set_basis(const std::vector<BasisStatus>& columns, const std::vector<BasisStatus>& rows) {
  leave();
  Solver::set_basis(columns, rows);
}

void Relaxation::forget_basis() {
  leave();
  Solver::forget_basis();
}

void Relaxation::set_options(const Options& options) {
  leave();  // tolerances may be others
  Solver::set_options(options);
}

void Relaxation::set_basis(const Basis& basis) {
  set_basis(basis.columns, basis.rows);
  if (basis.dual_weights.size() != static_cast<size_t>(core_->total())) return;
  std::vector<double> weights(static_cast<size_t>(core_->m()));
  for (int p = 0; p < core_->m(); ++p) weights[p] = basis.dual_weights[core_->basis.head(p)];
  the_dual().norms().set(std::move(weights), dual_rule(options_.dual_pricing).kind());
  keep_norms_ = true;
}

// ---- the tableau ----

void Relaxation::tableau_row(int position, SparseEntries& weights, SparseEntries* columns) {
  Core& core = *core_;
  weights.clear();
  core.ensure_rows();
  if (row_.dimension() != core.m()) row_.resize(core.m());
  if (alpha_.dimension() != core.n()) alpha_.resize(core.n());
  row_.clear();
  row_.set_unit(position);
  core.factor.btran(row_, core.row_ep_density.value());
  const int basic = core.basis.head(position);
  const double unit = basic < core.n() ? column_scale(basic) : 1.0 / row_scale(basic - core.n());
  alpha_.clear();
  const auto add_row = [&](int i) {
    const double rho = row_.array[i];
    if (rho == 0) return;
    weights.index.push_back(i);
    weights.value.push_back(rho * row_scale(i) * unit);
    if (columns == nullptr) return;
    const auto index = core.rows.row_index(i);
    const auto value = core.rows.row_value(i);
    for (size_t k = 0; k < index.size(); ++k) {
      const int j = index[k];
      if (!core.basis.nonbasic(j)) continue;
      if (alpha_.array[j] == 0) alpha_.index[alpha_.count++] = j;
      const double sum = alpha_.array[j] + rho * value[k];
      alpha_.array[j] = sum == 0 ? kZero : sum;
    }
  };
  for_listed(row_, add_row);
  if (columns == nullptr) return;
  columns->clear();
  for (int k = 0; k < alpha_.count; ++k) {
    const int j = alpha_.index[k];
    if (std::fabs(alpha_.array[j]) < kTiny) continue;
    columns->index.push_back(j);
    columns->value.push_back(alpha_.array[j] * unit / column_scale(j));
  }
}

}  // namespace tovik::lp::simplex
