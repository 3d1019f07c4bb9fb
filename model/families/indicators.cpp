#include "model/families/indicators.h"

namespace tovik::model {

void Indicators::add(const NewIndicator& indicator) {
  reserve_one(column_);
  reserve_one(complemented_);
  reserve_one(position_);
  rows_.add(indicator.row);
  column_.push_back(indicator.column);
  complemented_.push_back(indicator.complemented ? 1 : 0);
  position_.push_back(0);
}

void Indicators::clear() noexcept {
  rows_.clear();
  column_.clear();
  complemented_.clear();
  position_.clear();
}

void Indicators::renumber(std::span<const int> renumber) noexcept {
  rows_.renumber(renumber);
  compact_values(column_, renumber);
  compact_values(complemented_, renumber);
  position_.resize(column_.size());
}

void Indicators::renumber_columns(std::span<const int> renumber) noexcept {
  rows_.renumber_columns(renumber);
  int kept = 0;
  for (std::size_t k = 0; k < column_.size(); ++k) {
    column_[k] = renumber[static_cast<std::size_t>(column_[k])];
    position_[k] = column_[k] < 0 ? -1 : kept++;
  }
  if (kept == size()) return;
  rows_.renumber(position_);
  compact_values(column_, position_);
  compact_values(complemented_, position_);
  position_.resize(column_.size());
}

}  // namespace tovik::model
