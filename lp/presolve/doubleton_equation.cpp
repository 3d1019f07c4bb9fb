#include "lp/presolve/doubleton_equation.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lp/presolve/free_column.h"
#include "lp/presolve/tolerances.h"

namespace tovik::lp::presolve {
namespace {

constexpr double kAlike = 10;       // ratio of the entries up to which the shorter column leaves
constexpr double kMostRatio = 1e3;  // |entry that stays / entry that leaves|
constexpr int kMostGrowth = 4;      // of the column that stays, in multiples of its length
constexpr int kShort = 20;          // no column of this length is too long

struct Pair {
  int i, leaves, stays;
  double a, b;  // entries of the two
};

/* Bounds of the column that stays, with those of the one that leaves. */
struct Transfer {
  double lower, upper;
  bool tighter_lower, tighter_upper;
};

bool may_leave(Workspace& ws, const Pair& d) {
  if (ws.is_protected(d.leaves) || std::fabs(d.b) > kMostRatio * std::fabs(d.a)) return false;
  const int grown = ws.column_length(d.leaves) + ws.column_length(d.stays) - 2;
  if (grown > std::max(kShort, kMostGrowth * ws.column_length(d.stays))) return false;
  const double beta = std::fabs(ws.row_lower[d.i]);
  for (const double bound : {ws.lower[d.leaves], ws.upper[d.leaves]}) {
    if (std::isfinite(bound) && std::max(beta, std::fabs(bound * d.a)) > kHugeMove * std::fabs(d.b))
      return false;
  }
  return sound_pivot(ws, d.i, d.leaves, d.a);
}

Transfer transfer_of(const Workspace& ws, const Pair& d) {
  const double beta = ws.row_lower[d.i];
  const double old_lower = ws.lower[d.stays], old_upper = ws.upper[d.stays];
  double lower = moved(beta, -d.a * ws.lower[d.leaves]) / d.b;
  double upper = moved(beta, -d.a * ws.upper[d.leaves]) / d.b;
  if ((d.a > 0) == (d.b > 0)) std::swap(lower, upper);
  // In terms of the column that leaves, and of the one that stays.
  const double factor = std::max(1.0, std::fabs(d.b / d.a));
  const auto guard = [&](double bound) { return side_tolerance(ws, bound, kStrict) / factor; };
  Transfer t;
  t.tighter_lower = lower > old_lower + guard(lower);
  t.tighter_upper = upper < old_upper - guard(upper);
  t.lower = t.tighter_lower ? lower : old_lower;
  t.upper = t.tighter_upper ? upper : old_upper;
  return t;
}

/* Bounds that cross or differ by rounding are made one, at a bound of its own if there is one. */
bool merge_crossing_bounds(const Workspace& ws, Transfer& t) {
  const double crossing = t.lower - t.upper;
  if (crossing == 0 || !(crossing > -side_tolerance(ws, t.lower, kSame))) return true;
  if (crossing > side_tolerance(ws, t.lower)) return false;
  if (t.tighter_lower && !t.tighter_upper) {
    t.lower = t.upper;
  } else {
    t.upper = t.lower;
  }
  return true;
}

}  // namespace

bool substitute_doubleton(Workspace& ws, int i) {
  if (!ws.equation(i) || !ws.enabled(Rule::doubleton_equation)) return false;
  const View v = ws.row(i);
  Pair d{i, v.index[0], v.index[1], v.value[0], v.value[1]};
  Pair other{i, d.stays, d.leaves, d.b, d.a};
  const double ratio = std::fabs(d.a / d.b);
  const bool alike = ratio <= kAlike && ratio >= 1 / kAlike;
  if (alike ? ws.column_length(d.leaves) > ws.column_length(d.stays) : ratio < 1) std::swap(d, other);
  if (!may_leave(ws, d)) {
    if (!may_leave(ws, other)) return false;
    d = other;
  }
  Transfer t = transfer_of(ws, d);
  if (!merge_crossing_bounds(ws, t)) return false;
  if (!ws.allow(Rule::doubleton_equation)) return false;
  const bool same_sign = (d.a > 0) == (d.b > 0);
  ws.stack.push(Doubleton{.row = i,
                          .leaves = d.leaves,
                          .stays = d.stays,
                          .tighter_lower = t.tighter_lower,
                          .tighter_upper = t.tighter_upper,
                          .collapsed = t.lower == t.upper,
                          .a = d.a,
                          .b = d.b,
                          .beta = ws.row_lower[i],
                          .cost = ws.cost[d.leaves],
                          .at_lower = same_sign ? ws.upper[d.leaves] : ws.lower[d.leaves],
                          .at_upper = same_sign ? ws.lower[d.leaves] : ws.upper[d.leaves],
                          .entries = ws.column_entries(d.leaves)});
  ws.substitute(i, d.leaves);
  if (t.tighter_lower || t.tighter_upper || t.lower == t.upper) ws.change_bounds(d.stays, t.lower, t.upper);
  return true;
}

/* The column that left is basic, unless the other is nonbasic at a bound transferred from it: then they swap.
 */
void undo_doubleton(const Doubleton& record, Undo& undo) {
  const int i = record.row, j = record.leaves, k = record.stays;
  const double a = record.a, b = record.b;
  Answer& p = undo.point;
  CleanSum rest = undo.sum_from(undo.cost(record.cost));
  undo.each_entry(record.entries, j, [&](int r, double value) { rest.subtract(value * p.y[r]); });
  p.y[i] = rest.value() / a;
  p.x[j] = (record.beta - b * p.x[k]) / a;
  p.d[j] = 0;
  p.column_status[j] = BasisStatus::basic;
  BasisStatus at = p.column_status[k];
  if (record.collapsed && at != BasisStatus::basic)
    p.column_status[k] = at = Undo::own_side(at, p.d[k], record.tighter_lower, record.tighter_upper);
  if ((at == BasisStatus::lower && record.tighter_lower) ||
      (at == BasisStatus::upper && record.tighter_upper)) {
    CleanSum y = undo.sum_from(p.y[i]);
    y.subtract(-p.d[k] / b);
    p.y[i] = y.value();
    p.d[j] = -(a / b) * p.d[k];
    p.d[k] = 0;
    if (!undo.interior) p.x[j] = at == BasisStatus::lower ? record.at_lower : record.at_upper;
    p.column_status[j] =
        ((a > 0) == (b > 0)) == (at == BasisStatus::lower) ? BasisStatus::upper : BasisStatus::lower;
    p.column_status[k] = BasisStatus::basic;
  }
  p.row_status[i] = Undo::side(BasisStatus::lower, p.y[i]);
}

bool form_of_doubleton(const Doubleton& record, LinearForm& form) {
  substitute(form, record.leaves, record.a, record.beta, {1, &record.stays, &record.b});
  return true;
}

void basis_of_doubleton(const Doubleton& record, Basis& basis) {
  const BasisStatus leaves = basis.columns[record.leaves];
  if (leaves != BasisStatus::basic && basis.columns[record.stays] == BasisStatus::basic)
    basis.columns[record.stays] = scaled_status(leaves, (record.a > 0) != (record.b > 0));
}

}  // namespace tovik::lp::presolve
