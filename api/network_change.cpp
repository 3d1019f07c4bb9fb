#include "env/entry.h"
#include "model/network/changes.h"
#include "model/network/linear_model.h"

using namespace tovik;

int TVKNETcopynet(ConstEnvHandle env, NetProbHandle net, int objsense, int numnodes, const double* supply,
                  TVKnames nodename, int numarcs, const int* tail, const int* head, const double* obj,
                  const double* lb, const double* ub, TVKnames arcname) {
  return with_network(env, net, [&](Environment& e, NetworkProblem& p) {
    return model::copy_network(e, p, objsense, {numnodes, supply, nodename},
                               {numarcs, tail, head, obj, lb, ub, arcname});
  });
}

int TVKNETaddnodes(ConstEnvHandle env, NetProbHandle net, int ncnt, const double* supply, TVKnames nodename) {
  return with_network(env, net, [&](Environment& e, NetworkProblem& p) {
    return model::add_nodes(e, p, {ncnt, supply, nodename});
  });
}

int TVKNETaddarcs(ConstEnvHandle env, NetProbHandle net, int acnt, const int* tail, const int* head,
                  const double* obj, const double* lb, const double* ub, TVKnames arcname) {
  return with_network(env, net, [&](Environment& e, NetworkProblem& p) {
    return model::add_arcs(e, p, {acnt, tail, head, obj, lb, ub, arcname});
  });
}

int TVKNETdelnodes(ConstEnvHandle env, NetProbHandle net, int begin, int end) {
  return with_network(
      env, net, [&](Environment& e, NetworkProblem& p) { return model::delete_nodes(e, p, begin, end); });
}

int TVKNETdelarcs(ConstEnvHandle env, NetProbHandle net, int begin, int end) {
  return with_network(
      env, net, [&](Environment& e, NetworkProblem& p) { return model::delete_arcs(e, p, begin, end); });
}

int TVKNETdelsetnodes(ConstEnvHandle env, NetProbHandle net, int* delstat) {
  return with_network(env, net,
                      [&](Environment&, NetworkProblem& p) { return model::delete_node_set(p, delstat); });
}

int TVKNETdelsetarcs(ConstEnvHandle env, NetProbHandle net, int* delstat) {
  return with_network(env, net,
                      [&](Environment&, NetworkProblem& p) { return model::delete_arc_set(p, delstat); });
}

int TVKNETchgsupply(ConstEnvHandle env, NetProbHandle net, int cnt, const int* indices,
                    const double* values) {
  return with_network(env, net, [&](Environment& e, NetworkProblem& p) {
    return model::change_supply(e, p, {cnt, indices, values});
  });
}

int TVKNETchgobj(ConstEnvHandle env, NetProbHandle net, int cnt, const int* indices, const double* values) {
  return with_network(env, net, [&](Environment& e, NetworkProblem& p) {
    return model::change_costs(e, p, {cnt, indices, values});
  });
}

int TVKNETchgbds(ConstEnvHandle env, NetProbHandle net, int cnt, const int* indices, const char* lu,
                 const double* bd) {
  return with_network(env, net, [&](Environment& e, NetworkProblem& p) {
    return model::change_arc_bounds(e, p, {cnt, indices, lu, bd});
  });
}

int TVKNETchgarcends(ConstEnvHandle env, NetProbHandle net, int cnt, const int* indices, const int* tail,
                     const int* head) {
  return with_network(env, net, [&](Environment& e, NetworkProblem& p) {
    return model::change_arc_ends(e, p, {cnt, indices, tail, head});
  });
}

int TVKNETchgobjsen(ConstEnvHandle env, NetProbHandle net, int objsense) {
  return with_network(env, net, [&](Environment&, NetworkProblem& p) -> Status {
    const int sense = objsense < 0 ? -1 : 1;
    if (sense != p.network->objective_sense()) p.values_changed();
    p.network->set_objective_sense(sense);
    return {};
  });
}

int TVKNETchgnodename(ConstEnvHandle env, NetProbHandle net, int cnt, const int* indices, TVKnames newname) {
  return with_network(env, net, [&](Environment& e, NetworkProblem& p) {
    return model::change_node_names(e, p, {cnt, indices, newname});
  });
}

int TVKNETchgarcname(ConstEnvHandle env, NetProbHandle net, int cnt, const int* indices, TVKnames newname) {
  return with_network(env, net, [&](Environment& e, NetworkProblem& p) {
    return model::change_arc_names(e, p, {cnt, indices, newname});
  });
}

int TVKNETdelnames(ConstEnvHandle env, NetProbHandle net) {
  return with_network(env, net, [](Environment&, NetworkProblem& p) -> Status {
    p.network->delete_names();
    return {};
  });
}

int TVKNETchgprobname(ConstEnvHandle env, NetProbHandle net, const char* probname) {
  return with_network(
      env, net, [&](Environment&, NetworkProblem& p) { return model::change_network_name(p, probname); });
}

int TVKcopynettolp(ConstEnvHandle env, ProbHandle lp, ConstNetProbHandle net) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    Environment* checked = nullptr;
    NetworkProblem* network = nullptr;
    if (int code = check_handles(env, net, &checked, &network); code != 0) return code;
    const ReadAccess access(network->use);
    return model::copy_network_to_lp(e, p, *network);
  });
}
