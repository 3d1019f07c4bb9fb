/* The channels that parameter TVK_PARAM_SCRIND connects with standard output; null for a deleted one. */
#pragma once

#include <array>

#include "env/environment.h"

namespace tovik::param {

inline std::array<Channel*, 3> screen_channels(const Environment& env) {
  return {env.results_channel, env.warning_channel, env.error_channel};
}

}  // namespace tovik::param
