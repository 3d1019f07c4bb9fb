/* One simplex optimization of a problem: engine, log, limits, the answer into the problem. */
#pragma once

#include "env/problem.h"
#include "lp/simplex/solver.h"

namespace tovik::lp::dispatch {

/* Runs dual or primal simplex; leaves status, solution arrays and starting basis in the problem. */
Status run_simplex(Environment& env, Problem& problem, simplex::Method method);

/* Status code of the public table. */
int status_code(simplex::Outcome outcome, bool unscaled_infeasible);

/* Moves the engine's answer into problem.solution and problem.start. */
void publish(Problem& problem, simplex::Solver& solver);

}  // namespace tovik::lp::dispatch
