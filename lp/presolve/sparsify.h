/* Adds multiples of equations to other rows where more entries cancel than appear. The feasible set does not
 * change, the matrix gets sparser.
 *
 * With row q' = row q + s row e, the dual of e is y_e = y'_e + s y'_q. That is a basic solution of the
 * problem before only when e's logical is nonbasic; see `pivot_out`. The rule is the last one that runs: no
 * later reduction may touch the equation. */
#pragma once

#include <vector>

#include "lp/presolve/undo.h"
#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

/* Row target += factor * row source. */
struct RowAddition {
  static constexpr Op kOp = Op::row_addition;
  int target, source;
  double factor;
  template <class Self, class Archive>
  static constexpr void fields(Self& r, Archive& archive) {
    archive(r.target, r.source, r.factor);
  }
};

/* One pass over the equations. True when something was added. */
bool sparsify_rows(Workspace& ws);
void undo_row_addition(const RowAddition& record, Undo& undo);
void duals_of_row_addition(const RowAddition& record, std::vector<double>& y);

}  // namespace tovik::lp::presolve
