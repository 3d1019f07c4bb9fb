#include "lp/run/unsettled.h"

#include <algorithm>
#include <cmath>

#include "lp/refine/settle.h"

namespace tovik::lp::run {
namespace {

/* What rounding leaves of a bound that a basic variable should meet, by the size of the values: violations beyond it
 * come from the tolerance of the ratio test or from an ill-conditioned basis. */
bool exceeds_rounding(const Answer& answer) {
  constexpr double kSmall = 1e-9;
  constexpr double kRounding = 1e-13;
  const double violation = answer.violation.primal();
  if (violation <= kSmall) return false;
  double largest = 1;
  for (const double v : answer.x) largest = std::max(largest, std::fabs(v));
  for (const double v : answer.activity) largest = std::max(largest, std::fabs(v));
  return violation > kSmall + kRounding * largest;
}

bool is_unsettled(Outcome outcome, const Answer& answer, double tolerance) {
  switch (outcome) {
    case Outcome::optimal:
      return answer.unscaled_infeasible;
    case Outcome::infeasible:
      return !answer.farkas.empty() && answer.farkas_margin > 0 && answer.farkas_margin <= tolerance;
    case Outcome::unbounded:
      return answer.violation.primal() > tolerance;
    case Outcome::infeasible_or_unbounded:
    case Outcome::singular:
    case Outcome::numerical_failure:
      return true;
    default:
      return false;
  }
}

}  // namespace

std::unique_ptr<const SettledRun> settle_run(simplex::Solver& solver, Outcome outcome, Control& control) {
  const Answer& found = solver.answer();
  const bool unsettled = is_unsettled(outcome, found, solver.options().primal_tolerance);
  if (!unsettled && !(outcome == Outcome::optimal && solver.answer_is_new() && exceeds_rounding(found)))
    return nullptr;
  simplex::Options options = solver.options();
  options.iteration_limit -= std::min(options.iteration_limit, solver.counters().iterations);
  auto run = std::make_unique<SettledRun>();
  run->answer = found;
  const LpData lp = solver.user_copy();
  const refine::Settled settled = unsettled ? refine::settle(lp, options, control, run->answer)
                                            : refine::sharpen(lp, options, control, run->answer);
  run->iterations = settled.iterations;
  run->replaces =
      settled.outcome == Outcome::optimal ||
      (unsettled && (settled.outcome == Outcome::infeasible || settled.outcome == Outcome::unbounded));
  run->outcome = run->replaces || (unsettled && is_limit(settled.outcome)) ? settled.outcome : outcome;
  if (run->replaces) {
    run->answer.method = found.method;
    if (!run->answer.column_status.empty())
      solver.set_basis(run->answer.column_status, run->answer.row_status);
  }
  return run;
}

}  // namespace tovik::lp::run
