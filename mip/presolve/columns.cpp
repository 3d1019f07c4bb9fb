#include <algorithm>
#include <cmath>

#include "mip/presolve/rules.h"

namespace tovik::mip {
namespace {

using lp::presolve::View;
using lp::presolve::Workspace;

struct ColumnLocks {
  int down = 0, up = 0;  // rows that a move down, or up, can violate
};

ColumnLocks count_locks(Workspace& ws, int j) {
  ColumnLocks locks;
  const View column = ws.column(j);
  ws.add_work(column.length);
  for (int k = 0; k < column.length; ++k) {
    const int i = column.index[k];
    const bool positive = column.value[k] > 0;
    if (ws.row_upper[i] < kInf) ++(positive ? locks.up : locks.down);
    if (ws.row_lower[i] > -kInf) ++(positive ? locks.down : locks.up);
  }
  return locks;
}

/* A column that no row keeps from the bound that its cost prefers. Where that is infinite the problem may be unbounded,
 * which is not for presolve to say. */
void fix_at_better_bound(PresolveState& state, int j) {
  Workspace& ws = state.ws();
  const double cost = ws.cost[j], lower = ws.lower[j], upper = ws.upper[j];
  const ColumnLocks locks = count_locks(ws, j);
  const bool can_fall = locks.down == 0 && cost >= 0, can_rise = locks.up == 0 && cost <= 0;
  if (can_fall && can_rise) {
    state.fix(j, std::clamp(0.0, lower, upper));
  } else if (can_fall && lower > -kInf) {
    state.fix(j, lower);
  } else if (can_rise && upper < kInf) {
    state.fix(j, upper);
  }
}

}  // namespace

void reduce_columns(PresolveState& state) {
  constexpr double kLargestMove = 1e12;  // value that is moved into sides
  Workspace& ws = state.ws();
  for (const int j : ws.take_columns()) {
    if (!state.goes_on()) return;
    if (!ws.column_alive(j) || state.is_held(j)) continue;
    if (state.is_fixed(j)) {
      if (state.allows(PresolveRule::fixed_columns) && std::fabs(ws.lower[j]) < kLargestMove) {
        state.fix(j, ws.lower[j]);
      }
    } else if (state.allows(PresolveRule::dual_fixing)) {
      fix_at_better_bound(state, j);
    }
  }
}

}  // namespace tovik::mip
