/* Bounds that follow from one row: each column may take what the others leave of the row's sides at their best
 * ("Preprocessing and probing techniques for mixed integer programming problems", ORSA J. Computing 6 (1994)).
 *
 * A bound is derived with the row's sides widened by the feasibility tolerance, so that no point that keeps the
 * tolerances is cut off. Bounds of continuous columns are taken only where they move by a fair part of the range, or were
 * infinite: otherwise rows could move them for ever. */
#pragma once

#include "mip/domain/domain.h"

namespace tovik::mip {

void propagate_row(Domain& domain, int row);

}  // namespace tovik::mip
