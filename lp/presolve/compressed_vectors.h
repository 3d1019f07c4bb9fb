/* One orientation of a sparse matrix that shrinks and grows: compressed rows (or columns), the major vectors,
 * in one pool with gaps. An entry's minor index is its column (or row).
 *
 * Entries of a vector are unsorted. When a minor index is removed its entries stay here until their vector is
 * viewed again: `view` drops them first, so a removal costs no search. A vector that outgrows its place moves
 * to the end of the pool. Indices are those of the original problem throughout. */
#pragma once

#include <cstdint>
#include <vector>

#include "lp/base/lp_data.h"

namespace tovik::lp::presolve {

/* Entries of a row or column. Any append to the same orientation may move them. */
struct View {
  int length;
  const int* index;
  const double* value;
};

class CompressedVectors {
 public:
  /* minor_alive: one flag for each minor index; it outlives this object. */
  CompressedVectors(Matrix columns, const std::vector<char>& minor_alive);

  int length(int major) const { return live_[major]; }
  View view(int major) {
    if (stored_[major] != live_[major]) compact(major);
    return {live_[major], index_.data() + begin_[major], value_.data() + begin_[major]};
  }
  /* A minor index that has an entry here was removed. */
  void forget_entry(int major) { --live_[major]; }
  /* Position within the view, or -1. */
  int find(int major, int minor);
  void set_value(int major, int position, double value) { value_[begin_[major] + position] = value; }
  void remove(int major, int position);  // the last entry takes its place
  void append(int major, int minor, double value);
  void clear(int major) { stored_[major] = live_[major] = 0; }

 private:
  void compact(int major);
  void move_to_end(int major);

  const std::vector<char>& alive_;
  std::vector<std::int64_t> begin_;
  std::vector<int> live_, stored_, capacity_;
  std::vector<int> index_;
  std::vector<double> value_;
};

}  // namespace tovik::lp::presolve
