#include "env/solution_access.h"

#include "include/tovik.h"

namespace tovik {
namespace {

bool has_values(const Problem& problem) {
  const Solution& solution = *problem.solution;
  return solution.x.size() == problem.columns() && solution.slack.size() == problem.rows();
}

}  // namespace

bool is_optimal(const Problem& problem) {
  return problem.status == TVK_STATUS_OPTIMAL || problem.status == TVK_STATUS_OPTIMAL_UNSCALED_INFEASIBLE;
}

bool has_duals(const Problem& problem) {
  const Solution& solution = *problem.solution;
  return solution.dj.size() == problem.columns() && solution.pi.size() == problem.rows();
}

const Solution* find_solution(const Problem& problem, SolutionPart part, Status& why) {
  const bool exists = problem.status != TVK_STATUS_NONE && problem.solution != nullptr;
  why = 0;
  if (problem.mixed_integer()) {
    if (part == SolutionPart::duals) {
      why = TVK_ERROR_NOT_FOR_MIP;
    } else if (!exists) {
      why = TVK_ERROR_NO_SOLUTION;
    } else if (part == SolutionPart::values && !has_values(problem)) {
      why = TVK_ERROR_NO_INTEGER_VALUES;
    }
  } else if (!exists || !has_values(problem)) {
    why = TVK_ERROR_NO_SOLUTION;
  } else if (part == SolutionPart::duals && !has_duals(problem)) {
    why = TVK_ERROR_NO_DUAL_SOLUTION;
  }
  return why.ok() ? problem.solution.get() : nullptr;
}

}  // namespace tovik
