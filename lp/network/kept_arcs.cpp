#include "lp/network/kept_arcs.h"

namespace tovik::lp::network {

void KeptArcs::clear() {
  tail_.fill(0);
  head_.fill(0);
  cost_.fill(0);
  state_.fill(0);
  arc_.fill(kNoArc);
}

KeptArcs::Choice KeptArcs::best(double floor) {
  for (;;) {
    const LaneBests bests = best_arcs(view(), 0, kKept, floor);
    const int lane = bests.best_lane();
    if (lane < 0) return {floor, kNoArc, 0};
    const auto place = static_cast<std::size_t>(bests.arc[static_cast<std::size_t>(lane)]);
    if (arcs_.state[arc_[place]] == state_[place])
      return {bests.gain[static_cast<std::size_t>(lane)], arc_[place], place};
    state_[place] = 0;
  }
}

void KeptArcs::offer(const LaneBests& lanes, int but) {
  for (int lane = 0; lane < kLanes; ++lane) {
    const auto k = static_cast<std::size_t>(lane);
    if (lane == but || lanes.arc[k] == kNoArc) continue;
    if (view().gain(static_cast<int>(next_ + k)) < lanes.gain[k]) put(next_ + k, lanes.arc[k]);
  }
  next_ = (next_ + kLanes) % kKept;
}

void KeptArcs::put(std::size_t place, int arc) {
  tail_[place] = arcs_.tail[arc];
  head_[place] = arcs_.head[arc];
  cost_[place] = arcs_.cost[arc];
  state_[place] = arcs_.state[arc];
  arc_[place] = arc;
}

}  // namespace tovik::lp::network
