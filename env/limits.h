/* Limit frames: one per running optimizer call, nested; an inner frame never outlives the outer one's
 * deadlines. */
#pragma once

#include <cstdint>
#include <thread>
#include <vector>

namespace tovik {

/* The different threads that have worked for one call. Nearly always there is one, which needs no memory. */
class ThreadTally {
 public:
  void note(std::thread::id thread) {
    if (count_ == 0) first_ = thread, count_ = 1;
    if (thread != first_) note_other(thread);
  }
  int count() const { return count_; }

 private:
  void note_other(std::thread::id thread);
  std::thread::id first_;
  std::vector<std::thread::id> others_;
  int count_ = 0;
};

struct LimitFrame {
  double begin = 0;        // seconds on the environment's clock
  double deadline = 1e75;  // seconds on the environment's clock
  std::uint64_t tick_begin = 0;
  ThreadTally threads;  // those that engines have been bound on
  std::uint64_t tick_deadline = ~std::uint64_t{0};
};

class LimitFrames {
 public:
  void push(double now, double time_limit, std::uint64_t ticks, double tick_limit);
  void pop() { frames_.pop_back(); }
  const LimitFrame* top() const { return frames_.empty() ? nullptr : &frames_.back(); }
  void note_thread() {
    if (!frames_.empty()) frames_.back().threads.note(std::this_thread::get_id());
  }
  bool empty() const { return frames_.empty(); }

 private:
  std::vector<LimitFrame> frames_;
};

}  // namespace tovik
