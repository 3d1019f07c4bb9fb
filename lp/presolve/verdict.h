/* What presolve can find out about a problem without solving it. */
#pragma once

#include <utility>
#include <vector>

namespace tovik::lp::presolve {

enum class Finding {
  none,
  column_bounds_cross,       // column
  column_infeasible,         // column
  empty_column_improves,     // column: dual infeasible
  row_bounds_infeasible,     // row
  forcing_row_infeasible,    // row
  dependent_row_infeasible,  // row
  empty_row_infeasible,      // row, with sense and right-hand side
  rows_inconsistent,         // row and other_row
  dual_bounds_row,           // row: dual infeasible
  dual_bounds_column         // column: primal unbounded if feasible
};

struct Verdict {
  Finding finding = Finding::none;
  int row = -1, other_row = -1, column = -1;  // original indices
  double lower = 0, upper = 0;                // empty row: the sides that 0 misses
  /* For an infeasible problem: multipliers of rows of the present problem (sign as of duals: positive on the
   * lower side) that prove it against its present bounds. */
  std::vector<std::pair<int, double>> multipliers;
  bool primal_infeasible() const {
    return finding != Finding::none && finding != Finding::empty_column_improves &&
           finding != Finding::dual_bounds_row && finding != Finding::dual_bounds_column;
  }
};

}  // namespace tovik::lp::presolve
