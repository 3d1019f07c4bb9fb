/* Members of the solution pool as files. */
#pragma once

#include "env/environment.h"
#include "env/problem.h"
#include "fileio/xml/problem_solution.h"

namespace tovik::mip::run {

/* Member soln, or the incumbent for -1. Codes of pool_solution() and of write_solution_file(). */
Status write_pool_solution(Environment& env, const tovik::Problem& problem, int soln, const char* name);
/* All members. 3024; 1217 there is none. */
Status write_pool(Environment& env, const tovik::Problem& problem, fileio::SeveralAs form, const char* name);

}  // namespace tovik::mip::run
