#include "lp/simplex/dual_devex.h"

#include <algorithm>

namespace tovik::lp::simplex {

bool DualDevex::update(const DualPivot& pivot, DualWeights& weights) const {
  const int p = pivot.position;
  const SparseVector& column = pivot.column;
  double* const weight = weights.data();
  const double inverse = 1.0 / column.array[p];
  const double pivot_weight = weight[p];
  const auto step = [&](int i) {
    const double ratio = column.array[i] * inverse;
    weight[i] = std::max(weight[i], ratio * ratio * pivot_weight);
  };
  if (column.count >= 0) {
    for (int k = 0; k < column.count; ++k) step(column.index[k]);
  } else {
    for (int i = 0; i < weights.size(); ++i) {
      if (column.array[i] != 0) step(i);
    }
  }
  weight[p] = std::max(1.0, pivot_weight * inverse * inverse);
  if (weight[p] <= kReset) return false;
  weights.reset(weights.size());
  return true;
}

}  // namespace tovik::lp::simplex
