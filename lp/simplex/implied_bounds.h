/* Finite bounds that the rows imply for columns without them, for the dual simplex only.
 *
 * A column that no feasible point can take beyond some value may be treated as boxed by the dual: it then
 * flips instead of being dual infeasible, and the long-step ratio test may pass it. The bounds handed out are
 * loosened, so that no feasible point reaches one: a basis that is optimal with them is optimal without them,
 * and none of its nonbasic columns stands at one. Proofs of infeasibility must not use them. Method: activity
 * bounds of rows, a few sweeps (Brearley, Mitra, Williams, Math. Programming 8 (1975)). */
#pragma once

#include <vector>

#include "lp/simplex/core.h"

namespace tovik::lp::simplex {

struct ImpliedBounds {
  std::vector<double> lower, upper;  // total; the model's own bounds where nothing is implied
  int found = 0;                     // infinite bounds that became finite
};

ImpliedBounds imply_bounds(const Core& core);

}  // namespace tovik::lp::simplex
