#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "lp/presolve/tolerances.h"
#include "mip/presolve/rules.h"

namespace tovik::mip {
namespace {

using lp::presolve::Activity;
using lp::presolve::View;
using lp::presolve::Workspace;

constexpr double kRounding = 1e-9;     // by which an implied bound may miss the bound
constexpr std::int64_t kEffort = 20;   // entries that one call may look at, relative to those of the problem
constexpr int kScanned = 8;            // entries of a row that are passed over in the time of one
constexpr double kLargestMove = 1e12;  // value that is moved into sides

/* One bit of 64 for each row. */
std::uint64_t bit_of(int i) {
  return std::uint64_t{1} << ((static_cast<std::uint64_t>(i) * 0x9E3779B97F4A7C15U) >> 58U);
}

bool is_finite(double v) {
  return !std::isinf(v);
}

/* Rows, and rows that a move down or up can violate, as sets of bits. */
struct Support {
  std::uint64_t rows = 0, down = 0, up = 0;
  int downs = 0, ups = 0;  // rows that a move can violate
};

/* Two arguments, each of a feasible point that is changed for one that costs no more:
 *
 * - Pairs ("Progress in presolving for mixed integer programming", Math. Programming Computation 7 (2015)). If moving one
 *   column by a unit makes up in all rows for moving another one, the two can be moved on until one of them meets its bound. A
 *   bound of the one that makes up is never met first where it is infinite, or implied by a row: rows still hold then. Where
 *   it is met, the other one can go on to its bound if the rows hold without it from there.
 * - Saturators, as known for set covering: columns that no row keeps from one of their bounds, and one of which, there, makes a
 *   row hold whatever the other columns do. If the cheapest ones of all rows that want a unit of an integer column cost no
 *   more than that unit, it stays at its cheaper bound.
 *
 * Cost: candidates are taken from the shortest row that one of the pair can violate, and sorted out by bit sets of their
 * rows; within a limit, at which the next call goes on. */
class DominatedColumns {
 public:
  explicit DominatedColumns(PresolveState& state)
      : state_(state),
        ws_(state.ws()),
        last_work_(ws_.work() + kEffort * state.size()),
        is_gone_(static_cast<std::size_t>(ws_.num_columns()), 0) {}

  void run() {
    find_supports();
    find_saturators();
    const int n = ws_.num_columns();
    int& k = state_.next_dominated;
    for (int seen = 0; seen < n && goes_on(); ++seen, ++k) {
      if (k >= n) k = 0;
      if (!is_candidate(k) || fall_back_on_saturators(k)) continue;
      entries_of(k);
      if (!pair_up(k, -1)) pair_up(k, 1);
      forget_entries();
    }
    for (const Term& fixed : fixed_) state_.fix(fixed.column, fixed.value);
  }

 private:
  struct Move {
    int column, direction;
  };
  /* The cheapest columns that make a row hold alone, by what it costs to move them to their bound. */
  struct Saturator {
    int column = -1;
    double cost = kInf;
  };
  struct Saturators {
    Saturator first, second;
  };

  bool goes_on() { return ws_.work() < last_work_ && state_.goes_on(); }
  bool is_candidate(int j) {
    return ws_.column_alive(j) && is_gone_[j] == 0 && !state_.is_held(j) && !state_.is_fixed(j) &&
           ws_.column_length(j) > 0;
  }
  /* In the end: what is judged until then by the old bounds holds for the new ones, and the activities stay. */
  void fix(int j, double value) {
    is_gone_[j] = 1;
    fixed_.push_back({j, value});
  }
  double end(int j, int direction) const { return direction < 0 ? ws_.lower[j] : ws_.upper[j]; }

  /* A move of this size and sign of the row's activity may violate it. */
  bool harms(int i, double move) const {
    return (move > 0 && is_finite(ws_.row_upper[i])) || (move < 0 && is_finite(ws_.row_lower[i]));
  }

  /* By which the activity of a redundant row may exceed its side. */
  double tolerance(int i, double side, const Activity& activity) {
    return lp::presolve::side_tolerance(ws_, side) -
           lp::presolve::kRounding * ws_.row_length(i) * activity.magnitude;
  }

