/* Finds rows or columns whose entries are proportional: candidates by a hash of their entries relative to the
 * entry of smallest index, certainty by comparison. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "lp/presolve/lines.h"

namespace tovik::lp::presolve {

/* Equal for lines whose entries are proportional, but for rare quarrels of rounding. The order of the entries
 * does not matter. */
std::uint64_t direction_hash(const View& line);

struct HashedLine {
  std::uint64_t hash;
  int line;
};
/* Sorts by hash, then by index, and drops lines whose hash nobody shares. */
void keep_shared_hashes(std::vector<HashedLine>& lines);

/* One line spread out, to compare others with it. */
class Spread {
 public:
  explicit Spread(int size) : value_(static_cast<size_t>(size), 0.0) {}
  void load(const View& line);
  /* g when `other` is g times the loaded line, else 0. */
  double ratio(const View& other) const;

 private:
  std::vector<double> value_;
  std::vector<int> index_;
};

}  // namespace tovik::lp::presolve
