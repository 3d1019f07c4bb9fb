/* The arcs as the network simplex works on them: flows from zero to a capacity, an order that spreads neighbours.
 *
 * - Form: each arc of the problem with a finite lower bound is shifted to zero; one with only an upper bound is turned
 *   round; a free one becomes two opposite arcs, of which at most one is ever in a basis. Loops stay outside.
 * - Order: arcs that follow each other in the problem are put apart, so that a block of the pricing sees all parts of
 *   the network.
 * - State: +1 at zero, -1 at the capacity, 0 in the basis or without room to move.
 * - Errors: bad_alloc. */
#pragma once

#include <span>
#include <vector>

#include "lp/network/flow_problem.h"

namespace tovik::lp::network {

struct WorkingArc {
  int tail, head;
  double cost;
};

class WorkingArcs {
 public:
  /* Bounds of the problem must not cross. */
  explicit WorkingArcs(const FlowProblem& problem);

  int count() const { return static_cast<int>(arcs_.size()); }
  const WorkingArc& operator[](int a) const { return arcs_[at(a)]; }
  std::span<const WorkingArc> arcs() const { return arcs_; }
  std::span<const signed char> states() const { return state_; }
  double capacity(int a) const { return capacity_[at(a)]; }
  int state(int a) const { return state_[at(a)]; }
  void set_state(int a, int state) { state_[at(a)] = static_cast<signed char>(state); }
  void set_nonbasic(int a, bool at_capacity) {
    state_[at(a)] = static_cast<signed char>(capacity_[at(a)] <= 0 ? 0 : at_capacity ? -1 : 1);
  }

  /* Arc of the problem. */
  int origin(int a) const { return origin_[at(a)] >> 1; }
  bool is_reversed(int a) const { return (origin_[at(a)] & 1) != 0; }
  bool is_free(int a) const;
  /* What the problem's arc carries when this one carries `flow`; of a free arc its share. */
  double original_flow(int a, double flow) const;
  /* The same of an arc that is not basic: one of its bounds, without rounding. */
  double original_bound(int a) const;

  /* All costs become zero; or are the problem's again. */
  void clear_costs();
  void restore_costs();

  double largest_cost() const { return largest_cost_; }
  /* All capacities and costs are whole numbers that doubles add up without rounding. */
  bool is_integral() const { return integral_; }

 private:
  static std::size_t at(int a) { return static_cast<std::size_t>(a); }
  void spread();

  const FlowProblem& problem_;
  std::vector<WorkingArc> arcs_;
  std::vector<double> capacity_;
  std::vector<signed char> state_;
  std::vector<int> origin_;  // 2 * arc + reversed
  double largest_cost_ = 0;
  bool integral_ = true;
};

}  // namespace tovik::lp::network
