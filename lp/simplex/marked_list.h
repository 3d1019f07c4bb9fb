/* A set of small numbers that remembers the order of entry: each number is listed once. No memory is taken
 * after resize(). */
#pragma once

#include <span>
#include <vector>

namespace tovik::lp::simplex {

class MarkedList {
 public:
  /* Empty, for numbers below `size`. */
  void resize(int size) {
    clear();
    marked_.resize(static_cast<size_t>(size), 0);
    list_.reserve(static_cast<size_t>(size));
  }
  void add(int k) {
    if (marked_[k]) return;
    marked_[k] = 1;
    list_.push_back(k);
  }
  void clear() {
    for (const int k : list_) marked_[k] = 0;
    list_.clear();
  }
  std::span<const int> view() const { return list_; }

 private:
  std::vector<char> marked_;
  std::vector<int> list_;
};

}  // namespace tovik::lp::simplex
