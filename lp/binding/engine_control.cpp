#include "lp/binding/engine_control.h"

#include "env/channel.h"
#include "env/handles.h"
#include "model/store/model.h"

namespace tovik::lp::run {

EngineLimits::EngineLimits(Environment& env) : env_(env), start_(clock_seconds(env)) {
  env.limits.note_thread();
}

void EngineLimits::log(const char* text) {
  message(env_.results_channel, "%s", text);
}

void EngineLimits::flush() {
  if (env_.results_channel != nullptr) env_.results_channel->flush();
}

double EngineLimits::seconds() {
  return clock_seconds(env_) - start_;
}

bool EngineLimits::is_flagged() const {
  return env_.callbacks.terminate != nullptr && *env_.callbacks.terminate != 0;
}

Stop EngineLimits::poll() {
  if (is_flagged()) return Stop::user_abort;
  const LimitFrame* frame = env_.limits.top();
  if (frame != nullptr && env_.work->ticks >= frame->tick_deadline) return Stop::tick_limit;
  return Stop::none;
}

Stop EngineLimits::poll_clock() {
  if (is_flagged()) return Stop::user_abort;
  if (env_.terminate_function != nullptr && env_.terminate_function() != 0) return Stop::user_abort;
  const LimitFrame* frame = env_.limits.top();
  if (frame != nullptr && frame->deadline < 1e75 && clock_seconds(env_) >= frame->deadline)
    return Stop::time_limit;
  return Stop::none;
}

EngineControl::EngineControl(Environment& env, Problem& problem, Numbers numbers)
    : EngineLimits(env), problem_(problem), numbers_(numbers) {}

Stop EngineControl::iteration_callback(const ProgressSource& now) {
  if (is_stopped_) return Stop::user_abort;
  const auto& slot = env_.callbacks.lp;
  if (!slot) return Stop::none;
  const CallbackFrame frame(env_, &problem_, numbers_, now, problem_.model->objective_sense());
  const int asks_to_stop =
      slot.function(to_handle(&env_), &problem_, static_cast<int>(now.origin()), slot.handle);
  if (asks_to_stop != 0) is_stopped_ = true;
  return is_stopped_ ? Stop::user_abort : Stop::none;
}

}  // namespace tovik::lp::run
