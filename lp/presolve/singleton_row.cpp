#include "lp/presolve/singleton_row.h"

#include <algorithm>
#include <cmath>

#include "lp/presolve/free_row.h"
#include "lp/presolve/tolerances.h"

namespace tovik::lp::presolve {

namespace {

constexpr double kLargeBound = 1e7;  // from a tiny entry: it would not carry the row's accuracy

/* Bounds of the column after the row became one. */
struct Tightening {
  double lower, upper;
  bool tighter_lower, tighter_upper;
};

enum class Bounds { sound, undecided, infeasible };

Tightening tightened(const Workspace& ws, int j, double a, double lower, double upper) {
  const double scale = std::max(1.0, std::fabs(a));
  Tightening t;
  t.tighter_lower = lower > ws.lower[j] + side_tolerance(ws, lower, kStrict) / scale;
  t.tighter_upper = upper < ws.upper[j] - side_tolerance(ws, upper, kStrict) / scale;
  t.lower = t.tighter_lower ? lower : ws.lower[j];
  t.upper = t.tighter_upper ? upper : ws.upper[j];
  return t;
}

/* Bounds that cross or differ by rounding are made one: the column's own if there is one. */
Bounds merge_crossing_bounds(const Workspace& ws, int j, double a, Tightening& t) {
  const double crossing = t.lower - t.upper;
  if ((!t.tighter_lower && !t.tighter_upper) || crossing == 0 ||
      !(crossing > -side_tolerance(ws, t.lower, kSame)))
    return Bounds::sound;
  const double gap = crossing * std::fabs(a);
  const double side = std::max(std::fabs(t.lower), std::fabs(t.upper)) * std::fabs(a);
  if (gap > infeasibility_tolerance(ws, side) && crossing > infeasibility_tolerance(ws, t.lower))
    return Bounds::infeasible;
  if (gap > side_tolerance(ws, side)) return Bounds::undecided;
  if (t.tighter_lower && !t.tighter_upper) {
    t.lower = ws.upper[j];
  } else {
    t.upper = t.lower;
  }
  if (t.tighter_lower) t.tighter_lower = t.lower > ws.lower[j];
  if (t.tighter_upper) t.tighter_upper = t.upper < ws.upper[j];
  return Bounds::sound;
}

}  // namespace

bool remove_singleton_row(Workspace& ws, int i) {
  const View v = ws.row(i);
  const int j = v.index[0];
  const double a = v.value[0];
  double lower = ws.row_lower[i] / a, upper = ws.row_upper[i] / a;
  if (a < 0) std::swap(lower, upper);
  if (std::fabs(a) < ws.settings.feasibility &&
      (std::fabs(lower) > kLargeBound || std::fabs(upper) > kLargeBound) &&
      !(lower <= ws.lower[j] && upper >= ws.upper[j])) {
    return false;
  }
  Tightening t = tightened(ws, j, a, lower, upper);
  const bool lower_first = t.tighter_lower;
  const Bounds bounds = merge_crossing_bounds(ws, j, a, t);
  if (bounds == Bounds::infeasible) {
    ws.declare_infeasible(infeasible_row(StatusCode::row_bounds_infeasible, i, (a > 0) == lower_first));
    return false;
  }
  if (bounds == Bounds::undecided || !ws.allow(Rule::singleton_row)) return false;
  ws.stack.push(SingletonRow{.row = i,
                             .column = j,
                             .tighter_lower = t.tighter_lower,
                             .tighter_upper = t.tighter_upper,
                             .collapsed = t.lower == t.upper,
                             .entry = a});
  ws.remove_row(i, RemovalReason::redundant);
  if (t.tighter_lower || t.tighter_upper) {
    ++ws.counts.bounds_improved;
    ws.change_bounds(j, t.lower, t.upper);
  }
  return true;
}

/* A column that stands at a bound that the row gave it becomes basic, and the row stands at its side. */
void undo_singleton_row(const SingletonRow& record, Undo& undo) {
  const auto& [i, j, tighter_lower, tighter_upper, collapsed, a] = record;
  Answer& p = undo.point;
  BasisStatus at = p.column_status[j];
  if (collapsed && at != BasisStatus::basic)
    p.column_status[j] = at = Undo::own_side(at, p.d[j], tighter_lower, tighter_upper);
  if ((at == BasisStatus::lower && tighter_lower) || (at == BasisStatus::upper && tighter_upper)) {
    p.y[i] = p.d[j] / a;
    p.d[j] = 0;
    p.row_status[i] = (at == BasisStatus::lower) == (a > 0) ? BasisStatus::lower : BasisStatus::upper;
    p.column_status[j] = BasisStatus::basic;
  } else {
    p.y[i] = 0;
    p.row_status[i] = BasisStatus::basic;
  }
}

void basis_of_singleton_row(const SingletonRow& record, Basis& basis) {
  const BasisStatus row = basis.rows[record.row];
  if (row != BasisStatus::basic && basis.columns[record.column] == BasisStatus::basic)
    basis.columns[record.column] = scaled_status(row, record.entry > 0);
}

}  // namespace tovik::lp::presolve
