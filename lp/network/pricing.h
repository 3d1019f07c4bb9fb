/* Choice of the entering arc.
 *
 * - Reads: arcs, their states and the potentials, which are those of the last pivot. Writes nothing outside.
 * - Rules: `block` takes the best arc of the next block and of those kept from earlier ones, or of the first block that
 *   has one; blocks are long where pivots are dear, since looking at more arcs saves pivots. `candidate_list` keeps the arcs that a
 *   scan has found and takes the best of them until a few pivots are done or none is left; `sorted_list` keeps the best
 *   ones of several blocks in order, looks at them again and takes the best before it scans on.
 * - Answer: an arc whose reduced cost has the wrong sign by more than the tolerance, or kNone when a whole round has
 *   found none.
 * - Cost: work() counts arcs looked at since it was last asked.
 * - Papers: "An efficient implementation of the network simplex method" (1986) for blocks, "Design and implementation
 *   of large scale primal transshipment algorithms" (1977) for candidate lists. */
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "lp/network/kept_arcs.h"
#include "lp/network/working_arcs.h"

namespace tovik::lp::network {

class Pricing {
 public:
  static constexpr int kNone = kNoArc;

  Pricing(const WorkingArcs& arcs, const std::vector<double>& potential, FlowPricing rule, double tolerance);
  int choose();
  /* Costs or potentials have changed all over. */
  void restart() {
    list_.clear();
    kept_.clear();
  }
  /* What the last pivot cost beside pricing, in arcs that could have been looked at instead. */
  void learn_pivot_work(std::uint64_t work);
  std::uint64_t work() { return std::exchange(work_, 0); }

  /* By how much arc a may lower the cost per unit of flow; negative where it would raise it. */
  double gain(int a) const { return arcs_.gain(a); }

 private:
  struct Candidate {
    double gain;
    int arc;
  };
  int choose_by_blocks();
  int choose_from_list();
  int choose_from_sorted_list();
  void refresh_list();
  template <class Visit>
  bool scan(int count, Visit&& visit);

  const PricedArcs arcs_;
  const int count_;
  KeptArcs kept_;
  FlowPricing rule_;
  double tolerance_;
  const int least_block_, most_block_;
  int block_;
  double pivot_work_;  // of late
  int position_ = 0;
  std::size_t list_length_;
  int minor_limit_, minor_ = 0;
  std::vector<Candidate> list_;
  std::uint64_t work_ = 0;
};

}  // namespace tovik::lp::network
