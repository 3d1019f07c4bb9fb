#include "env/limits.h"

#include <algorithm>

namespace tovik {
namespace {

constexpr double kNoTimeLimit = 1e75;
constexpr double kTickRange = 18446744073709551616.0;  // 2^64

}  // namespace

void ThreadTally::note_other(std::thread::id thread) {
  if (std::ranges::find(others_, thread) != others_.end()) return;
  others_.push_back(thread);
  ++count_;
}

void LimitFrames::push(double now, double time_limit, std::uint64_t ticks, double tick_limit) {
  LimitFrame frame;
  if (const LimitFrame* outer = top(); outer != nullptr) {
    frame.deadline = outer->deadline;
    frame.tick_deadline = outer->tick_deadline;
  }
  frame.begin = now;
  frame.tick_begin = ticks;
  if (time_limit < kNoTimeLimit) frame.deadline = std::min(frame.deadline, now + time_limit);
  const double last_tick = static_cast<double>(ticks) + std::max(tick_limit, 0.0);
  if (last_tick < kTickRange) {
    frame.tick_deadline = std::min(frame.tick_deadline, static_cast<std::uint64_t>(last_tick));
  }
  frames_.push_back(frame);
}

}  // namespace tovik
