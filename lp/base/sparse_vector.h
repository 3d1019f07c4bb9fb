/* A dense array of values together with the list of its nonzero positions.
 *
 * Invariant while count >= 0: every position with a nonzero value is in index[0..count-1] exactly once; a
 * listed position may hold zero or a value of no consequence. count < 0 means that the list is not
 * maintained: treat the array as dense. The packed copy (index, value pairs of an intermediate result) is
 * filled by solves that are asked to. */
#pragma once

#include <vector>

namespace tovik::lp {

inline constexpr double kTiny = 1e-14;  // results below this are dropped
inline constexpr double kZero = 1e-50;  // stands in for 0 where a cancelled position stays listed
inline constexpr double kByList = 0.4;  // share of listed positions from which on a plain loop is faster

class SparseVector {
 public:
  void resize(int dimension);
  int dimension() const { return static_cast<int>(array.size()); }
  void clear();    // by the list when it is short, otherwise the whole array
  void tight();    // drops |v| < kTiny (works on the list, or on the array when count < 0)
  void reindex();  // rebuilds the list (sorted) when it is invalid or longer than 10 % of the dimension
  void pack();     // packed copy of the listed nonzeros
  void copy(const SparseVector& other);  // values and list only
  double norm2() const;
  bool list_pays() const { return count >= 0 && count < kByList * dimension(); }
  void set_unit(int position, double value = 1.0) {  // the vector must be clear
    array[position] = value;
    index[0] = position;
    count = 1;
  }

  std::vector<double> array;
  std::vector<int> index;  // size = dimension
  int count = 0;
  bool want_pack = false;  // ask the next solve to fill the packed copy with its partial result
  std::vector<int> packed_index;
  std::vector<double> packed_value;
};

/* Calls f(position) for the listed positions, or for all where there is no list. */
template <class F>
void for_listed(const SparseVector& v, F f) {
  if (v.count >= 0) {
    for (int k = 0; k < v.count; ++k) f(v.index[k]);
    return;
  }
  const int size = v.dimension();
  for (int i = 0; i < size; ++i) f(i);
}

/* Calls f(position) for every position that may hold a nonzero, in the order that costs less: f sees listed
 * zeros, and none where the list does not pay. */
template <class F>
void for_nonzeros(const SparseVector& v, F f) {
  if (v.list_pays()) {
    for (int k = 0; k < v.count; ++k) f(v.index[k]);
    return;
  }
  const int size = v.dimension();
  for (int i = 0; i < size; ++i) {
    if (v.array[i] != 0) f(i);
  }
}

}  // namespace tovik::lp
