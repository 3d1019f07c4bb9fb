/* Rows that hold for every point within the bounds of their columns: empty rows, rows without sides,
 * redundant rows. A row is judged by the bounds of the present problem only, never by bounds that other rows
 * imply. */
#pragma once

#include "lp/presolve/undo.h"
#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

struct FreeRow {
  static constexpr Op kOp = Op::free_row;
  int row;
  template <class Self, class Archive>
  static constexpr void fields(Self& r, Archive& archive) {
    archive(r.row);
  }
};

/* Removes row i when it is one of these, drops a side that cannot bind, or finds that the row cannot hold.
 * True when the row is gone. */
bool remove_free_row(Workspace& ws, int i);
void undo_free_row(const FreeRow& record, Undo& undo);

/* Removes all rows without sides: at the end of a run that changed anything. In the reduced problem one could
 * be non-basic at activity 0, which the undo of a fixed column moves away from 0. */
void drop_free_rows(Workspace& ws);

}  // namespace tovik::lp::presolve
