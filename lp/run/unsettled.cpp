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

enum class Doubt {
  none,
  claim,   // may be wrong
  proof,   // of what is true: its multipliers leave noise in columns without a bound
  digits,  // an optimum within the tolerances, but not by rounding
};

Doubt doubt_of(Outcome outcome, const simplex::Solver& solver) {
  const Answer& answer = solver.answer();
  const double tolerance = solver.options().primal_tolerance;
  const auto doubt_if = [](bool wrong) { return wrong ? Doubt::claim : Doubt::none; };
  switch (outcome) {
    case Outcome::optimal:
      if (answer.unscaled_infeasible) return Doubt::claim;
      return solver.answer_is_new() && exceeds_rounding(answer) ? Doubt::digits : Doubt::none;
    case Outcome::infeasible:
      if (answer.farkas.empty()) return Doubt::none;
      if (answer.farkas_margin > 0 && answer.farkas_margin <= tolerance) return Doubt::claim;
      return answer.farkas_clean ? Doubt::none : Doubt::proof;
    case Outcome::unbounded:
      return doubt_if(answer.violation.primal() > tolerance);
    case Outcome::infeasible_or_unbounded:
    case Outcome::singular:
    case Outcome::numerical_failure:
      return Doubt::claim;
    default:
      return Doubt::none;
  }
}

refine::Settled settle(Doubt doubt, const simplex::Solver& solver, Control& control, Answer& answer) {
  const std::int64_t done = solver.counters().iterations;
  simplex::Options options = solver.options();
  options.iteration_limit -= std::min(options.iteration_limit, done);
  const LpData lp = solver.user_copy();
  switch (doubt) {
    case Doubt::digits:
      return refine::sharpen(lp, options, control, answer);
    case Doubt::proof: {
      constexpr std::int64_t kLeast = 2000;
      options.iteration_limit = std::min(options.iteration_limit, std::max(kLeast, done));
      return refine::prove_infeasible(lp, options, control, answer);
    }
    default:
      return refine::settle(lp, options, control, answer);
  }
}

bool is_conclusive(Outcome outcome) {
  return outcome == Outcome::optimal || outcome == Outcome::infeasible || outcome == Outcome::unbounded;
}

}  // namespace

std::unique_ptr<const SettledRun> settle_run(simplex::Solver& solver, Outcome outcome, Control& control) {
  const Doubt doubt = doubt_of(outcome, solver);
  if (doubt == Doubt::none) return nullptr;
  const Answer& found = solver.answer();
  auto run = std::make_unique<SettledRun>();
  run->answer = found;
  const refine::Settled settled = settle(doubt, solver, control, run->answer);
  run->iterations = settled.iterations;
  run->replaces = doubt == Doubt::claim ? is_conclusive(settled.outcome) : settled.outcome == outcome;
  const bool stopped = doubt == Doubt::claim && is_limit(settled.outcome);
  run->outcome = run->replaces || stopped ? settled.outcome : outcome;
  if (run->replaces) {
    run->answer.method = found.method;
    if (!run->answer.column_status.empty())
      solver.set_basis(run->answer.column_status, run->answer.row_status);
  }
  return run;
}

}  // namespace tovik::lp::run
