/* The network record: one minimum-cost flow problem behind a caller's handle. It belongs to the environment
 * in which it was created and goes with it at the latest. */
#pragma once

#include <memory>
#include <string>

#include "env/access_state.h"
#include "env/environment.h"
#include "env/registry.h"

namespace tovik {

namespace model {
class Network;
}

struct NetworkProblem {
  explicit NetworkProblem(Environment& environment);
  ~NetworkProblem();
  NetworkProblem(const NetworkProblem&) = delete;
  NetworkProblem& operator=(const NetworkProblem&) = delete;

  Environment* env;
  std::string name;
  AccessState use;  // by routines that are running
  std::unique_ptr<model::Network> network;
  LiveHandle live;  // last: a handle is live while the record is whole
};

}  // namespace tovik
