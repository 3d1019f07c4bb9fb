/* Schedules by which the simplex tightens or loosens a working tolerance: each maps the present value to the
 * next. The steps grow smaller as the value nears what double precision can hold. */
#pragma once

#include <algorithm>

namespace tovik::lp::simplex {

inline double tighten_optimality(double v) {
  if (v > 1.0000001e-6) return std::max(1e-6, v / 10);
  if (v > 1.000001e-7) return std::max(1e-7, v / 3.17);
  if (v > 1.00001e-8) return std::max(1e-8, v / 1.33);
  if (v > 1.0001e-9) return std::max(1e-9, v / 1.16);
  if (v > 1.001e-10) return 0.9 * v + 1e-11;
  return v / 1.01;
}

inline double tighten_feasibility(double v) {
  if (v > 1.000001e-7) return std::max(1e-7, v / 10);
  if (v > 1.0001e-9) return std::max(1e-9, v / 4.64);
  if (v > 1.01e-11) return 0.5 * v + 5e-12;
  return v / 1.01;
}

inline double loosen(double v) {
  return v < 9.99999999e-5 ? std::min(1e-4, 2 * v) : 1.1 * v;
}

}  // namespace tovik::lp::simplex
