/* Cuts for the cut rounds: rounded rows, rows that share a continuous column, and rows of the tableau. No
 * attempt at strength beyond what the rounds need. */
#pragma once

#include "bench/nodes/engine.h"

namespace bench {

/* Rows that the vertex x violates, the deepest first, at most `limit`. basic_variables as Engine tells them.
 */
Rows rounding_cuts(const Model& model, std::span<const double> x, std::vector<int> basic_variables,
                   std::size_t limit);

}  // namespace bench
