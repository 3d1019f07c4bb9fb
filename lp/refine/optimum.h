/* LP iterative refinement (Gleixner, Steffy and Wolter 2016): an optimum to more digits than one run of the
 * simplex in double precision gives.
 *
 * The LP is in equation form: minimize c'x, A x = b (row_lower = row_upper), lower <= x <= upper. Residuals of
 * rows, bounds and reduced costs at the point so far are computed with twice the digits; the LP of the
 * corrections has them as sides, bounds and costs, magnified, and is solved from the basis so far by one
 * engine that keeps its factor. Each round adds as many digits as the engine's tolerances have.
 *
 * - Cost: a copy of the matrix and a factorization, then per round one pass over the matrix and the pivots.
 * - Errors: bad_alloc passes through; all else is an outcome. */
#pragma once

#include <cstdint>

#include "lp/base/control.h"
#include "lp/base/lp_data.h"
#include "lp/base/outcome.h"
#include "lp/refine/iterate.h"
#include "lp/simplex/types.h"

namespace tovik::lp::refine {

struct Goal {
  double primal = 1e-9, dual = 1e-9;  // largest violation of rows and bounds, of reduced costs
  bool primal_first = false;          // the first run is by the primal simplex
};

/* optimal: the iterate keeps the goal, or came as near as doubles allow (then `accuracy` exceeds it). infeasible,
 * unbounded: what an engine claimed, not proved. Limits and numerical trouble as engines name them: the iterate is
 * the best so far. */
struct Refined {
  Outcome outcome = Outcome::numerical_failure;
  Accuracy accuracy;
  std::int64_t iterations = 0;
};

Refined refine_optimum(const LpData& lp, const simplex::Options& options, Control& control, const Goal& goal,
                       Iterate& iterate);

}  // namespace tovik::lp::refine
