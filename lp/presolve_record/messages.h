/* What presolve tells after a run, on the results channel: what it proved, or what it did. */
#pragma once

#include "env/environment.h"
#include "env/problem.h"
#include "lp/presolve_record/presolved.h"

namespace tovik::lp::run {

/* The line of the status when presolve came to a conclusion; else the summary. */
void write_presolve_lines(Environment& env, const Problem& problem, const Presolved& presolved);

}  // namespace tovik::lp::run
