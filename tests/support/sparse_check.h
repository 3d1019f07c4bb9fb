/* The invariant of a sparse vector: with a list, each nonzero position is listed, and none twice. */
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "lp/base/sparse_vector.h"

namespace support {

/* Empty when all is well. */
inline std::string list_complaint(const tovik::lp::SparseVector& v) {
  if (v.count < 0) return "";
  std::vector<int> listed(v.index.begin(), v.index.begin() + v.count);
  std::sort(listed.begin(), listed.end());
  const auto twice = std::adjacent_find(listed.begin(), listed.end());
  if (twice != listed.end()) return std::to_string(*twice) + " is listed twice";
  for (int i = 0; i < v.dimension(); ++i) {
    if (v.array[i] != 0 && !std::binary_search(listed.begin(), listed.end(), i))
      return std::to_string(i) + " is not listed";
  }
  return "";
}

}  // namespace support
