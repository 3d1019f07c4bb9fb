/* Work done and the wish to stop, between the threads of a factorization and its control. Any thread adds work; the calling
 * thread (worker 0) alone asks the control. */
#pragma once

#include <atomic>
#include <cstdint>

#include "lp/base/control.h"

namespace tovik::lp::cholesky {

class Pulse {
 public:
  explicit Pulse(Control& control) : control_(control) {}

  bool stopped() const { return stopped_.load(std::memory_order_relaxed); }
  void add(double operations, int worker) {
    const std::int64_t waiting = work_.fetch_add(
        1 + static_cast<std::int64_t>(operations / kOperationsPerTick), std::memory_order_relaxed);
    if (worker == 0 && waiting > kTicksBetweenLooks) look();
  }
  void look() {
    control_.add_work(static_cast<std::uint64_t>(work_.exchange(0, std::memory_order_relaxed)));
    if (control_.poll_clock() != Stop::none) stopped_.store(true, std::memory_order_relaxed);
  }
  /* After an error in one thread: the others end. */
  void stop() { stopped_.store(true, std::memory_order_relaxed); }

 private:
  static constexpr double kOperationsPerTick = 40;  // a tick elsewhere is an entry touched
  static constexpr std::int64_t kTicksBetweenLooks = 700'000;

  Control& control_;
  std::atomic<bool> stopped_ = false;
  std::atomic<std::int64_t> work_ = 0;
};

}  // namespace tovik::lp::cholesky
