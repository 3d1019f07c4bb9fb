/* The channels of an environment: taking one away, and the log file that all four standard ones write to. */
#pragma once

#include <cstdio>

#include "env/environment.h"

namespace tovik {

/* The channel behind a handle where it belongs to the environment, its parent or another child of it, else null. */
Channel* find_channel(const Environment& env, ChannelHandle handle) noexcept;

/* The pointer is only compared with those of the environment, standard channels included.
 * TVK_ERROR_NO_CHANNEL for none of them. */
Status delete_channel(Environment& env, const Channel* channel);

/* Replaces the log file, or takes it away (null). Nothing changes where memory is short. */
void set_log_file(Environment& env, FILE* file);

}  // namespace tovik
