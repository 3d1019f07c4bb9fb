/* Quality of the stored solution, recomputed from the model in the user's space with compensated sums. */
#pragma once

#include "env/problem.h"

namespace tovik::lp::run {

struct Measure {
  double value = 0;
  /* Where the largest stands: column j, or -i-1 for row i; -1 for sums and when nothing is violated. */
  int index = -1;
};

/* what: a TVK_QUALITY_ constant; 1003 for another, 1217 / 1232 without the values it needs. */
Status measure_quality(Environment& env, Problem& problem, int what, Measure* result);

/* Of any point with its slacks: measures of primal values and whole numbers; 1017 for
 * those of duals and of a basis, 1003 for what is none. */
Status measure_point(const model::Model& model, const Solution& solution, int what, Measure* result);

/* Estimate of the condition number of the scaled basis: 1-norm of B times an estimate of the 1-norm of its
 * inverse (Hager 1984, Higham 1988). 1262, 1256. */
Status basis_kappa(Environment& env, Problem& problem, double* kappa);

}  // namespace tovik::lp::run
