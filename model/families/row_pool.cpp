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

void RowPool::truncate(Extent extent) noexcept {
  rows_.truncate(extent);
  sense_.resize(static_cast<std::size_t>(rows_.size()));
  rhs_.resize(static_cast<std::size_t>(rows_.size()));
}

void RowPool::renumber(std::span<const int> renumber) noexcept {
  rows_.renumber(renumber);
  compact_values(sense_, renumber);
  compact_values(rhs_, renumber);
}

void RowPool::remove_small(double eps) noexcept {
  rows_.remove_small(eps);
  for (double& value : rhs_) {
    if (std::fabs(value) < eps) value = 0;
  }
}

}  // namespace tovik::model
