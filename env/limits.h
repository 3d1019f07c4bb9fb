/* Limit frames: one per running optimizer call, nested; an inner frame never outlives the outer one's
 * deadlines. */
#pragma once

#include <cstdint>
#include <vector>

namespace tovik {

struct LimitFrame {
  double deadline = 1e75;  // seconds on the environment's clock
  std::uint64_t tick_deadline = ~std::uint64_t{0};
};

class LimitFrames {
 public:
  void push(double now, double time_limit, std::uint64_t ticks, double tick_limit);
  void pop() { frames_.pop_back(); }
  const LimitFrame* top() const { return frames_.empty() ? nullptr : &frames_.back(); }
  bool empty() const { return frames_.empty(); }

 private:
  std::vector<LimitFrame> frames_;
};

}  // namespace tovik
