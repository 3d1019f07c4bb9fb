#include "lp/simplex/pivot_undo.h"

#include <ranges>

namespace tovik::lp::simplex {

void PivotUndo::start(const Core& core) {
  active_ = true;
  shifts_ = core.work.shift_mark();
  free_nonbasic_ = core.basis.free_nonbasic();
  random_ = core.random;
  duals_.clear();
  basics_.clear();
  nonbasics_.clear();
  pivots_.clear();
}

void PivotUndo::save_basics(const Core& core, const DualWeights& norms, const SparseVector& column) {
  for_listed(column, [&](int p) { save_basic(core, norms, p); });
}

void PivotUndo::save_pivot(const Core& core, int entering, int p) {
  save_nonbasic(core, entering);
  save_nonbasic(core, core.basis.head(p));
  pivots_.push_back({p, entering, core.basis.head(p), core.values.x_lower(p), core.values.x_upper(p)});
}

void PivotUndo::undo(Core& core, DualWeights& norms, DualPricing& pricing) {
  active_ = false;
  for (const Pivot& pivot : std::views::reverse(pivots_)) {
    core.undo_change_basis(pivot.entering, pivot.position, pivot.leaving);
    core.values.set_bounds(pivot.position, pivot.lower, pivot.upper);
  }
  for (const Nonbasic& n : std::views::reverse(nonbasics_)) core.basis.place(n.variable, n.move, n.value);
  for (const Dual& d : std::views::reverse(duals_)) {
    core.values.set_dual(d.variable, d.d);
    core.work.undo_cost(d.variable, d.work_cost);
  }
  for (const Basic& b : std::views::reverse(basics_)) {
    core.values.set_x(b.position, b.x);
    norms.data()[b.position] = b.weight;
  }
  for (const Basic& b : basics_) pricing.update(core, norms.view(), b.position);
  for (const Pivot& pivot : pivots_) pricing.update(core, norms.view(), pivot.position);
  core.work.undo_shifts(shifts_);
  core.basis.set_free_nonbasic(free_nonbasic_);
  core.random = random_;
}

}  // namespace tovik::lp::simplex
