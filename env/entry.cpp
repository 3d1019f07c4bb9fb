#include "env/entry.h"

#include "env/handles.h"
#include "env/registry.h"

namespace tovik {
namespace {

const Environment* master_of(const Environment& env) {
  return env.parent != nullptr ? env.parent : &env;
}

bool refused_by_callback(const Environment& env, In in) {
  return env.in_callback != 0 && in == In::callback_refused;
}

}  // namespace

int check_handles(ConstEnvHandle env, Environment** env_out, In in) noexcept {
  if (!is_live(env, HandleKind::environment)) return TVK_ERROR_NO_ENVIRONMENT;
  *env_out = from_handle(env);
  return refused_by_callback(**env_out, in) ? TVK_ERROR_IN_INFO_CALLBACK : 0;
}

int check_handles(ConstEnvHandle env, ConstProbHandle lp, Environment** env_out, Problem** problem_out,
                  In in) noexcept {
  if (!is_live(env, HandleKind::environment)) return TVK_ERROR_NO_ENVIRONMENT;
  *env_out = from_handle(env);
  if (lp != nullptr) {
    if (!is_live(lp, HandleKind::problem)) return TVK_ERROR_NO_PROBLEM;
    *problem_out = from_handle(lp);
    if (master_of(*(*problem_out)->env) != master_of(**env_out)) return TVK_ERROR_NOT_MEMBER;
  }
  if (refused_by_callback(**env_out, in)) return TVK_ERROR_IN_INFO_CALLBACK;
  return lp == nullptr ? TVK_ERROR_NO_PROBLEM : 0;
}

}  // namespace tovik
