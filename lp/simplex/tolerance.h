/* Schedules of tolerances. The simplex tightens a working tolerance step by step: each function maps the
 * present value to the next; the steps grow smaller as the value nears what double precision can hold. */
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

/* Smallest entry that may become a pivot, by updates since the last factorization: their rounding errors add
 * up. */
struct PivotSchedule {
  double fresh, young, old;
};
inline constexpr PivotSchedule kRowPivot{1e-9, 3e-8, 1e-6};     // of the dual's pivot row
inline constexpr PivotSchedule kColumnPivot{1e-9, 1e-8, 1e-7};  // of the primal's pivot column

inline double pivot_tolerance(const PivotSchedule& schedule, int updates) {
  constexpr int kYoung = 10, kOld = 20;
  return updates < kYoung ? schedule.fresh : updates < kOld ? schedule.young : schedule.old;
}

}  // namespace tovik::lp::simplex
