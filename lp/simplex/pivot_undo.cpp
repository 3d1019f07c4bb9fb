#include "lp/simplex/pivot_undo.h"

#include <ranges>

namespace tovik::lp::simplex {

void PivotUndo::start(const Core& core) {
  active_ = true;
  costs_shifted_ = core.costs_shifted;
  shifted_ = core.shifted.size();
  free_nonbasic_ = core.free_nonbasic;
  random_ = core.random;
  duals_.clear();
  basics_.clear();
  nonbasics_.clear();
  pivots_.clear();
}

void PivotUndo::save_basics(const Core& core, const DualWeights& norms, const SparseVector& column) {
  if (column.count >= 0) {
    for (int k = 0; k < column.count; ++k) save_basic(core, norms, column.index[k]);
  } else {
    for (int p = 0; p < core.m; ++p) save_basic(core, norms, p);
  }
}

void PivotUndo::save_pivot(const Core& core, int entering, int p) {
  save_nonbasic(core, entering);
  save_nonbasic(core, core.head[p]);
  pivots_.push_back({p, entering, core.head[p], core.x_lower[p], core.x_upper[p]});
}

void PivotUndo::undo(Core& core, DualWeights& norms, DualPricing& pricing) {
  active_ = false;
  for (const Pivot& pivot : std::views::reverse(pivots_)) {
    core.head[pivot.position] = pivot.leaving;
    core.position[pivot.leaving] = pivot.position;
    core.nonbasic[pivot.leaving] = 0;
    core.nonbasic[pivot.entering] = 1;
    if (pivot.leaving < core.n) core.rows.deactivate(pivot.leaving);
    if (pivot.entering < core.n && !core.is_fixed(pivot.entering)) core.rows.activate(pivot.entering);
    core.x_lower[pivot.position] = pivot.lower;
    core.x_upper[pivot.position] = pivot.upper;
  }
  for (const Nonbasic& n : std::views::reverse(nonbasics_)) {
    core.move[n.variable] = n.move;
    core.value[n.variable] = n.value;
  }
  for (const Dual& d : std::views::reverse(duals_)) {
    core.d[d.variable] = d.d;
    core.work_cost[d.variable] = d.work_cost;
  }
  for (const Basic& b : std::views::reverse(basics_)) {
    core.x[b.position] = b.x;
    norms.data()[b.position] = b.weight;
  }
  for (const Basic& b : basics_) pricing.update(core, norms.view(), b.position);
  for (const Pivot& pivot : pivots_) pricing.update(core, norms.view(), pivot.position);
  core.costs_shifted = costs_shifted_;
  core.shifted.resize(shifted_);
  core.free_nonbasic = free_nonbasic_;
  core.random = random_;
}

}  // namespace tovik::lp::simplex
