/* Binds an engine to an environment: log lines to the results channel, work to the counter in force, limits
 * from the frame on top, the terminate flag and the LP callback. */
#pragma once

#include "env/environment.h"
#include "env/problem.h"
#include "lp/base/control.h"
#include "lp/binding/callback_frame.h"

namespace tovik::lp::run {

class EngineControl : public Control {
 public:
  EngineControl(Environment& env, Problem& problem, CalledFrom called_from,
                Numbers numbers = Numbers::of_problem);
  void log(const char* text) override;
  void flush() override;
  void add_work(std::uint64_t ticks) override { env_.work->ticks += ticks; }
  double seconds() override;
  Stop poll() override;
  Stop poll_clock() override;
  Stop iteration_callback(const ProgressSource& now) override;

 private:
  Environment& env_;
  Problem& problem_;
  CalledFrom called_from_;
  Numbers numbers_;
  double start_;
};

}  // namespace tovik::lp::run
