/* One optimization through presolve: reduce, solve what is left, bring the solution back, judge it on the
 * problem's own data, and only when it does not stand there go on from it with the problem itself. */
#pragma once

#include "env/problem.h"
#include "lp/run/simplex_run.h"

namespace tovik::lp::run {

/* Presolve is on and the problem holds no basis that the parameters want to start from. */
bool wants_presolve(const Environment& env, const Problem& problem);

/* As run_simplex, through presolve. */
Status run_presolved(Environment& env, Problem& problem, const Algorithm& algorithm);

}  // namespace tovik::lp::run
