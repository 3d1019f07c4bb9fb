#include "lp/presolve/model_change.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lp/presolve/operations.h"
#include "lp/presolve/tolerances.h"

namespace tovik::lp::presolve {
namespace {

constexpr double kMeeting = 1e-9;  // relative

/* Does each of `changes` concern a column or row that was kept? */
template <class Changes, class Index>
bool all_kept(const std::vector<int>& map, const Changes& changes, Index index) {
  return std::all_of(changes.begin(), changes.end(),
                     [&](const auto& change) { return reduced_index(map, index(change)) >= 0; });
}

/* A bound that changes must become tighter, and it must be the one that the reduced column has. The bounds
 * may not meet, but for rounding, when one came from a row: undo would not know that the sign of the dual tells them
 * apart. */
bool tightens(const Reduction& reduction, const LpData& original, const NewRange& fresh) {
  const LpData& reduced = reduction.lp;
  const int j = fresh.index, at = reduced_index(reduction.column_map, j);
  const bool lower_fits = fresh.lower == original.lower[j] ||
                          (fresh.lower > original.lower[j] && reduced.lower[at] == original.lower[j]);
  const bool upper_fits = fresh.upper == original.upper[j] ||
                          (fresh.upper < original.upper[j] && reduced.upper[at] == original.upper[j]);
  const double lower = std::max(fresh.lower, reduced.lower[at]);
  const double upper = std::min(fresh.upper, reduced.upper[at]);
  const bool own = lower == fresh.lower && upper == fresh.upper;
  const double smaller = std::min(std::fabs(lower), std::fabs(upper));
  const bool apart = std::isinf(smaller) ? lower < upper : upper - lower > kMeeting * std::max(1.0, smaller);
  return lower_fits && upper_fits && (own ? lower <= upper : apart);
}

bool same_type(const NewRange& fresh, double lower, double upper) {
  return (fresh.lower == -kInf) == (lower == -kInf) && (fresh.upper == kInf) == (upper == kInf) &&
         (fresh.lower == fresh.upper) == (lower == upper);
}

/* lp with rows added at its end. */
LpData with_rows(const LpData& lp, const Matrix& added, const NewRows& sides) {
  Matrix rows = transpose(lp.matrix);
  const auto before = static_cast<int>(rows.index.size());
  rows.index.insert(rows.index.end(), added.index.begin(), added.index.end());
  rows.value.insert(rows.value.end(), added.value.begin(), added.value.end());
  for (int k = 0; k < added.columns; ++k) rows.start.push_back(before + added.start[k + 1]);
  rows.columns += added.columns;
  LpData longer = lp;
  longer.matrix = transpose(rows);
  longer.row_lower.insert(longer.row_lower.end(), sides.lower.begin(), sides.lower.end());
  longer.row_upper.insert(longer.row_upper.end(), sides.upper.begin(), sides.upper.end());
  return longer;
}

}  // namespace

bool holds_after(const Counts& counts, ModelChange change) {
  for (const RuleTraits& traits : kRuleTable) {
    if (counts.hits[static_cast<size_t>(traits.rule)] > 0 && !traits.holds_after.has(change)) return false;
  }
  return true;
}

int reduced_index(const std::vector<int>& map, int original) {
  const auto at = std::lower_bound(map.begin(), map.end(), original);
  return at == map.end() || *at != original ? -1 : static_cast<int>(at - map.begin());
}

bool change_costs(Reduction& reduction, LpData& original, std::span<const NewCost> costs, double offset) {
  const std::vector<int>& map = reduction.column_map;
  if (!all_kept(map, costs, [](const NewCost& c) { return c.column; })) return false;
  if (!costs.empty() && !holds_after(reduction.counts, ModelChange::cost)) return false;
  LpData& reduced = reduction.lp;
  reduced.offset += offset - original.offset;
  original.offset = offset;
  for (const auto& [j, cost] : costs) {
    double& image = reduced.cost[reduced_index(map, j)];
    image = moved(image, cost - original.cost[j]);
    original.cost[j] = cost;
  }
  return true;
}

bool change_bounds(Reduction& reduction, LpData& original, std::span<const NewRange> bounds) {
  const std::vector<int>& map = reduction.column_map;
  if (!all_kept(map, bounds, [](const NewRange& b) { return b.index; }) ||
      !holds_after(reduction.counts, ModelChange::bound) ||
      !std::all_of(bounds.begin(), bounds.end(),
                   [&](const NewRange& fresh) { return tightens(reduction, original, fresh); }))
    return false;
  LpData& reduced = reduction.lp;
  for (const auto& [j, lower, upper] : bounds) {
    const int at = reduced_index(map, j);
    if (lower != original.lower[j]) reduced.lower[at] = original.lower[j] = lower;
    if (upper != original.upper[j]) reduced.upper[at] = original.upper[j] = upper;
  }
  return true;
}

bool change_sides(Reduction& reduction, LpData& original, std::span<const NewRange> sides) {
  const std::vector<int>& map = reduction.row_map;
  LpData& reduced = reduction.lp;
  if (!all_kept(map, sides, [](const NewRange& s) { return s.index; }) ||
      !holds_after(reduction.counts, ModelChange::side))
    return false;
  std::vector<char> used(original.row_lower.size(), 0);
  flag_rows_used(reduction.stack, used);
  for (const NewRange& fresh : sides) {
    const int i = fresh.index, at = reduced_index(map, i);
    if (used[i] || !same_type(fresh, original.row_lower[i], original.row_upper[i]) ||
        !same_type(fresh, reduced.row_lower[at], reduced.row_upper[at]))
      return false;
  }
  for (const auto& [i, lower, upper] : sides) {
    const int at = reduced_index(map, i);
    const double shift = lower > -kInf ? lower - original.row_lower[i] : upper - original.row_upper[i];
    reduced.row_lower[at] = moved(reduced.row_lower[at], shift);
    reduced.row_upper[at] = moved(reduced.row_upper[at], shift);
    original.row_lower[i] = lower;
    original.row_upper[i] = upper;
  }
  return true;
}

bool add_rows(Reduction& reduction, LpData& original, const NewRows& added) {
  Matrix images = added.rows;
  for (int& j : images.index) {
    j = reduced_index(reduction.column_map, j);
    if (j < 0) return false;
  }
  if (!holds_after(reduction.counts, ModelChange::row)) return false;
  const int first = original.num_rows();
  LpData longer = with_rows(original, added.rows, added);
  reduction.lp = with_rows(reduction.lp, images, added);
  original = std::move(longer);
  for (int i = first; i < original.num_rows(); ++i) {
    reduction.row_map.push_back(i);
    reduction.row_removal.push_back(RemovalReason::kept);
  }
  return true;
}

}  // namespace tovik::lp::presolve
