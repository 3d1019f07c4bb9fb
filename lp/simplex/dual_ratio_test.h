/* Choice of the entering column in the dual simplex: Harris' ratio test with bound flipping.
 * - Holds: the pivot row as pairs (variable, alpha) over movable nonbasics, and the candidates among them.
 * - Order: load() after the row was priced; choose(); flips() and theta are valid until the next load().
 * - Method: The slope of the dual objective starts at |delta| and falls by alpha * range as break points
 *   d/alpha are passed; break points are walked in groups of nearly equal ratio; the last group that holds a
 *   large enough pivot gives the entering variable, all groups before it flip to their other bounds.
 * - Papers: Harris, Math. Programming 5 (1973); Maros, EJOR 149 (2003); Koberstein, thesis Paderborn (2005).
 */
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "lp/simplex/core.h"

namespace tovik::lp::simplex {

class DualRatioTest {
 public:
  struct Pick {
    int variable = -1;
    double alpha = 0;  // row value of the pivot
    double theta = 0;  // dual step d_q / alpha
    bool shift =
        false;  // the dual value is infeasible within tolerance: the cost is to be shifted so that it is 0
  };

  /* Sizes the row for the core. */
  void prepare(const Core& core);
  /* Gathers the pivot row from rho (logicals) and alpha_row (structurals), and the candidates in it.
   * delta: signed violation of the leaving variable. */
  void load(Core& core, const SparseVector& rho, const SparseVector& alpha_row, double delta);
  Pick choose(Core& core, double delta);
  const std::vector<int>& flips() const { return flips_; }
  std::span<const int> row_index() const { return {index_.data(), static_cast<size_t>(count_)}; }
  std::span<const double> row_alpha() const { return {alpha_.data(), static_cast<size_t>(count_)}; }
  double largest_alpha() const { return largest_alpha_; }

 private:
  struct Candidate {
    int variable;
    double alpha;  // its size, in the direction in which the variable may move
    double row;    // alpha as it stands in the row
    double dual;   // move * d
    double ratio;  // dual / alpha
  };
  void pack_row(Core& core, const SparseVector& rho, const SparseVector& alpha_row);
  void find_candidates(const Core& core);
  void add_free_candidates(const Core& core);
  void select_reachable(const Core& core, double delta);
  std::vector<int> index_;            // the packed row, first count_ valid
  std::vector<double> alpha_;         // likewise
  std::vector<int> slot_;             // candidates by place in the packed row, first found_ valid
  std::vector<double> pivot_, dual_;  // of the candidates, in the direction in which each may move
  int count_ = 0;
  int found_ = 0;
  std::vector<Candidate> candidates_;  // those that the step can reach
  std::vector<double> suffix_;
  std::vector<int> group_;  // first candidate of each group
  std::vector<int> flips_;
  double largest_alpha_ = 0;
  double sign_ = 1;      // of delta
  double smallest_ = 0;  // entries up to this size are no pivots
  double relaxed_ = 0;   // smallest relaxed ratio of the candidates
};

}  // namespace tovik::lp::simplex
