/* Interior point method for one LP: the door.
 *
 * Takes plain data with lower <= upper; solves min c'x + offset, row_lower <= A x <= row_upper, lower <= x <= upper to a
 * point and its multipliers, without a basis. Ends `optimal` only with relative residuals and gap within the tolerance,
 * `infeasible` and `unbounded` only with a proof that lp/verify accepts on the data handed over; otherwise with the best
 * point that was seen and `no_progress`.
 *
 * Memory: the factor (its counts are with the observer's setup before it is allocated), two copies of the matrix and
 * about 30 vectors. Stops within a second: Control is asked at each iteration, and within the factorization.
 * Errors: memory of the factor is an ending; bad_alloc passes through. */
#pragma once

#include "lp/barrier/options.h"
#include "lp/base/control.h"
#include "lp/base/lp_data.h"

namespace tovik::lp::barrier {

Result solve(const LpData& lp, const Options& options, Control& control, Observer* observer);

}  // namespace tovik::lp::barrier
