#include "lp/simplex/dual_steepest_edge.h"

#include <algorithm>

namespace tovik::lp::simplex {
namespace {

/* One solve for each row of the inverse. */
void compute_norms(Core& core, DualWeights& weights, SparseVector& work) {
  weights.reset(core.m());
  for (int p = 0; p < core.m(); ++p) {
    work.clear();
    work.set_unit(p);
    core.btran(work, core.row_ep_density);
    weights.data()[p] = std::max(DualSteepestEdge::kFloor, work.norm2());
  }
  work.clear();
}

}  // namespace

void DualSteepestEdge::start(Core& core, bool carried, DualWeights& weights, SparseVector& work) const {
  if (carried && weights.fits(core.m())) return;
  ++core.counters.dual.weight_resets;
  const bool logical =
      std::all_of(core.basis.head().begin(), core.basis.head().end(), [&](int j) { return j >= core.n(); });
  if (logical || start_ == Start::unit) {
    weights.reset(core.m());
  } else {
    core.log("Initializing dual full norms . . .\n");
    compute_norms(core, weights, work);
  }
}

bool DualSteepestEdge::accept(int p, const SparseVector& rho, DualWeights& weights) const {
  const double norm2 = std::max(kFloor, rho.norm2());
  const double stored = std::exchange(weights.data()[p], norm2);
  return stored >= kAccept * norm2;
}

bool DualSteepestEdge::update(const DualPivot& pivot, DualWeights& weights) const {
  const int p = pivot.position;
  const SparseVector& column = pivot.column;
  const double* const alpha = column.array.data();
  const double* const t = pivot.tau.array.data();
  double* const weight = weights.data();
  const double pivot_weight = weight[p];
  const double inverse = 1.0 / alpha[p];
  const auto step = [=](int i) {
    const double ratio = alpha[i] * inverse;
    const double updated = weight[i] + ratio * (ratio * pivot_weight - 2.0 * t[i]);
    weight[i] = std::max(updated, std::max(kFloor, ratio * ratio * kFloor));
  };
  if (column.list_pays()) {
    for (int k = 0; k < column.count; ++k) step(column.index[k]);
  } else {
    const int size = weights.size();
    for (int i = 0; i < size; ++i) step(i);  // a zero leaves the weight as it is
  }
  weight[p] = std::max(kFloor, pivot_weight * inverse * inverse);
  return false;
}

}  // namespace tovik::lp::simplex
