/* Cost perturbation against dual degeneracy.
 *
 * Costs move in the direction in which the reduced cost becomes more feasible, so a dual feasible point stays
 * feasible. Core::use_original_costs() takes perturbation and shifts back; reduced costs have then to be
 * computed anew. */
#pragma once

#include "lp/simplex/core.h"

namespace tovik::lp::simplex {

/* Moves the working cost of every structural that is neither fixed nor free by
 *
 *   (1 + r_j) * (|c_j| + 1) * 5e-7 * scale * size of the largest cost * min(length_j^2 / 10, most)
 *
 * with r_j = random_value and length_j the column's entries; `most` is the larger of 100 and the square
 * of the average length. Large costs count by their fourth root, and as at most 1 where hardly a variable is boxed. Logicals
 * move by rounding noise (1e-12) only. */
void perturb_costs(Core& core, double scale);

/* Sets the working cost of j so that its reduced cost becomes a small feasible value; counts a shift. */
void shift_cost(Core& core, int j);

}  // namespace tovik::lp::simplex
