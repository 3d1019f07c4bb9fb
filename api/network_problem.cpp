/* Network objects: creating and freeing. */
#include <memory>
#include <utility>
#include <vector>

#include "env/entry.h"
#include "env/handles.h"

using namespace tovik;

NetProbHandle TVKNETcreateprob(ConstEnvHandle env, int* status_p, const char* probname) {
  NetworkProblem* added = nullptr;
  const int code = with_environment(env, [&](Environment& e) -> Status {
    if (probname == nullptr) return TVK_ERROR_NULL_POINTER;
    auto network = std::make_unique<NetworkProblem>(e);
    network->name = probname;
    e.networks.push_back(std::move(network));
    added = e.networks.back().get();
    return 0;
  });
  if (status_p != nullptr) *status_p = code;
  return to_handle(added);
}

int TVKNETfreeprob(ConstEnvHandle env, NetProbHandle* net_p) {
  const int code = with_environment(env, [&](Environment&) -> Status {
    if (net_p == nullptr) return TVK_ERROR_NULL_POINTER;
    Environment* checked = nullptr;
    NetworkProblem* network = nullptr;
    if (int bad = check_handles(env, *net_p, &checked, &network); bad != 0) return bad;
    if (network->use.busy()) return TVK_ERROR_IN_INFO_CALLBACK;
    std::erase_if(network->env->networks, [&](const auto& other) { return other.get() == network; });
    return 0;
  });
  if (code == 0) *net_p = nullptr;
  return code;
}
