/* Rows and columns that come and go under a search. */
#include <algorithm>
#include <cmath>

#include "lp/simplex/dual_ratio_test.h"
#include "lp/simplex/primal_ratio_test.h"
#include "lp/simplex/relaxation.h"

namespace tovik::lp::simplex {

/* After rows have come or gone: the factor of the new basis, with the values carried over or computed anew.
 */
void Relaxation::settle_edit(bool in_step) {
  ++edits_;
  changed();
  pending_.resize();
  near_ = false;
  if (!in_step || !crossing_.empty() || !ensure_factor()) return;
  start_near();
}

void Relaxation::add_rows(const RowBlock& block) {
  const bool was_ready = ready();
  const int first = core_->m();
  ModelEdit change;
  change.rows = block.entries;
  change.rows.rows = core_->n();
  change.row_lower = block.lower;
  change.row_upper = block.upper;
  change.columns.rows = core_->m() + change.new_rows();
  Solver::edit(std::move(change));
  for (int k = 0; k < block.entries.columns && was_ready; ++k) {
    double activity = 0;
    for (int e = block.entries.start[k]; e < block.entries.start[k + 1]; ++e) {
      const int j = block.entries.index[e];
      const double x =
          core_->basis.nonbasic(j) ? core_->basis.value(j) : core_->values.x(core_->basis.position(j));
      activity += block.entries.value[e] * x * column_scale(j);
    }
    core_->values.set_x(first + k, -activity * row_scale(first + k));
  }
  settle_edit(was_ready);
}

/* The entering variable takes the position, with exact weights; values and reduced costs follow. column_
 * holds B^-1 a_entering, ready for the factor's update; the step is the entering variable's. */
void Relaxation::replace(int entering, int position, double step, int leaving_move) {
  Core& core = *core_;
  load_inverse_row(position);
  const double pivot = column_.array[position];
  const DualRule& rule = the_dual().rule();
  if (rule.needs_tau()) {
    tau_.copy(row_);
    core.ftran(tau_, core.dse_density);
  }
  rule.accept(position, row_, the_dual().norms());
  rule.update({position, column_, tau_}, the_dual().norms());
  const double theta = core.values.d(entering) / pivot;
  alpha_.clear();
  core.price(row_, alpha_);
  for (int j = 0; j < core.n(); ++j) {
    if (core.basis.nonbasic(j) && alpha_.array[j] != 0) core.values.add_dual(j, -theta * alpha_.array[j]);
  }
  for (int i = 0; i < core.m(); ++i) {
    if (core.basis.nonbasic(core.n() + i)) core.values.add_dual(core.n() + i, -theta * row_.array[i]);
  }
  core.values.set_dual(entering, 0);
  core.values.set_dual(core.basis.head(position), -theta);
  const double value = core.basis.value(entering) + step;
  core.values.move_along(column_.array, step);
  core.change_basis(entering, position, leaving_move);
  core.values.set_x(position, value);
  if (!core.update_factor(column_, row_, position) || core.factor.wants_rebuild()) {
    core.drop_factor();
    ensure_factor();
  }
}

void Relaxation::load_inverse_row(int position) {
  row_.clear();
  row_.set_unit(position);
  row_.want_pack = true;
  core_->btran(row_, core_->row_ep_density);
  row_.want_pack = false;
}

void Relaxation::load_column(int variable) {
  core_->model.load_column(variable, column_);
  column_.want_pack = true;
  core_->ftran(column_, core_->column_density);
  column_.want_pack = false;
}

void Relaxation::resize_work() {
  for (SparseVector* v : {&column_, &row_, &tau_}) {
    if (v->dimension() != core_->m()) v->resize(core_->m());
  }
  if (alpha_.dimension() != core_->n()) alpha_.resize(core_->n());
}

/* The logical of a row that is to go enters; its row binds no more, so the step is the primal's. The basic
 * logicals of rows that go as well block nothing. */
void Relaxation::pivot_in(int row) {
  Core& core = *core_;
  const int entering = core.n() + row;
  load_column(entering);
  const double direction = core.values.d(entering) < 0 ? 1.0 : -1.0;
  PrimalRatioTest ratio_test;
  ratio_test.resize(core);
  const PrimalPick pick = ratio_test.feasible(core, column_, direction, 0.5 * core.primal_tolerance());
  int position = pick.position;
  double step = direction * pick.step;
  if (position < 0) {  // nothing blocks: the largest pivot, where the logical stands
    double largest = 0;
    for (int p = 0; p < core.m(); ++p) {
      if (core.values.x_lower(p) == -kInf && core.values.x_upper(p) == kInf && core.basis.head(p) >= core.n())
        continue;
      if (std::fabs(column_.array[p]) > largest) {
        largest = std::fabs(column_.array[p]);
        position = p;
      }
    }
    step = 0;
  }
  if (position < 0) return;
  replace(entering, position, step, pick.position < 0 ? 0 : pick.leaving_move);
}

/* A basic column that is to go leaves for 0; the dual ratio test keeps the reduced costs feasible. */
void Relaxation::pivot_out(int column) {
  Core& core = *core_;
  const int position = core.basis.position(column);
  row_.clear();
  row_.set_unit(position);
  core.btran(row_, core.row_ep_density);
  alpha_.clear();
  core.price(row_, alpha_);
  DualRatioTest ratio_test;
  ratio_test.prepare(core);
  const double delta = core.values.x(position) != 0 ? core.values.x(position) : 1.0;
  ratio_test.load(core, row_, alpha_, delta);
  int entering = ratio_test.choose(core, delta).variable;
  if (entering < 0) {  // no dual feasible pivot: the largest one
    double largest = 0;
    const auto look = [&](int j, double alpha) {
      if (!core.basis.nonbasic(j) || std::fabs(alpha) <= largest) return;
      largest = std::fabs(alpha);
      entering = j;
    };
    for (int i = 0; i < core.m(); ++i) look(core.n() + i, row_.array[i]);
    for (int j = 0; j < core.n(); ++j) look(j, alpha_.array[j]);
  }
  if (entering < 0) return;
  load_column(entering);
  const double step = core.values.x(position) / column_.array[position];
  replace(entering, position, step, 0);
}

/* Makes the basis one that can lose these rows and columns. True when pivots were needed. */
bool Relaxation::pivot_for(const ModelEdit& change) {
  Core& core = *core_;
  const auto tight = [&](int i) { return core.basis.nonbasic(core.n() + i) != 0; };
  const auto basic = [&](int j) { return core.basis.nonbasic(j) == 0; };
  const bool rows = std::any_of(change.deleted_rows.begin(), change.deleted_rows.end(), tight);
  const bool columns = std::any_of(change.deleted_columns.begin(), change.deleted_columns.end(), basic);
  if (!rows && !columns) return false;
  if (!ready()) return false;
  resize_work();
  for (const int i : change.deleted_rows) {
    core.force_bounds(core.n() + i, -kInf, kInf);
  }
  for (const int i : change.deleted_rows) {
    if (tight(i)) pivot_in(i);
  }
  for (const int j : change.deleted_columns) {
    if (basic(j)) pivot_out(j);
  }
  return true;
}

bool Relaxation::edit(ModelEdit change) {
  const bool pivots = pivot_for(change);
  leave();
  if (pivots) {
    reoptimization_.forget();
    answer_is_new_ = true;
  }
  if (!Solver::edit(std::move(change))) return false;
  ++edits_;
  pending_.resize();
  return true;
}

void Relaxation::delete_rows(std::span<const int> rows) {
  ModelEdit change;
  change.deleted_rows = rows;
  change.columns.rows = core_->m() - static_cast<int>(rows.size());
  change.rows.rows = core_->n();
  const bool in_step = ready();
  const bool pivots = pivot_for(change);
  if (!Solver::edit(std::move(change))) return;
  settle_edit(in_step);
  if (pivots && near_) recompute();
}

void Relaxation::delete_columns(std::span<const int> columns) {
  ModelEdit change;
  change.deleted_columns = columns;
  change.columns.rows = core_->m();
  change.rows.rows = core_->n() - static_cast<int>(columns.size());
  const bool in_step = ready();
  pivot_for(change);
  if (!Solver::edit(std::move(change))) return;
  settle_edit(in_step);
  if (near_) recompute();
}

Outcome Relaxation::solve(Method method) {
  leave();
  return Solver::solve(method);
}

}  // namespace tovik::lp::simplex
