#include "lp/barrier/barrier.h"

#include <utility>

#include "lp/barrier/embedding.h"
#include "lp/barrier/predictor_corrector.h"
#include "lp/barrier/session.h"

namespace tovik::lp::barrier {

namespace {

void run_methods(Session& session) {
  const auto stuck = [&session] {
    return session.result.ending == Ending::no_progress && !session.is_near_enough();
  };
  const auto embed = [&session](bool from_estimate) {
    session.regularization = Regularization{};
    run_embedding(session, from_estimate);
  };
  switch (session.options.algorithm) {
    case Algorithm::embedding_from_estimate:
      embed(true);
      if (stuck()) embed(false);
      break;
    case Algorithm::embedding_from_constant:
      embed(false);
      if (stuck()) embed(true);
      break;
    case Algorithm::predictor_corrector:
      run_predictor_corrector(session);
      break;
    default:
      run_predictor_corrector(session);
      if (stuck() || session.result.ending == Ending::unbounded_face) embed(false);
  }
}

Result run(const LpData& lp, const Options& options, Control& control, Observer* observer) {
  Session session(lp, options, control, observer);
  try {
    if (session.prepare()) run_methods(session);
  } catch (const cholesky::FileError&) {
    session.end(Ending::file_not_read);
  }
  return session.release();
}

/* A ray says that there is no optimum; whether there is a point is asked without costs. */
void look_for_point(const LpData& lp, const Options& options, Control& control, Result& result) {
  LpData without_costs = lp;
  for (double& cost : without_costs.cost) cost = 0;
  Options rest = options;
  rest.iteration_limit -= result.iterations;
  Result found = run(without_costs, rest, control, nullptr);
  result.iterations += found.iterations;
  result.factorizations += found.factorizations;
  result.solves += found.solves;
  if (found.ending == Ending::no_progress || found.ending == Ending::unbounded_face) return;
  result.ending = found.ending == Ending::optimal ? Ending::unbounded : found.ending;
  result.farkas = std::move(found.farkas);
  result.farkas_gap = found.farkas_gap;
  if (found.ending == Ending::optimal) {
    result.x = std::move(found.x);
    result.y = std::move(found.y);
  }
}

}  // namespace

Result solve(const LpData& lp, const Options& options, Control& control, Observer* observer) {
  Result result = run(lp, options, control, observer);
  if (result.ending == Ending::infeasible_or_unbounded) look_for_point(lp, options, control, result);
  return result;
}

}  // namespace tovik::lp::barrier
