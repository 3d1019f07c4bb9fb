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

/* The checks of a handle that stands for a record of an environment. */
template <class Handle, class Record>
int check_record(ConstEnvHandle env, Handle handle, HandleKind kind, Environment** env_out,
                 Record** record_out, In in) noexcept {
  if (!is_live(env, HandleKind::environment)) return TVK_ERROR_NO_ENVIRONMENT;
  *env_out = from_handle(env);
  if (handle != nullptr) {
    if (!is_live(handle, kind)) return TVK_ERROR_NO_PROBLEM;
    *record_out = from_handle(handle);
    if (master_of(*(*record_out)->env) != master_of(**env_out)) return TVK_ERROR_NOT_MEMBER;
  }
  if (refused_by_callback(**env_out, in)) return TVK_ERROR_IN_INFO_CALLBACK;
  return handle == nullptr ? TVK_ERROR_NO_PROBLEM : 0;
}

}  // namespace

int check_handles(ConstEnvHandle env, Environment** env_out, In in) noexcept {
  if (!is_live(env, HandleKind::environment)) return TVK_ERROR_NO_ENVIRONMENT;
  *env_out = from_handle(env);
  return refused_by_callback(**env_out, in) ? TVK_ERROR_IN_INFO_CALLBACK : 0;
}

int check_handles(ConstEnvHandle env, ConstProbHandle lp, Environment** env_out, Problem** problem_out,
                  In in) noexcept {
  return check_record(env, lp, HandleKind::problem, env_out, problem_out, in);
}

int check_handles(ConstEnvHandle env, ConstNetProbHandle net, Environment** env_out,
                  NetworkProblem** network_out, In in) noexcept {
  return check_record(env, net, HandleKind::network, env_out, network_out, in);
}

}  // namespace tovik
