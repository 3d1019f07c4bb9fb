/* Columns without bounds, or with bounds that the rows imply, are solved for in an equation and put in for
 * everywhere else. */
#pragma once

#include "lp/presolve/crush_types.h"
#include "lp/presolve/undo.h"
#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

struct FreeColumn {
  static constexpr Op kOp = Op::free_column;
  int row, column;
  double beta, cost;  // right-hand side of the row
  View row_entries;
  ColumnEntries entries;
  template <class Self, class Archive>
  static constexpr void fields(Self& r, Archive& archive) {
    archive(r.row, r.column, r.beta, r.cost, r.row_entries, r.entries);
  }
};

/* Does each finite bound of column s follow from a row of the present problem and the bounds of the other
 * columns? */
bool implied_free(Workspace& ws, int s);

/* May column s be solved for in row i, where its entry is a? Its entry must not be small in both its row and
 * its column, and the new entries must not be huge or tiny. */
bool sound_pivot(Workspace& ws, int i, int s, double a);

/* Row i is an equation, column s free or implied free, the pivot sound. True when both are gone. */
bool substitute_free_column(Workspace& ws, int i, int s);
void undo_free_column(const FreeColumn& record, Undo& undo);
bool form_of_free_column(const FreeColumn& record, LinearForm& form);

}  // namespace tovik::lp::presolve
