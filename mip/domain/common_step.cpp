#include "mip/domain/common_step.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tovik::mip {
namespace {

double greatest_common_divisor(double a, double b) {
  while (b > 0.5) {
    a = std::fmod(a, b);
    std::swap(a, b);
  }
  return a;
}

/* Of all values times `scale` where these are whole numbers, else 0. */
double common_divisor(std::span<const double> values, double scale) {
  constexpr double kLargest = 1e9;
  double divisor = 0;
  for (const double value : values) {
    if (value == 0) continue;
    const double scaled = std::fabs(value) * scale;
    const double whole = std::round(scaled);
    if (!(scaled < kLargest) || whole < 1 || std::fabs(scaled - whole) > 1e-12 * whole) return 0;
    divisor = greatest_common_divisor(std::max(divisor, whole), std::min(divisor, whole));
  }
  return divisor;
}

}  // namespace

CommonStep common_step(std::span<const double> values) {
  constexpr double kScales[] = {1, 2, 3, 4, 5, 6, 8, 10, 12, 20, 24, 60, 100, 120, 1000, 10000};
  for (const double scale : kScales) {
    if (const double divisor = common_divisor(values, scale); divisor > 0) return {scale, divisor};
  }
  return {};
}

}  // namespace tovik::mip
