#include "env/channels.h"

#include <algorithm>
#include <array>

#include "env/handles.h"
#include "include/tovik.h"

namespace tovik {

Channel* find_channel(const Environment& env, ChannelHandle handle) noexcept {
  Channel* const channel = from_handle(handle);
  return channel != nullptr && &channel->environment().master() == &env.master() ? channel : nullptr;
}

Status delete_channel(Environment& env, const Channel* channel) {
  const auto is_it = [channel](const auto& owned) { return owned.get() == channel; };
  const auto found = std::find_if(env.channels.begin(), env.channels.end(), is_it);
  if (found == env.channels.end()) return TVK_ERROR_NO_CHANNEL;
  const bool at_work = !may_be_freed(env, 1).ok();
  if (at_work) env.retired_channels.reserve(env.retired_channels.size() + 1);
  for (Channel** standard :
       {&env.error_channel, &env.warning_channel, &env.results_channel, &env.log_channel}) {
    if (*standard == found->get()) *standard = nullptr;
  }
  (*found)->retire();
  if (at_work)
    env.retired_channels.push_back(std::move(*found));
  else
    env.retired_channels.clear();
  env.channels.erase(found);
  return 0;
}

void set_log_file(Environment& env, FILE* file) {
  const std::array channels{env.results_channel, env.warning_channel, env.error_channel, env.log_channel};
  for (Channel* channel : channels) {
    if (channel != nullptr) channel->reserve();
  }
  for (Channel* channel : channels) {
    if (channel != nullptr && env.log_file != nullptr) channel->remove_file(env.log_file);
  }
  for (Channel* channel : channels) {
    if (channel != nullptr && file != nullptr) channel->add_file(file);
  }
  env.log_file = file;
}

}  // namespace tovik
