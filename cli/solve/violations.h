/* The solution against the model as the user wrote it.
 * Every number comes from the public queries and is summed here anew, with compensated sums, so that what is
 * reported does not lean on the optimizer's own bookkeeping. Violations are absolute and unscaled. Those of
 * the duals are natural residuals: the smaller of a reduced cost of the wrong sign and the distance to the
 * bound that would excuse it, so they vanish exactly when the values are optimal.
 *
 * - Cost: twice one pass over the matrix, in blocks of columns.
 * - Errors: LibraryError, bad_alloc. */
#pragma once

#include "cli/library.h"
#include "cli/outcome.h"

namespace tovik::cli {

struct CheckRequest {
  double objective = 0;     // the value that the library states
  bool with_duals = false;  // dual values exist and claim to be optimal
  bool with_integrality = false;
};

Violations check_solution(const Model& model, const CheckRequest& request);

/* Flows and, where they claim to be optimal, potentials of a network, in the same manner: rows are the balances of the
 * nodes. */
Violations check_flow(const Network& network, const CheckRequest& request);

}  // namespace tovik::cli
