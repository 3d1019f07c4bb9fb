/* Which variables between their bounds are the first basis.
 *
 * One elimination of the rectangular matrix of all of them, by rows: in each row the pivot is one of the variables that
 * are large there when weighted by their distance from their bounds, of those the one that fills in least. So it finds
 * the largest triangular part first, and as many variables as there is rank, the farthest from bounds preferred. Rows
 * without a pivot get their logicals.
 * Cost: that of a factorization of the candidates, in ticks counted to the core. */
#pragma once

#include <vector>

#include "lp/crossover/complementary_start.h"

namespace tovik::lp::crossover {

/* By variable: 1 where it is basic; as many as there are rows. */
std::vector<char> choose_basis(simplex::Core& core, const ComplementaryStart& start);

}  // namespace tovik::lp::crossover
