/* Rows with one entry become bounds of their column. */
#pragma once

#include "lp/presolve/crush_types.h"
#include "lp/presolve/undo.h"
#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

struct SingletonRow {
  static constexpr Op kOp = Op::singleton_row;
  int row, column;
  bool tighter_lower, tighter_upper;  // bounds that the row gave
  bool collapsed;                     // the bounds are equal now
  double entry;
  template <class Self, class Archive>
  static constexpr void fields(Self& r, Archive& archive) {
    archive(r.row, r.column, r.tighter_lower, r.tighter_upper, r.collapsed, r.entry);
  }
};

/* Row i has one entry. True when the row is gone. */
bool remove_singleton_row(Workspace& ws, int i);
void undo_singleton_row(const SingletonRow& record, Undo& undo);
/* The row's bound goes to the column. */
void basis_of_singleton_row(const SingletonRow& record, Basis& basis);

}  // namespace tovik::lp::presolve
