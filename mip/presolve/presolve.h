/* Presolve of a mixed-integer problem: a smaller problem with the same optimum, and the way back ("Preprocessing and probing
 * techniques for mixed integer programming problems", ORSA J. Computing 6 (1994); "Presolve reductions in mixed integer
 * programming", INFORMS J. Computing 32 (2020)).
 *
 * - Any solution of the original has one of the reduced problem that is no worse, so both are feasible, or unbounded,
 *   together. What could only be fixed at infinity stays.
 * - infeasible: proven by the data with room for the tolerances, `finding` says by what. The reduced problem is then empty.
 * - stopped: by the control; the reduced problem is right, but less reduced than it could be.
 * - witness: a solution of the problem that is looked for after each rule. Rules that keep an optimal point only are off then.
 * - Cost: a number of passes over the entries, limited by a count of the entries that are touched.
 * - Errors: bad_alloc. */
#pragma once

#include "lp/base/control.h"
#include "mip/domain/problem.h"
#include "mip/domain/witness.h"
#include "mip/presolve/postsolve.h"
#include "mip/presolve/settings.h"
#include "mip/presolve/state.h"

namespace tovik::mip {

struct Presolved {
  Problem problem;
  Postsolve postsolve;
  PresolveCounts counts;
  PresolveFinding finding;
  bool infeasible = false, stopped = false;
};

Presolved presolve(const Problem& problem, const PresolveSettings& settings, const Tolerances& tolerances,
                   lp::Control& control, const Witness& witness = {});

}  // namespace tovik::mip
