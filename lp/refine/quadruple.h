/* A primal simplex in quadruple precision, for small LPs that double precision cannot decide (precision boosting, Eifler,
 * Nicolas-Thouvenin and Gleixner 2024), and in octuple precision for those that this does not decide either.
 *
 * The LP is in equation form. A dense tableau is carried along, with an artificial column a row: phase 1 minimizes what
 * they miss, phase 2 the costs; where the misses that are left stay within the tolerance, they are fixed. Largest
 * reduced cost, and the smallest index (Bland 1977) in long rows of degenerate steps. Before it claims anything, values,
 * duals and the ray are refined by the inverse that the artificial columns hold: pivots leave errors.
 *
 * - Cost: m (n + m) quadruple operations an iteration, some fifty times those in double precision, and octuple ones
 *   twenty times those: see affordable().
 * - Errors: bad_alloc passes through. */
#pragma once

#include <cstdint>
#include <vector>

#include "lp/base/control.h"
#include "lp/base/lp_data.h"
#include "lp/base/outcome.h"
#include "lp/refine/iterate.h"

namespace tovik::lp::refine {

struct QuadrupleResult {
  Outcome outcome = Outcome::numerical_failure;
  /* optimal: the point; unbounded: a feasible one; infeasible: y proves it. A row is basic where its artificial column
   * is. */
  Iterate iterate;
  std::vector<Extended> ray;  // unbounded
  std::int64_t iterations = 0;
};

enum class Precision { quadruple, octuple };  // of about 34 and 68 digits

/* Whether an LP of that shape is solved within seconds. */
bool affordable(Precision precision, int rows, int columns);

QuadrupleResult solve_quadruple(const LpData& lp, Precision precision, double primal_tolerance,
                                std::int64_t iteration_limit, Control& control);

}  // namespace tovik::lp::refine
