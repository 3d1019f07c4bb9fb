/* Tolerances of presolve: strict ones to simplify, loose ones to call a problem infeasible. */
#pragma once

#include <algorithm>
#include <cmath>

#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

inline constexpr double kExact = 1e-9;      // relative difference of bounds and sides that counts as none
inline constexpr double kSame = 1e-12;      // relative difference of a column's bounds that makes it fixed
inline constexpr double kRounding = 1e-15;  // relative error of one addition, with room
inline constexpr double kStrict = 1e-9;  // relative amount by which a bound must be tighter to count as such
inline constexpr double kHugeMove = 1e12;  // no entry times value beyond this is moved to a side

inline constexpr double kCancelledSide = 1e-13;  // relative: what a difference of sides leaves by rounding

/* Sum of a side or bound and a move; zero when only rounding noise is left. */
inline double moved(double side, double move) {
  const double sum = side + move;
  return std::fabs(sum) < kCancelledSide * std::fabs(move) ? 0.0 : sum;
}

/* Differences up to this from a bound or side count as none: rounding, and at most a tenth of what the user
 * calls feasible. */
inline double side_tolerance(const Workspace& ws, double side, double relative = kExact) {
  return std::min(relative * std::max(1.0, std::fabs(side)), 0.1 * ws.settings.feasibility);
}

/* Violation of a side that proves infeasibility. */
inline double infeasibility_tolerance(const Workspace& ws, double side) {
  return 10 * ws.settings.feasibility * std::max(1.0, std::fabs(side));
}

}  // namespace tovik::lp::presolve
