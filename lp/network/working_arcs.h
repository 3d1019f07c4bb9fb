/* The arcs as the network simplex works on them: flows from zero to a capacity, an order that spreads neighbours.
 *
 * - Form: each arc of the problem with a finite lower bound is shifted to zero; one with only an upper bound is turned
 *   round; a free one becomes two opposite arcs, of which at most one is ever in a basis. Loops stay outside.
 * - Order: arcs that follow each other in the problem are put apart, so that a block of the pricing sees all parts of
 *   the network.
 * - State: +1 at zero, -1 at the capacity, 0 in the basis or without room to move.
 * - Errors: bad_alloc. */
#pragma once

#include <cmath>
#include <cstdint>
#include <span>
#include <vector>

#include "lp/network/block_scan.h"
#include "lp/network/flow_problem.h"

namespace tovik::lp::network {

/* A whole number so small that many are added without rounding. */
inline bool is_exactly_added(double value) {
  return std::fabs(value) <= 1e12 && static_cast<double>(static_cast<std::int64_t>(value)) == value;
}

class WorkingArcs {
 public:
  /* Bounds of the problem must not cross. */
  explicit WorkingArcs(const FlowProblem& problem);

  int count() const { return static_cast<int>(tail_.size()); }
  int tail(int a) const { return tail_[at(a)]; }
  int head(int a) const { return head_[at(a)]; }
  double cost(int a) const { return cost_[at(a)]; }
  /* For pricing with these potentials; holds until the arcs go. */
  PricedArcs priced(const double* potential) const {
    return {tail_.data(), head_.data(), cost_.data(), state_.data(), potential};
  }
  double capacity(int a) const {
    const std::size_t k = at(origin(a));
    return problem_.upper[k] - problem_.lower[k];
  }
  int state(int a) const { return state_[at(a)]; }
  void set_state(int a, int state) { state_[at(a)] = static_cast<signed char>(state); }
  void set_nonbasic(int a, bool at_capacity) {
    state_[at(a)] = static_cast<signed char>(capacity(a) <= 0 ? 0 : at_capacity ? -1 : 1);
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

  /* Some lower bound is not zero. */
  bool has_other_bounds() const { return other_bounds_; }
  double largest_cost() const { return largest_cost_; }
  /* All capacities and costs are whole numbers that doubles add up without rounding. */
  bool is_integral() const { return integral_; }

 private:
  static std::size_t at(int a) { return static_cast<std::size_t>(a); }
  void list_origins();

  const FlowProblem& problem_;
  std::vector<int> tail_, head_;
  std::vector<double> cost_;
  std::vector<signed char> state_;
  std::vector<int> origin_;  // 2 * arc + reversed
  double largest_cost_ = 0;
  bool other_bounds_ = false;
  bool integral_ = true;
};

}  // namespace tovik::lp::network
