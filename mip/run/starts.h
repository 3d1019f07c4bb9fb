/* What a search is offered before it runs: the solution that the last optimization left, and the model's MIP starts, each
 * with its effort (mip/heuristics/start_completion.h). A line on the results channel tells of each start that comes to
 * nothing; those that do are told by the log of solutions. */
#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "env/environment.h"
#include "env/problem.h"
#include "lp/base/control.h"
#include "mip/domain/problem.h"
#include "mip/worker/settings.h"
#include "model/store/model.h"

namespace tovik::mip::run {

struct StartTrial {
  Environment& env;
  const tovik::Problem& user;
  const mip::Problem& problem;  // as built from the user's
  Settings settings;
  lp::Control& control;
  /* Takes a point of the problem; true when it is the new incumbent. */
  std::function<bool(std::span<const double>)> offer{};
  std::function<void(std::int64_t)> count_iterations{};
  double cutoff = kInf;  // of interest are points with a lower objective; offer may lower it
};

/* Unless TVK_PARAM_ADVIND is 0. Columns that were added since are not given. */
void try_last_solution(const StartTrial& trial);
/* The first MIP start as what a search is to follow, with complaints on the warning channel; one that is not complete or not
 * feasible is told, and followed by nobody. */
Witness followed_start(Environment& env, const tovik::Problem& user, const mip::Problem& problem,
                       const Tolerances& tolerances);
void try_mip_starts(const StartTrial& trial);

/* Changes with the values and the efforts of the starts. */
std::uint64_t identity_of_starts(const model::Model& model);

}  // namespace tovik::mip::run
