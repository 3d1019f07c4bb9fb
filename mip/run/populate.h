/* Fills the solution pool of a problem. */
#pragma once

#include "env/environment.h"
#include "env/problem.h"

namespace tovik::mip::run {

/* Solves the problem first, or goes on with its tree, unless that is done; then a search of its own enumerates solutions within
 * the gaps of the pool, of the problem with its filters as rows, and stays with the problem, so that the next call goes on with it. Status: that of the first part where
 * it does not end optimal; else 128 enough, 129 or 130 all, or the limit that was met. Codes of run_branch_and_cut(). */
Status run_populate(Environment& env, tovik::Problem& problem);

}  // namespace tovik::mip::run
