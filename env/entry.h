/* The entry frame of every exported routine: handle checks against the registry of live handles, one worker
 * call, std::bad_alloc as 1001, one report, the int for the caller. No exception crosses the C boundary. */
#pragma once

#include <new>

#include "env/environment.h"
#include "env/network_problem.h"
#include "env/problem.h"

namespace tovik {

enum class CallbackContext { refused, allowed };

/* Looks handles up before touching them: 1002, 1009 for a problem or network that is not live, 1806, 1804,
 * then 1009 for a null one. env_out is set unless the code is 1002; problem_out (network_out) is set on
 * success. */
int check_handles(ConstEnvHandle env, Environment** env_out,
                  CallbackContext context = CallbackContext::refused) noexcept;
int check_handles(ConstEnvHandle env, ConstProbHandle lp, Environment** env_out, Problem** problem_out,
                  CallbackContext context = CallbackContext::refused) noexcept;
int check_handles(ConstEnvHandle env, ConstNetProbHandle net, Environment** env_out,
                  NetworkProblem** network_out, CallbackContext context = CallbackContext::refused) noexcept;

template <class Worker>
Status guarded(Worker&& worker) noexcept {
  try {
    return worker();
  } catch (const std::bad_alloc&) {
    return Status(TVK_ERROR_OUT_OF_MEMORY);
  } catch (...) {
    return Status(TVK_ERROR_BAD_ARGUMENT);
  }
}

/* worker: Status(Environment&) */
template <class Worker>
int with_environment(ConstEnvHandle handle, Worker&& worker,
                     CallbackContext context = CallbackContext::refused) {
  Environment* env = nullptr;
  if (int code = check_handles(handle, &env, context); code != 0) {
    return env != nullptr ? report(*env, code) : code;
  }
  const Entrance entrance(*env);
  return report(*env, guarded([&] { return worker(*env); }));
}

namespace detail {

template <class Record, class Handle, class Worker>
int with_record(ConstEnvHandle env_handle, Handle handle, Worker&& worker, CallbackContext context) {
  Environment* env = nullptr;
  Record* record = nullptr;
  if (int code = check_handles(env_handle, handle, &env, &record, context); code != 0) {
    return env != nullptr ? report(*env, code) : code;
  }
  const Entrance entrance(*env);
  return report(*env, guarded([&] { return worker(*env, *record); }));
}

/* The worker, refused from a callback or message function of a routine that is at work on the record. */
template <class Record, class Worker>
auto with_write_access(Worker& worker) {
  return [&worker](Environment& env, Record& record) -> Status {
    if (record.use.busy()) return TVK_ERROR_IN_INFO_CALLBACK;
    const WriteAccess access(record.use);
    return worker(env, record);
  };
}

template <class Record, class Worker>
auto with_read_access(Worker& worker) {
  return [&worker](Environment& env, Record& record) -> Status {
    const ReadAccess access(record.use);
    return worker(env, record);
  };
}

}  // namespace detail

/* worker: Status(Environment&, Problem&). This one only reads the problem. */
template <class Worker>
int with_problem(ConstEnvHandle env, ConstProbHandle lp, Worker&& worker,
                 CallbackContext context = CallbackContext::refused) {
  return detail::with_record<Problem>(env, lp, detail::with_read_access<Problem>(worker), context);
}

/* This one may change it. */
template <class Worker>
int with_problem(ConstEnvHandle env, ProbHandle lp, Worker&& worker,
                 CallbackContext context = CallbackContext::refused) {
  return detail::with_record<Problem>(env, static_cast<ConstProbHandle>(lp),
                                      detail::with_write_access<Problem>(worker), context);
}

/* The same for networks. worker: Status(Environment&, NetworkProblem&) */
template <class Worker>
int with_network(ConstEnvHandle env, ConstNetProbHandle net, Worker&& worker,
                 CallbackContext context = CallbackContext::refused) {
  return detail::with_record<NetworkProblem>(env, net, detail::with_read_access<NetworkProblem>(worker),
                                             context);
}
template <class Worker>
int with_network(ConstEnvHandle env, NetProbHandle net, Worker&& worker,
                 CallbackContext context = CallbackContext::refused) {
  return detail::with_record<NetworkProblem>(env, static_cast<ConstNetProbHandle>(net),
                                             detail::with_write_access<NetworkProblem>(worker), context);
}

}  // namespace tovik
