/* Crush: vectors, linear forms and bases of the original problem brought to the reduced one, one operation of
 * the stack after another. Exact where the operation has an exact image; a point that does not meet what
 * presolve fixed simply loses those values, a form that has no image says so.
 *
 * Signs and statuses are those of undo.h. */
#pragma once

#include <vector>

#include "lp/presolve/crush_types.h"
#include "lp/presolve/presolve.h"

namespace tovik::lp::presolve {

/* x by original column; the result by reduced column. */
std::vector<double> crush_point(const Reduction& reduction, std::vector<double> x);
/* y by original row; the result by reduced row. */
std::vector<double> crush_duals(const Reduction& reduction, std::vector<double> y);
/* A form of the original's columns becomes one of the reduced columns with the same value at every point that
 * postsolve can bring back. False when there is none. */
bool crush_form(const Reduction& reduction, LinearForm& form);
/* From the reduced columns to the original's: always possible. */
void uncrush_form(const Reduction& reduction, LinearForm& form);
/* Statuses by original column and row become those by reduced ones; the number of basics may be off by a few.
 */
Basis crush_basis(const Reduction& reduction, Basis basis);

}  // namespace tovik::lp::presolve
