/* Optimizations that begin with the interior point method: through presolve and back, without a basis in the end or
 * with one.
 *
 * Without: the solution has values and duals of its own kind and no basis; what is claimed of it is judged on the
 * problem's own data. A point that presolve's way back spoils is found anew without presolve; where that one is not good enough
 * either, the values of a vertex take its place. */
#pragma once

#include "env/problem.h"
#include "lp/base/answer.h"
#include "lp/run/optimizer.h"

namespace tovik::lp::run {

/* 1001 where the factor does not fit into memory, 1801 to 1803 where its temporary file fails; else status and solution are in the problem. */
Status run_barrier(Environment& env, Problem& problem);

/* The crossover `method` makes a basic solution of the point, and the simplex that has the least to do from there ends it. */
Status run_barrier_with_crossover(Environment& env, Problem& problem, Method method);

/* The same without presolve, of data that were looked at. */
Status cross_over_unpresolved(Environment& env, Problem& problem, const Algorithm& algorithm);

/* What the argument of TVKhybbaropt and TVK_PARAM_BARCROSSALG mean together. */
struct Crossover {
  bool wanted = false;
  Method method = Method::primal;
};
/* 1292 for what is no such argument. */
Status resolve_crossover(const Environment& env, int argument, Crossover* crossover);

}  // namespace tovik::lp::run
