/* lp/network on one instance file: processor time, pivots, memory and exact cost. */
#pragma once

#include <string>

#include "bench/network/instance.h"
#include "lp/network/flow_problem.h"

namespace bench {

RunRecord run_own(const std::string& path, tovik::lp::network::FlowPricing pricing);

}  // namespace bench
