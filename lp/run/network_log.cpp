#include "lp/run/network_log.h"

#include "env/channel.h"
#include "include/tovik.h"
#include "lp/run/numbers.h"

namespace tovik::lp::run {
namespace {

/* Iterations between two lines. */
int log_interval(int arcs) {
  if (arcs < 100) return 10;
  if (arcs < 1000) return 100;
  if (arcs < 10000) return 1000;
  return arcs < 25000 ? 5000 : 10000;
}

}  // namespace

NetworkLog::NetworkLog(const Environment& env, Control& control, double sense, int display)
    : env_(env), control_(control), sense_(sense), display_(display) {
  if (display_ != 0) message(env_.results_channel, "Iteration log . . .\n");
}

void NetworkLog::report(const network::FlowProgress& now) {
  if (++lines_ % 10 == 0) message(env_.results_channel, "Elapsed time = %7.2f\n", control_.seconds());
  const int count = static_cast<int>(now.iterations);
  if (now.phase1) {
    message(env_.results_channel, "Iteration:%6d   Infeasibility     = %20.6f (%g)\n", count,
            now.infeasibility, times(sense_, display_ == 1 ? now.objective : now.penalized));
  } else {
    message(env_.results_channel, "Iteration:%6d   Objective         = %20.6f\n", count,
            times(sense_, now.objective));
  }
  control_.flush();
}

network::FlowOptions flow_options(const Environment& env, int arcs, int display) {
  using network::FlowPricing;
  network::FlowOptions options;
  options.optimality = number_or(env.settings.real(TVK_PARAM_NETEPOPT), options.optimality);
  options.feasibility = number_or(env.settings.real(TVK_PARAM_NETEPRHS), options.feasibility);
  options.iteration_limit = env.settings.integer(TVK_PARAM_NETITLIM);
  const int rule = env.settings.integer(TVK_PARAM_NETPPRIIND);
  options.pricing = rule == 2   ? FlowPricing::candidate_list
                    : rule == 3 ? FlowPricing::sorted_list
                                : FlowPricing::block;
  if (display != 0) options.report_interval = log_interval(arcs);
  return options;
}

}  // namespace tovik::lp::run
