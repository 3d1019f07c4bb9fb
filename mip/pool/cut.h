/* An inequality a x <= side on the columns of the problem; it holds globally, but where it names a node. */
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace tovik::mip {

/* In the order in which counts are reported. */
enum class CutClass : unsigned char {
  cover,
  gub_cover,
  flow_cover,
  clique,
  fractional,
  mir,
  flow_path,
  disjunctive,
  implied_bound,
  zero_half,
  multi_commodity,
  local_cover,
  tightened,
  objective_disjunction,
  user,
  table,
  pool,
  discarded,
  local,
  gcs,
  enumerated_cover,
  user_soft,
  cone,
  count
};
inline constexpr std::size_t kCutClasses = static_cast<std::size_t>(CutClass::count);
using CutCounts = std::array<int, kCutClasses>;

struct Cut {
  std::vector<int> columns;  // ascending
  std::vector<double> values;
  double side = 0;
  CutClass kind = CutClass::mir;
  bool is_integral = false;  // whole coefficients on integer columns, whole side
  int rank = 1;              // one more than that of the cuts it was made of
  // Of those that the caller adds:
  double lower = -std::numeric_limits<double>::infinity();  // <= a x
  bool stays = false;                                       // as a row, slack or not
  std::int64_t node = -1;                                   // it holds there and below; -1: everywhere
  std::int64_t number = -1;                                 // of its own, where it holds in a subtree
};

}  // namespace tovik::mip
