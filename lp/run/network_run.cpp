#include "lp/run/network_run.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <string>
#include <utility>

#include "env/channel.h"
#include "env/handles.h"
#include "include/tovik.h"
#include "lp/base/control.h"
#include "lp/base/sum.h"
#include "lp/binding/build_lp.h"
#include "lp/binding/callback_frame.h"
#include "lp/binding/engine_control.h"
#include "lp/network/solve.h"
#include "lp/run/network_log.h"
#include "lp/run/numbers.h"
#include "lp/run/simplex_run.h"
#include "model/network/network.h"
#include "model/routines/check.h"

namespace tovik::lp::run {
namespace {

/* The engine's outside for a network object. */
class NetworkControl final : public EngineLimits {
 public:
  NetworkControl(Environment& env, NetworkProblem& problem) : EngineLimits(env), problem_(problem) {}
  Stop iteration_callback(const ProgressSource& now) override {
    const auto& slot = env_.callbacks.network;
    if (!slot) return Stop::none;
    const CallbackFrame frame(env_, &problem_, Numbers::of_problem, now, problem_.network->objective_sense());
    const int from = static_cast<int>(now.origin());
    return slot.function(to_handle(&env_), &problem_, from, slot.handle) != 0 ? Stop::user_abort : Stop::none;
  }

 private:
  NetworkProblem& problem_;
};

/* The network as the engine takes it: minimization, infinite bounds as kInf. */
struct FlowArrays {
  explicit FlowArrays(const model::Network& from)
      : network(from),
        cost(from.cost().begin(), from.cost().end()),
        lower(from.lower().begin(), from.lower().end()),
        upper(from.upper().begin(), from.upper().end()) {
    if (from.objective_sense() < 0)
      for (double& c : cost) c = -c;
    for (double& b : lower) b = stored_lower(b);
    for (double& b : upper) b = stored_upper(b);
  }
  network::FlowProblem view() const {
    return {network.supply(), network.tail(), network.head(), cost, lower, upper};
  }
  const model::Network& network;
  std::vector<double> cost, lower, upper;
};

network::FlowBasis start_basis(const Environment& env, const NetworkProblem& problem) {
  network::FlowBasis basis;
  if (env.settings.integer(TVK_PARAM_ADVIND) == 0) return basis;
  for (const int code : problem.arc_status) basis.arcs.push_back(static_cast<BasisStatus>(code));
  for (const int code : problem.node_status) basis.nodes.push_back(static_cast<BasisStatus>(code));
  return basis;
}

void store(const model::Network& network, network::FlowAnswer&& answer, NetworkProblem& problem) {
  const double sense = network.objective_sense();
  auto solution = std::make_unique<NetworkSolution>();
  solution->status = status_code(answer.outcome, false);
  solution->primal_feasible = answer.primal_feasible;
  solution->dual_feasible = answer.dual_feasible;
  solution->objective = times(sense, answer.objective);
  std::vector<CompensatedSum> slack(answer.potential.size());
  for (std::size_t i = 0; i < slack.size(); ++i) slack[i].add(network.supply()[i]);
  for (std::size_t a = 0; a < answer.flow.size(); ++a) {
    const auto tail = static_cast<std::size_t>(network.tail()[a]),
               head = static_cast<std::size_t>(network.head()[a]);
    if (tail == head) continue;
    slack[tail].add(-answer.flow[a]);
    slack[head].add(answer.flow[a]);
  }
  for (const CompensatedSum& s : slack) solution->slack.push_back(s.value());
  for (auto* values : {&answer.reduced_cost, &answer.potential})
    for (double& v : *values) v = times(sense, v);
  solution->flow = std::move(answer.flow);
  solution->reduced_cost = std::move(answer.reduced_cost);
  solution->potential = std::move(answer.potential);
  std::vector<int> arc_status, node_status;
  for (const BasisStatus at : answer.basis.arcs) arc_status.push_back(static_cast<int>(at));
  for (const BasisStatus at : answer.basis.nodes) node_status.push_back(static_cast<int>(at));
  problem.solution = std::move(solution);
  problem.arc_status = std::move(arc_status);
  problem.node_status = std::move(node_status);
  problem.iterations = static_cast<int>(answer.iterations);
  problem.phase1_iterations = static_cast<int>(answer.phase1_iterations);
}

Status check_finite(Environment& env, const model::Network& network) {
  for (const std::span<const double> values : {network.supply(), network.cost()})
    if (Status s = model::check_numbers(env, static_cast<int>(values.size()), values.data()); !s.ok())
      return s;
  for (const std::span<const double> values : {network.lower(), network.upper()}) {
    const auto nan = std::ranges::find_if(values, [](double v) { return std::isnan(v); });
    if (nan != values.end()) return fail(env, TVK_ERROR_NOT_A_NUMBER, static_cast<int>(nan - values.begin()));
  }
  return {};
}

void warn_of_crossed_bounds(Environment& env, const model::Network& network, int arc) {
  const model::NameTable& names = network.arc_names();
  const std::string name = names.empty() ? "a" + std::to_string(arc + 1) : names.name(arc);
  message(env.warning_channel, "Warning:  Bounds on '%s' contradictory.\n", name.c_str());
}

}  // namespace

Status run_network(Environment& env, NetworkProblem& problem) {
  const model::Network& network = *problem.network;
  if (const Status s = check_finite(env, network); !s.ok()) return s;
  const FlowArrays arrays(network);
  const int display = env.settings.integer(TVK_PARAM_NETDISPLAY);
  NetworkControl control(env, problem);
  NetworkLog log(env, control, network.objective_sense(), display);
  network::FlowAnswer answer =
      network::solve(arrays.view(), start_basis(env, problem), flow_options(env, network.num_arcs(), display),
                     control, display != 0 ? &log : nullptr);
  if (answer.crossed_arc >= 0) warn_of_crossed_bounds(env, network, answer.crossed_arc);
  store(network, std::move(answer), problem);
  return {};
}

Status copy_network_base(Environment& env, NetworkProblem& problem, const int* arc_status,
                         const int* node_status) {
  const int arcs = problem.network->num_arcs(), nodes = problem.network->num_nodes();
  if ((arc_status == nullptr && arcs > 0) || (node_status == nullptr && nodes > 0))
    return TVK_ERROR_NULL_POINTER;
  const auto bad = [](int code) { return code < TVK_AT_LOWER || code > TVK_FREE_SUPER; };
  for (int a = 0; a < arcs; ++a)
    if (bad(arc_status[a])) return fail(env, TVK_ERROR_BASIS_STATUS_ENTRY, a);
  for (int i = 0; i < nodes; ++i)
    if (bad(node_status[i])) return fail(env, TVK_ERROR_BASIS_STATUS_ENTRY, i);
  std::vector<int> of_arcs(arc_status, arc_status + arcs), of_nodes(node_status, node_status + nodes);
  problem.arc_status = std::move(of_arcs);
  problem.node_status = std::move(of_nodes);
  problem.solution.reset();
  return {};
}

}  // namespace tovik::lp::run
