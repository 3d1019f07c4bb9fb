#include "lp/presolve/forcing_row.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "lp/presolve/fixed_column.h"
#include "lp/presolve/tolerances.h"

namespace tovik::lp::presolve {
namespace {

struct Entries {
  std::vector<int> index;
  std::vector<double> value;
  View view() const { return {static_cast<int>(index.size()), index.data(), value.data()}; }
};

/* The entries in columns whose bounds are equal, or in the others. */
Entries select(const Workspace& ws, const std::vector<int>& index, const std::vector<double>& value,
               bool equal_bounds) {
  Entries selected;
  for (size_t k = 0; k < index.size(); ++k) {
    if ((ws.lower[index[k]] == ws.upper[index[k]]) != equal_bounds) continue;
    selected.index.push_back(index[k]);
    selected.value.push_back(value[k]);
  }
  return selected;
}

/* Reduced costs after the row took the dual y; where the bounds are equal the sign says where the column
 * stands. */
void move_reduced_costs(const View& entries, double y, bool by_sign, Undo& undo) {
  Answer& p = undo.point;
  for (int k = 0; k < entries.length; ++k) {
    const int j = entries.index[k];
    CleanSum d = undo.sum_from(p.d[j]);
    d.subtract(entries.value[k] * y);
    p.d[j] = d.value();
    if (by_sign) p.column_status[j] = Undo::side(p.column_status[j], p.d[j]);
  }
}

}  // namespace

bool remove_forcing_row(Workspace& ws, int i) {
  const Activity& sum = ws.activity(i);
  const double lower = ws.row_lower[i], upper = ws.row_upper[i];
  // At the lower side each column is at the bound where the activity is largest.
  const double noise = sum.magnitude * kRounding * ws.row_length(i);
  const auto same = [&](double a, double b) { return std::fabs(a - b) <= side_tolerance(ws, b) + noise; };
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
  const Entries moving = select(ws, index, value, false), frozen = select(ws, index, value, true);
  ws.stack.push(ForcingRow{.row = i, .at_lower = at_lower, .moving = moving.view(), .frozen = frozen.view()});
  ws.remove_row(i, RemovalReason::redundant);
  for (size_t k = 0; k < index.size(); ++k) {
    const int j = index[k];
    const bool up = (value[k] > 0) == at_lower;
    fix_column(ws, j, up ? ws.upper[j] : ws.lower[j], up ? BasisStatus::upper : BasisStatus::lower);
  }
  return true;
}

/* The columns are back with the row's dual at zero. When a reduced cost has the wrong sign for its bound the
 * row takes the dual that mends the worst one, which becomes basic. */
void undo_forcing_row(const ForcingRow& record, Undo& undo) {
  const int i = record.row;
  const View& moving = record.moving;
  Answer& p = undo.point;
  double worst = 0;
  int entering = -1;
  for (int k = 0; k < moving.length; ++k) {
    const double ratio = p.d[moving.index[k]] / moving.value[k];
    if (record.at_lower ? ratio > worst : ratio < worst) {
      worst = ratio;
      entering = moving.index[k];
    }
  }
  p.y[i] = worst;
  if (entering < 0) {
    p.row_status[i] = BasisStatus::basic;
    return;
  }
  p.row_status[i] = record.at_lower ? BasisStatus::lower : BasisStatus::upper;
  move_reduced_costs(moving, worst, undo.homogeneous, undo);
  move_reduced_costs(record.frozen, worst, true, undo);
  p.column_status[entering] = BasisStatus::basic;
  p.d[entering] = 0;
}

}  // namespace tovik::lp::presolve
