/* What presolve may do, and what it counts. Each rule can be switched off alone, and a run can be stopped
 * after the k-th reduction, so that a wrong answer is found by bisection. */
#pragma once

#include <array>
#include <cstdint>

#include "lp/presolve/rules.h"

namespace tovik::lp::presolve {

struct Settings {
  int passes = -1;           // rounds of the outer loop: -1 automatic, 0 none
  bool primal = true;        // reductions that keep every feasible point
  bool dual = true;          // reductions that keep an optimal point only
  bool linear_only = false;  // every original column stays a linear function of the reduced ones
  int aggregator = -1;       // substitution rounds: -1 automatic, 0 none
  int fill = 10;             // entries that one substitution may add
  int dependency = -1;       // -1 automatic, 0 off, 1 begin, 2 end, 3 both
  double feasibility = 1e-6;
  double optimality = 1e-6;
  std::uint32_t rules = kDefaultRules;
  std::int64_t limit = INT64_MAX;  // reductions to make
  std::uint32_t allowed() const { return rules & ~((primal ? 0 : kPrimalRules) | (dual ? 0 : kDualRules)); }
};

struct Counts {
  int rows_eliminated = 0, columns_eliminated = 0;  // without the aggregator's
  int coefficients_modified = 0;
  int substitutions = 0;  // of the aggregator: a row and a column each
  int bounds_improved = 0;
  int aggregator_rounds = 0;
  int rounds = 0;  // of the outer loop
  std::int64_t ticks = 0;
  std::array<std::int64_t, kRules> hits{};
};

}  // namespace tovik::lp::presolve
