#include <cmath>
#include <vector>

#include "mip/presolve/rules.h"

namespace tovik::mip {
namespace {

using lp::presolve::View;
using lp::presolve::Workspace;

bool is_whole(double v) {
  return std::isinf(v) || (std::fabs(v) < 1e9 && std::fabs(v - std::round(v)) <= 1e-12 * std::fabs(v));
}

/* The row, its other columns whole, leaves column j only whole numbers as bounds, or as its value. */
bool row_gives_whole_numbers(PresolveState& state, int i, int j, double a) {
  Workspace& ws = state.ws();
  if (!is_whole(ws.row_lower[i] / a) || !is_whole(ws.row_upper[i] / a)) return false;
  const View row = ws.row(i);
  ws.add_work(row.length);
  for (int k = 0; k < row.length; ++k) {
    if (row.index[k] == j) continue;
    if (!state.is_integer(row.index[k]) || !is_whole(row.value[k] / a)) return false;
  }
  return true;
}

/* By an equation, or because its range is always from one whole number to another and the objective is linear. */
bool is_implied(PresolveState& state, int j, const std::vector<int>& continuous) {
  Workspace& ws = state.ws();
  const View column = ws.column(j);
  ws.add_work(column.length);
  bool by_all = is_whole(ws.lower[j]) && is_whole(ws.upper[j]);
  for (int k = 0; k < column.length; ++k) {
    const int i = column.index[k];
    const bool is_alone = continuous[i] == 1;
    const bool equation = ws.equation(i);
    if (!is_alone) {
      by_all = false;
    } else if (by_all || equation) {
      const bool whole = row_gives_whole_numbers(state, i, j, column.value[k]);
      if (whole && equation) return true;
      by_all = by_all && whole;
    }
  }
  return by_all && column.length > 0;
}

}  // namespace

void find_implied_integers(PresolveState& state) {
  if (!state.allows(PresolveRule::implied_integers)) return;
  Workspace& ws = state.ws();
  std::vector<int> continuous(static_cast<std::size_t>(ws.num_rows()), 0);  // columns in each row
  for (int j = 0; j < ws.num_columns(); ++j) {
    if (!ws.column_alive(j) || state.is_integer(j)) continue;
    const View column = ws.column(j);
    for (int k = 0; k < column.length; ++k) ++continuous[column.index[k]];
  }
  for (int j = 0; j < ws.num_columns(); ++j) {
    if (!state.goes_on()) return;
    if (!ws.column_alive(j) || state.is_integer(j) || state.is_held(j)) continue;
    if (!is_implied(state, j, continuous)) continue;
    // Its bounds need not be whole where an equation speaks.
    const double lower = std::ceil(ws.lower[j] - 1e-9), upper = std::floor(ws.upper[j] + 1e-9);
    if (lower > upper) continue;
    state.make_integer(j);
    if (lower != ws.lower[j] || upper != ws.upper[j]) ws.change_bounds(j, lower, upper);
    const View column = ws.column(j);
    for (int k = 0; k < column.length; ++k) --continuous[column.index[k]];
  }
}

}  // namespace tovik::mip
