/* Which variables of a point belong to their bounds and which between them, by whether value or multiplier is the
 * smaller change.
 *
 * Values are compared with multipliers in units of their usual sizes, so that neither scaling of the whole objective
 * nor of all sides matters. A value very near to its bound belongs there whatever its multiplier. Values of the point
 * stay: those that belong to bounds have a short way to go. Multipliers of those between are dropped: A'y + z = c holds
 * again after a solve with the basis. By variable of the core, logicals included.
 * Cost: two passes over the matrix. */
#pragma once

#include <vector>

#include "lp/crossover/options.h"

namespace tovik::lp::crossover {

enum class Standing : signed char { lower, upper, fixed, between };  // between: free ones too

struct ComplementaryStart {
  std::vector<Standing> standing;
  std::vector<double> x;         // within the bounds
  std::vector<double> z;         // 0 between; else its sign is that of the bound, any of fixed ones
  std::vector<double> distance;  // of those between: from the nearest bound in units; kInf of free ones
};

ComplementaryStart make_complementary(const simplex::Core& core, const Point& point);

}  // namespace tovik::lp::crossover
