#include "lp/simplex/iterate_values.h"

namespace tovik::lp::simplex {

IterateValues::IterateValues(const ScaledModel& model)
    : x_(static_cast<size_t>(model.m()), 0.0),
      x_lower_(x_),
      x_upper_(x_),
      d_(static_cast<size_t>(model.total()), 0.0) {
  buffer_.resize(model.m());
}

void IterateValues::gather_bounds(const WorkingData& work, const BasisPartition& basis) {
  const auto m = static_cast<int>(x_.size());
  for (int p = 0; p < m; ++p) set_bounds(p, work.lower(basis.head(p)), work.upper(basis.head(p)));
}

void IterateValues::compute_primal(const ScaledModel& model, const WorkingData& work,
                                   const BasisPartition& basis, factor::Factor& factor) {
  const int n = model.n();
  const int m = model.m();
  const Matrix& a = model.matrix();
  buffer_.clear();
  double* const b = buffer_.array.data();
  for (int j = 0; j < n; ++j) {
    const double value = basis.value(j);
    if (!basis.nonbasic(j) || value == 0) continue;
    for (int k = a.start[j]; k < a.start[j + 1]; ++k) b[a.index[k]] -= value * a.value[k];
  }
  for (int i = 0; i < m; ++i) {
    if (basis.nonbasic(n + i)) b[i] -= basis.value(n + i);
  }
  buffer_.count = -1;
  buffer_.reindex();
  factor.ftran(buffer_, 1.0);
  for (int p = 0; p < m; ++p) {
    x_[p] = b[p];
    set_bounds(p, work.lower(basis.head(p)), work.upper(basis.head(p)));
  }
  buffer_.count = -1;
  buffer_.clear();
}

void IterateValues::compute_dual(const ScaledModel& model, const std::vector<double>& cost,
                                 const BasisPartition& basis, factor::Factor& factor,
                                 std::vector<double>& d) {
  const int n = model.n();
  const int m = model.m();
  buffer_.clear();
  int count = 0;
  for (int p = 0; p < m; ++p) {
    const double c = cost[basis.head(p)];
    if (c == 0) continue;
    buffer_.array[p] = c;
    buffer_.index[count++] = p;
  }
  buffer_.count = count;
  if (count > 0) factor.btran(buffer_, 1.0);
  for (int j = 0; j < n; ++j)
    d[j] = basis.nonbasic(j) ? cost[j] - (count > 0 ? model.column_dot(j, buffer_.array) : 0.0) : 0.0;
  for (int i = 0; i < m; ++i) d[n + i] = basis.nonbasic(n + i) ? cost[n + i] - buffer_.array[i] : 0.0;
  buffer_.count = -1;
  buffer_.clear();
}

void IterateValues::save_x(const BasisPartition& basis) {
  saved_head_ = basis.head();
  saved_x_ = x_;
}

void IterateValues::restore_x(const WorkingData& work, const BasisPartition& basis) {
  for (size_t p = 0; p < saved_head_.size(); ++p) x_[basis.position(saved_head_[p])] = saved_x_[p];
  gather_bounds(work, basis);
}

void IterateValues::edit(const IndexEdit& indices) {
  for (auto* v : {&x_, &x_lower_, &x_upper_}) indices.edit_positions(*v);
  indices.edit_variables(d_);
  if (buffer_.dimension() != indices.m()) buffer_.resize(indices.m());
}

void IterateValues::restore(const Saved& saved, const WorkingData& work, const BasisPartition& basis) {
  x_ = saved.x;
  d_ = saved.d;
  gather_bounds(work, basis);
}

}  // namespace tovik::lp::simplex
