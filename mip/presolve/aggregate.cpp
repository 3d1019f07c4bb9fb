#include <algorithm>
#include <cmath>
#include <span>
#include <utility>
#include <vector>

#include "mip/presolve/rules.h"

namespace tovik::mip {
namespace {

using lp::presolve::View;
using lp::presolve::Workspace;

constexpr double kWeakPivot = 1e-3;  // relative to the other coefficients
constexpr double kFreePivot = 0.01;  // the same, of a free column
constexpr double kWeakSlack = 1e-5;  // of a column of one row: what it takes over is put in nowhere else
constexpr int kRounds = 10;

bool is_whole(double v) {
  return std::fabs(v) < 1e9 && std::fabs(v - std::round(v)) <= 1e-12 * std::fabs(v);
}

/* Columns of objects keep their entries: an indicator's slack stands in its own row only. */
bool has_held_continuous(PresolveState& state, int i) {
  const View row = state.ws().row(i);
  state.ws().add_work(row.length);
  for (int k = 0; k < row.length; ++k) {
    if (state.is_held(row.index[k]) && !state.is_integer(row.index[k])) return true;
  }
  return false;
}

class Doubleton {
 public:
  Doubleton(PresolveState& state, int row) : state_(state), ws_(state.ws()), row_(row) {}

  void run() {
    if (has_held_continuous(state_, row_)) return;
    const View row = ws_.row(row_);
    const End first{row.index[0], row.value[0]}, second{row.index[1], row.value[1]};
    const bool second_goes = prefers(second, first);
    if (second_goes ? eliminate(second, first) : eliminate(first, second)) return;
    if (second_goes) {
      eliminate(first, second);
    } else {
      eliminate(second, first);
    }
  }

 private:
  struct End {
    int column;
    double a;
  };

  bool prefers(const End& goes, const End& stays) const {
    const bool whole = state_.is_integer(goes.column), other_whole = state_.is_integer(stays.column);
    if (whole != other_whole) return !whole;
    return ws_.column_length(goes.column) < ws_.column_length(stays.column);
  }

  /* True when that is done, or all is proven infeasible. */
  bool eliminate(const End& goes, const End& stays) {
    const double beta = ws_.row_lower[row_];
    const double ratio = stays.a / goes.a, constant = beta / goes.a;
    if (state_.is_held(goes.column) || std::fabs(ratio) > 1 / kWeakPivot || std::fabs(ratio) < kWeakPivot)
      return false;
    if (state_.is_integer(goes.column)) {
      if (!state_.is_integer(stays.column) || !is_whole(ratio)) return false;
      const double off = std::fabs(constant - std::round(constant));
      if (off * std::fabs(goes.a) > 10 * state_.tolerances().feasibility * std::max(1.0, std::fabs(beta))) {
        state_.set_infeasible(PresolveFinding::Kind::no_whole_solution, row_, -1);
        return true;
      }
      if (!is_whole(constant)) return false;
    }
    double lower = (constant - ws_.upper[goes.column]) / ratio;
    double upper = (constant - ws_.lower[goes.column]) / ratio;
    if (ratio < 0) std::swap(lower, upper);
    // A whole number counts as within a bound that it misses by no more than the tolerance.
    const double room =
        state_.is_integer(stays.column) ? state_.tolerances().feasibility / std::fabs(ratio) : 0;
    if (!state_.tighten(stays.column, lower - room, upper + room)) return state_.is_infeasible();
    state_.substitute(row_, goes.column);
    return true;
  }

