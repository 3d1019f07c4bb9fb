/* Iterative refinement of what solves with the factored basis give (Wilkinson 1963): residuals with twice the digits of
 * a double, corrections by the factor at hand. A solve drops what is small against its right-hand side, and an
 * ill-conditioned basis magnifies that; a correction takes it back, since its right-hand side is brought to size 1.
 *
 * - Space: scaled, like the core's. The factor must be that of the basis.
 * - Cost: a solve a correction; of multipliers also a pass over the basic columns each.
 * - Errors: bad_alloc passes through. */
#pragma once

#include <vector>

#include "lp/simplex/core.h"
#include "lp/verify/certificates.h"

namespace tovik::lp::simplex {

/* x_B moves so that A x + s, which is `left` by row, becomes 0. */
void correct_values(Core& core, const std::vector<double>& left);

/* What duals by row must change by so that the reduced costs of the basic variables, which are `left` by position,
 * become 0. */
std::vector<double> dual_correction(Core& core, const std::vector<double>& left);

/* y = B^-T v for a vector v of small integers, given y in double precision: more digits, and what they are off by. Where
 * y is no such solution it comes back as it is. */
verify::Multipliers refine_multipliers(Core& core, const std::vector<double>& y);

}  // namespace tovik::lp::simplex
