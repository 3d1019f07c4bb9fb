/* Numbers on their way between callers and engines, which minimize. */
#pragma once

#include <cmath>

namespace tovik::lp::run {

/* In the user's sense; never -0. */
inline double times(double sign, double value) {
  return value == 0 ? 0 : sign * value;
}

/* Of a parameter: what is no number steers nothing. */
inline double number_or(double value, double otherwise) {
  return std::isnan(value) ? otherwise : value;
}

}  // namespace tovik::lp::run
