/* Rows (or columns) that were deleted but not yet taken out of the arrays.
 *
 * Deleting one row of a model moves the numbers of all later ones, in every array and in every matrix entry.
 * A run of single deletions therefore only marks what goes; the arrays are compacted once, when the model is
 * next read or changed otherwise. The marks know which stored row is the current row i: a tree of counts over
 * the stored positions.
 * - Cost: mark: logarithmic; the first of a run is proportional to the number of rows (not of entries).
 * - Errors: bad_alloc from begin() only. */
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace tovik::model {

/* Marks of a caller, one for each item; exactly 1 deletes. */
bool any_marked(const int* marks, int count);
/* Replaces each mark by the item's new position, -1 for a deleted one. */
void write_new_positions(int* marks, int count);

class Deletions {
 public:
  bool pending() const { return count_ > 0; }
  int count() const { return count_; }

  /* Prepares for marks among `stored` positions; does nothing when marks are pending. */
  void begin(int stored);
  /* Marks the current positions first .. last (counted without those marked before); begin() must have been
   * called. */
  void mark(int first, int last) noexcept;
  /* Marks the stored position. */
  void mark_stored(int position) noexcept;
  bool is_marked(int stored_position) const {
    return deleted_[static_cast<std::size_t>(stored_position)] != 0;
  }

  /* New number of every stored position, -1 for the marked ones; valid until clear(). No more marks after
   * this. */
  std::span<const int> renumbering() noexcept;
  void clear() noexcept;

 private:
  int stored_position(int current) const noexcept;

  std::vector<char> deleted_;
  std::vector<int> tree_;  // Fenwick tree over the kept positions; becomes the renumbering
  int count_ = 0;
};

}  // namespace tovik::model
