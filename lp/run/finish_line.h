/* Who of several algorithms that solve the same problem at once comes first.
 *
 * Deterministic: the clock is the work done, in ticks, each starting with a handicap of its own; who has done more than
 * another needed to arrive is beaten, and runs on until then, so that the first is the same in every run. Otherwise the
 * clock is that on the wall: whoever arrives first beats all others at once.
 *
 * Threads: any may ask and arrive. */
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>

namespace tovik::lp::run {

class FinishLine {
 public:
  explicit FinishLine(bool deterministic) : deterministic_(deterministic) {}

  /* ticks: work of the runner so far, its handicap included. */
  bool beats(int runner, std::uint64_t ticks) const {
    if (closed_.load(std::memory_order_relaxed)) return true;
    const std::uint64_t best = best_.load(std::memory_order_relaxed);
    return ticks > best && winner_.load(std::memory_order_relaxed) != runner;
  }
  void arrive(int runner, std::uint64_t ticks) {
    const std::lock_guard guard(lock_);
    const std::uint64_t at = deterministic_ ? ticks : 0;
    const bool first = winner_ < 0 || at < best_ || (deterministic_ && at == best_ && runner < winner_);
    if (!first) return;
    winner_ = runner;
    best_ = at;
  }
  /* Nobody need run on: the caller wants an end, or memory is gone. */
  void close() { closed_ = true; }
  int winner() const { return winner_; }  // -1: nobody arrived

 private:
  static constexpr std::uint64_t kNever = ~std::uint64_t{0};
  const bool deterministic_;
  std::mutex lock_;
  std::atomic<std::uint64_t> best_{kNever};
  std::atomic<int> winner_{-1};
  std::atomic<bool> closed_{false};
};

}  // namespace tovik::lp::run
