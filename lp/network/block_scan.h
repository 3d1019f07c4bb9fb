/* The best arc of a stretch: the inner loop of pricing.
 *
 * - Gain: state * (potential[tail] - potential[head] - cost), by how much a unit of flow over the arc lowers the cost.
 * - Answer: the largest gain above `floor` and the first arc that has it; kNoArc where there is none. The same on every
 *   processor: wide registers are used where there are some, and no sum is formed in another order.
 * - Cost: the stretch, which is read front to back; the potentials are read where the arcs end. */
#pragma once

namespace tovik::lp::network {

inline constexpr int kNoArc = -1;

/* One entry an arc each, potentials by node. */
struct PricedArcs {
  const int *tail, *head;
  const double* cost;
  const signed char* state;
  const double* potential;

  double gain(int a) const { return state[a] * (potential[tail[a]] - potential[head[a]] - cost[a]); }
};

struct BestArc {
  double gain;
  int arc;
};

BestArc best_arc(const PricedArcs& arcs, int begin, int end, double floor);

}  // namespace tovik::lp::network
