#include "model/base/deletions.h"

#include <algorithm>
#include <bit>

namespace tovik::model {

bool any_marked(const int* marks, int count) {
  return std::find(marks, marks + count, 1) != marks + count;
}

void write_new_positions(int* marks, int count) {
  int kept = 0;
  for (int k = 0; k < count; ++k) marks[k] = marks[k] == 1 ? -1 : kept++;
}

void Deletions::begin(int stored) {
  if (pending()) return;
  const auto n = static_cast<std::size_t>(stored);
  deleted_.assign(n, 0);
  tree_.resize(n);
  for (std::size_t k = 1; k <= n; ++k) tree_[k - 1] = static_cast<int>(k & (~k + 1));
}

/* Stored position of the current position: the first whose count of kept positions exceeds it. */
int Deletions::stored_position(int current) const noexcept {
  const std::size_t n = tree_.size();
  std::size_t at = 0;
  for (std::size_t step = std::bit_floor(n); step > 0; step /= 2) {
    if (at + step <= n && tree_[at + step - 1] <= current) {
      at += step;
      current -= tree_[at - 1];
    }
  }
  return static_cast<int>(at);
}

void Deletions::mark_stored(int position) noexcept {
  deleted_[static_cast<std::size_t>(position)] = 1;
  ++count_;
  for (std::size_t k = static_cast<std::size_t>(position) + 1; k <= tree_.size(); k += k & (~k + 1))
    --tree_[k - 1];
}

void Deletions::mark(int first, int last) noexcept {
  for (int k = first; k <= last; ++k) mark_stored(stored_position(first));
}

std::span<const int> Deletions::renumbering() noexcept {
  int kept = 0;
  for (std::size_t k = 0; k < deleted_.size(); ++k) tree_[k] = deleted_[k] != 0 ? -1 : kept++;
  return tree_;
}

void Deletions::clear() noexcept {
  std::vector<char>().swap(deleted_);
  std::vector<int>().swap(tree_);
  count_ = 0;
}

}  // namespace tovik::model
