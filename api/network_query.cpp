#include "env/entry.h"
#include "model/network/query.h"

using namespace tovik;
using model::copy_range;

namespace {

/* The number that `count` takes from a network, 0 after an error. */
template <class Count>
int count_of(ConstEnvHandle env, ConstNetProbHandle net, Count&& count) {
  int result = 0;
  with_network(env, net, [&](Environment&, NetworkProblem& p) {
    result = count(*p.network);
    return Status();
  });
  return result;
}

}  // namespace

int TVKNETgetnumnodes(ConstEnvHandle env, ConstNetProbHandle net) {
  return count_of(env, net, [](const model::Network& network) { return network.num_nodes(); });
}

int TVKNETgetnumarcs(ConstEnvHandle env, ConstNetProbHandle net) {
  return count_of(env, net, [](const model::Network& network) { return network.num_arcs(); });
}

int TVKNETgetobjsen(ConstEnvHandle env, ConstNetProbHandle net) {
  return count_of(env, net, [](const model::Network& network) { return network.objective_sense(); });
}

int TVKNETgetsupply(ConstEnvHandle env, ConstNetProbHandle net, double* supply, int begin, int end) {
  return with_network(env, net, [&](Environment& e, NetworkProblem& p) {
    return copy_range(e, {"TVKNETgetsupply", begin, end}, p.network->supply(), supply);
  });
}

int TVKNETgetarcends(ConstEnvHandle env, ConstNetProbHandle net, int* tail, int* head, int begin, int end) {
  return with_network(env, net, [&](Environment& e, NetworkProblem& p) -> Status {
    const model::Range range{"TVKNETgetarcends", begin, end};
    if (tail != nullptr || head == nullptr) {
      if (Status s = copy_range(e, range, p.network->tail(), tail); !s.ok()) return s;
    }
    return head != nullptr ? copy_range(e, range, p.network->head(), head) : Status();
  });
}

int TVKNETgetobj(ConstEnvHandle env, ConstNetProbHandle net, double* obj, int begin, int end) {
  return with_network(env, net, [&](Environment& e, NetworkProblem& p) {
    return copy_range(e, {"TVKNETgetobj", begin, end}, p.network->cost(), obj);
  });
}

int TVKNETgetlb(ConstEnvHandle env, ConstNetProbHandle net, double* lb, int begin, int end) {
  return with_network(env, net, [&](Environment& e, NetworkProblem& p) {
    return copy_range(e, {"TVKNETgetlb", begin, end}, p.network->lower(), lb);
  });
}

int TVKNETgetub(ConstEnvHandle env, ConstNetProbHandle net, double* ub, int begin, int end) {
  return with_network(env, net, [&](Environment& e, NetworkProblem& p) {
    return copy_range(e, {"TVKNETgetub", begin, end}, p.network->upper(), ub);
  });
}

int TVKNETgetnodearcs(ConstEnvHandle env, ConstNetProbHandle net, int* arccnt_p, int* arcbeg, int* arc,
                      int arcspace, int* surplus_p, int begin, int end) {
  if (arccnt_p != nullptr) *arccnt_p = 0;
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_network(env, net, [&](Environment& e, NetworkProblem& p) {
    return model::get_node_arcs(e, *p.network, {"TVKNETgetnodearcs", begin, end},
                                {arccnt_p, arcbeg, arc, arcspace, surplus_p});
  });
}

int TVKNETgetnodename(ConstEnvHandle env, ConstNetProbHandle net, char** name, char* namestore,
                      int storespace, int* surplus_p, int begin, int end) {
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_network(env, net, [&](Environment& e, NetworkProblem& p) {
    return model::get_names(e, p.network->node_names(), p.network->num_nodes(),
                            {"TVKNETgetnodename", begin, end}, {name, namestore, storespace, surplus_p});
  });
}

int TVKNETgetarcname(ConstEnvHandle env, ConstNetProbHandle net, char** name, char* namestore, int storespace,
                     int* surplus_p, int begin, int end) {
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_network(env, net, [&](Environment& e, NetworkProblem& p) {
    return model::get_names(e, p.network->arc_names(), p.network->num_arcs(),
                            {"TVKNETgetarcname", begin, end}, {name, namestore, storespace, surplus_p});
  });
}

int TVKNETgetnodeindex(ConstEnvHandle env, ConstNetProbHandle net, const char* name, int* index_p) {
  return with_network(env, net, [&](Environment&, NetworkProblem& p) {
    return model::find_name(p.network->node_names(), name, index_p);
  });
}

int TVKNETgetarcindex(ConstEnvHandle env, ConstNetProbHandle net, const char* name, int* index_p) {
  return with_network(env, net, [&](Environment&, NetworkProblem& p) {
    return model::find_name(p.network->arc_names(), name, index_p);
  });
}

int TVKNETgetprobname(ConstEnvHandle env, ConstNetProbHandle net, char* buffer, int space, int* surplus_p) {
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_network(env, net, [&](Environment&, NetworkProblem& p) {
    return model::get_text(p.name.c_str(), buffer, space, surplus_p);
  });
}
