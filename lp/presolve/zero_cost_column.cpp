#include "lp/presolve/zero_cost_column.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "lp/presolve/fixed_column.h"

namespace tovik::lp::presolve {
namespace {

constexpr double kSmallEntry = 1e-3;  // of the column's largest: a row that would drive the column too far

/* The side of a row that column entry a meets when the column moves. */
bool lower_side(double a, bool up) {
  return (a > 0) == up;
}

bool entries_fit(const View& column) {
  double least = kInf, most = 0;
  for (int k = 0; k < column.length; ++k) {
    least = std::min(least, std::fabs(column.value[k]));
    most = std::max(most, std::fabs(column.value[k]));
  }
  return least >= kSmallEntry * most;
}

void store(Workspace& ws, int j, bool up) {
  const View column = ws.column(j);
  std::vector<double> sides;
  std::vector<int> start{0}, index;
  std::vector<double> value;
  for (int k = 0; k < column.length; ++k) {
    const int i = column.index[k];
    const View row = ws.row(i);
    sides.push_back(lower_side(column.value[k], up) ? ws.row_lower[i] : ws.row_upper[i]);
    index.insert(index.end(), row.index, row.index + row.length);
    value.insert(value.end(), row.value, row.value + row.length);
    start.push_back(static_cast<int>(index.size()));
  }
  ws.stack.push(ZeroCostColumn{.column = j,
                               .up = up,
                               .bound = up ? ws.lower[j] : ws.upper[j],
                               .entries = column,
                               .sides = {column.length, sides.data()},
                               .rows = {column.length, start.data(), index.data(), value.data()}});
}

}  // namespace

bool remove_zero_cost_column(Workspace& ws, int j) {
  if (ws.settings.linear_only || ws.is_protected(j) || ws.cost[j] != 0) return false;
  if ((ws.lower[j] != -kInf && ws.upper[j] != kInf) || !ws.enabled(Rule::zero_cost_column)) return false;
  const Locks locks = locks_of(ws, j);
  const bool up = !locks.up && ws.upper[j] == kInf, down = !locks.down && ws.lower[j] == -kInf;
  const View column = ws.column(j);
  if ((!up && !down) || !entries_fit(column) || !ws.allow(Rule::zero_cost_column)) return false;
  store(ws, j, up);
  const std::vector<int> rows(column.index, column.index + column.length);
  for (const int i : rows) ws.remove_row(i, RemovalReason::redundant);
  ws.remove_column(j, RemovalReason::other);
  return true;
}

/* The column goes as far as the row that asks most needs. It is basic then, for that row; otherwise it is
 * nonbasic at its own bound and all rows are basic. */
void undo_zero_cost_column(const ZeroCostColumn& record, Undo& undo) {
  const int j = record.column;
  const bool up = record.up;
  double x = record.bound;
  Answer& p = undo.point;
  p.column_status[j] = std::isinf(x) ? BasisStatus::free : up ? BasisStatus::lower : BasisStatus::upper;
  int tight = -1;  // the row that holds the column
  BasisStatus side = BasisStatus::basic;
  for (int k = 0; k < record.entries.length; ++k) {
    const int i = record.entries.index[k];
    const double a = record.entries.value[k];
    const View row = record.rows[k];
    double rest = record.sides.value[k];
    for (int n = 0; n < row.length; ++n) {
      if (row.index[n] != j) rest -= row.value[n] * p.x[row.index[n]];
    }
    p.y[i] = 0;
    p.row_status[i] = BasisStatus::basic;
    const double needed = rest / a;
    if (std::isinf(needed) || (up ? needed <= x : needed >= x)) continue;
    x = needed;
    tight = i;
    side = lower_side(a, up) ? BasisStatus::lower : BasisStatus::upper;
  }
  if (tight >= 0) {
    p.row_status[tight] = side;
    p.column_status[j] = BasisStatus::basic;
  }
  p.x[j] = std::isinf(x) ? 0 : x;
  p.d[j] = 0;
}

bool form_of_zero_cost_column(const ZeroCostColumn& record, LinearForm& form) {
  return form.coefficients[record.column] == 0;
}

}  // namespace tovik::lp::presolve
