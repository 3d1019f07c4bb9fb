/* Changes of the original that a reduction takes over, so that presolve need not run again.
 *
 * A change is taken over when everything that presolve concluded still holds after it, which the table in
 * rules.h says for each rule that was used and the one in operations.cpp for the sides of rows. Otherwise the
 * functions return false and leave reduction and original as they were. Indices are those of the original;
 * the same one may come more than once with the same data. Cost: that of the change, but for sides (one pass
 * over the stack) and rows (one copy of the matrix). */
#pragma once

#include <span>
#include <vector>

#include "lp/presolve/presolve.h"

namespace tovik::lp::presolve {

/* Do all conclusions hold after such a change? */
bool holds_after(const Counts& counts, ModelChange change);

/* Position in the reduced problem, -1 for what was removed. */
int reduced_index(const std::vector<int>& map, int original);

struct NewCost {
  int column;
  double cost;
};

/* Bounds of a column or sides of a row. */
struct NewRange {
  int index;
  double lower, upper;
};

struct NewRows {
  Matrix rows;  // compressed rows over the original's columns
  std::vector<double> lower, upper;
};

bool change_costs(Reduction& reduction, LpData& original, std::span<const NewCost> costs, double offset);
bool change_bounds(Reduction& reduction, LpData& original, std::span<const NewRange> bounds);
bool change_sides(Reduction& reduction, LpData& original, std::span<const NewRange> sides);
bool add_rows(Reduction& reduction, LpData& original, const NewRows& added);

}  // namespace tovik::lp::presolve
