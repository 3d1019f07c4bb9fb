/* What presolve can find out about a problem without solving it. */
#pragma once

#include <utility>
#include <vector>

namespace tovik::lp::presolve {

enum class StatusCode {
  reduced,                   // nothing: the reduced problem is equivalent
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

struct PresolveStatus {
  StatusCode code = StatusCode::reduced;
  int row = -1, other_row = -1, column = -1;  // original indices
  double lower = 0, upper = 0;                // empty row: the sides that 0 misses
  /* For an infeasible problem: multipliers of rows of the present problem (sign as of duals: positive on the
   * lower side) that prove it against its present bounds. */
  std::vector<std::pair<int, double>> multipliers;
  bool primal_infeasible() const {
    return code != StatusCode::reduced && code != StatusCode::empty_column_improves &&
           code != StatusCode::dual_bounds_row && code != StatusCode::dual_bounds_column;
  }
};

/* For a row whose columns cannot reach its side. */
inline PresolveStatus infeasible_row(StatusCode code, int i, bool below_lower) {
  PresolveStatus status;
  status.code = code;
  status.row = i;
  status.multipliers = {{i, below_lower ? 1.0 : -1.0}};
  return status;
}

inline PresolveStatus infeasible_column(StatusCode code, int j) {
  PresolveStatus status;
  status.code = code;
  status.column = j;
  return status;
}

}  // namespace tovik::lp::presolve
