/* A Relaxation's state, put aside: opaque to its holder, immutable, good for any Relaxation with the same
 * rows and columns. Size: about 100 bytes a row and column, and the factor. */
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "lp/simplex/relaxation.h"

namespace tovik::lp::simplex {

class Relaxation::Checkpoint {
 public:
  std::int64_t edits = 0;
  std::vector<double> user_cost, user_lower, user_upper, user_row_lower, user_row_upper;
  DualWeights weights;
  Core::Saved core;
  double offset = 0, objective = 0;
  Outcome outcome = Outcome::numerical_failure;
};

}  // namespace tovik::lp::simplex
