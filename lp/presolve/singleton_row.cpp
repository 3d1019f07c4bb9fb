#include "lp/presolve/singleton_row.h"

#include <algorithm>
#include <cmath>

#include "lp/presolve/free_row.h"
#include "lp/presolve/tolerances.h"

namespace tovik::lp::presolve {

bool remove_singleton_row(Workspace& ws, int i) {
  const View v = ws.row(i);
  const int j = v.index[0];
  const double a = v.value[0];
  double lower = ws.row_lower[i] / a, upper = ws.row_upper[i] / a;
  if (a < 0) std::swap(lower, upper);
  if (std::fabs(a) < ws.settings.feasibility && (std::fabs(lower) > 1e7 || std::fabs(upper) > 1e7) &&
      !(lower <= ws.lower[j] && upper >= ws.upper[j])) {
    return false;  // a tiny entry: its bound would not carry the row's accuracy
  }
  const double old_lower = ws.lower[j], old_upper = ws.upper[j];
  const double low_guard = side_tolerance(ws, lower, kStrict) / std::max(1.0, std::fabs(a));
  const double up_guard = side_tolerance(ws, upper, kStrict) / std::max(1.0, std::fabs(a));
  bool tighter_lower = lower > old_lower + low_guard;
  bool tighter_upper = upper < old_upper - up_guard;
  double new_lower = tighter_lower ? lower : old_lower;
  double new_upper = tighter_upper ? upper : old_upper;
  const double crossing = new_lower - new_upper;
  if ((tighter_lower || tighter_upper) && crossing != 0 && crossing > -side_tolerance(ws, new_lower, kSame)) {
    const double gap = crossing * std::fabs(a);
    const double side = std::max(std::fabs(new_lower), std::fabs(new_upper)) * std::fabs(a);
    if (gap > infeasibility_tolerance(ws, side) && crossing > infeasibility_tolerance(ws, new_lower)) {
      ws.declare_infeasible(infeasible_row(StatusCode::row_bounds_infeasible, i, (a > 0) == tighter_lower));
      return false;
    }
    if (gap > side_tolerance(ws, side)) return false;  // for the optimizer to judge
    // The column's own bound wins.
    if (tighter_lower && !tighter_upper) {
      new_lower = old_upper;
    } else {
      new_upper = new_lower;
    }
    if (tighter_lower) tighter_lower = new_lower > old_lower;
    if (tighter_upper) tighter_upper = new_upper < old_upper;
  }
  if (!ws.allow(Rule::singleton_row)) return false;
  ws.stack.push(SingletonRow{.row = i,
                             .column = j,
                             .tighter_lower = tighter_lower,
                             .tighter_upper = tighter_upper,
                             .collapsed = new_lower == new_upper,
                             .entry = a});
  ws.remove_row(i, RemovalReason::redundant);
  if (tighter_lower || tighter_upper) {
    ++ws.counts.bounds_improved;
    ws.change_bounds(j, new_lower, new_upper);
  }
  return true;
}

/* A column that stands at a bound that the row gave it becomes basic, and the row stands at its side. */
void undo_singleton_row(const SingletonRow& record, Undo& undo) {
  const auto& [i, j, tighter_lower, tighter_upper, collapsed, a] = record;
  Point& p = undo.point;
  BasisStatus at = p.column[j];
  if (collapsed && at != BasisStatus::basic)
    p.column[j] = at = Undo::own_side(at, p.d[j], tighter_lower, tighter_upper);
  if ((at == BasisStatus::lower && tighter_lower) || (at == BasisStatus::upper && tighter_upper)) {
    p.y[i] = p.d[j] / a;
    p.d[j] = 0;
    p.row[i] = (at == BasisStatus::lower) == (a > 0) ? BasisStatus::lower : BasisStatus::upper;
    p.column[j] = BasisStatus::basic;
  } else {
    p.y[i] = 0;
    p.row[i] = BasisStatus::basic;
  }
}

void basis_of_singleton_row(const SingletonRow& record, Basis& basis) {
  const BasisStatus row = basis.row[record.row];
  if (row != BasisStatus::basic && basis.column[record.column] == BasisStatus::basic)
    basis.column[record.column] = scaled_status(row, record.entry > 0);
}

}  // namespace tovik::lp::presolve