  void find_supports() {
    supports_.assign(static_cast<std::size_t>(ws_.num_columns()), {});
    scattered_.assign(static_cast<std::size_t>(ws_.num_rows()), 0.0);
    for (int j = 0; j < ws_.num_columns(); ++j) {
      if (!ws_.column_alive(j)) continue;
      const View column = ws_.column(j);
      ws_.add_work(column.length);
      Support& s = supports_[j];
      for (int k = 0; k < column.length; ++k) {
        const std::uint64_t bit = bit_of(column.index[k]);
        s.rows |= bit;
        if (harms(column.index[k], -column.value[k])) s.down |= bit, ++s.downs;
        if (harms(column.index[k], column.value[k])) s.up |= bit, ++s.ups;
      }
    }
  }
  std::uint64_t locks(int j, int direction) const {
    return direction < 0 ? supports_[j].down : supports_[j].up;
  }
  int count_locks(int j, int direction) const {
    return direction < 0 ? supports_[j].downs : supports_[j].ups;
  }

  /* Rows with one side only. */
  void find_saturators() {
    saturators_.assign(static_cast<std::size_t>(ws_.num_rows()), {});
    for (int i = 0; i < ws_.num_rows() && goes_on(); ++i) {
      if (!ws_.row_alive(i) || is_finite(ws_.row_lower[i]) == is_finite(ws_.row_upper[i])) continue;
      const int sign = is_finite(ws_.row_lower[i]) ? 1 : -1;
      const Activity& activity = ws_.activity(i);
      const double worst = sign > 0 ? activity.least() : -activity.most();
      const double side = sign > 0 ? ws_.row_lower[i] : -ws_.row_upper[i];
      if (!is_finite(worst)) continue;
      const double missing = side - worst - tolerance(i, side, activity);
      const View row = ws_.row(i);
      ws_.add_work(row.length);
      for (int k = 0; k < row.length; ++k) {
        const int j = row.index[k], direction = sign * row.value[k] > 0 ? 1 : -1;
        const double range = ws_.upper[j] - ws_.lower[j];
        if (state_.is_held(j) || count_locks(j, direction) > 0 || !is_finite(range)) continue;
        if (std::fabs(row.value[k]) * range >= missing) add(i, {j, direction * ws_.cost[j] * range});
      }
    }
  }
  void add(int i, Saturator s) {
    Saturators& best = saturators_[i];
    if (s.cost < best.first.cost) std::swap(s, best.first);
    if (s.cost < best.second.cost) best.second = s;
  }

  /* An integer column whose every unit costs no less than columns that make all those rows hold which want it: it leaves
   * its cheaper bound in no optimal solution that needs it. */
  bool fall_back_on_saturators(int k) {
    const double cost = std::fabs(ws_.cost[k]);
    if (!state_.is_integer(k) || cost == 0) return false;
    const int direction = ws_.cost[k] > 0 ? -1 : 1;
    const double bound = end(k, direction);
    if (std::fabs(bound) > kLargestMove) return false;
    const View column = ws_.column(k);
    ws_.add_work(column.length);
    chosen_.clear();
    double sum = 0;
    for (int e = 0; e < column.length; ++e) {
      const int i = column.index[e];
      if (!harms(i, direction * column.value[e])) continue;
      const Saturator& s = saturators_[i].first.column == k ? saturators_[i].second : saturators_[i].first;
      if (s.column < 0 || is_gone_[s.column] != 0) return false;
      if (std::find(chosen_.begin(), chosen_.end(), s.column) != chosen_.end()) continue;
      chosen_.push_back(s.column);
      sum += std::max(0.0, s.cost);
      if (sum > cost) return false;
    }
    fix(k, bound);
    return true;
  }

  void entries_of(int k) {
    const View column = ws_.column(k);
    loaded_.assign(column.index, column.index + column.length);
    for (int e = 0; e < column.length; ++e) scattered_[column.index[e]] = column.value[e];
    ws_.add_work(column.length);
  }
  void forget_entries() {
    for (const int i : loaded_) scattered_[i] = 0;
  }

