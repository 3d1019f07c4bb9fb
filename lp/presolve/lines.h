/* One orientation of a sparse matrix that shrinks and grows: lines (rows or columns) in one pool with gaps.
 *
 * Entries of a line are unsorted. When a line of the other orientation is removed its entries stay here until
 * the line is looked at again: `view` drops them first, so a removal costs no search. A line that outgrows
 * its place moves to the end of the pool. Indices are those of the original problem throughout. */
#pragma once

#include <cstdint>
#include <vector>

#include "lp/base/lp_data.h"

namespace tovik::lp::presolve {

/* Entries of a line. Any append to the same orientation may move them. */
struct View {
  int length;
  const int* index;
  const double* value;
};

class Lines {
 public:
  /* other_alive: one flag for each line of the other orientation; it outlives this object. */
  Lines(Matrix columns, const std::vector<char>& other_alive);

  int count() const { return static_cast<int>(begin_.size()); }
  int length(int line) const { return live_[line]; }
  View view(int line) {
    if (stored_[line] != live_[line]) compact(line);
    return {live_[line], index_.data() + begin_[line], value_.data() + begin_[line]};
  }
  /* A line of the other orientation that has an entry here was removed. */
  void forget_entry(int line) { --live_[line]; }
  /* Position within the view, or -1. */
  int find(int line, int other);
  void set_value(int line, int position, double value) { value_[begin_[line] + position] = value; }
  void remove(int line, int position);  // the last entry takes its place
  void append(int line, int other, double value);
  void clear(int line) { stored_[line] = live_[line] = 0; }
  std::int64_t entries() const { return static_cast<std::int64_t>(index_.size()); }  // with dead space

 private:
  void compact(int line);
  void move_to_end(int line);

  const std::vector<char>& alive_;
  std::vector<std::int64_t> begin_;
  std::vector<int> live_, stored_, capacity_;
  std::vector<int> index_;
  std::vector<double> value_;
};

}  // namespace tovik::lp::presolve
