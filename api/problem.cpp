/* Problem objects: creating, copying, freeing, types. */
#include <memory>

#include "env/entry.h"
#include "env/handles.h"
#include "model/routines/problem_objects.h"
#include "model/routines/type_change.h"

using namespace tovik;

namespace {

/* Runs `make` in the environment and hands its problem over to it: Status(Environment&,
 * std::unique_ptr<Problem>&) */
template <class Make>
ProbHandle add_problem(ConstEnvHandle handle, int* status_p, Make&& make) {
  Problem* added = nullptr;
  const int code = with_environment(handle, [&](Environment& env) -> Status {
    std::unique_ptr<Problem> problem;
    if (Status status = make(env, problem); !status.ok()) return status;
    env.problems.push_back(std::move(problem));
    added = env.problems.back().get();
    return 0;
  });
  if (status_p != nullptr) *status_p = code;
  return to_handle(added);
}

}  // namespace

ProbHandle TVKcreateprob(ConstEnvHandle env, int* status_p, const char* probname) {
  return add_problem(env, status_p, [&](Environment& e, std::unique_ptr<Problem>& problem) -> Status {
    if (probname == nullptr) return TVK_ERROR_NULL_POINTER;
    problem = std::make_unique<Problem>(e);
    problem->name = probname;
    return 0;
  });
}

ProbHandle TVKcloneprob(ConstEnvHandle env, ConstProbHandle lp, int* status_p) {
  return add_problem(env, status_p, [&](Environment& e, std::unique_ptr<Problem>& copy) -> Status {
    Environment* checked = nullptr;
    Problem* source = nullptr;
    if (int code = check_handles(env, lp, &checked, &source); code != 0) return code;
    const ReadAccess access(source->use);
    return model::clone_problem(e, *source, copy);
  });
}

int TVKfreeprob(ConstEnvHandle env, ProbHandle* lp_p) {
  const int code = with_environment(env, [&](Environment&) -> Status {
    if (lp_p == nullptr) return TVK_ERROR_NULL_POINTER;
    Environment* checked = nullptr;
    Problem* problem = nullptr;
    if (int bad = check_handles(env, *lp_p, &checked, &problem); bad != 0) return bad;
    if (problem->use.busy()) return TVK_ERROR_IN_INFO_CALLBACK;
    return model::free_problem(*problem);
  });
  if (code == 0) *lp_p = nullptr;
  return code;
}

int TVKgetprobtype(ConstEnvHandle env, ConstProbHandle lp) {
  int type = -1;
  with_problem(env, lp, [&](Environment&, Problem& problem) -> Status {
    type = problem.type;
    return 0;
  });
  return type;
}

int TVKchgprobtype(ConstEnvHandle env, ProbHandle lp, int type) {
  return with_problem(env, lp, [&](Environment& e, Problem& problem) {
    return model::change_problem_type(e, problem, type);
  });
}

int TVKcleanup(ConstEnvHandle env, ProbHandle lp, double eps) {
  return with_problem(env, lp,
                      [&](Environment&, Problem& problem) { return model::remove_small(problem, eps); });
}

int TVKunscaleprob(ConstEnvHandle env, ProbHandle lp) {
  return with_problem(env, lp, [](Environment&, Problem& problem) -> Status {
    invalidate(problem, Change::unscaling);
    return 0;
  });
}
