/* Answers that the engine of a problem could not make sure of, and what is true instead (lp/refine).
 *
 * - Unsettled: an optimum beyond the user's tolerances, or so near one that it may be worth any amount; a proof of
 *   infeasibility that a point within the tolerance evades; an unbounded ray from a point that is none; no claim at all.
 * - Cost: a look at the answer's summary where all is well. */
#pragma once

#include <cstdint>
#include <memory>

#include "lp/base/control.h"
#include "lp/base/outcome.h"
#include "lp/simplex/solver.h"

namespace tovik::lp::run {

struct SettledRun {
  Outcome outcome = Outcome::numerical_failure;
  bool replaces = false;  // the answer here is to be told, not the engine's
  Answer answer;
  std::int64_t iterations = 0;
};

/* After solver.solve(), with its control still attached; null where the engine's answer stands. The engine's basis is
 * brought to an answer that replaces its own. */
std::unique_ptr<const SettledRun> settle_run(simplex::Solver& solver, Outcome outcome, Control& control);

}  // namespace tovik::lp::run
