#include "lp/simplex/scaled_model.h"

#include <cmath>
#include <utility>

namespace tovik::lp::simplex {

ScaledModel::ScaledModel(LpData scaled_lp)
    : n_(scaled_lp.matrix.columns),
      m_(scaled_lp.matrix.rows),
      total_(n_ + m_),
      columns_(std::make_shared<Matrix>(std::move(scaled_lp.matrix))),
      offset_(scaled_lp.offset),
      cost_(std::move(scaled_lp.cost)),
      lower_(std::move(scaled_lp.lower)),
      upper_(std::move(scaled_lp.upper)) {
  const auto size = static_cast<size_t>(total_);
  cost_.resize(size, 0.0);
  lower_.resize(size);
  upper_.resize(size);
  for (int i = 0; i < m_; ++i) {
    lower_[n_ + i] = -scaled_lp.row_upper[i];
    upper_[n_ + i] = -scaled_lp.row_lower[i];
  }
}

void ScaledModel::load_column(int j, SparseVector& v) const {
  v.clear();
  if (j >= n_) {
    v.set_unit(j - n_);
    return;
  }
  const Matrix& a = matrix();
  int count = 0;
  for (int k = a.start[j]; k < a.start[j + 1]; ++k) {
    v.index[count++] = a.index[k];
    v.array[a.index[k]] = a.value[k];
  }
  v.count = count;
}

void ScaledModel::add_column(int j, double multiplier, SparseVector& v) const {
  const auto add = [&](int i, double amount) {
    const double old = v.array[i];
    const double sum = old + amount;
    if (old == 0) v.index[v.count++] = i;
    v.array[i] = std::fabs(sum) < kTiny ? kZero : sum;
  };
  if (j >= n_) {
    add(j - n_, multiplier);
    return;
  }
  const Matrix& a = matrix();
  for (int k = a.start[j]; k < a.start[j + 1]; ++k) add(a.index[k], multiplier * a.value[k]);
}

bool ScaledModel::own_columns() {
  if (columns_.use_count() == 1) return false;
  columns_ = std::make_shared<Matrix>(*columns_);
  return true;
}

void ScaledModel::restore(const std::vector<double>& cost, const std::vector<double>& lower,
                          const std::vector<double>& upper) {
  cost_ = cost;
  lower_ = lower;
  upper_ = upper;
}

}  // namespace tovik::lp::simplex
