/* What whole multiples a list of numbers consists of. */
#pragma once

#include <span>

namespace tovik::mip {

/* Every number is a multiple of divisor / scale, and times scale / divisor they are whole numbers without a common divisor. */
struct CommonStep {
  double scale = 0, divisor = 0;  // 0: unknown

  bool is_known() const { return divisor > 0; }
};

/* Of the values that are not 0; unknown where there is none. Finds steps whose denominator is small, or a power of ten. */
CommonStep common_step(std::span<const double> values);

}  // namespace tovik::mip
