#include "cli/solve/network.h"

#include "cli/input.h"
#include "cli/solve/progress.h"
#include "cli/solve/report.h"
#include "cli/solve/stopwatch.h"
#include "cli/solve/violations.h"

namespace tovik::cli {

namespace {

void read_network(const SolveContext& context, const Network& network, Outcome& outcome) {
  const Stopwatch watch;
  context.console.set_label(outcome.file);
  {
    const Signals::ExitOnFirstSignal guard(context.signals);
    context.environment.check(
        TVKNETreadcopyprob(context.environment.handle(), network.handle(), outcome.file.c_str()));
  }
  context.console.set_label("");
  outcome.read_seconds = watch.seconds();
  outcome.rows = network.nodes();
  outcome.columns = network.arcs();
}

void optimize(const SolveContext& context, const Network& network, Outcome& outcome) {
  const ProgressLines progress(context.environment, context.console);
  const Stopwatch watch;
  const int code = TVKNETprimopt(context.environment.handle(), network.handle());
  outcome.solve_seconds = watch.seconds();
  context.environment.check(code);
}

void collect(const SolveContext& context, const Network& network, Outcome& outcome) {
  ConstEnvHandle env = context.environment.handle();
  outcome.status = TVKNETgetstat(env, network.handle());
  outcome.status_text = context.environment.status_text(*outcome.status);
  outcome.method = "network";
  outcome.threads = 1;
  outcome.simplex_iterations = TVKNETgetitcnt(env, network.handle());
  int primal_feasible = 0, dual_feasible = 0;
  context.environment.check(TVKNETsolninfo(env, network.handle(), &primal_feasible, &dual_feasible));
  const bool optimal = is_optimal(*outcome.status);
  outcome.has_values = true;
  outcome.feasible = primal_feasible != 0 || optimal;
  outcome.exit_status = exit_status_of(*outcome.status, outcome.feasible);
  double objective = 0;
  context.environment.check(TVKNETgetobjval(env, network.handle(), &objective));
  if (outcome.exit_status == ExitStatus::infeasible) return;
  outcome.so_far = !outcome.feasible;
  outcome.violations = check_flow(network, {objective, optimal, false});
  if (!outcome.feasible) return;
  outcome.objective = objective;
  if (optimal) outcome.best_bound = objective, outcome.gap = 0.0;
  if (outcome.violations->failed) outcome.exit_status = ExitStatus::numerical_failure;
}

void collect_values(const SolveContext& context, const Network& network, Outcome& outcome) {
  const int arcs = network.arcs(), nodes = network.nodes();
  if (!outcome.feasible || !wants_values(context.options, arcs)) return;
  const bool duals = outcome.violations->has_duals;
  const auto collected = [duals](std::vector<std::string> names, const std::vector<double>& value,
                                 const std::vector<double>& dual) {
    std::vector<Value> all;
    for (std::size_t k = 0; k < names.size(); ++k)
      all.push_back({std::move(names[k]), value[k], duals ? std::optional(dual[k]) : std::nullopt});
    return all;
  };
  outcome.column_values = collected(network.arc_names(0, arcs - 1), network.all(TVKNETgetx, arcs),
                                    network.all(TVKNETgetdj, arcs));
  std::vector<double> net_supply = network.all(TVKNETgetsupply, nodes);
  const std::vector<double> slack = network.all(TVKNETgetslack, nodes);
  for (std::size_t v = 0; v < slack.size(); ++v) net_supply[v] -= slack[v];
  outcome.row_values =
      collected(network.node_names(0, nodes - 1), net_supply, network.all(TVKNETgetpi, nodes));
}

}  // namespace

bool is_solved_as_network(const SolveContext& context, const std::string& file) {
  const Options& options = context.options;
  const int method = context.environment.integer_parameter(TVK_PARAM_LPMETHOD);
  const bool any_file = !options.basis_file.empty() || !options.start_file.empty() ||
                        !options.filter_file.empty() || !options.solution_file.empty() ||
                        !options.pool_file.empty() || !options.new_basis_file.empty() ||
                        !options.model_file.empty();
  return is_network_file(file) && (method == 0 || method == 3) && !any_file && !options.statistics &&
         !options.populate;
}

void solve_network(const SolveContext& context, const std::string& file, Outcome& outcome, Stage& stage) {
  outcome.network = true;
  const Network network(context.environment, file);
  read_network(context, network, outcome);
  context.console.log(size_line(outcome));
  stage = Stage::solving;
  optimize(context, network, outcome);
  collect(context, network, outcome);
  collect_values(context, network, outcome);
  outcome.peak_memory_mb = peak_memory_mb();
}

}  // namespace tovik::cli
