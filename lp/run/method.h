/* Which algorithm an optimizer call runs. */
#pragma once

#include "env/problem.h"
#include "lp/simplex/solver.h"

namespace tovik::lp::run {

/* The problem must hold what the continuous simplex solves: 1017 for mixed-integer problems, 1018 and 1031
 * for quadratic ones. */
Status check_continuous(const Problem& problem);

/* The method (env/method_code.h) that TVKlpopt runs. With allow_concurrent two threads or more resolve
 * automatic to concurrent. 1225 or 1233 where the starting basis is looked at and the data are no numbers. */
Status resolve_method(Environment& env, Problem& problem, bool allow_concurrent, int* resolved);

/* Index of the most infeasible basic variable of the starting basis (n + i for row i), or 2100000000 when it
 * is primal feasible within TVK_PARAM_EPRHS; 1262 without a starting basis, 1256 when it is singular. */
Status most_infeasible_basic(Environment& env, Problem& problem, int* index);

}  // namespace tovik::lp::run
