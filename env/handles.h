/* The handles that callers hold and the records behind them. */
#pragma once

#include "env/environment.h"
#include "env/network_problem.h"
#include "env/problem.h"

namespace tovik {

inline EnvHandle to_handle(const Environment* env) {
  return env != nullptr ? static_cast<EnvHandle>(env->live.value()) : nullptr;
}
inline ProbHandle to_handle(const Problem* problem) {
  return problem != nullptr ? static_cast<ProbHandle>(problem->live.value()) : nullptr;
}
inline NetProbHandle to_handle(const NetworkProblem* network) {
  return network != nullptr ? static_cast<NetProbHandle>(network->live.value()) : nullptr;
}
inline ChannelHandle to_handle(const Channel* channel) {
  return channel != nullptr ? static_cast<ChannelHandle>(channel->handle()) : nullptr;
}

/* Null for a handle that is not live. A read-only handle is the caller's promise, not a different record. */
inline Environment* from_handle(ConstEnvHandle env) {
  return static_cast<Environment*>(find_record(env, HandleKind::environment));
}
inline Problem* from_handle(ConstProbHandle lp) {
  return static_cast<Problem*>(find_record(lp, HandleKind::problem));
}
inline NetworkProblem* from_handle(ConstNetProbHandle net) {
  return static_cast<NetworkProblem*>(find_record(net, HandleKind::network));
}
inline Channel* from_handle(ChannelHandle channel) {
  return static_cast<Channel*>(find_record(channel, HandleKind::channel));
}

}  // namespace tovik
