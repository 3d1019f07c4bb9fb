/* What an engine may ask of the outside: write a log line, add work, learn whether it must stop. */
#pragma once

#include <cstdint>

#include "lp/base/progress.h"

namespace tovik::lp {

enum class Stop { none, time_limit, tick_limit, user_abort };

class Control {
 public:
  virtual ~Control() = default;
  virtual void log(const char* text) = 0;  // a complete text with its own newline, on the results channel
  virtual void flush() = 0;
  virtual void add_work(std::uint64_t ticks) = 0;
  virtual double seconds() = 0;   // since the start of the call
  virtual Stop poll() = 0;        // terminate flag and deterministic limit: cheap, each iteration
  virtual Stop poll_clock() = 0;  // terminate flag and clock
  virtual Stop iteration_callback(const ProgressSource& now) = 0;  // the LP callback, once per iteration
};

}  // namespace tovik::lp
