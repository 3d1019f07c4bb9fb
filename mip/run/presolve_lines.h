/* What presolve tells of itself on the results channel: what it proved, or what it did, and its time. */
#pragma once

#include "env/environment.h"
#include "env/problem.h"
#include "mip/presolve/presolve.h"

namespace tovik::mip::run {

/* again: not the first presolve of the problem. */
void write_presolve_lines(Environment& env, const tovik::Problem& problem, const Presolved& presolved,
                          double seconds, bool again);

}  // namespace tovik::mip::run
