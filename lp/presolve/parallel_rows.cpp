#include "lp/presolve/parallel_rows.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "lp/presolve/parallel_vectors.h"
#include "lp/presolve/tolerances.h"

namespace tovik::lp::presolve {
namespace {

constexpr int kCompared = 8;  // rows of a bucket that a row is compared with

double size_of(double a, double b) {
  return std::max({1.0, std::isinf(a) ? 0.0 : std::fabs(a), std::isinf(b) ? 0.0 : std::fabs(b)});
}

/* Row `other` = g times row `kept`. */
struct Pair {
  int kept, other;
  double g;
};

void declare_inconsistent(Workspace& ws, const Pair& pair, bool kept_lower) {
  const double sign = kept_lower ? 1.0 : -1.0;
  PresolveStatus status;
  status.code = StatusCode::rows_inconsistent;
  status.row = pair.kept;
  status.other_row = pair.other;
  status.multipliers = {{pair.kept, sign}, {pair.other, -sign / pair.g}};
  ws.declare_infeasible(std::move(status));
}

/* Sides of the kept row after the other one went. */
struct Sides {
  double lower, upper;
  bool tighter_lower, tighter_upper;
};

enum class Fit { sound, undecided, inconsistent };

Sides intersection(const Workspace& ws, const Pair& pair) {
  const auto [i, k, g] = pair;
  double lower = ws.row_lower[k] / g, upper = ws.row_upper[k] / g;
  if (g < 0) std::swap(lower, upper);
  const double factor = std::max(1.0, std::fabs(g));  // a difference is seen in both rows
  Sides s;
  s.tighter_lower = lower > ws.row_lower[i] + side_tolerance(ws, lower, kStrict) / factor;
  s.tighter_upper = upper < ws.row_upper[i] - side_tolerance(ws, upper, kStrict) / factor;
  s.lower = s.tighter_lower ? lower : ws.row_lower[i];
  s.upper = s.tighter_upper ? upper : ws.row_upper[i];
  return s;
}

/* Sides that cross or differ by rounding are made one: the kept row's own. */
Fit merge_crossing_sides(const Workspace& ws, const Pair& pair, Sides& s) {
  const double gap = s.lower - s.upper, ratio = std::fabs(pair.g);
  if ((!s.tighter_lower && !s.tighter_upper) || gap == 0 || !(gap > -side_tolerance(ws, s.lower, kSame)))
    return Fit::sound;
  // Only a side of one row can contradict a side of the other.
  const double size = size_of(s.lower, s.upper);
  if (gap * std::min(1.0, ratio) > infeasibility_tolerance(ws, size)) return Fit::inconsistent;
  if (s.tighter_lower == s.tighter_upper || gap * std::max(1.0, ratio) > side_tolerance(ws, size))
    return Fit::undecided;
  const double own_lower = ws.row_lower[pair.kept], own_upper = ws.row_upper[pair.kept];
  if (s.tighter_lower) {
    s.lower = own_upper;
  } else {
    s.upper = own_lower;
  }
  s.tighter_lower &= s.lower > own_lower;
  s.tighter_upper &= s.upper < own_upper;
  return Fit::sound;
}

bool merge(Workspace& ws, const Pair& pair) {
  const auto [i, k, g] = pair;
  Sides s = intersection(ws, pair);
  const bool own_lower = !s.tighter_lower;
  const Fit fit = merge_crossing_sides(ws, pair, s);
  if (fit == Fit::inconsistent) declare_inconsistent(ws, pair, own_lower);
  if (fit != Fit::sound || !ws.allow(Rule::parallel_rows)) return false;
  ws.stack.push(ParallelRows{.kept = i,
                             .gone = k,
                             .tighter_lower = s.tighter_lower,
                             .tighter_upper = s.tighter_upper,
                             .collapsed = s.lower == s.upper,
                             .ratio = g});
  ws.remove_row(k, RemovalReason::merged);
  if (s.tighter_lower || s.tighter_upper) ws.change_sides(i, s.lower, s.upper);
  return true;
}

/* The rows of one bucket, each against the first few that stay. */
bool merge_bucket(Workspace& ws, const HashedVector* begin, const HashedVector* end,
                  ScatteredVector& scattered) {
  bool changed = false;
  std::vector<int> kept;
  for (const HashedVector* at = begin; at != end && !ws.done(); ++at) {
    int row = at->index;
    bool gone = false;
    for (int& partner : kept) {
      const View own = ws.row(partner);
      scattered.load(own);
      ws.add_work(2 * own.length);
      const double ratio = scattered.ratio(ws.row(row));
      if (ratio == 0) continue;
      // An equation stays an equation: it takes the other's place.
      const bool swapped = ws.equation(row) && !ws.equation(partner);
      gone = merge(ws, swapped ? Pair{row, partner, 1 / ratio} : Pair{partner, row, ratio});
      if (gone && swapped) partner = row;
      if (gone) break;
    }
    changed |= gone;
    if (!gone && kept.size() < kCompared) kept.push_back(row);
  }
  return changed;
}

}  // namespace

bool merge_parallel_rows(Workspace& ws) {
  if (!ws.enabled(Rule::parallel_rows) || ws.done()) return false;
  std::vector<HashedVector> candidates;
  for (int i = 0; i < ws.num_rows(); ++i) {
    if (!ws.row_alive(i) || ws.row_length(i) < 2) continue;
    const View row = ws.row(i);
    ws.add_work(row.length);
    candidates.push_back({direction_hash(row), i});
  }
  keep_shared_hashes(candidates);
  ScatteredVector scattered(ws.num_columns());
  bool changed = false;
  for (size_t k = 0; k < candidates.size() && !ws.done();) {
    size_t end = k + 1;
    while (end < candidates.size() && candidates[end].hash == candidates[k].hash) ++end;
    changed |= merge_bucket(ws, &candidates[k], candidates.data() + end, scattered);
    k = end;
  }
  return changed;
}

/* A row that is nonbasic at a side of the other one passes its dual on to it. */
void undo_parallel_rows(const ParallelRows& record, Undo& undo) {
  const auto& [i, k, tighter_lower, tighter_upper, collapsed, g] = record;
  Answer& p = undo.point;
  BasisStatus at = p.row_status[i];
  if (collapsed && at != BasisStatus::basic)
    p.row_status[i] = at = Undo::own_side(at, p.y[i], tighter_lower, tighter_upper);
  if ((at == BasisStatus::lower && tighter_lower) || (at == BasisStatus::upper && tighter_upper)) {
    p.y[k] = p.y[i] / g;
    p.row_status[k] = (at == BasisStatus::lower) == (g > 0) ? BasisStatus::lower : BasisStatus::upper;
    p.y[i] = 0;
    p.row_status[i] = BasisStatus::basic;
  } else {
    p.y[k] = 0;
    p.row_status[k] = BasisStatus::basic;
  }
}

void duals_of_parallel_rows(const ParallelRows& record, std::vector<double>& y) {
  y[record.kept] += record.ratio * y[record.gone];
}

void basis_of_parallel_rows(const ParallelRows& record, Basis& basis) {
  if (basis.rows[record.kept] == BasisStatus::basic)
    basis.rows[record.kept] = scaled_status(basis.rows[record.gone], record.ratio > 0);
}

}  // namespace tovik::lp::presolve
