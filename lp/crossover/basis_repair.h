/* A basis that is nearly singular is changed to one that is not.
 *
 * Values of the basics computed from the basis should be those that led there. Where one is not, its row of the inverse is
 * long: it makes much of the little that the point misses. A nonbasic with a large entry in that row takes its place,
 * those between bounds preferred, so that the determinant grows by that entry; the old one goes back to its value and is to
 * be pushed.
 * Cost: two solves, a product with the rows and an update each time; ends where entries are no longer large. */
#pragma once

#include "lp/crossover/path.h"

namespace tovik::lp::crossover {

/* `values` by variable: of the basics. Positions may change. Returns the number of exchanges. */
int repair_basis(Path& path, std::vector<double> values);

}  // namespace tovik::lp::crossover
