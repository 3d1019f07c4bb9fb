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

/* The run was cut short; it says nothing of the LP. */
inline bool is_limit(Outcome outcome) {
  return outcome == Outcome::iteration_limit || outcome == Outcome::time_limit ||
         outcome == Outcome::tick_limit || outcome == Outcome::user_abort;
}

}  // namespace tovik::lp
