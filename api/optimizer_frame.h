/* The frame that every optimizer runs in: limits and the profiling callback. */
#pragma once

#include "env/handles.h"
#include "include/tovik.h"
#include "param/hidden.h"

namespace tovik::api {

/* Holds a limit frame while it lives. */
class OptimizerFrame {
 public:
  explicit OptimizerFrame(Environment& env) : env_(env) {
    env.limits.push(clock_seconds(env), env.settings.real(TVK_PARAM_TILIM), env.work->ticks,
                    env.settings.real(param::kTickLimit));
    env.limits.note_thread();
  }
  ~OptimizerFrame() { env_.limits.pop(); }
  OptimizerFrame(const OptimizerFrame&) = delete;
  OptimizerFrame& operator=(const OptimizerFrame&) = delete;

 private:
  Environment& env_;
};

/* Calls the profiling callback with `begin` now and with begin + 1 at the end: 2 and 3 for continuous
 * optimizers. */
class Profile {
 public:
  Profile(Environment& env, int begin) : env_(env), end_(begin + 1) { call(begin); }
  ~Profile() { call(end_); }
  Profile(const Profile&) = delete;
  Profile& operator=(const Profile&) = delete;

 private:
  void call(int code) noexcept {
    if (const auto& profile = env_.callbacks.profile)
      profile.function(to_handle(&env_), code, profile.handle);
  }
  Environment& env_;
  int end_;
};

}  // namespace tovik::api
