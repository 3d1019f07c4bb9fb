/* The reduced problem as users see it: a problem record of its own, with the names of the rows and columns
 * that were kept. It belongs to the presolve record, can be read, written and cloned, and refuses to be
 * changed, optimized or freed. */
#pragma once

#include "env/problem.h"
#include "lp/presolve_record/presolved.h"

namespace tovik::lp::run {

/* Made when first asked for; null when presolve removed everything. */
Status reduced_problem(Environment& env, Problem& problem, Presolved& presolved, Problem** reduced);

}  // namespace tovik::lp::run
