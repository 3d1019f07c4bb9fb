/* Crossover in a run: from the interior point's result to a basis in the simplex engine, with its lines in the log. */
#pragma once

#include "lp/barrier/options.h"
#include "lp/crossover/options.h"
#include "lp/run/optimizer.h"
#include "lp/simplex/solver.h"

namespace tovik::lp::run {

struct CrossedOver {
  crossover::Counts counts;
  /* The simplex that has the least to do from there. */
  Method clean_up = Method::primal;
};

/* `point` has values and multipliers of the engine's LP. The engine goes on from the basis at its next solve; what
 * has told crossover to stop tells it, too. */
CrossedOver cross_over(const RunContext& context, const barrier::Result& point, simplex::Solver& engine);

/* What has been done becomes part of the problem's solution. */
void store_counts(const BarrierCounts& counts, Problem& problem);

}  // namespace tovik::lp::run
