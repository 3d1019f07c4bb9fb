/* The dual of an LP as an LP of its own, and the primal point from its basic solution.
 *
 * Primal: minimize c'x, L <= Ax <= U, l <= x <= u. Each column stands on a reference bound r_j (a finite one;
 * the one that its cost likes when both are; 0 for a free column), so that with b = sides - A r the dual
 * reads
 *
 *   minimize  -sum b_i y_i + sum (u_j - l_j) w_j
 *   row j:    a_j'y - w_j <= c_j  (r = l),   a_j'y + w_j >= c_j  (r = u),   a_j'y = c_j  (free)
 *
 * with w_j >= 0 only for columns with two bounds, y_i signed by the sides of its row, free for an equation
 * and split into two columns for a row with two sides. Fixed columns have no row, rows without sides no
 * column.
 *
 * Back: x_j = r_j minus the dual of row j, and a basis gives a basis: column j is nonbasic at r_j when the
 * logical of row j is basic, at its other bound when w_j is, else basic; row i is nonbasic when (a part of)
 * y_i is basic. Lemke (1954). */
#pragma once

#include <vector>

#include "lp/base/lp_data.h"
#include "lp/presolve/undo.h"

namespace tovik::lp::presolve {

struct DualForm {
  LpData lp;
  std::vector<double> reference;     // by primal column
  std::vector<int> row_of;           // primal column -> dual row, or -1
  std::vector<int> excess_of;        // primal column -> dual column w, or -1
  std::vector<int> low_of, high_of;  // primal row -> dual column of y on the lower, upper side, or -1
};

DualForm dualize(const LpData& primal);

/* The primal point (x, d, y, statuses) from an optimal basic solution of the dual form. */
Answer undualize(const LpData& primal, const DualForm& dual, const Answer& solution);

/* Row multipliers of the primal from a vector over the dual form's columns: of a ray, which proves the primal
 * infeasible. */
std::vector<double> row_multipliers(const DualForm& dual, const std::vector<double>& columns);

/* An estimate: is the dual so much smaller in its number of rows that the simplex method should work on it?
 */
bool dualization_pays(const LpData& primal);

}  // namespace tovik::lp::presolve
