#include "env/environment.h"

#include <time.h>

#include <algorithm>
#include <thread>

#include "env/network_problem.h"
#include "env/problem.h"

namespace tovik {

Environment::Environment() : live(this, HandleKind::environment) {
  for (Channel** slot : {&error_channel, &warning_channel, &results_channel, &log_channel}) {
    channels.push_back(std::make_unique<Channel>(*this));
    *slot = channels.back().get();
  }
}

Environment::~Environment() {
  for (const auto& channel : channels) channel->disconnect();
}

bool Environment::delivering() const {
  return std::any_of(channels.begin(), channels.end(), [](const auto& c) { return c->delivering(); }) ||
         std::any_of(children.begin(), children.end(), [](const auto& child) { return child->delivering(); });
}

bool Environment::in_use() const {
  const auto used = [](const auto& record) { return record->use.busy(); };
  return std::any_of(problems.begin(), problems.end(), used) ||
         std::any_of(networks.begin(), networks.end(), used) ||
         std::any_of(children.begin(), children.end(),
                     [](const auto& child) { return child->entered.load() > 0 || child->in_use(); });
}

Status may_be_freed(const Environment& env, int callers) {
  const bool busy = env.in_callback != 0 || env.entered.load() > callers || env.delivering() || env.in_use();
  return busy ? TVK_ERROR_IN_INFO_CALLBACK : 0;
}

Status free_child(Environment& parent, const Environment* child) {
  const auto is_child = [child](const auto& owned) { return owned.get() == child; };
  const auto found = std::find_if(parent.children.begin(), parent.children.end(), is_child);
  if (found == parent.children.end()) return TVK_ERROR_NO_ENVIRONMENT;
  if (Status status = may_be_freed(**found, 0); !status.ok()) return status;
  parent.children.erase(found);
  return 0;
}

int thread_limit() {
  return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

double clock_seconds(const Environment& env) {
  constexpr int kProcessorTime = 1;
  const clockid_t clock = env.settings.integer(TVK_PARAM_CLOCKTYPE) == kProcessorTime
                              ? CLOCK_PROCESS_CPUTIME_ID
                              : CLOCK_MONOTONIC;
  timespec now{};
  clock_gettime(clock, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

}  // namespace tovik
