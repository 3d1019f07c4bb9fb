#include "lp/run/network_start_optimizer.h"

#include "env/channel.h"
#include "include/tovik.h"
#include "lp/network/extraction.h"
#include "lp/network/solve.h"
#include "lp/run/network_log.h"
#include "lp/run/numbers.h"
#include "lp/run/simplex_optimizer.h"
#include "lp/run/user_point.h"
#include "model/store/model.h"

namespace tovik::lp::run {
namespace {

const char* ending(Outcome outcome) {
  switch (outcome) {
    case Outcome::optimal:
      return "Network - Optimal:  ";
    case Outcome::unbounded:
      return "Network - Unbounded:  ";
    case Outcome::infeasible:
      return "Network - Infeasible:  ";
    case Outcome::iteration_limit:
      return "Network - Iteration limit exceeded:  ";
    case Outcome::time_limit:
      return "Network - Time limit exceeded:  ";
    case Outcome::tick_limit:
      return "Network - Deterministic time limit exceeded:  ";
    case Outcome::user_abort:
      return "Network - Aborted:  ";
    default:
      return "Network - Unbounded or Infeasible:  ";
  }
}

void report(const Environment& env, const network::FlowAnswer& answer, double sense, double seconds) {
  Channel* const channel = env.results_channel;
  message(channel, "%s", ending(answer.outcome));
  if (answer.infeasibility > 0) {
    message(channel, "Infeasibility = %19.10e\n", answer.infeasibility);
  } else {
    message(channel, "Objective = %19.10e\n", times(sense, answer.objective));
  }
  message(channel, "Network time = %7.2f sec.  Iterations = %d (%d)\n", seconds,
          static_cast<int>(answer.iterations), static_cast<int>(answer.phase1_iterations));
}

Basis network_basis(const LpData& lp, const RunContext& context) {
  const Environment& env = context.env;
  const int display = env.settings.integer(TVK_PARAM_NETDISPLAY);
  Control& control = context.control;
  NetworkCounts& counts = *context.algorithm.network;
  const double begin = control.seconds();
  const std::uint64_t work_begin = env.work->ticks;
  const network::ExtractedNetwork found = network::extract_network(
      lp, static_cast<network::Reach>(env.settings.integer(TVK_PARAM_NETFIND)), control);
  const double extracted = control.seconds();
  counts.extraction_seconds += extracted - begin;
  if (display != 0) message(env.results_channel, "Extraction time = %7.2f sec.\n", extracted - begin);
  const double sense = context.problem.model->objective_sense();
  const network::FlowProblem problem = found.problem();
  NetworkLog log(env, control, sense, display);
  const network::FlowAnswer answer = network::solve(
      problem, {}, flow_options(env, problem.num_arcs(), display), control, display != 0 ? &log : nullptr);
  counts.nodes = problem.num_nodes();
  counts.arcs = problem.num_arcs();
  counts.iterations += answer.iterations;
  counts.phase1_iterations += answer.phase1_iterations;
  counts.seconds += control.seconds() - extracted;
  counts.ticks += static_cast<std::int64_t>(env.work->ticks - work_begin);
  if (display != 0) report(env, answer, sense, control.seconds() - extracted);
  return network::basis_of_lp(lp, found, answer.basis);
}

}  // namespace

Outcome NetworkStartOptimizer::optimize(const RunContext& context) {
  const Algorithm simplex{context.algorithm.method};
  const RunContext rest{context.env, context.problem, simplex, context.control, context.observer};
  SimplexOptimizer optimizer(lp_, rest);
  optimizer.set_start(network_basis(lp_, context));
  const Outcome outcome = optimizer.optimize(rest);
  statistics_ = optimizer.statistics();
  answer_ = optimizer.release_answer();
  return outcome;
}

void NetworkStartOptimizer::evaluate_start() {
  answer_ = slack_point(lp_);
}

}  // namespace tovik::lp::run
