/* The pointers that callers hold and the records behind them. Only for handles that the registry knows to be
 * live. */
#pragma once

#include "env/environment.h"
#include "env/network_problem.h"
#include "env/problem.h"

namespace tovik {

inline EnvHandle to_handle(Environment* env) {
  return reinterpret_cast<EnvHandle>(env);
}
inline ProbHandle to_handle(Problem* problem) {
  return reinterpret_cast<ProbHandle>(problem);
}
inline NetProbHandle to_handle(NetworkProblem* network) {
  return reinterpret_cast<NetProbHandle>(network);
}
inline ChannelHandle to_handle(Channel* channel) {
  return reinterpret_cast<ChannelHandle>(channel);
}

/* A read-only handle is the caller's promise, not a different record. */
inline Environment* from_handle(ConstEnvHandle env) {
  return reinterpret_cast<Environment*>(const_cast<EnvHandle>(env));
}
inline Problem* from_handle(ConstProbHandle lp) {
  return reinterpret_cast<Problem*>(const_cast<ProbHandle>(lp));
}
inline NetworkProblem* from_handle(ConstNetProbHandle net) {
  return reinterpret_cast<NetworkProblem*>(const_cast<NetProbHandle>(net));
}
inline Channel* from_handle(ChannelHandle channel) {
  return reinterpret_cast<Channel*>(channel);
}

}  // namespace tovik
