#include "model/families/priority_order.h"

#include <algorithm>
#include <utility>

namespace tovik::model {

void PriorityOrder::assign(std::vector<OrderEntry> entries) {
  std::stable_sort(entries.begin(), entries.end(),
                   [](const OrderEntry& a, const OrderEntry& b) { return a.column < b.column; });
  std::size_t kept = 0;
  for (std::size_t k = 0; k < entries.size(); ++k) {
    const bool last = k + 1 == entries.size() || entries[k + 1].column != entries[k].column;
    if (last) entries[kept++] = entries[k];
  }
  entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(kept), entries.end());
  entries_ = std::move(entries);
}

void PriorityOrder::renumber_columns(std::span<const int> renumber) noexcept {
  for (OrderEntry& entry : entries_) entry.column = renumber[static_cast<std::size_t>(entry.column)];
  std::erase_if(entries_, [](const OrderEntry& entry) { return entry.column < 0; });
}

}  // namespace tovik::model
