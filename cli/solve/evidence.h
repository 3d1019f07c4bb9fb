/* Why there is no optimum, in the model's names: the rows and bounds that contradict each other, or the direction
 * without end. Made of TVKgetfarkas and TVKgetray; what those do not have, as after some reductions, stays empty.
 *
 * - Cost: one pass over the matrix for a proof.
 * - Errors: LibraryError, bad_alloc. */
#pragma once

#include "cli/console.h"
#include "cli/library.h"
#include "cli/outcome.h"

namespace tovik::cli {

/* The proof of infeasibility of the last optimization, the parts of the largest multipliers first. Without
 * multipliers, the columns whose own bounds cross. */
Proof proof_of_infeasibility(const Model& model, Console& console);
/* The columns that move along the ray, the fastest first. */
std::vector<Movement> ray_of(const Model& model, Console& console);

}  // namespace tovik::cli
