#include "env/entry.h"

#include "env/handles.h"

namespace tovik {
namespace {

bool refused_by_callback(const Environment& env, CallbackContext context) {
  return env.in_callback != 0 && context == CallbackContext::refused;
}

/* The checks of a handle that stands for a record of an environment. */
template <class Handle, class Record>
int check_record(ConstEnvHandle env, Handle handle, Environment** env_out, Record** record_out,
                 CallbackContext context) noexcept {
  *env_out = from_handle(env);
  if (*env_out == nullptr) return TVK_ERROR_NO_ENVIRONMENT;
  if (handle != nullptr) {
    *record_out = from_handle(handle);
    if (*record_out == nullptr) return TVK_ERROR_NO_PROBLEM;
    if (&(*record_out)->env->master() != &(*env_out)->master()) return TVK_ERROR_NOT_MEMBER;
  }
  if (refused_by_callback(**env_out, context)) return TVK_ERROR_IN_INFO_CALLBACK;
  return handle == nullptr ? TVK_ERROR_NO_PROBLEM : 0;
}

}  // namespace

int check_handles(ConstEnvHandle env, Environment** env_out, CallbackContext context) noexcept {
  *env_out = from_handle(env);
  if (*env_out == nullptr) return TVK_ERROR_NO_ENVIRONMENT;
  return refused_by_callback(**env_out, context) ? TVK_ERROR_IN_INFO_CALLBACK : 0;
}

int check_handles(ConstEnvHandle env, ConstProbHandle lp, Environment** env_out, Problem** problem_out,
                  CallbackContext context) noexcept {
  return check_record(env, lp, env_out, problem_out, context);
}

int check_handles(ConstEnvHandle env, ConstNetProbHandle net, Environment** env_out,
                  NetworkProblem** network_out, CallbackContext context) noexcept {
  return check_record(env, net, env_out, network_out, context);
}

}  // namespace tovik
