/* Fixed problems: a mixed-integer problem whose discrete decisions stand at its incumbent, so that what is left is continuous
 * and has duals, a basis and ranges of sensitivity.
 *
 * - Fixed are integer columns and switches of indicators at their values, semi-continuous columns that are 0, and members of
 *   ordered sets that are 0. A semi-continuous column that is on keeps its interval.
 * - Lazy constraints, and indicator constraints that are active, stand as rows behind those of the matrix, which makes the
 *   incumbent's objective the optimum of an optimal solution's fixed problem.
 * - The bounds from before are kept with the problem (Fixing, in Problem::mip): going back restores model and bounds to the
 *   last bit. A problem that was read from a file as a fixed one has none: it is taken as it is. */
#pragma once

#include <memory>

#include "env/environment.h"
#include "env/problem.h"

namespace tovik::model {

/* The mixed-integer type that a fixed type is made of; -1 for any other type. */
int type_before_fixing(int fixed_type);

/* Makes a problem of this fixed type of its mixed-integer problem, which must have a solution, or makes the fixed one anew.
 * 1024, 1029, 9019; 1012 too many rows; 1001. On failure the problem stays as it was. */
Status fix_problem(Environment& env, Problem& problem, int fixed_type);

/* The model gets back what fixing changed; the type is the caller's business. Does nothing to a problem that is not fixed.
 * bad_alloc before anything is changed. */
void restore_model(Problem& problem);

/* What a copy of a fixed problem needs to be one; null for others. */
std::unique_ptr<Derived> copy_of_fixing(const Problem& problem);

}  // namespace tovik::model
