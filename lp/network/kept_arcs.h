/* Arcs that a scan has found good but not the best, kept for the next pivots.
 *
 * - Holds: kKept places with an arc's ends, cost and state, so that looking at all of them reads a few lines of memory and the
 *   potentials. An arc leaves its place when it is chosen, or for a better one.
 * - Order: clear() when costs change. What a place knows of an arc's state may be out of date: the reader checks. */
#pragma once

#include <array>

#include "lp/network/block_scan.h"

namespace tovik::lp::network {

class KeptArcs {
 public:
  static constexpr int kKept = 64;

  explicit KeptArcs(const PricedArcs& arcs) : arcs_(arcs) { clear(); }
  void clear();
  /* The best one above `floor`, or kNoArc. One whose state has changed is dropped on the way. */
  struct Choice {
    double gain;
    int arc;
    std::size_t place;
  };
  Choice best(double floor);
  void take(const Choice& choice) { state_[choice.place] = 0; }
  /* The arcs of the lanes, `but` one, go to eight places, in turn, where they are better than what is there. */
  void offer(const LaneBests& lanes, int but);

 private:
  PricedArcs view() const {
    return {tail_.data(), head_.data(), cost_.data(), state_.data(), arcs_.potential};
  }
  void put(std::size_t place, int arc);

  PricedArcs arcs_;
  std::array<int, kKept> tail_, head_, arc_;
  std::array<double, kKept> cost_;
  std::array<signed char, kKept> state_;
  std::size_t next_ = 0;
};

}  // namespace tovik::lp::network
