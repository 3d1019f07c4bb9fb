#include "lp/presolve/forcing_row.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "lp/presolve/tolerances.h"

namespace tovik::lp::presolve {

bool remove_forcing_row(Workspace& ws, int i) {
  const Activity& sum = ws.activity(i);
  const double lower = ws.row_lower[i], upper = ws.row_upper[i];
  // The row pushes to its lower side: each column stands where the activity is largest.
  const double noise = sum.magnitude * kRounding * ws.row_length(i);
  const auto same = [&](double a, double b) { return std::fabs(a - b) <= no_difference(ws, b) + noise; };
  const bool at_lower = lower != -kInf && sum.infinite_max == 0 && same(sum.max, lower);
  const bool at_upper = upper != kInf && sum.infinite_min == 0 && same(sum.min, upper);
  if (!at_lower && !at_upper) return false;
  const View v = ws.row(i);
  const std::vector<int> index(v.index, v.index + v.length);
  const std::vector<double> value(v.value, v.value + v.length);
  for (size_t k = 0; k < index.size(); ++k) {
    const double bound = (value[k] > 0) == at_lower ? ws.upper[index[k]] : ws.lower[index[k]];
    if (ws.is_protected(index[k]) || std::fabs(bound * value[k]) > kHugeMove) return false;
  }
  if (!ws.allow(Rule::forcing_row)) return false;
  // Columns with equal bounds do not hold the row: they are marked by a negative index.
  ws.stack.begin(Op::forcing_row).integer(i).integer(at_lower).integer(static_cast<int>(index.size()));
  for (const int j : index) ws.stack.integer(ws.lower[j] == ws.upper[j] ? -j - 1 : j);
  for (const double a : value) ws.stack.real(a);
  ws.remove_row(i, Fate::redundant);
  for (size_t k = 0; k < index.size(); ++k) {
    const int j = index[k];
    const bool up = (value[k] > 0) == at_lower;
    ws.fix_column(j, up ? ws.upper[j] : ws.lower[j], up ? At::upper : At::lower);
  }
  return true;
}

/* The columns are back with the row's dual at zero. When a reduced cost has the wrong sign for its bound the
 * row takes the dual that mends the worst one, which becomes basic. */
void undo_forcing_row(Record record, Undo& undo) {
  const int i = record.integer();
  const bool at_lower = record.integer() != 0;
  const View row = record.line();
  Point& p = undo.point;
  double worst = 0;
  int entering = -1;
  for (int k = 0; k < row.length; ++k) {
    const int j = row.index[k];
    if (j < 0) continue;
    const double ratio = p.d[j] / row.value[k];
    if (at_lower ? ratio > worst : ratio < worst) {
      worst = ratio;
      entering = j;
    }
  }
  p.y[i] = worst;
  if (entering < 0) {
    p.row[i] = At::basic;
    return;
  }
  p.row[i] = at_lower ? At::lower : At::upper;
  for (int k = 0; k < row.length; ++k) {
    const bool equal = row.index[k] < 0;
    const int j = equal ? -row.index[k] - 1 : row.index[k];
    CleanSum d(p.d[j]);
    d.subtract(row.value[k] * worst);
    p.d[j] = d.value();
    if (equal || undo.homogeneous) p.column[j] = Undo::side(p.column[j], p.d[j]);
  }
  p.column[entering] = At::basic;
  p.d[entering] = 0;
}

}  // namespace tovik::lp::presolve
