/* User-requested pivots, and strong branching. */
#pragma once

#include "env/problem.h"

namespace tovik::lp::run {

/* Forces the slacks of the listed rows into the basis. */
Status pivot_in(Environment& env, Problem& problem, const int* rows, int count);
/* Forces the listed fixed columns out of the basis; 1221 for a column that is not fixed. */
Status pivot_out(Environment& env, Problem& problem, const int* columns, int count);

struct Branching {
  const int* columns;
  int count;
  double* down;  // objective after at most iteration_limit dual iterations with upper bound floor(x_j)
  double* up;    // the same with lower bound ceil(x_j)
  int iteration_limit;
};
/* Needs an optimal basis (1252). A branch that is infeasible gives +-1e75 in the direction of a worse
 * objective. */
Status strong_branch(Environment& env, Problem& problem, const Branching& request);

}  // namespace tovik::lp::run
