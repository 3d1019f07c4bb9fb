#include "lp/presolve/free_row.h"

#include <algorithm>
#include <cmath>

#include "lp/presolve/tolerances.h"

namespace tovik::lp::presolve {
namespace {

bool drop(Workspace& ws, int i) {
  ws.stack.push(FreeRow{.row = i});
  ws.remove_row(i, Fate::redundant);
  return true;
}

bool remove_empty_row(Workspace& ws, int i) {
  const double guard = ws.settings.feasibility;
  const double lower = ws.row_lower[i], upper = ws.row_upper[i];
  if (lower > guard || upper < -guard) {
    Verdict verdict = row_verdict(Finding::empty_row_infeasible, i, lower > guard);
    verdict.lower = lower;
    verdict.upper = upper;
    ws.condemn(std::move(verdict));
    return false;
  }
  return ws.allow(Rule::empty_row) && drop(ws, i);
}

}  // namespace

Verdict row_verdict(Finding finding, int i, bool below_lower) {
  Verdict verdict;
  verdict.finding = finding;
  verdict.row = i;
  verdict.multipliers = {{i, below_lower ? 1.0 : -1.0}};
  return verdict;
}

bool remove_free_row(Workspace& ws, int i) {
  if (ws.row_length(i) == 0) return remove_empty_row(ws, i);
  const double lower = ws.row_lower[i], upper = ws.row_upper[i];
  if (lower == -kInf && upper == kInf) return ws.allow(Rule::redundant_row) && drop(ws, i);
  const Activity& sum = ws.activity(i);
  const double noise = sum.magnitude * kRounding * ws.row_length(i);
  if (sum.most() < lower - condemn_guard(ws, lower) - noise ||
      sum.least() > upper + condemn_guard(ws, upper) + noise) {
    ws.condemn(row_verdict(Finding::row_bounds_infeasible, i, sum.most() < lower));
    return false;
  }
  const bool lower_holds = lower == -kInf || sum.least() >= lower - no_difference(ws, lower);
  const bool upper_holds = upper == kInf || sum.most() <= upper + no_difference(ws, upper);
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
  undo.point.row[record.row] = BasisStatus::basic;
  undo.point.y[record.row] = 0;
}

}  // namespace tovik::lp::presolve
