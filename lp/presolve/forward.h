/* The way there: vectors, linear forms and bases of the original problem brought to the reduced one, one
 * operation of the stack after another. Exact where the operation has an exact image; a point that does not
 * meet what presolve fixed simply loses those values, a form that has no image says so.
 *
 * Signs and statuses are those of undo.h. */
#pragma once

#include <vector>

#include "lp/presolve/presolve.h"

namespace tovik::lp::presolve {

/* g'x + constant. */
struct Form {
  std::vector<double> coefficients;
  double constant = 0;
};

struct Basis {
  std::vector<At> column, row;
};

/* x by original column; the result by reduced column. */
std::vector<double> crush_point(const Reduction& reduction, std::vector<double> x);
/* y by original row; the result by reduced row. */
std::vector<double> crush_duals(const Reduction& reduction, std::vector<double> y);
/* A form of the original's columns becomes one of the reduced columns with the same value at every point that
 * postsolve can bring back. False when there is none. */
bool crush_form(const Reduction& reduction, Form& form);
/* The other way: always possible. */
void uncrush_form(const Reduction& reduction, Form& form);
/* Rows that no operation used beyond the entries of columns that left: one flag for each row of the original.
 * Their sides may move, and the sides of the reduced row with them. */
std::vector<char> plain_rows(const Reduction& reduction);
/* Statuses by original column and row become those by reduced ones; the number of basics may be off by a few.
 */
Basis crush_basis(const Reduction& reduction, Basis basis);

}  // namespace tovik::lp::presolve
