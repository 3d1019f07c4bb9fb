/* Binds an engine to an environment: log lines to the results channel, work to the counter in force, limits
 * from the frame on top, the terminate flag and the LP callback. */
#pragma once

#include "env/environment.h"
#include "env/problem.h"
#include "lp/base/control.h"
#include "lp/binding/callback_frame.h"

namespace tovik::lp::run {

/* Whatever the record is that the engine works for. */
class EngineLimits : public Control {
 public:
  explicit EngineLimits(Environment& env);
  void log(const char* text) override;
  void flush() override;
  void add_work(std::uint64_t ticks) override { env_.work->ticks += ticks; }
  double seconds() override;
  Stop poll() override;
  Stop poll_clock() override;

 protected:
  Environment& env_;

 private:
  bool is_flagged() const;

  double start_;
};

class EngineControl : public EngineLimits {
 public:
  EngineControl(Environment& env, Problem& problem, Numbers numbers = Numbers::of_problem);
  /* A callback that has asked to stop has asked all that follows in the run. */
  Stop poll() override { return is_stopped_ ? Stop::user_abort : EngineLimits::poll(); }
  Stop iteration_callback(const ProgressSource& now) override;

 private:
  bool is_stopped_ = false;
  Problem& problem_;
  Numbers numbers_;
};

}  // namespace tovik::lp::run
