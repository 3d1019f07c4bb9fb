/* From a point with multipliers to a basis near it: the door.
 *
 * Takes the core of a simplex, whose present basis is forgotten, and a point of its LP that is nearly feasible and
 * nearly complementary, as interior point methods leave it. Leaves in the core a factored basis, nonbasics at bounds,
 * values and reduced costs computed from it. From an exact optimal pair that basis is optimal; else what it misses is in
 * the result, for the simplex to mend.
 *
 * How: each variable is given to its bound or to a multiplier of 0, whichever it is nearer to; independent columns of
 * those between bounds are the basis, filled up with others. What is then left, nonbasics between bounds and basics
 * with a multiplier, is pushed away one by one or many at once along directions that keep Ax = b (or A'y + z = c) and
 * the signs of the other side. Each push ends at its aim or by an exchange, so there are never more exchanges than
 * pushes (On finding primal- and dual-optimal bases, 1991; Recovering an optimal LP basis from an interior point solution,
 * 1994).
 *
 * Cost: a factorization of all columns between bounds, then two to four solves a push that is not blocked together
 * with others. Control is asked at each push, the clock often enough to stop within a second. Work goes to the
 * core's control. Errors: bad_alloc passes through. */
#pragma once

#include "lp/crossover/options.h"

namespace tovik::lp::crossover {

Result cross_over(simplex::Core& core, const Point& point, const Options& options, Observer* observer);

}  // namespace tovik::lp::crossover
