/* One simplex optimization of a problem: engine, log, limits, the answer into the problem. */
#pragma once

#include "env/problem.h"
#include "lp/run/optimizer.h"
#include "lp/run/statistics.h"
#include "lp/simplex/solver.h"

namespace tovik::lp::run {

/* Where a run begins. */
struct Continuation {
  bool from_basis = false;  // at the problem's starting basis, whatever TVK_PARAM_ADVIND says
  const OptimizationStatistics* before = nullptr;  // of what was done before in the same optimization
};

/* Runs dual or primal simplex; leaves status, solution arrays and starting basis in the problem. */
Status run_simplex(Environment& env, Problem& problem, const Algorithm& algorithm,
                   const Continuation& continuation = {});

/* Status code of the public table. */
int status_code(Outcome outcome, bool unscaled_infeasible);

/* Writes an answer for the problem's model into problem.solution and problem.start. */
void store_answer(Problem& problem, const Answer& answer, const simplex::Counters& counters);
/* The same of an engine that stays: what it wrote before is changed in place, where that has changed. */
void store_answer(Problem& problem, simplex::Solver& solver);

}  // namespace tovik::lp::run
