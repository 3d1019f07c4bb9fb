/* Networks: optimization, solution and basis. */
#include <algorithm>

#include "api/optimizer_frame.h"
#include "env/entry.h"
#include "lp/run/network_run.h"
#include "model/network/network.h"
#include "model/routines/query.h"

using namespace tovik;

namespace {

template <class Worker>
int with_solution(ConstEnvHandle env, ConstNetProbHandle net, Worker&& worker) {
  return with_network(env, net, [&](Environment& e, NetworkProblem& p) -> Status {
    if (p.solution == nullptr) return TVK_ERROR_NO_SOLUTION;
    return worker(e, p, *p.solution);
  });
}

struct Query {
  const char* routine;
  const std::vector<double> NetworkSolution::*values;
  bool of_arcs;
};

/* Entries begin..end of one vector of the solution. */
int get_values(ConstEnvHandle env, ConstNetProbHandle net, const Query& query, double* out, int begin,
               int end) {
  return with_network(env, net, [&](Environment& e, NetworkProblem& p) -> Status {
    if (out == nullptr) return TVK_ERROR_NULL_POINTER;
    const int count = query.of_arcs ? p.network->num_arcs() : p.network->num_nodes();
    if (Status s = model::check_range(e, query.routine, begin, end, count); !s.ok()) return s;
    if (p.solution == nullptr) return TVK_ERROR_NO_SOLUTION;
    const std::vector<double>& values = (*p.solution).*query.values;
    if (begin <= end) std::copy(values.begin() + begin, values.begin() + end + 1, out);
    return {};
  });
}

int get_count(ConstEnvHandle env, ConstNetProbHandle net, int NetworkProblem::*count) {
  int result = 0;
  with_network(env, net, [&](Environment&, NetworkProblem& p) {
    result = p.*count;
    return Status();
  });
  return result;
}

template <class Value>
void put(Value* to, Value value) {
  if (to != nullptr) *to = value;
}

template <class Value>
void put_all(Value* to, const std::vector<Value>& values) {
  if (to != nullptr) std::copy(values.begin(), values.end(), to);
}

}  // namespace

int TVKNETprimopt(ConstEnvHandle env, NetProbHandle net) {
  return with_network(env, net, [](Environment& e, NetworkProblem& p) {
    const api::OptimizerFrame frame(e);
    const api::Profile profile(e, 2);
    return lp::run::run_network(e, p);
  });
}

int TVKNETgetstat(ConstEnvHandle env, ConstNetProbHandle net) {
  int status = 0;
  with_network(env, net, [&](Environment&, NetworkProblem& p) {
    if (p.solution != nullptr) status = p.solution->status;
    return Status();
  });
  return status;
}

int TVKNETsolution(ConstEnvHandle env, ConstNetProbHandle net, int* netstat_p, double* objval_p, double* x,
                   double* pi, double* slack, double* dj) {
  return with_solution(env, net,
                       [&](Environment&, NetworkProblem&, const NetworkSolution& solution) -> Status {
                         put(netstat_p, solution.status);
                         put(objval_p, solution.objective);
                         put_all(x, solution.flow);
                         put_all(pi, solution.potential);
                         put_all(slack, solution.slack);
                         put_all(dj, solution.reduced_cost);
                         return {};
                       });
}

int TVKNETsolninfo(ConstEnvHandle env, ConstNetProbHandle net, int* pfeasind_p, int* dfeasind_p) {
  return with_network(env, net, [&](Environment&, NetworkProblem& p) {
    put(pfeasind_p, p.solution != nullptr && p.solution->primal_feasible ? 1 : 0);
    put(dfeasind_p, p.solution != nullptr && p.solution->dual_feasible ? 1 : 0);
    return Status();
  });
}

int TVKNETgetobjval(ConstEnvHandle env, ConstNetProbHandle net, double* objval_p) {
  return with_network(env, net, [&](Environment&, NetworkProblem& p) -> Status {
    if (objval_p == nullptr) return TVK_ERROR_NULL_POINTER;
    if (p.solution == nullptr) return TVK_ERROR_NO_SOLUTION;
    *objval_p = p.solution->objective;
    return {};
  });
}

int TVKNETgetx(ConstEnvHandle env, ConstNetProbHandle net, double* x, int begin, int end) {
  return get_values(env, net, {"TVKNETgetx", &NetworkSolution::flow, true}, x, begin, end);
}

int TVKNETgetpi(ConstEnvHandle env, ConstNetProbHandle net, double* pi, int begin, int end) {
  return get_values(env, net, {"TVKNETgetpi", &NetworkSolution::potential, false}, pi, begin, end);
}

int TVKNETgetslack(ConstEnvHandle env, ConstNetProbHandle net, double* slack, int begin, int end) {
  return get_values(env, net, {"TVKNETgetslack", &NetworkSolution::slack, false}, slack, begin, end);
}

int TVKNETgetdj(ConstEnvHandle env, ConstNetProbHandle net, double* dj, int begin, int end) {
  return get_values(env, net, {"TVKNETgetdj", &NetworkSolution::reduced_cost, true}, dj, begin, end);
}

int TVKNETgetitcnt(ConstEnvHandle env, ConstNetProbHandle net) {
  return get_count(env, net, &NetworkProblem::iterations);
}

int TVKNETgetphase1cnt(ConstEnvHandle env, ConstNetProbHandle net) {
  return get_count(env, net, &NetworkProblem::phase1_iterations);
}

int TVKNETgetbase(ConstEnvHandle env, ConstNetProbHandle net, int* astat, int* nstat) {
  return with_network(env, net, [&](Environment&, NetworkProblem& p) -> Status {
    if (p.node_status.empty()) return TVK_ERROR_NO_BASIS;
    put_all(astat, p.arc_status);
    put_all(nstat, p.node_status);
    return {};
  });
}

int TVKNETcopybase(ConstEnvHandle env, NetProbHandle net, const int* astat, const int* nstat) {
  return with_network(env, net, [&](Environment& e, NetworkProblem& p) {
    return lp::run::copy_network_base(e, p, astat, nstat);
  });
}
