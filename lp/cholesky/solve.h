/* Solves with L, D and L' for one or several right-hand sides, by supernodes. Errors: std::bad_alloc, FileError. */
#pragma once

#include "lp/cholesky/numeric.h"

namespace tovik::lp::cholesky {

void solve(const Symbolic& symbolic, const Numeric& numeric, double* x, int columns);

}  // namespace tovik::lp::cholesky
