#include "lp/presolve/free_row.h"

#include <algorithm>
#include <cmath>

#include "lp/presolve/tolerances.h"

namespace tovik::lp::presolve {
namespace {

bool drop(Workspace& ws, int i) {
  ws.stack.push(FreeRow{.row = i});
  ws.remove_row(i, RemovalReason::redundant);
  return true;
}

bool remove_empty_row(Workspace& ws, int i) {
  const double guard = ws.settings.feasibility;
  const double lower = ws.row_lower[i], upper = ws.row_upper[i];
  if (lower > guard || upper < -guard) {
    PresolveStatus status = infeasible_row(StatusCode::empty_row_infeasible, i, lower > guard);
    status.lower = lower;
    status.upper = upper;
    ws.declare_infeasible(std::move(status));
    return false;
  }
  return ws.allow(Rule::empty_row) && drop(ws, i);
}

}  // namespace

bool remove_free_row(Workspace& ws, int i) {
  if (ws.row_length(i) == 0) return remove_empty_row(ws, i);
  const double lower = ws.row_lower[i], upper = ws.row_upper[i];
  if (lower == -kInf && upper == kInf) return ws.allow(Rule::redundant_row) && drop(ws, i);
  const Activity& sum = ws.activity(i);
  const double noise = sum.magnitude * kRounding * ws.row_length(i);
  if (sum.most() < lower - infeasibility_tolerance(ws, lower) - noise ||
      sum.least() > upper + infeasibility_tolerance(ws, upper) + noise) {
    ws.declare_infeasible(infeasible_row(StatusCode::row_bounds_infeasible, i, sum.most() < lower));
    return false;
  }
  const bool lower_holds = lower == -kInf || sum.least() >= lower - side_tolerance(ws, lower);
  const bool upper_holds = upper == kInf || sum.most() <= upper + side_tolerance(ws, upper);
  if (lower_holds && upper_holds) return ws.allow(Rule::redundant_row) && drop(ws, i);
  // A side that cannot bind only weakens arguments on duals. Equations keep theirs: they are worth more.
  if (lower < upper && ((lower_holds && lower != -kInf) || (upper_holds && upper != kInf)) &&
      ws.allow(Rule::redundant_row)) {
    ws.change_sides(i, lower_holds ? -kInf : lower, upper_holds ? kInf : upper);
  }
  return false;
}

void drop_free_rows(Workspace& ws) {
  for (int i = 0; i < ws.num_rows(); ++i) {
    if (ws.row_alive(i) && ws.row_lower[i] == -kInf && ws.row_upper[i] == kInf) drop(ws, i);
  }
}

void undo_free_row(const FreeRow& record, Undo& undo) {
  undo.point.row_status[record.row] = BasisStatus::basic;
  undo.point.y[record.row] = 0;
}

}  // namespace tovik::lp::presolve
