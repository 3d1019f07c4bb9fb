#include "param/rollback.h"

#include <cstdio>
#include <utility>

#include "env/channel.h"
#include "param/screen.h"

namespace tovik::param {

Rollback::Rollback(Environment& env) : env_(env), settings_(env.settings) {
  const auto channels = screen_channels(env);
  for (std::size_t k = 0; k < channels.size(); ++k)
    on_screen_[k] = channels[k] != nullptr && channels[k]->has_file(stdout);
}

/* A list of destinations that held standard output has room for it. */
Rollback::~Rollback() {
  if (committed_) return;
  env_.settings = std::move(settings_);
  const auto channels = screen_channels(env_);
  for (std::size_t k = 0; k < channels.size(); ++k) {
    if (channels[k] == nullptr || channels[k]->has_file(stdout) == on_screen_[k]) continue;
    if (on_screen_[k]) {
      channels[k]->add_file(stdout);
    } else {
      channels[k]->remove_file(stdout);
    }
  }
}

}  // namespace tovik::param
