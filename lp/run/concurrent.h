/* The concurrent optimizer: several algorithms solve copies of one LP at once, each on a thread of its own, and the
 * first that comes to a conclusion stops the others: a simplex and the barrier optimizer, without crossover the two simplex
 * algorithms, and all three where the clock decides among three threads.
 *
 * - Clones: the first works in the caller's environment, with its callbacks, log and limits, on the caller's thread. The
 *   others have environments of their own with the caller's parameters and without callbacks; where the caller has a log
 *   file they log to clone1.log, clone2.log ... in the working directory.
 * - Small problems: the others begin when the first has done some work, so that what takes milliseconds starts no thread;
 *   without presolve the first begins with the engine that the problem has already.
 * - TVK_PARAM_PARALLELMODE: deterministic (0, 1), where the least work decides and every run ends alike, or opportunistic
 *   (-1), where the clock does. TVK_PARAM_THREADS limits the clones.
 * - Work: the caller's counter has grown by that of the winner.
 * - Errors: 1001 and 1234 (no thread) of a clone are those of the call; all threads have ended then. A barrier whose factor finds
 *   no room in memory or in its temporary file leaves the others alone, with a warning. */
#pragma once

#include <memory>
#include <vector>

#include "env/environment.h"
#include "env/problem.h"
#include "lp/base/basis.h"
#include "lp/base/lp_data.h"
#include "lp/run/optimizer.h"
#include "lp/run/simplex_run.h"

namespace tovik::lp::run {

/* How many clones a call makes; below two there is nothing to run concurrently. */
int clones_wanted(const Environment& env);

/* Writes what is told before presolve. */
void announce_clones(Environment& env);

struct Contest {
  Status status;
  Outcome outcome = Outcome::numerical_failure;
  BarrierCounts barrier;                 // of the winner
  std::unique_ptr<Optimizer> optimizer;  // the winner, or the first where nobody won; null with an error
};

/* Where the rows and columns of the LP stand in the problem, for logs; null: they are the problem's. */
struct Origin {
  const std::vector<int>* rows = nullptr;
  const std::vector<int>* columns = nullptr;
};

struct Question {
  const LpData& lp;
  const Basis* start;  // for all, or null
  Origin origin;
  bool dual_form = false;            // the simplex works on the LP's dual
  std::unique_ptr<Optimizer> ready;  // the first clone's, at its start; null: it is made
};

/* simplex: the algorithm beside the barrier optimizer where that takes part. */
Contest solve_concurrently(Environment& env, Problem& problem, Method simplex, Question question);

/* From problem to stored answer. */
Status run_concurrent(Environment& env, Problem& problem, Method simplex);

/* The same without presolve; what came before is counted with it. */
Status run_concurrent_unpresolved(Environment& env, Problem& problem, const Algorithm& algorithm,
                                  const Continuation& continuation);

}  // namespace tovik::lp::run
