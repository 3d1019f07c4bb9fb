#include "bench/nodes/inequality.h"

#include <cmath>

namespace bench {

namespace {

constexpr int kLongest = 10000;       // entries of a row that is looked at
constexpr double kCancelled = 1e-12;  // what rounding errors leave

}  // namespace

bool row_side(const Model& model, int i, double sign, Inequality& row) {
  const tovik::lp::Matrix& a = model.by_rows;
  const double right = sign > 0 ? model.lp.row_upper[i] : -model.lp.row_lower[i];
  if (right == tovik::lp::kInf || a.start[i + 1] - a.start[i] > kLongest) return false;
  row = {{}, {}, right};
  for (int k = a.start[i]; k < a.start[i + 1]; ++k) {
    row.index.push_back(a.index[k]);
    row.value.push_back(sign * a.value[k]);
  }
  return true;
}

void Combination::add(const Inequality& row, double factor) {
  for (std::size_t k = 0; k < row.index.size(); ++k) {
    const int j = row.index[k];
    if (!listed_[j]) list_.push_back(j);
    listed_[j] = 1;
    value_[j] += factor * row.value[k];
  }
  right_ += factor * row.right;
}

Inequality Combination::take() {
  Inequality sum;
  sum.right = right_;
  for (const int j : list_) {
    if (std::fabs(value_[j]) > kCancelled) {
      sum.index.push_back(j);
      sum.value.push_back(value_[j]);
    }
    value_[j] = 0;
    listed_[j] = 0;
  }
  list_.clear();
  right_ = 0;
  return sum;
}

}  // namespace bench
