#include "lp/presolve/dominated_column.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "lp/presolve/dual_bounds.h"
#include "lp/presolve/fixed_column.h"
#include "lp/presolve/tolerances.h"

namespace tovik::lp::presolve {
namespace {

constexpr double kPlain = 1e-4;  // relative size of a reduced cost that proves there is no optimum
constexpr double kTermRounding = 1e-13;
constexpr double kCannotRest = 1e-5;  // a dual at least this large: the row stands at its side

enum class Drive { none, down, up };

/* Where the reduced cost drives column j. One within the tolerance of zero counts as zero: the
 * column's bound suits every dual. When terms are so large that rounding exceeds the tolerance, the sign must
 * be beyond the rounding. */
Drive drive_of(Workspace& ws, DualBounds& bounds, int j) {
  const DualBounds::Range d = bounds.reduced_cost(j);
  const double rounding = kTermRounding * d.scale;
  const double zero = rounding > kExact ? rounding : -kExact;
  if (d.least >= zero && (ws.lower[j] != -kInf || d.least > kExact)) return Drive::down;
  if (d.most <= -zero && (ws.upper[j] != kInf || d.most < -kExact)) return Drive::up;
  return Drive::none;
}

bool fix(Workspace& ws, int j, Drive drive) {
  const double bound = drive == Drive::down ? ws.lower[j] : ws.upper[j];
  if (std::isinf(bound) || ws.is_protected(j)) return false;
  if (bound != 0 && std::fabs(bound) * std::max(ws.column_max(j), std::fabs(ws.cost[j])) > kHugeMove)
    return false;
  if (!ws.allow(Rule::dominated_column)) return false;
  fix_column(ws, j, bound, drive == Drive::down ? BasisStatus::lower : BasisStatus::upper);
  return true;
}

/* Fixes the dominated columns that are no part of the argument; flags those that are. */
bool fix_dominated(Workspace& ws, DualBounds& bounds, std::vector<char>* held) {
  bool changed = false;
  for (int j = 0; j < ws.num_columns() && !ws.done(); ++j) {
    if (!ws.column_alive(j) || ws.column_length(j) == 0 || ws.lower[j] == ws.upper[j]) continue;
    const Drive drive = drive_of(ws, bounds, j);
    if (drive == Drive::none) continue;
    if (!bounds.gave_bound(j)) {
      changed |= fix(ws, j, drive);
    } else if (held != nullptr) {
      held->resize(static_cast<size_t>(ws.num_columns()));
      (*held)[j] = 1;
    }
  }
  return changed;
}

/* A row whose dual is positive stands at its lower side, one with a negative dual at its upper side. */
bool make_equations(Workspace& ws, const DualBounds& bounds) {
  bool changed = false;
  for (int i = 0; i < ws.num_rows() && !ws.done(); ++i) {
    if (!ws.row_alive(i) || ws.equation(i) || bounds.sign_used(i)) continue;
    const bool low = bounds.lower(i) > kCannotRest, high = bounds.upper(i) < -kCannotRest;
    const double side = low ? ws.row_lower[i] : ws.row_upper[i];
    if (low == high || std::isinf(side) || !ws.allow(Rule::dual_equation)) continue;
    ws.stack.push(RowMadeEquation{.row = i, .side = low ? BasisStatus::lower : BasisStatus::upper});
    ws.change_sides(i, side, side);
    changed = true;
  }
  return changed;
}

/* Judged by infinite bounds of the problem alone: then no point is dual feasible. */
void detect_dual_infeasibility(Workspace& ws) {
  DualBounds bounds(ws, false);
  bounds.compute({});
  PresolveStatus status;
  if (bounds.contradiction() >= 0) {
    status.code = StatusCode::dual_bounds_row;
    status.row = bounds.contradiction();
    ws.declare_infeasible(std::move(status));
    return;
  }
  for (int j = 0; j < ws.num_columns(); ++j) {
    if (!ws.column_alive(j) || ws.column_length(j) == 0) continue;
    const DualBounds::Range d = bounds.reduced_cost(j);
    const double plain = kPlain * std::max(1.0, d.scale);
    if ((d.least > plain && ws.lower[j] == -kInf) || (d.most < -plain && ws.upper[j] == kInf)) {
      status.code = StatusCode::dual_bounds_column;
      status.column = j;
      ws.declare_infeasible(std::move(status));
      return;
    }
  }
}

}  // namespace

bool use_dual_bounds(Workspace& ws) {
  const bool columns = ws.enabled(Rule::dominated_column), rows = ws.enabled(Rule::dual_equation);
  if (ws.done() || (!columns && !rows)) return false;
  DualBounds bounds(ws, true);
  bounds.compute({});
  if (bounds.contradiction() >= 0) {
    detect_dual_infeasibility(ws);
    return false;
  }
  std::vector<char> held;
  bool changed = columns && fix_dominated(ws, bounds, &held);
  if (rows) changed |= make_equations(ws, bounds);
  // Columns that are part of the argument may be dominated without it too.
  if (held.empty() || ws.done()) return changed;
  DualBounds rest(ws, true);
  rest.compute(held);
  if (rest.contradiction() < 0) changed |= fix_dominated(ws, rest, nullptr);
  return changed;
}

void undo_row_made_equation(const RowMadeEquation& record, Undo& undo) {
  BasisStatus& at = undo.point.row_status[record.row];
  if (at != BasisStatus::basic) at = record.side;
}

}  // namespace tovik::lp::presolve
