/* Columns without cost that can run to infinity in a direction that helps all their rows: the rows hold for
 * any values of the other columns, and go together with the column. */
#pragma once

#include "lp/presolve/crush_types.h"
#include "lp/presolve/undo.h"
#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

struct ZeroCostColumn {
  static constexpr Op kOp = Op::zero_cost_column;
  int column;
  bool up;       // it runs upward
  double bound;  // the other one
  View entries;  // rows that went with it, and its entries there
  Reals sides;   // the sides of these rows that it met
  RowViews rows;
  template <class Self, class Archive>
  static constexpr void fields(Self& r, Archive& archive) {
    archive(r.column, r.up, r.bound, r.entries, r.sides, r.rows);
  }
};

/* True when column j is gone, and its rows. */
bool remove_zero_cost_column(Workspace& ws, int j);
void undo_zero_cost_column(const ZeroCostColumn& record, Undo& undo);
/* Nothing says where the column will be: only forms without it have an image. */
bool form_of_zero_cost_column(const ZeroCostColumn& record, LinearForm& form);

}  // namespace tovik::lp::presolve
