/* A point of an LP in equation form (A x = row_lower = row_upper, lower <= x <= upper), its multipliers and its basis, to
 * more digits than a double has, and what they leave.
 *
 * measure() passes over the matrix once; its sums have twice the digits of a double. */
#pragma once

#include <vector>

#include "lp/base/basis.h"
#include "lp/base/lp_data.h"
#include "lp/refine/extended.h"

namespace tovik::lp::refine {

struct Iterate {
  std::vector<Extended> x, y;  // by column, by row
  Basis basis;
};

struct Accuracy {
  double primal = kInf, dual = kInf;  // largest violation of rows and bounds, of reduced costs where x stands
};

/* Of each row b - A x, of each column the reduced cost c - A'y. */
struct Residuals {
  std::vector<double> rows, reduced_costs;
};

Accuracy measure(const LpData& lp, const Iterate& iterate, Residuals& residuals);

}  // namespace tovik::lp::refine
