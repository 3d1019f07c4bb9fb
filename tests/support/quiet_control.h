/* A control for engines under test: says nothing, and asks to stop after a number of polls. */
#pragma once

#include <cstdint>

#include "lp/base/control.h"

namespace support {

class QuietControl : public tovik::lp::Control {
 public:
  using Stop = tovik::lp::Stop;
  explicit QuietControl(std::int64_t polls_allowed = INT64_MAX) : allowed(polls_allowed) {}
  void log(const char*) override {}
  void flush() override {}
  void add_work(std::uint64_t) override {}
  double seconds() override { return 0; }
  Stop poll() override { return polls++ < allowed ? Stop::none : Stop::user_abort; }
  Stop poll_clock() override { return Stop::none; }
  Stop iteration_callback(const tovik::lp::ProgressSource&) override { return Stop::none; }
  std::int64_t polls = 0, allowed;
};

}  // namespace support
