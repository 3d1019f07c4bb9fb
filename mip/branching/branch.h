/* What makes a child of its parent. */
#pragma once

#include "mip/domain/domain.h"
#include "mip/pool/pseudo_costs.h"

namespace tovik::mip {

struct NodeChange {
  int column;
  Side side;
  double value;
};

/* What was branched on, for the pseudo-costs and the log. */
struct BranchRecord {
  int column = -1;  // -1: an object that is not a single column
  Direction direction = Direction::down;
  double distance = 0;  // from the value of the relaxation to the new bound
};

}  // namespace tovik::mip
