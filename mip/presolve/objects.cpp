#include <algorithm>

#include "mip/presolve/rules.h"

namespace tovik::mip {
namespace {

using lp::presolve::Workspace;

/* True when the object is decided; its column then has the bounds that it meant. */
bool decide(PresolveState& state, const SemiColumn& semi) {
  Workspace& ws = state.ws();
  const int j = semi.column;
  const double tolerance = state.tolerances().feasibility;
  const double lower = ws.lower[j], upper = ws.upper[j];
  if (lower > 0.5 * tolerance || upper < -0.5 * tolerance) {
    // A bound that is 0 but for the tolerances does not say that the column is on.
    if (std::max(lower, -upper) <= 2 * tolerance) return false;
    const double new_lower = std::max(lower, semi.lower), new_upper = std::min(upper, semi.upper);
    if (new_lower > new_upper) return false;
    ws.change_bounds(j, new_lower, new_upper);
    return true;
  }
  const bool is_off =
      semi.lower > 0 ? upper < semi.lower - 2 * tolerance : lower > semi.upper + 2 * tolerance;
  if (is_off) ws.change_bounds(j, 0, 0);
  return is_off;
}

bool decide(PresolveState& state, const Indicator& indicator) {
  Workspace& ws = state.ws();
  const int z = indicator.switch_column;
  if (ws.lower[z] != ws.upper[z]) return false;
  if (ws.lower[z] == indicator.active_value) ws.change_bounds(indicator.slack, 0, 0);
  return true;
}

/* Columns that are 0 leave a set where that makes no others neighbours. */
bool decide(PresolveState& state, OrderedSet& set) {
  Workspace& ws = state.ws();
  const auto is_zero = [&](int j) { return ws.lower[j] == 0 && ws.upper[j] == 0; };
  std::vector<int>& columns = set.columns;
  if (set.type == 1) {
    std::erase_if(columns, is_zero);
  } else {
    while (!columns.empty() && is_zero(columns.back())) columns.pop_back();
    const auto first = std::find_if_not(columns.begin(), columns.end(), is_zero);
    columns.erase(columns.begin(), first);
  }
  return static_cast<int>(columns.size()) <= set.type;
}

}  // namespace

void reduce_objects(PresolveState& state) {
  if (!state.allows(PresolveRule::objects)) return;
  const auto still = [&](auto& objects) {
    const std::size_t before = objects.size();
    std::erase_if(objects, [&](auto& object) { return decide(state, object); });
    return before != objects.size();
  };
  // A column of several objects that one decides is 0, or not, for the others, too: they are looked at in the next round.
  still(state.semi_columns);
  still(state.sets);
  still(state.indicators);
  state.count_held();
  Workspace& ws = state.ws();
  for (int j = 0; j < ws.num_columns(); ++j) {
    if (ws.column_alive(j) && !state.is_held(j)) ws.queue_column(j);
  }
}

}  // namespace tovik::mip
