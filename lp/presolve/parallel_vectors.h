/* Finds rows or columns whose entries are proportional: candidates by a hash of their entries relative to the
 * entry of smallest index, certainty by comparison. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "lp/presolve/compressed_vectors.h"

namespace tovik::lp::presolve {

/* Equal for vectors whose entries are proportional, but for rare differences by rounding. The order of the
 * entries does not matter. */
std::uint64_t direction_hash(const View& vector);

struct HashedVector {
  std::uint64_t hash;
  int index;  // of the row or column
};
/* Sorts by hash, then by index, and drops vectors whose hash nobody shares. */
void keep_shared_hashes(std::vector<HashedVector>& vectors);

/* One vector scattered into a dense one, to compare others with it. */
class ScatteredVector {
 public:
  explicit ScatteredVector(int size) : value_(static_cast<size_t>(size), 0.0) {}
  void load(const View& vector);
  /* g when `other` is g times the loaded vector, else 0. */
  double ratio(const View& other) const;

 private:
  std::vector<double> value_;
  std::vector<int> index_;
};

}  // namespace tovik::lp::presolve
