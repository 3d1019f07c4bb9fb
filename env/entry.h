/* The entry frame of every exported routine: handle checks against the registry of live handles, one worker
 * call, std::bad_alloc as 1001, one report, the int for the caller. No exception crosses the C boundary. */
#pragma once

#include <new>

#include "env/environment.h"
#include "env/problem.h"

namespace tovik {

enum class In { callback_refused, callback_allowed };

/* Looks handles up before touching them: 1002, 1009 for a problem that is not live, 1806, 1804, then 1009 for
 * a null problem. env_out is set unless the code is 1002; problem_out is set on success. */
int check_handles(ConstEnvHandle env, Environment** env_out, In in = In::callback_refused) noexcept;
int check_handles(ConstEnvHandle env, ConstProbHandle lp, Environment** env_out, Problem** problem_out,
                  In in = In::callback_refused) noexcept;

template <class Worker>
Status guarded(Worker&& worker) noexcept {
  try {
    return worker();
  } catch (const std::bad_alloc&) {
    return Status(1001);
  } catch (...) {
    return Status(1003);
  }
}

/* worker: Status(Environment&) */
template <class Worker>
int with_environment(ConstEnvHandle handle, Worker&& worker, In in = In::callback_refused) {
  Environment* env = nullptr;
  if (int code = check_handles(handle, &env, in); code != 0) {
    return env != nullptr ? report(*env, code) : code;
  }
  return report(*env, guarded([&] { return worker(*env); }));
}

/* Marks a problem while a routine changes or optimizes it. */
class ProblemUse {
 public:
  explicit ProblemUse(Problem& problem) : problem_(problem) { problem_.in_use = true; }
  ~ProblemUse() { problem_.in_use = false; }
  ProblemUse(const ProblemUse&) = delete;
  ProblemUse& operator=(const ProblemUse&) = delete;

 private:
  Problem& problem_;
};

/* worker: Status(Environment&, Problem&). This one only reads the problem. */
template <class Worker>
int with_problem(ConstEnvHandle handle, ConstProbHandle lp, Worker&& worker, In in = In::callback_refused) {
  Environment* env = nullptr;
  Problem* problem = nullptr;
  if (int code = check_handles(handle, lp, &env, &problem, in); code != 0) {
    return env != nullptr ? report(*env, code) : code;
  }
  return report(*env, guarded([&] { return worker(*env, *problem); }));
}

/* This one may change it: refused from a callback or message function that is called while another one does.
 */
template <class Worker>
int with_problem(ConstEnvHandle handle, ProbHandle lp, Worker&& worker, In in = In::callback_refused) {
  const auto use = [&](Environment& env, Problem& problem) -> Status {
    if (problem.in_use) return TVK_ERROR_IN_INFO_CALLBACK;
    const ProblemUse in_use(problem);
    return worker(env, problem);
  };
  return with_problem(handle, static_cast<ConstProbHandle>(lp), use, in);
}

}  // namespace tovik
