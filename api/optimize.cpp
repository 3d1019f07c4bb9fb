/* The exported optimizers of continuous linear problems. */
#include "api/optimizer_frame.h"
#include "env/entry.h"
#include "env/method_code.h"
#include "include/tovik.h"
#include "lp/run/method.h"
#include "lp/run/presolve_run.h"
#include "lp/run/simplex_run.h"
#include "lp/run/statistics.h"

using namespace tovik;
using lp::Method;

namespace {

Status optimize(Environment& env, Problem& problem, const lp::run::Algorithm& algorithm) {
  const api::Profile profile(env, 2);
  const Status status = lp::run::wants_presolve(env, problem)
                            ? lp::run::run_presolved(env, problem, algorithm)
                            : lp::run::run_simplex(env, problem, algorithm);
  lp::run::note_threads(problem, env.limits.top()->threads.count());
  return status;
}

int run(ConstEnvHandle env, ProbHandle lp, Method method) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (const Status status = lp::run::check_continuous(p); !status.ok()) return status;
    const api::OptimizerFrame frame(e);
    return optimize(e, p, {method});
  });
}

}  // namespace

int TVKdualopt(ConstEnvHandle env, ProbHandle lp) {
  return run(env, lp, Method::dual);
}

int TVKprimopt(ConstEnvHandle env, ProbHandle lp) {
  return run(env, lp, Method::primal);
}

int TVKlpopt(ConstEnvHandle env, ProbHandle lp) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (const Status status = lp::run::check_continuous(p); !status.ok()) return status;
    const api::OptimizerFrame frame(e);
    int method = method_code::kAutomatic;
    Status status = lp::run::resolve_method(e, p, true, &method);
    if (method == method_code::kConcurrent) status = lp::run::resolve_method(e, p, false, &method);
    if (!status.ok()) return status;
    // The dual simplex stands in for network and barrier. Sifting comes before either: options_of() sees to it.
    return optimize(e, p, {method == method_code::kPrimal ? Method::primal : Method::dual});
  });
}

int TVKsiftopt(ConstEnvHandle env, ProbHandle lp) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (const Status status = lp::run::check_continuous(p); !status.ok()) return status;
    const api::OptimizerFrame frame(e);
    return optimize(e, p, {Method::primal, true});
  });
}

int TVKcheckpfeas(ConstEnvHandle env, ProbHandle lp, int* infeas_p) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (infeas_p == nullptr) return Status(TVK_ERROR_NULL_POINTER);
    if (const Status status = lp::run::check_continuous(p); !status.ok()) return status;
    return lp::run::most_infeasible_basic(e, p, infeas_p);
  });
}
