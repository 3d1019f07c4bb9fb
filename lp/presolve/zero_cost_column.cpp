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

}  // namespace

bool remove_zero_cost_column(Workspace& ws, int j) {
  if (ws.settings.linear_only || ws.is_protected(j) || ws.cost[j] != 0) return false;
  if ((ws.lower[j] != -kInf && ws.upper[j] != kInf) || !ws.enabled(Rule::zero_cost_column)) return false;
  const Locks locks = locks_of(ws, j);
  const bool up = !locks.up && ws.upper[j] == kInf, down = !locks.down && ws.lower[j] == -kInf;
  const View column = ws.column(j);
  if ((!up && !down) || !entries_fit(column) || !ws.allow(Rule::zero_cost_column)) return false;
  ws.stack.begin(Op::zero_cost_column).integer(j).integer(up).integer(column.length);
  ws.stack.real(up ? ws.lower[j] : ws.upper[j]);
  const std::vector<int> rows(column.index, column.index + column.length);
  for (int k = 0; k < column.length; ++k) {
    const int i = column.index[k];
    const double a = column.value[k];
    ws.stack.integer(i).real(a).real(lower_side(a, up) ? ws.row_lower[i] : ws.row_upper[i]);
    ws.stack.line(ws.row(i));
  }
  for (const int i : rows) ws.remove_row(i, Fate::redundant);
  ws.remove_column(j, Fate::other);
  return true;
}

/* The column goes as far as the neediest row asks. It is basic then, for that row; otherwise it rests at its
 * own bound and all rows are basic. */
void undo_zero_cost_column(Record record, Undo& undo) {
  const int j = record.integer();
  const bool up = record.integer() != 0;
  const int rows = record.integer();
  double x = record.real();
  Point& p = undo.point;
  p.column[j] = std::isinf(x) ? At::free : up ? At::lower : At::upper;
  int needy = -1;
  At side = At::basic;
  for (int k = 0; k < rows; ++k) {
    const int i = record.integer();
    const double a = record.real();
    double rest = record.real();
    const View row = record.line();
    for (int n = 0; n < row.length; ++n) {
      if (row.index[n] != j) rest -= row.value[n] * p.x[row.index[n]];
    }
    p.y[i] = 0;
    p.row[i] = At::basic;
    const double needed = rest / a;
    if (std::isinf(needed) || (up ? needed <= x : needed >= x)) continue;
    x = needed;
    needy = i;
    side = lower_side(a, up) ? At::lower : At::upper;
  }
  if (needy >= 0) {
    p.row[needy] = side;
    p.column[j] = At::basic;
  }
  p.x[j] = std::isinf(x) ? 0 : x;
  p.d[j] = 0;
}

}  // namespace tovik::lp::presolve
