/* How a run of an LP engine ended. */
#pragma once

namespace tovik::lp {

enum class Outcome {
  optimal,
  infeasible,
  unbounded,
  infeasible_or_unbounded,
  objective_limit,
  iteration_limit,
  time_limit,
  tick_limit,
  user_abort,
  singular,          // more singularities than allowed
  numerical_failure  // numerically stuck: no claim can be verified
};

}  // namespace tovik::lp
