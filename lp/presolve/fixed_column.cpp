#include "lp/presolve/fixed_column.h"

#include <algorithm>
#include <cmath>

#include "lp/presolve/tolerances.h"

namespace tovik::lp::presolve {
namespace {

bool moves_too_far(Workspace& ws, int j, double value) {
  return value != 0 && std::fabs(value) * std::max(ws.column_max(j), std::fabs(ws.cost[j])) > kHugeMove;
}

}  // namespace

void fix_column(Workspace& ws, int j, double value, BasisStatus at) {
  ws.stack.push(FixedColumn{.column = j,
                            .status = at,
                            .equal_bounds = ws.lower[j] == ws.upper[j],
                            .value = value,
                            .cost = ws.cost[j],
                            .entries = ws.column_entries(j)});
  if (value != 0) {
    const View v = ws.column(j);
    for (int k = 0; k < v.length; ++k) ws.shift_sides(v.index[k], -v.value[k] * value);
    ws.add_offset(ws.cost[j] * value);
  }
  ws.remove_column(j, RemovalReason::fixed);
}

bool remove_fixed_column(Workspace& ws, int j) {
  const double lower = ws.lower[j], upper = ws.upper[j];
  if (ws.is_protected(j)) return false;
  if (lower > upper) {
    if (lower - upper > infeasibility_tolerance(ws, lower)) {
      ws.declare_infeasible(infeasible_column(StatusCode::column_bounds_cross, j));
    }
    return false;
  }
  if (std::isinf(lower) || upper - lower > side_tolerance(ws, lower, kSame)) return false;
  if (moves_too_far(ws, j, lower) || !ws.allow(Rule::fixed_column)) return false;
  if (lower < upper) ws.change_bounds(j, lower, lower);
  fix_column(ws, j, lower, BasisStatus::lower);
  return true;
}

bool remove_empty_column(Workspace& ws, int j) {
  if (ws.is_protected(j) || ws.lower[j] > ws.upper[j]) return false;
  const double c = ws.cost[j];
  const double lower = ws.lower[j], upper = ws.upper[j];
  const bool free = lower == -kInf && upper == kInf;
  if ((c > 0 && lower == -kInf) || (c < 0 && upper == kInf)) {
    if (std::fabs(c) <= ws.settings.optimality) {
      if (!free || !ws.allow(Rule::empty_column))
        return false;  // a cost within the tolerance: the optimizer decides
      fix_column(ws, j, 0, BasisStatus::free);
      return true;
    }
    ws.declare_infeasible(infeasible_column(StatusCode::empty_column_improves, j));
    return false;
  }
  if (!ws.allow(Rule::empty_column)) return false;
  if (free) {
    fix_column(ws, j, 0, BasisStatus::free);
  } else {
    const bool up = c < 0 || (c == 0 && (lower == -kInf || std::fabs(upper) < std::fabs(lower)));
    fix_column(ws, j, up ? upper : lower, up ? BasisStatus::upper : BasisStatus::lower);
  }
  return true;
}

Locks locks_of(Workspace& ws, int j) {
  Locks locks;
  const View v = ws.column(j);
  ws.add_work(v.length);
  for (int k = 0; k < v.length && !(locks.down && locks.up); ++k) {
    const int i = v.index[k];
    const bool stops_decrease = v.value[k] > 0 ? ws.row_lower[i] != -kInf : ws.row_upper[i] != kInf;
    const bool stops_increase = v.value[k] > 0 ? ws.row_upper[i] != kInf : ws.row_lower[i] != -kInf;
    locks.down |= stops_decrease;
    locks.up |= stops_increase;
  }
  return locks;
}

bool fix_by_signs(Workspace& ws, int j) {
  if (ws.is_protected(j) || !ws.enabled(Rule::dual_fixing)) return false;
  const double c = ws.cost[j];
  const Locks locks = locks_of(ws, j);
  const bool down = !locks.down && c >= 0, up = !locks.up && c <= 0;
  if (!down && !up) return false;
  const bool to_lower = down && (ws.lower[j] != -kInf || !up || ws.upper[j] == kInf);
  const double bound = to_lower ? ws.lower[j] : ws.upper[j];
  if (std::isinf(bound)) {
    if (std::fabs(c) > ws.settings.optimality) {
      ws.declare_infeasible(infeasible_column(StatusCode::dual_bounds_column, j));
    }
    return false;
  }
  if (moves_too_far(ws, j, bound) || !ws.allow(Rule::dual_fixing)) return false;
  fix_column(ws, j, bound, to_lower ? BasisStatus::lower : BasisStatus::upper);
  return true;
}

void undo_fixed_column(const FixedColumn& record, Undo& undo) {
  const int j = record.column;
  Answer& p = undo.point;
  CleanSum d = undo.sum_from(undo.cost(record.cost));
  undo.each_entry(record.entries, j, [&](int i, double a) { d.subtract(a * p.y[i]); });
  p.x[j] = record.value;
  p.d[j] = d.value();
  p.column_status[j] =
      record.equal_bounds || undo.homogeneous ? Undo::side(record.status, p.d[j]) : record.status;
}

bool form_of_fixed_column(const FixedColumn& record, LinearForm& form) {
  double& g = form.coefficients[record.column];
  form.constant += g * record.value;
  g = 0;
  return true;
}

}  // namespace tovik::lp::presolve
