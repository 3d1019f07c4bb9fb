#include "lp/presolve/parallel_columns.h"
#include "lp/presolve/fixed_column.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "lp/presolve/parallel_vectors.h"
#include "lp/presolve/tolerances.h"
#include "lp/verify/bounds.h"

namespace tovik::lp::presolve {
namespace {

constexpr int kCompared = 8;  // columns of a bucket that a column is compared with
constexpr double kSameCost = 1e-13;
constexpr double kSameRatio = 1e-9;  // relative difference at which a form still treats merged columns alike
constexpr double kPlain = 1e-4;      // relative reduced cost that proves there is no optimum

bool finite(double a, double b) {
  return !std::isinf(a) && !std::isinf(b);
}

/* Sends column k to a bound when the sign of the reduced cost of j, a_k = g a_j, tells where. */
bool fix_by_partner(Workspace& ws, int j, int k, double g) {
  const double size = std::max(std::fabs(ws.cost[k]), std::fabs(g * ws.cost[j]));
  double excess = ws.cost[k] - g * ws.cost[j];
  if (std::fabs(excess) <= kSameCost * size) excess = 0;
  // g d_j >= 0, g d_j <= 0
  const bool not_negative = g > 0 ? ws.upper[j] == kInf : ws.lower[j] == -kInf;
  const bool not_positive = g > 0 ? ws.lower[j] == -kInf : ws.upper[j] == kInf;
  const bool down = excess >= 0 && not_negative, up = excess <= 0 && not_positive;
  if (!down && !up) return false;
  const bool to_lower = down && (!up || ws.lower[k] != -kInf);
  const double bound = to_lower ? ws.lower[k] : ws.upper[k];
  if (std::isinf(bound)) {
    if (std::fabs(excess) > kPlain * std::max(1.0, size)) {
      ws.declare_infeasible(infeasible_column(StatusCode::dual_bounds_column, k));
      return false;
    }
    if (!down || !up || ws.is_protected(k) || !ws.allow(Rule::parallel_columns)) return false;
    fix_column(ws, k, 0, BasisStatus::free);  // both free
    return true;
  }
  if (ws.is_protected(k) || std::fabs(bound) * std::max(ws.column_max(k), std::fabs(ws.cost[k])) > kHugeMove)
    return false;
  if (!ws.allow(Rule::parallel_columns)) return false;
  fix_column(ws, k, bound, to_lower ? BasisStatus::lower : BasisStatus::upper);
  return true;
}

/* |g| >= 1: so errors of z do not grow when it is split. */
bool merge(Workspace& ws, int j, int k, double g) {
  if (ws.settings.linear_only || ws.is_protected(j) || ws.is_protected(k)) return false;
  if (!finite(ws.lower[j], ws.upper[j]) || !finite(ws.lower[k], ws.upper[k])) return false;
  if (std::fabs(ws.cost[k] - g * ws.cost[j]) > kSameCost * std::fabs(ws.cost[k])) return false;
  const double least = moved(ws.lower[j], g * (g > 0 ? ws.lower[k] : ws.upper[k]));
  const double most = moved(ws.upper[j], g * (g > 0 ? ws.upper[k] : ws.lower[k]));
  if (std::max(std::fabs(least), std::fabs(most)) > kHugeMove || !ws.allow(Rule::parallel_columns))
    return false;
  ws.stack.push(ParallelColumns{.kept = j,
                                .gone = k,
                                .ratio = g,
                                .kept_lower = ws.lower[j],
                                .kept_upper = ws.upper[j],
                                .gone_lower = ws.lower[k],
                                .gone_upper = ws.upper[k]});
  ws.remove_column(k, RemovalReason::merged);
  ws.change_bounds(j, least, most);
  return true;
}

/* Which of the two columns is gone, or -1. */
int fix_or_merge(Workspace& ws, int j, int k, double g) {
  if (fix_by_partner(ws, j, k, g)) return k;
  if (!ws.done() && fix_by_partner(ws, k, j, 1 / g)) return j;
  if (ws.done()) return -1;
  if (std::fabs(g) >= 1) return merge(ws, j, k, g) ? k : -1;
  return merge(ws, k, j, 1 / g) ? j : -1;
}

bool process_bucket(Workspace& ws, const HashedVector* begin, const HashedVector* end,
                    ScatteredVector& scattered) {
  bool changed = false;
  std::vector<int> kept;
  for (const HashedVector* at = begin; at != end && !ws.done(); ++at) {
    int column = at->index;
    for (size_t k = 0; k < kept.size() && column >= 0; ++k) {
      const View own = ws.column(kept[k]);
      scattered.load(own);
      ws.add_work(2 * own.length);
      const double ratio = scattered.ratio(ws.column(column));
      if (ratio == 0) continue;
      const int gone = fix_or_merge(ws, kept[k], column, ratio);
      if (gone < 0) continue;
      changed = true;
      if (gone == kept[k]) kept[k] = column;
      column = -1;
    }
    if (column >= 0 && kept.size() < kCompared) kept.push_back(column);
  }
  return changed;
}

}  // namespace

bool merge_parallel_columns(Workspace& ws) {
  if (!ws.enabled(Rule::parallel_columns) || ws.done()) return false;
  std::vector<HashedVector> candidates;
  for (int j = 0; j < ws.num_columns(); ++j) {
    if (!ws.column_alive(j) || ws.column_length(j) == 0 || ws.lower[j] >= ws.upper[j]) continue;
    const View column = ws.column(j);
    ws.add_work(column.length);
    candidates.push_back({direction_hash(column), j});
  }
  keep_shared_hashes(candidates);
  ScatteredVector scattered(ws.num_rows());
  bool changed = false;
  for (size_t k = 0; k < candidates.size() && !ws.done();) {
    size_t end = k + 1;
    while (end < candidates.size() && candidates[end].hash == candidates[k].hash) ++end;
    changed |= process_bucket(ws, &candidates[k], candidates.data() + end, scattered);
    k = end;
  }
  return changed;
}

/* A nonbasic z has both parts at bounds. A basic z leaves one part at a bound, so that the other finds room
 * within its own: the first way that fits, or the one that misses least. */
void undo_parallel_columns(const ParallelColumns& record, Undo& undo) {
  const int j = record.kept, k = record.gone;
  const double g = record.ratio;
  const double lower_j = record.kept_lower, upper_j = record.kept_upper;
  const double lower_k = record.gone_lower, upper_k = record.gone_upper;
  Answer& p = undo.point;
  p.d[k] = g * p.d[j];
  const BasisStatus present = p.column_status[j];
  if (present != BasisStatus::basic && !undo.interior) {
    const bool low = p.column_status[j] == BasisStatus::lower, low_k = low == (g > 0);
    p.column_status[k] = low_k ? BasisStatus::lower : BasisStatus::upper;
    p.x[j] = low ? lower_j : upper_j;
    p.x[k] = low_k ? lower_k : upper_k;
    return;
  }
  const double z = p.x[j];
  double best = kInf;
  const auto attempt = [&](double xj, double xk, BasisStatus at_j, BasisStatus at_k) {
    const double miss =
        std::max(verify::outside(xj, lower_j, upper_j), verify::outside(xk, lower_k, upper_k));
    if (miss >= best) return;
    best = miss;
    p.x[j] = xj;
    p.x[k] = xk;
    p.column_status[j] = at_j;
    p.column_status[k] = at_k;
  };
  attempt(lower_j, (z - lower_j) / g, BasisStatus::lower, BasisStatus::basic);
  attempt(upper_j, (z - upper_j) / g, BasisStatus::upper, BasisStatus::basic);
  attempt(z - g * lower_k, lower_k, BasisStatus::basic, BasisStatus::lower);
  attempt(z - g * upper_k, upper_k, BasisStatus::basic, BasisStatus::upper);
  if (!undo.interior) return;
  p.column_status[j] = present;
  p.column_status[k] = Undo::side(BasisStatus::basic, p.d[k]);
}

void point_of_parallel_columns(const ParallelColumns& record, std::vector<double>& x) {
  x[record.kept] += record.ratio * x[record.gone];
}

void basis_of_parallel_columns(const ParallelColumns& record, Basis& basis) {
  if (basis.columns[record.gone] == BasisStatus::basic) basis.columns[record.kept] = BasisStatus::basic;
}

bool form_of_parallel_columns(const ParallelColumns& record, LinearForm& form) {
  const double wanted = record.ratio * form.coefficients[record.kept];
  const double given = form.coefficients[record.gone];
  form.coefficients[record.gone] = 0;
  return std::fabs(wanted - given) <= kSameRatio * std::max(std::fabs(wanted), std::fabs(given));
}

void form_back_of_parallel_columns(const ParallelColumns& record, LinearForm& form) {
  form.coefficients[record.gone] = record.ratio * form.coefficients[record.kept];
}

}  // namespace tovik::lp::presolve
