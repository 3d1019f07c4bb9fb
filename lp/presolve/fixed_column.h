/* Columns that leave at one of their bounds: equal bounds, empty columns, and columns that the signs of their
 * entries send to a bound. */
#pragma once

#include "lp/presolve/crush_types.h"
#include "lp/presolve/undo.h"
#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

struct FixedColumn {
  static constexpr Op kOp = Op::fixed_column;
  int column;
  BasisStatus status;
  bool equal_bounds;
  double value, cost;
  ColumnEntries entries;
  template <class Self, class Archive>
  static constexpr void fields(Self& r, Archive& archive) {
    archive(r.column, r.status, r.equal_bounds, r.value, r.cost, r.entries);
  }
};

/* Column j leaves at `value` with status `at` (lower or upper; free for a column without bounds at 0): writes
 * the record, moves a_j * value to the sides and c_j * value to the offset. */
void fix_column(Workspace& ws, int j, double value, BasisStatus at);

/* Column j has (nearly) equal bounds. True when it is gone. */
bool remove_fixed_column(Workspace& ws, int j);
/* Column j has no entries. */
bool remove_empty_column(Workspace& ws, int j);
/* No row stops column j from moving the way that its cost likes. */
bool fix_by_signs(Workspace& ws, int j);
void undo_fixed_column(const FixedColumn& record, Undo& undo);
bool form_of_fixed_column(const FixedColumn& record, LinearForm& form);

/* Does a row stop column j from decreasing, from increasing? */
struct Locks {
  bool down = false, up = false;
};
Locks locks_of(Workspace& ws, int j);

}  // namespace tovik::lp::presolve
