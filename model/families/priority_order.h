/* The order in which columns are to be branched on: for some columns a priority (larger ones first) and a
 * preferred direction.
 *
 * - Holds: one entry for each listed column, by ascending column. Deleting a column deletes its entry. */
#pragma once

#include <span>
#include <vector>

namespace tovik::model {

struct OrderEntry {
  int column;
  int priority;
  int direction;  // -1 down first, 1 up first, 0 no preference
};

class PriorityOrder {
 public:
  int size() const { return static_cast<int>(entries_.size()); }
  bool empty() const { return entries_.empty(); }
  std::span<const OrderEntry> entries() const { return entries_; }

  /* Replaces the order; of a repeated column the last entry counts. On bad_alloc it is as before. */
  void assign(std::vector<OrderEntry> entries);
  void clear() noexcept { entries_.clear(); }
  void renumber_columns(std::span<const int> renumber) noexcept;

 private:
  std::vector<OrderEntry> entries_;
};

}  // namespace tovik::model