  PresolveState& state_;
  Workspace& ws_;
  int row_;
};

/* A column of one row that may take any value that the row's sides leave it: it becomes their width. */
void absorb_slack(PresolveState& state, int s) {
  Workspace& ws = state.ws();
  const View column = ws.column(s);
  const int i = column.index[0];
  const double a = column.value[0], cost = ws.cost[s];
  const bool equation = ws.equation(i);
  if (!equation && state.settings().linear_only) return;
  if (ws.row_length(i) < 2 || (cost != 0 && (!equation || has_held_continuous(state, i)))) return;
  if (std::fabs(a) < kWeakPivot || std::fabs(a) < kWeakSlack * ws.activity(i).largest) return;
  const Postsolve::Box box{ws.lower[s], ws.upper[s]}, sides{ws.row_lower[i], ws.row_upper[i]};
  if (state.is_integer(s)) {
    const auto fits = [&](double v) { return std::isinf(v) || is_whole(v / a); };
    if (!fits(sides.lower) || !fits(sides.upper)) return;
    const View row = ws.row(i);
    ws.add_work(row.length);
    for (int k = 0; k < row.length; ++k) {
      if (!state.is_integer(row.index[k]) || !fits(row.value[k])) return;
    }
  }
  double least = a * box.lower, most = a * box.upper;
  if (a < 0) std::swap(least, most);
  std::vector<Term> terms;
  const View others = ws.row_without(i, s);
  const double factor = equation ? -1 / a : 1;
  for (int k = 0; k < others.length; ++k) terms.push_back({others.index[k], factor * others.value[k]});
  if (equation) {
    state.postsolve.substituted(s, sides.lower / a, terms);
  } else {
    state.postsolve.became_slack(s, box, a, sides, terms);
  }
  if (cost != 0) {
    for (const Term& t : terms) ws.move_cost(t.column, cost * t.value);
    ws.add_offset(cost * sides.lower / a);
  }
  ws.remove_column(s, lp::presolve::RemovalReason::aggregated);
  ++state.counts.columns_eliminated;
  ws.change_sides(i, std::isinf(sides.lower) || std::isinf(most) ? -kInf : sides.lower - most,
                  std::isinf(sides.upper) || std::isinf(least) ? kInf : sides.upper - least);
}

/* Rows that keep a column within its bounds whatever the others do, on either side. */
struct Implied {
  bool below, above;
  bool free() const { return below && above; }
};

Implied implied_bounds(Workspace& ws, int s, std::span<const int> rows, std::span<const double> values) {
  Implied implied{ws.lower[s] == -kInf, ws.upper[s] == kInf};
  for (std::size_t k = 0; k < rows.size() && !implied.free(); ++k) {
    if (!implied.below) implied.below = ws.implied_lower(rows[k], s, values[k]) >= ws.lower[s];
    if (!implied.above) implied.above = ws.implied_upper(rows[k], s, values[k]) <= ws.upper[s];
  }
  return implied;
}

/* An integer column with entry a that the row, where it meets this side, defines is whole where the others are. */
bool gives_whole_numbers(PresolveState& state, int i, double a, double side) {
  Workspace& ws = state.ws();
  const View row = ws.row(i);
  ws.add_work(row.length);
  for (int k = 0; k < row.length; ++k) {
    if (!state.is_integer(row.index[k]) || !is_whole(row.value[k] / a)) return false;
  }
  return is_whole(side / a);
}

/* A column that rows keep within its bounds whatever the others do is put in from an equation; for a continuous column that
 * must be the equation itself: with the help of other rows flows are put in at the wrong end, and their cuts become worse. */
bool substitute_free(PresolveState& state, int s) {
  Workspace& ws = state.ws();
  const View view = ws.column(s);
  const std::vector<int> rows(view.index, view.index + view.length);
  const std::vector<double> values(view.value, view.value + view.length);
  ws.add_work(view.length);
  int best = -1;
  for (std::size_t k = 0; k < rows.size(); ++k) {
    const int i = rows[k];
    const double a = values[k];
    if (!ws.equation(i) || std::fabs(a) < kFreePivot * ws.activity(i).largest) continue;
    const int others = ws.row_length(i) - 1;
    const std::int64_t fill = static_cast<std::int64_t>(others) * (view.length - 1) - others - view.length;
    if (fill > state.settings().fill) continue;
    if (best >= 0 && ws.row_length(i) >= ws.row_length(best)) continue;
    if (has_held_continuous(state, i) ||
        (state.is_integer(s) && !gives_whole_numbers(state, i, a, ws.row_lower[i])))
      continue;
    if (!state.is_integer(s) && !implied_bounds(ws, s, {&rows[k], 1}, {&values[k], 1}).free()) continue;
    best = i;
  }
  if (best < 0 || (state.is_integer(s) && !implied_bounds(ws, s, rows, values).free())) return false;
  state.substitute(best, s);
  return true;
}

/* The only row that keeps a column from moving this way; none, or several: -1. */
int only_lock(const Workspace& ws, const View& column, int direction) {
  int found = -1;
  for (int k = 0; k < column.length; ++k) {
    const int i = column.index[k];
    const bool up = (column.value[k] > 0) == (direction > 0);
    if (up ? ws.row_upper[i] == kInf : ws.row_lower[i] == -kInf) continue;
    if (found >= 0) return -1;
    found = k;
  }
  return found;
}

/* An integer column that only one row keeps from its better bound, and that row always before the bound does: some optimal
 * point meets the row's side, which then is an equation. It is made one where the column can leave by it. Continuous columns
 * stay: without them rows of flows and their cuts become worse. */
void make_equation(PresolveState& state, int s) {
  Workspace& ws = state.ws();
  const View view = ws.column(s);
  const std::vector<int> rows(view.index, view.index + view.length);
  const std::vector<double> values(view.value, view.value + view.length);
  ws.add_work(view.length);
  for (const int direction : {-1, 1}) {
    const int lock = ws.cost[s] * direction > 0 ? -1 : only_lock(ws, ws.column(s), direction);
    if (lock < 0) continue;
    const int i = rows[lock];
    const double a = values[lock];
    if (ws.equation(i) || ws.row_length(i) < 2) continue;
    if (std::fabs(a) < (rows.size() > 1 ? kFreePivot : kWeakSlack) * ws.activity(i).largest) continue;
    if (has_held_continuous(state, i)) continue;
    const bool is_met = direction < 0 ? ws.lower[s] == -kInf || ws.implied_lower(i, s, a) >= ws.lower[s]
                                      : ws.upper[s] == kInf || ws.implied_upper(i, s, a) <= ws.upper[s];
    if (!is_met || (rows.size() > 1 && !implied_bounds(ws, s, rows, values).free())) continue;
    const double side = (a > 0) == (direction > 0) ? ws.row_upper[i] : ws.row_lower[i];
    if (!gives_whole_numbers(state, i, a, side)) continue;
    ws.change_sides(i, side, side);
    return;
  }
}

void aggregate_once(PresolveState& state) {
  Workspace& ws = state.ws();
  for (int i = 0; i < ws.num_rows(); ++i) {
    if (!state.allows(PresolveRule::doubletons)) break;
    if (ws.row_alive(i) && ws.row_length(i) == 2 && ws.equation(i)) Doubleton(state, i).run();
  }
  for (int s = 0; s < ws.num_columns(); ++s) {
    if (!state.goes_on()) return;
    if (!ws.column_alive(s) || state.is_held(s) || state.is_fixed(s)) continue;
    if (state.is_integer(s) && state.allows(PresolveRule::tight_rows)) make_equation(state, s);
    if (ws.column_length(s) == 1) {
      if (state.allows(PresolveRule::slack_columns)) absorb_slack(state, s);
    } else if (ws.column_length(s) > 1) {
      if (state.allows(PresolveRule::free_columns)) substitute_free(state, s);
    }
  }
}

}  // namespace

void aggregate(PresolveState& state) {
  const int wanted = state.settings().aggregator;
  const int most = wanted < 0 ? kRounds : wanted;
  if (state.counts.aggregator_rounds >= most || !state.goes_on()) return;
  ++state.counts.aggregator_rounds;
  aggregate_once(state);
}

}  // namespace tovik::mip
