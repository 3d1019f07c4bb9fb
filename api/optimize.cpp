/* The exported optimizers of continuous linear problems. */
#include "api/optimizer_frame.h"
#include "env/entry.h"
#include "env/method_code.h"
#include "include/tovik.h"
#include "lp/run/barrier_run.h"
#include "lp/run/concurrent.h"
#include "lp/run/method.h"
#include "lp/run/network_start_run.h"
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

Status optimize_by_barrier(Environment& env, Problem& problem, const lp::run::Crossover& crossover) {
  const api::Profile profile(env, 2);
  const Status status = crossover.wanted ? lp::run::run_barrier_with_crossover(env, problem, crossover.method)
                                         : lp::run::run_barrier(env, problem);
  lp::run::note_threads(problem, env.limits.top()->threads.count());
  return status;
}

Status optimize_from_network(Environment& env, Problem& problem, Method simplex) {
  const api::Profile profile(env, 2);
  const Status status = lp::run::run_from_network(env, problem, simplex);
  lp::run::note_threads(problem, env.limits.top()->threads.count());
  return status;
}

Status optimize_concurrently(Environment& env, Problem& problem, Method simplex) {
  const api::Profile profile(env, 2);
  const Status status = lp::run::run_concurrent(env, problem, simplex);
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
    if (!status.ok()) return status;
    const bool concurrent = method == method_code::kConcurrent;
    if (concurrent && !(status = lp::run::resolve_method(e, p, false, &method)).ok()) return status;
    if (method == method_code::kBarrier) {
      lp::run::Crossover crossover;
      status = lp::run::resolve_crossover(e, 0, &crossover);
      return status.ok() ? optimize_by_barrier(e, p, crossover) : status;
    }
    const Method simplex = method == method_code::kPrimal ? Method::primal : Method::dual;
    if (concurrent && lp::run::clones_wanted(e) > 1) {
      lp::run::announce_clones(e);
      return optimize_concurrently(e, p, simplex);
    }
    if (method == method_code::kNetwork) return optimize_from_network(e, p, Method::dual);
    // Sifting comes before either: options_of() sees to it.
    return optimize(e, p, {simplex});
  });
}

int TVKsiftopt(ConstEnvHandle env, ProbHandle lp) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (const Status status = lp::run::check_continuous(p); !status.ok()) return status;
    const api::OptimizerFrame frame(e);
    return optimize(e, p, {Method::primal, true});
  });
}

int TVKbaropt(ConstEnvHandle env, ProbHandle lp) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (const Status status = lp::run::check_continuous(p); !status.ok()) return status;
    const api::OptimizerFrame frame(e);
    return optimize_by_barrier(e, p, {});
  });
}

int TVKhybbaropt(ConstEnvHandle env, ProbHandle lp, int method) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (const Status status = lp::run::check_continuous(p); !status.ok()) return status;
    lp::run::Crossover crossover;
    if (const Status status = lp::run::resolve_crossover(e, method, &crossover); !status.ok()) return status;
    const api::OptimizerFrame frame(e);
    return optimize_by_barrier(e, p, crossover);
  });
}

int TVKhybnetopt(ConstEnvHandle env, ProbHandle lp, int method) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (const Status status = lp::run::check_continuous(p); !status.ok()) return status;
    Method simplex = Method::dual;
    if (const Status status = lp::run::resolve_simplex(method, &simplex); !status.ok()) return status;
    const api::OptimizerFrame frame(e);
    return optimize_from_network(e, p, simplex);
  });
}

int TVKcheckpfeas(ConstEnvHandle env, ProbHandle lp, int* infeas_p) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (infeas_p == nullptr) return Status(TVK_ERROR_NULL_POINTER);
    if (const Status status = lp::run::check_continuous(p); !status.ok()) return status;
    return lp::run::most_infeasible_basic(e, p, infeas_p);
  });
}
