/* Columns with one entry are slacks of their row: they leave, and the row's sides widen by what they could
 * do.
 *
 * A cost is passed on to the other columns of the row, which must be an equation then; this is done only when
 * nothing of the row remains, for a column that is free or as good as free. An inequality is an equation
 * when nothing but the row keeps the column from moving the way that its cost likes: the row's dual has the
 * sign of cost / entry. A bound in that direction which the row implies is given up in the same step, so that
 * the dual of the row that is left cannot take the other sign. */
#pragma once

#include <vector>

#include "lp/presolve/crush_types.h"
#include "lp/presolve/undo.h"
#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

struct SlackInEquation {
  static constexpr Op kOp = Op::slack_in_equation;
  int row, column;
  BasisStatus side;     // of an inequality that counts as an equation; free: it is one
  double entry, beta;   // of the column, and the right-hand side
  double price;         // cost / entry
  double lower, upper;  // of the column
  View rest;            // the row without the column
  template <class Self, class Archive>
  static constexpr void fields(Self& r, Archive& archive) {
    archive(r.row, r.column, r.side, r.entry, r.beta, r.price, r.lower, r.upper, r.rest);
  }
};

struct SlackInRow {
  static constexpr Op kOp = Op::slack_in_row;
  int row, column;
  double entry;
  double row_lower, row_upper;  // before the column left
  double lower, upper;          // of the column
  View rest;                    // the row without the column
  template <class Self, class Archive>
  static constexpr void fields(Self& r, Archive& archive) {
    archive(r.row, r.column, r.entry, r.row_lower, r.row_upper, r.lower, r.upper, r.rest);
  }
};

/* Column s has one entry. True when it is gone. */
bool remove_slack_column(Workspace& ws, int s);
void undo_slack_in_equation(const SlackInEquation& record, Undo& undo);
void duals_of_slack_in_equation(const SlackInEquation& record, std::vector<double>& y);
bool form_of_slack_in_equation(const SlackInEquation& record, LinearForm& form);
/* The row that is left has as its slack what the column was. */
void basis_of_slack_in_equation(const SlackInEquation& record, Basis& basis);

void undo_slack_in_row(const SlackInRow& record, Undo& undo);
/* Nothing says where the slack will be between its bounds: only forms without it have an image. */
bool form_of_slack_in_row(const SlackInRow& record, LinearForm& form);
void basis_of_slack_in_row(const SlackInRow& record, Basis& basis);

}  // namespace tovik::lp::presolve
