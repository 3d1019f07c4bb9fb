#include "lp/presolve/free_column.h"

#include <algorithm>
#include <cmath>

#include "lp/presolve/tolerances.h"

namespace tovik::lp::presolve {
namespace {

constexpr double kPivot = 0.01;     // of the largest entry in its row or in its column
constexpr double kMostEntry = 1e8;  // of new entries
constexpr double kLeastEntry = 1e-9;
constexpr double kSupport = 1e-3;  // entry of a row that implies a bound, of the row's largest

/* Largest and smallest magnitude of the entries of a row or column. */
struct EntryRange {
  double least = kInf, most = 0;
  explicit EntryRange(const View& v) {
    for (int k = 0; k < v.length; ++k) {
      least = std::min(least, std::fabs(v.value[k]));
      most = std::max(most, std::fabs(v.value[k]));
    }
  }
};

}  // namespace

bool implied_free(Workspace& ws, int s) {
  bool below = ws.lower[s] == -kInf, above = ws.upper[s] == kInf;
  if (below && above) return true;
  const View v = ws.column(s);
  ws.add_work(v.length);
  for (int k = 0; k < v.length && !(below && above); ++k) {
    const int r = v.index[k];
    const double a = v.value[k];
    const Activity& sum = ws.activity(r);
    if (std::fabs(a) < kSupport * sum.largest) continue;
    const double noise = sum.magnitude * kRounding * ws.row_length(r) / std::fabs(a);
    const auto slack = [&ws, noise](double bound) { return side_tolerance(ws, bound) - noise; };
    below = below || ws.implied_lower(r, s, a) >= ws.lower[s] - slack(ws.lower[s]);
    above = above || ws.implied_upper(r, s, a) <= ws.upper[s] + slack(ws.upper[s]);
  }
  return below && above;
}

bool sound_pivot(Workspace& ws, int i, int s, double a) {
  const EntryRange row(ws.row(i)), column(ws.column(s));
  ws.add_work(ws.row_length(i) + ws.column_length(s));
  const double pivot = std::fabs(a);
  if (pivot < kPivot * row.most && pivot < kPivot * column.most) return false;
  return column.most * row.most < kMostEntry * pivot && column.least * row.least > kLeastEntry * pivot;
}

bool substitute_free_column(Workspace& ws, int i, int s) {
  if (!ws.allow(Rule::free_column)) return false;
  ws.stack.push(FreeColumn{.row = i,
                           .column = s,
                           .beta = ws.row_lower[i],
                           .cost = ws.cost[s],
                           .row_entries = ws.row(i),
                           .entries = ws.column_entries(s)});
  ws.substitute(i, s);
  return true;
}

/* The column is basic and its reduced cost zero, which gives the row's dual. */
void undo_free_column(const FreeColumn& record, Undo& undo) {
  const int i = record.row, s = record.column;
  const View& row = record.row_entries;
  double x = record.beta, pivot = 0;
  CleanSum y = undo.sum_from(undo.cost(record.cost));
  Answer& p = undo.point;
  for (int k = 0; k < row.length; ++k) {
    if (row.index[k] == s) {
      pivot = row.value[k];
    } else {
      x -= row.value[k] * p.x[row.index[k]];
    }
  }
  undo.each_entry(record.entries, s, [&](int r, double a) { y.subtract(a * p.y[r]); });
  p.x[s] = x / pivot;
  p.d[s] = 0;
  p.column_status[s] = BasisStatus::basic;
  p.y[i] = y.value() / pivot;
  p.row_status[i] = Undo::side(BasisStatus::lower, p.y[i]);
}

bool form_of_free_column(const FreeColumn& record, LinearForm& form) {
  const View& row = record.row_entries;
  const int* at = std::find(row.index, row.index + row.length, record.column);
  substitute(form, record.column, row.value[at - row.index], record.beta, row);
  return true;
}

}  // namespace tovik::lp::presolve
