/* The exported optimizers of continuous linear problems. */
#include "api/optimizer_frame.h"
#include "env/entry.h"
#include "include/tovik.h"
#include "lp/run/method.h"
#include "lp/run/presolve_run.h"
#include "lp/run/simplex_run.h"

using namespace tovik;
using lp::simplex::Method;

namespace {

Status optimize(Environment& env, Problem& problem, Method method) {
  const lp::run::Profile profile(env, 2);
  return lp::run::wants_presolve(env, problem) ? lp::run::run_presolved(env, problem, method)
                                               : lp::run::run_simplex(env, problem, method);
}

int run(ConstEnvHandle env, ProbHandle lp, Method method) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (const Status status = lp::run::check_continuous(p); !status.ok()) return status;
    const lp::run::OptimizerFrame frame(e);
    return optimize(e, p, method);
  });
}

/* The method parameter says sifting while this lives. */
class SiftingAsked {
 public:
  explicit SiftingAsked(Environment& env) : env_(env), method_(env.settings.integer(TVK_PARAM_LPMETHOD)) {
    env_.settings.set_integer(TVK_PARAM_LPMETHOD, 5);
  }
  ~SiftingAsked() { env_.settings.set_integer(TVK_PARAM_LPMETHOD, method_); }
  SiftingAsked(const SiftingAsked&) = delete;
  SiftingAsked& operator=(const SiftingAsked&) = delete;

 private:
  Environment& env_;
  const int method_;
};

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
    const lp::run::OptimizerFrame frame(e);
    int method = lp::run::resolve_method(e, p, true);
    if (method == 6) method = lp::run::resolve_method(e, p, false);
    // Network and barrier are answered by the dual simplex; sifting begins either.
    return optimize(e, p, method == 1 ? Method::primal : Method::dual);
  });
}

int TVKsiftopt(ConstEnvHandle env, ProbHandle lp) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (const Status status = lp::run::check_continuous(p); !status.ok()) return status;
    const lp::run::OptimizerFrame frame(e);
    const SiftingAsked asked(e);
    return optimize(e, p, Method::primal);
  });
}

int TVKcheckpfeas(ConstEnvHandle env, ProbHandle lp, int* infeas_p) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (infeas_p == nullptr) return Status(1004);
    if (const Status status = lp::run::check_continuous(p); !status.ok()) return status;
    return lp::run::most_infeasible_basic(e, p, infeas_p);
  });
}
