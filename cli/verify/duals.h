/* What the duals of a solution file are worth.
 *
 * For row duals y and d = c - A'y (of a minimization; a maximization is turned round), each row with y > 0
 * counts at its lower limit, with y < 0 at its upper one, each column likewise by d; the sum of these
 * products bounds the objective of every feasible point from below. Where such a limit is infinite, the dual
 * value has a wrong sign: that is the dual infeasibility. The products of dual values and distances from
 * those limits are the complementary slackness; the gap between objective and bound is their sum. */
#pragma once

#include <vector>

#include "cli/verify/measures.h"

namespace tovik::cli {

struct DualCheckInput {
  const Model& model;
  const Claim& claim;
  const Tolerances& tolerances;
  const std::vector<Sum>& activities;  // of the rows
  double objective;                    // of the values
  double rounding;                     // of this objective
};

struct DualCheckResult {
  std::vector<Measure> measures;
  double bound = 0;     // in the model's own sense
  bool proves = false;  // a primal feasible solution with this objective is optimal within tolerances
};

DualCheckResult check_duals(const DualCheckInput& input);

}  // namespace tovik::cli
