/* The exported optimizers of continuous linear problems. */
#include "env/entry.h"
#include "include/tovik.h"
#include "lp/dispatch/frame.h"
#include "lp/dispatch/method.h"
#include "lp/dispatch/presolve_run.h"
#include "lp/dispatch/simplex_run.h"

using namespace tovik;
using lp::simplex::Method;

namespace {

Status optimize(Environment& env, Problem& problem, Method method) {
  const lp::dispatch::Profile profile(env, 2);
  return lp::dispatch::wants_presolve(env, problem) ? lp::dispatch::run_presolved(env, problem, method)
                                                    : lp::dispatch::run_simplex(env, problem, method);
}

int run(ConstEnvHandle env, ProbHandle lp, Method method) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (const Status status = lp::dispatch::check_continuous(p); !status.ok()) return status;
    const lp::dispatch::OptimizerFrame frame(e);
    return optimize(e, p, method);
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
    if (const Status status = lp::dispatch::check_continuous(p); !status.ok()) return status;
    const lp::dispatch::OptimizerFrame frame(e);
    int method = lp::dispatch::resolve_method(e, p, true);
    if (method == 6) method = lp::dispatch::resolve_method(e, p, false);
    // Network, barrier and sifting are answered by the dual simplex.
    return optimize(e, p, method == 1 ? Method::primal : Method::dual);
  });
}

int TVKcheckpfeas(ConstEnvHandle env, ProbHandle lp, int* infeas_p) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (infeas_p == nullptr) return Status(1004);
    if (const Status status = lp::dispatch::check_continuous(p); !status.ok()) return status;
    return lp::dispatch::most_infeasible_basic(e, p, infeas_p);
  });
}
