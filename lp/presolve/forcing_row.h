/* Rows that hold only with each column at the bound where the row's activity is extreme: the columns are
 * fixed there. */
#pragma once

#include "lp/presolve/undo.h"
#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

struct ForcingRow {
  static constexpr Op kOp = Op::forcing_row;
  int row;
  bool at_lower;        // the side that forces
  View moving, frozen;  // entries of columns with different bounds, with equal ones
  template <class Self, class Archive>
  static constexpr void fields(Self& r, Archive& archive) {
    archive(r.row, r.at_lower, r.moving, r.frozen);
  }
};

/* True when row i was forcing; it is gone then, with all its columns. */
bool remove_forcing_row(Workspace& ws, int i);
void undo_forcing_row(const ForcingRow& record, Undo& undo);

}  // namespace tovik::lp::presolve
