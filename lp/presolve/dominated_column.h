/* Conclusions from bounds on duals: columns whose reduced cost has a known sign are fixed at a bound, and
 * inequalities whose dual cannot be zero become equations. */
#pragma once

#include "lp/presolve/undo.h"
#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

struct RowMadeEquation {
  static constexpr Op kOp = Op::row_made_equation;
  int row;
  BasisStatus side;  // that became the right-hand side
  template <class Self, class Archive>
  static constexpr void fields(Self& r, Archive& archive) {
    archive(r.row, r.side);
  }
};

/* One pass over the problem. True when it changed something. Declares the problem infeasible when no duals
 * fit. */
bool use_dual_bounds(Workspace& ws);
void undo_row_made_equation(const RowMadeEquation& record, Undo& undo);

}  // namespace tovik::lp::presolve
