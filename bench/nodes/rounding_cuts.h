/* Cuts for the cut rounds: mixed-integer rounding of single rows and of pairs of rows that share a continuous
 * column. Valid for every integer point of the model; no attempt at strength beyond what the rounds need.
 * Paper: Marchand, Wolsey, Operations Research 49 (2001). */
#pragma once

#include "bench/nodes/engine.h"

namespace bench {

/* Rows that x violates, the deepest first, at most `limit` and at most one a row of the model. */
Rows rounding_cuts(const Model& model, std::span<const double> x, std::size_t limit);

}  // namespace bench
