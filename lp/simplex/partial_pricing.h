/* Partial pricing for models with many more columns than rows: the columns that take part in pricing for now.
 *
 * Columns outside the set are inactive in the row copy, so that the pivot row and the updates of d and
 * weights cost only what the set holds. reselect() is called whenever d has been recomputed for all columns:
 * it adds the best improving columns and drops unattractive ones when the set has grown too large. As it
 * adds at least one column as long as there is an improving one, a set without candidates after reselect()
 * means that no column of the model is improving. */
#pragma once

#include <vector>

#include "lp/simplex/core.h"

namespace tovik::lp::simplex {

class PartialPricing {
 public:
  /* Decides by shape and options whether to price partially. */
  void start(Core& core);
  bool on() const { return on_; }
  void reselect(Core& core, double tolerance);
  /* Members and logicals. */
  const std::vector<int>& universe() const { return universe_; }
  /* Makes every movable nonbasic column active again. */
  void finish(Core& core);

 private:
  bool on_ = false;
  int add_ = 0;
  std::vector<char> member_;
  std::vector<double> norm_;  // 1 + ||a_j||^2
  std::vector<int> universe_;
  std::vector<std::pair<double, int>> found_;
};

}  // namespace tovik::lp::simplex
