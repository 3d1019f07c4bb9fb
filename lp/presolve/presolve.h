/* Presolve of one LP: a smaller equivalent problem, and the postsolve of its solution to a primal-dual basic
 * solution of the original.
 *
 * The problem is plain data in minimization form. A run makes rounds: cheap rules work on what changed until
 * nothing cheap is left, then the expensive rules run; a round that brings little is the last. A run
 * that stops early leaves a reduced problem and a stack that fit each other. */
#pragma once

#include <vector>

#include "lp/base/control.h"
#include "lp/base/lp_data.h"
#include "lp/presolve/settings.h"
#include "lp/presolve/stack.h"
#include "lp/presolve/status.h"
#include "lp/presolve/undo.h"
#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

struct Reduction {
  LpData lp;                             // empty when everything is gone
  std::vector<int> row_map, column_map;  // original index of each reduced row and column
  std::vector<RemovalReason> row_removal, column_removal;
  Stack stack;
  Counts counts;
  PresolveStatus status;   // code reduced: the reduced problem is equivalent
  Stop stop = Stop::none;  // why the run ended early
  bool changed = false;    // whether anything was done at all
};

/* protected_columns: empty, or one flag for each column that must stay. With `display` progress lines are
 * logged. */
Reduction presolve(const LpData& original, const Settings& settings, Control& control,
                   const std::vector<char>& protected_columns, bool display);

/* A point of the reduced problem brought to the original: x, d, y and statuses go in and come out, and nothing else
 * of an answer. */
Answer postsolve(const LpData& original, const Reduction& reduction, const Answer& reduced);

/* The same of a point that belongs to no basis: x, d and y. Its statuses are not looked at, and those of the result mean
 * nothing. */
Answer postsolve_interior(const LpData& original, const Reduction& reduction, Answer reduced);

/* Row multipliers of the original problem that prove it infeasible, from the status's: to be checked. Empty
 * when the status has none. */
std::vector<double> infeasibility_proof(const LpData& original, const Reduction& reduction);

/* Multipliers of the reduced problem's rows that prove it infeasible, brought to the original: to be checked.
 */
std::vector<double> postsolve_proof(const LpData& original, const Reduction& reduction,
                                    const std::vector<double>& multipliers);

}  // namespace tovik::lp::presolve
