/* The best arcs of a stretch: the inner loop of pricing.
 *
 * - Gain: state * (potential[tail] - potential[head] - cost), by how much a unit of flow over the arc lowers the cost.
 * - Answer: the arcs of a stretch are dealt out to kLanes lanes in turn; of each lane the largest gain above `floor` and the
 *   first arc that has it, kNoArc where there is none. The same on every processor: wide registers are used where there
 *   are some, and no sum is formed in another order.
 * - Cost: the stretch, which is read front to back; the potentials are read where the arcs end. */
#pragma once

#include <array>

namespace tovik::lp::network {

inline constexpr int kNoArc = -1;
inline constexpr int kLanes = 8;

/* One entry an arc each, potentials by node. */
struct PricedArcs {
  const int *tail, *head;
  const double* cost;
  const signed char* state;
  const double* potential;

  double gain(int a) const { return state[a] * (potential[tail[a]] - potential[head[a]] - cost[a]); }
};

struct LaneBests {
  std::array<double, kLanes> gain;
  std::array<int, kLanes> arc;

  /* The lane with the largest gain; of equal ones that with the first arc. -1: no lane has an arc. */
  int best_lane() const;
};

LaneBests best_arcs(const PricedArcs& arcs, int begin, int end, double floor);

}  // namespace tovik::lp::network
