/* A start for LPs with many more columns than rows: sifting (Bixby, Gregory, Lustig, Marsten and Shanno
 * 1992).
 *
 * A working problem holds a few columns for each row; the others rest at a bound. It is solved, its duals
 * price all resting columns in one pass, those that would improve it most join, and so on until none would. A
 * working problem that is infeasible is priced with its certificate instead. The result is a basis, next to
 * optimal for the whole problem: the caller goes on from it with the primal simplex, which also makes sure of
 * it. */
#pragma once

#include <cstdint>

#include "lp/base/basis.h"
#include "lp/base/control.h"
#include "lp/base/lp_data.h"
#include "lp/simplex/types.h"

namespace tovik::lp::simplex {

struct SiftingResult {
  bool usable = false;  // the basis is worth starting from
  Basis basis;
  int rounds = 0;
  std::int64_t iterations = 0;  // of the working problems
  std::int64_t ticks = 0;       // as reported to the control
};

/* Whether the shape of the problem makes sifting promising. */
bool sifting_pays(int rows, int columns);

/* lp: minimization form, user's space. Ends early, with what it has, when the control says stop. */
SiftingResult sift(const LpData& lp, const Options& options, Control& control);

}  // namespace tovik::lp::simplex