  /* Moves of this column that others make up for in all rows, at no higher cost: whichever of the two meets its bound last,
   * some optimal point has the first one there. True when the column is fixed. */
  bool pair_up(int k, int direction) {
    if (count_locks(k, direction) == 0) return false;
    int shortest = -1;
    for (const int i : loaded_) {
      if (!harms(i, direction * scattered_[i])) continue;
      if (shortest < 0 || ws_.row_length(i) < ws_.row_length(shortest)) shortest = i;
    }
    const double a = direction * scattered_[shortest];
    const View row = ws_.row(shortest);
    ws_.add_work(row.length / kScanned);
    partners_.clear();
    for (int e = 0; e < row.length; ++e) {
      const Move partner{row.index[e], (row.value[e] > 0) == (a > 0) ? -1 : 1};
      const int j = partner.column;
      if (j == k || std::fabs(row.value[e]) < std::fabs(a)) continue;
      if ((locks(k, direction) & ~supports_[j].rows) != 0) continue;
      if ((locks(j, partner.direction) & ~supports_[k].rows) != 0) continue;
      if (ws_.cost[j] * partner.direction + ws_.cost[k] * direction <= 0) partners_.push_back(partner);
    }
    for (const Move& partner : partners_) {
      if (!goes_on()) return false;
      if (!is_candidate(partner.column) || !harms_no_row(partner, {k, direction})) continue;
      if (replaces(partner, {k, direction})) return true;
      replaces({k, direction}, partner);
    }
    return false;
  }

  /* Both moves together; the column of the second is scattered. */
  bool harms_no_row(const Move& m, const Move& scattered) {
    const View column = ws_.column(m.column);
    int seen = 0;
    for (int e = 0; e < column.length; ++e) {
      const int i = column.index[e];
      const double own = scattered.direction * scattered_[i];
      if (harms(i, m.direction * column.value[e] + own)) {
        ws_.add_work(e);
        return false;
      }
      seen += harms(i, own) ? 1 : 0;
    }
    ws_.add_work(column.length);
    return seen == count_locks(scattered.column, scattered.direction);
  }

  /* Fixes the column that goes where no bound keeps the other one from making up for it, or where one does, nothing needs it
   * any more. */
  bool replaces(const Move& other, const Move& goes) {
    const double bound = end(goes.column, goes.direction), limit = end(other.column, other.direction);
    if (std::fabs(bound) > kLargestMove ||
        (state_.is_integer(other.column) && !state_.is_integer(goes.column)))
      return false;
    const bool has_room =
        !is_finite(limit) || is_implied(other.column, other.direction, limit) ||
        (ws_.cost[goes.column] * goes.direction <= 0 && is_enough(other.column, limit, goes));
    if (has_room) fix(goes.column, bound);
    return has_room;
  }

  bool is_implied(int j, int direction, double bound) {
    const View column = ws_.column(j);
    ws_.add_work(column.length);
    for (int e = 0; e < column.length; ++e) {
      const int i = column.index[e];
      if (!harms(i, direction * column.value[e])) continue;
      const double implied =
          direction > 0 ? ws_.implied_upper(i, j, column.value[e]) : ws_.implied_lower(i, j, column.value[e]);
      if (direction * (implied - bound) <= kRounding * std::max(1.0, std::fabs(bound))) return true;
    }
    return false;
  }

  /* With column j at this bound, rows hold wherever the other one ends. */
  bool is_enough(int j, double bound, const Move& goes) {
    const View column = ws_.column(goes.column);
    ws_.add_work(column.length);
    for (int e = 0; e < column.length; ++e) {
      const int i = column.index[e];
      const double move = goes.direction * column.value[e];
      if (!harms(i, move)) continue;
      const double sign = move > 0 ? 1 : -1, a = ws_.entry(i, j);
      const Activity& activity = ws_.activity(i);
      const double most = sign > 0 ? activity.most() : -activity.least();
      if (!is_finite(most)) return false;
      // The move is the worst for the row, so where it ends is in the sum.
      const double worst = sign * a > 0 ? ws_.upper[j] : ws_.lower[j];
      const double side = sign > 0 ? ws_.row_upper[i] : -ws_.row_lower[i];
      if (most + sign * a * (bound - worst) > side + tolerance(i, side, activity)) return false;
    }
    return true;
  }

  PresolveState& state_;
  Workspace& ws_;
  const std::int64_t last_work_;
  std::vector<char> is_gone_;  // by column
  std::vector<Term> fixed_;
  std::vector<Support> supports_;
  std::vector<Saturators> saturators_;  // by row
  std::vector<double> scattered_;       // by row: entries of one column
  std::vector<int> loaded_;             // its rows
  std::vector<int> chosen_;
  std::vector<Move> partners_;
};

}  // namespace

void fix_dominated_columns(PresolveState& state) {
  if (state.allows(PresolveRule::dominated_columns)) DominatedColumns(state).run();
}

}  // namespace tovik::mip
