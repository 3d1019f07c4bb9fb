#include "lp/run/dual_form_optimizer.h"

#include "lp/presolve/dualize.h"
#include "lp/run/simplex_optimizer.h"
#include "lp/run/user_point.h"

namespace tovik::lp::run {

Outcome DualFormOptimizer::optimize(const RunContext& context) {
  const Method method = context.algorithm.method;
  const presolve::DualForm form = presolve::dualize(lp_);
  const Algorithm algorithm{method == Method::dual ? Method::primal : Method::dual, context.algorithm.sift};
  const RunContext inner{context.env, context.problem, algorithm, context.control, nullptr};
  SimplexOptimizer optimizer(form.lp, inner);
  optimizer.forget_start();
  const Outcome outcome = optimizer.optimize(inner);
  statistics_ = optimizer.statistics();
  const Answer dual = optimizer.release_answer();
  answer_ = Answer{};
  Outcome ended = outcome;
  switch (outcome) {
    case Outcome::optimal:
      answer_ = presolve::undualize(lp_, form, dual);
      break;
    case Outcome::unbounded:
      answer_.farkas = presolve::row_multipliers(form, dual.ray);
      ended = Outcome::infeasible;
      break;
    case Outcome::infeasible:
      ended = Outcome::infeasible_or_unbounded;
      break;
    default:
      evaluate_start();
      break;
  }
  answer_.method = method;
  return ended;
}

void DualFormOptimizer::evaluate_start() {
  answer_ = slack_point(lp_);
}

}  // namespace tovik::lp::run
