/* What of a problem's solution a query may read. */
#pragma once

#include "env/error.h"
#include "env/problem.h"

namespace tovik {

/* any: status and objective; values: x and slack; duals: pi and dj. */
enum class SolutionPart { any, values, duals };

/* The solution when the requested part exists; else null and `why` is the code that says why not: 1017 dual
 * values of a mixed-integer problem, 1217 no solution, 1232 no dual values, 3023 no values of a mixed-integer
 * solution. */
const Solution* find_solution(const Problem& problem, SolutionPart part, Status& why);

/* Optimal, within the tolerances of the scaled problem at least. */
bool is_optimal(const Problem& problem);

/* Whether a continuous problem's solution comes with dual values. */
bool has_duals(const Problem& problem);

}  // namespace tovik
