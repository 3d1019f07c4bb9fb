#include "lp/simplex/dual_weights.h"

#include <algorithm>

namespace tovik::lp::simplex {
namespace {
constexpr double kByList = 0.4;  // columns with a smaller share of nonzeros are gone through by their list
}  // namespace

void DualNorms::compute(Core& core, SparseVector& work) {
  weight_.resize(static_cast<size_t>(core.m));
  for (int p = 0; p < core.m; ++p) {
    work.clear();
    work.set_unit(p);
    core.btran(work, core.row_ep_density);
    weight_[p] = std::max(kFloor, work.norm2());
  }
  work.clear();
}

void DualNorms::update(int p, const SparseVector& column, double pivot, const SparseVector& tau) {
  const double pivot_weight = weight_[p];
  const double inverse = 1.0 / pivot;
  const double* const alpha = column.array.data();
  const double* const t = tau.array.data();
  double* const weight = weight_.data();
  const auto step = [=](int i) {
    const double ratio = alpha[i] * inverse;
    const double updated = weight[i] + ratio * (ratio * pivot_weight - 2.0 * t[i]);
    weight[i] = std::max(updated, std::max(kFloor, ratio * ratio * kFloor));
  };
  const int size = static_cast<int>(weight_.size());
  if (column.count >= 0 && column.count < kByList * size) {
    for (int k = 0; k < column.count; ++k) step(column.index[k]);
  } else {
    for (int i = 0; i < size; ++i) step(i);  // a zero leaves the weight as it is
  }
  weight_[p] = std::max(kFloor, pivot_weight * inverse * inverse);
}

void DualNorms::update_devex(int p, const SparseVector& column, double pivot) {
  constexpr double kReset = 1e7;  // weights this far from the reference say nothing any more
  const double inverse = 1.0 / pivot;
  const double pivot_weight = weight_[p];
  const auto step = [&](int i) {
    const double ratio = column.array[i] * inverse;
    weight_[i] = std::max(weight_[i], ratio * ratio * pivot_weight);
  };
  if (column.count >= 0) {
    for (int k = 0; k < column.count; ++k) step(column.index[k]);
  } else {
    for (int i = 0; i < static_cast<int>(weight_.size()); ++i) {
      if (column.array[i] != 0) step(i);
    }
  }
  weight_[p] = std::max(1.0, pivot_weight * inverse * inverse);
  if (weight_[p] > kReset) std::fill(weight_.begin(), weight_.end(), 1.0);
}

void DualNorms::save(const Core& core) {
  if (by_variable_.size() != static_cast<size_t>(core.total))
    by_variable_.assign(static_cast<size_t>(core.total), 1.0);
  for (int p = 0; p < core.m; ++p) by_variable_[core.head[p]] = weight_[p];
}

void DualNorms::restore(const Core& core) {
  for (int p = 0; p < core.m; ++p) {
    weight_[p] = by_variable_[core.head[p]];
  }
  for (int p = 0; p < core.m; ++p) by_variable_[core.head[p]] = 1.0;
}

}  // namespace tovik::lp::simplex
