#include "lp/simplex/basis_partition.h"

namespace tovik::lp::simplex {

BasisPartition::BasisPartition(const ScaledModel& model)
    : head_(static_cast<size_t>(model.m()), 0),
      position_(static_cast<size_t>(model.total()), 0),
      nonbasic_(static_cast<size_t>(model.total()), 1),
      move_(static_cast<size_t>(model.total()), 0),
      value_(static_cast<size_t>(model.total()), 0.0) {}

void BasisPartition::find_positions() {
  const auto m = static_cast<int>(head_.size());
  for (int p = 0; p < m; ++p) position_[head_[p]] = p;
}

void BasisPartition::count_free(const WorkingData& work) {
  free_nonbasic_ = 0;
  const auto total = static_cast<int>(nonbasic_.size());
  for (int j = 0; j < total; ++j) free_nonbasic_ += nonbasic_[j] && work.is_free(j);
}

void BasisPartition::place_at_bound(int j, int prefer, const WorkingData& work) {
  const double low = work.lower(j);
  const double high = work.upper(j);
  if (low == high) {
    place(j, 0, low);
  } else if (low == -kInf && high == kInf) {
    place(j, 0, 0.0);
  } else if (high == kInf ||
             (low != -kInf && (prefer > 0 || (prefer == 0 && std::fabs(low) <= std::fabs(high))))) {
    place(j, 1, low);
  } else {
    place(j, -1, high);
  }
}

void BasisPartition::edit(const IndexEdit& indices) {
  for (int& j : head_) j = indices.renumber(j);
  indices.edit_positions(head_);
  const int first = indices.n() + indices.kept_rows();
  for (int p = indices.kept_rows(); p < indices.m(); ++p) head_[p] = first + p - indices.kept_rows();
  indices.edit_variables(value_);
  indices.edit_variables(nonbasic_);
  indices.edit_variables(move_);
  position_.resize(static_cast<size_t>(indices.n() + indices.m()));
  for (int j = indices.kept_columns(); j < indices.n(); ++j) nonbasic_[j] = 1;
  find_positions();
}

void BasisPartition::restore(const Saved& saved) {
  head_ = saved.head;
  nonbasic_ = saved.nonbasic;
  move_ = saved.move;
  value_ = saved.value;
  find_positions();
}

}  // namespace tovik::lp::simplex
