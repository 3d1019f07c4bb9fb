/* The log of the network simplex and the parameters that steer it, for network objects and networks in LPs. */
#pragma once

#include <cstdint>

#include "env/environment.h"
#include "lp/base/control.h"
#include "lp/network/flow_problem.h"

namespace tovik::lp::run {

class NetworkLog final : public network::FlowObserver {
 public:
  /* sense: of the objective, -1 to maximize; display: that of TVK_PARAM_NETDISPLAY. */
  NetworkLog(const Environment& env, Control& control, double sense, int display);
  void report(const network::FlowProgress& now) override;

 private:
  const Environment& env_;
  Control& control_;
  double sense_;
  int display_;
  std::int64_t lines_ = 0;
};

network::FlowOptions flow_options(const Environment& env, int arcs, int display);

}  // namespace tovik::lp::run
