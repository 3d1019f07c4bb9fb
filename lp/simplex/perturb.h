/* Cost perturbation against dual degeneracy, and the farewell to it.
 * Costs move in the direction in which the reduced cost becomes more feasible, so a dual feasible point stays
 * feasible. */
#pragma once

#include "lp/simplex/core.h"

namespace tovik::lp::simplex {

/* Adds (1 + r_j) (|c_j| + 1) * base to the working cost of every bounded, non-fixed structural; scale
 * multiplies the base. */
void perturb_costs(Core& core, double scale);

/* Sets the working cost of j so that its reduced cost becomes a small feasible value; counts a shift. */
void shift_cost(Core& core, int j);

}  // namespace tovik::lp::simplex
