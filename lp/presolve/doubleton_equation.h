/* Equations with two columns: one of them is a linear function of the other and leaves with the row. Its
 * bounds become bounds of the one that stays. */
#pragma once

#include "lp/presolve/crush_types.h"
#include "lp/presolve/undo.h"
#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

/* a * leaves + b * stays = beta. */
struct Doubleton {
  static constexpr Op kOp = Op::doubleton;
  int row, leaves, stays;
  bool tighter_lower, tighter_upper;  // bounds of `stays` that the other one gave
  bool collapsed;                     // its bounds are equal now
  double a, b, beta, cost;            // cost of `leaves`
  double at_lower, at_upper;          // where `leaves` stands when `stays` is at a bound that it gave
  ColumnEntries entries;              // of `leaves`
  template <class Self, class Archive>
  static constexpr void fields(Self& r, Archive& archive) {
    archive(r.row, r.leaves, r.stays, r.tighter_lower, r.tighter_upper, r.collapsed, r.a, r.b, r.beta, r.cost,
            r.at_lower, r.at_upper, r.entries);
  }
};

/* Row i has two entries. True when the row is gone, with one of its columns. */
bool substitute_doubleton(Workspace& ws, int i);
void undo_doubleton(const Doubleton& record, Undo& undo);
bool form_of_doubleton(const Doubleton& record, LinearForm& form);
/* A column that leaves from a bound takes the other one, were it basic, to the bound that this implies. */
void basis_of_doubleton(const Doubleton& record, Basis& basis);

}  // namespace tovik::lp::presolve
