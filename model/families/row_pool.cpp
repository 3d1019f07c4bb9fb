#include "model/families/row_pool.h"

#include <cmath>

namespace tovik::model {

void RowPool::add(const PoolRow& row) {
  reserve_one(sense_);
  reserve_one(rhs_);
  EntryPacker packer;
  rows_.append(packer.pack(row.terms.index, row.terms.value, row.terms.count), row.name);
  sense_.push_back(row.sense);
  rhs_.push_back(row.rhs);
}

void RowPool::cut(Mark mark) noexcept {
  rows_.cut(mark);
  sense_.resize(static_cast<std::size_t>(rows_.size()));
  rhs_.resize(static_cast<std::size_t>(rows_.size()));
}

void RowPool::keep(std::span<const int> renumber) noexcept {
  rows_.keep(renumber);
  keep_values(sense_, renumber);
  keep_values(rhs_, renumber);
}

void RowPool::remove_small(double eps) noexcept {
  rows_.remove_small(eps);
  for (double& value : rhs_) {
    if (std::fabs(value) < eps) value = 0;
  }
}

}  // namespace tovik::model
