/* Approximate row duals of an LP without a basis: the volume method (Barahona and Anbil 2000) on the
 * Lagrangian that keeps the columns' bounds and prices the rows. One pass over the matrix a step. */
#pragma once

#include <vector>

#include "lp/base/control.h"
#include "lp/base/lp_data.h"

namespace tovik::lp::simplex {

/* One multiplier a row, of the sign that its sides allow; a heuristic without guarantee. */
std::vector<double> approximate_duals(const LpData& lp, int steps, Control& control);

}  // namespace tovik::lp::simplex
