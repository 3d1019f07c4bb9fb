/* Starting bases, starting values and pricing norms as stored data: checks and copies. */
#pragma once

#include "env/problem.h"

namespace tovik::lp::run {

struct StartArrays {
  const int* column_status = nullptr;
  const int* row_status = nullptr;
  const double* column_primal = nullptr;
  const double* row_primal = nullptr;
  const double* column_dual = nullptr;
  const double* row_dual = nullptr;
};

/* Both status arrays together or neither; 1253 with the position for a code outside 0..3. */
Status copy_start(Environment& env, Problem& problem, const StartArrays& arrays);
/* The same of a start that has the sizes of the problem; an array that is empty is absent. */
Status set_start(Environment& env, Problem& problem, Start start);
Status get_base(Problem& problem, int* column_status, int* row_status);

/* Norms by basis position; head: column j or -i-1 for the slack of row i. */
Status copy_dual_norms(Problem& problem, const double* norms, const int* head, int length);
Status get_dual_norms(Problem& problem, double* norms, int* head, int* length);
/* Of the factored basis or stored ones; empty when there are none. */
Norms norms_of(Problem& problem);

/* A basis with the norms of its positions: basic columns by index, then basic slacks. 1003 when it has not as
 * many basics as rows. */
Status copy_start_with_norms(Environment& env, Problem& problem, const int* column_status,
                             const int* row_status, const double* norms);

}  // namespace tovik::lp::run
