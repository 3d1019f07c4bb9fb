#include "lp/presolve/slack_column.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "lp/presolve/tolerances.h"
#include "lp/verify/bounds.h"

namespace tovik::lp::presolve {
namespace {

constexpr double kLeastEntry = 1e-3;  // of the row's largest: the slack takes over the errors of its row

/* Each record holds its row. So that a long row with many slacks does not fill the memory, the records of
 * long rows end when all records together hold this many integers for each entry of the problem. */
constexpr int kLong = 100;
constexpr std::int64_t kMostStored = 4;

struct Slack {
  int i, s;
  double a;
  double low, high;  // range of a * x
};

bool moves_too_far(double move) {
  return std::isfinite(move) && std::fabs(move) > kHugeMove;
}

bool stores_too_much(const Workspace& ws, int i) {
  const auto entries = static_cast<std::int64_t>(ws.original.matrix.index.size());
  return ws.row_length(i) > kLong && ws.stack.stored() > kMostStored * entries;
}

/* Will the sides that are left hold by themselves, so that the row goes too? */
bool row_goes(Workspace& ws, const Slack& k, double lower, double upper) {
  return ws.least_without(k.i, k.s, k.a) >= lower - kExact * std::max(1.0, std::fabs(lower)) &&
         ws.most_without(k.i, k.s, k.a) <= upper + kExact * std::max(1.0, std::fabs(upper));
}

bool remove_from_equation(Workspace& ws, const Slack& k, double beta, BasisStatus at) {
  const double lower = moved(beta, -k.high), upper = moved(beta, -k.low);
  if (lower == upper) return false;
  const double price = ws.cost[k.s] / k.a;
  // Costs on the move spoil the dual simplex' start, which costs more than one column is worth.
  if (price != 0 && !row_goes(ws, k, lower, upper)) return false;
  if (!ws.allow(Rule::slack_column)) return false;
  ws.stack.push(SlackInEquation{.row = k.i,
                                .column = k.s,
                                .side = at,
                                .entry = k.a,
                                .beta = beta,
                                .price = price,
                                .lower = ws.lower[k.s],
                                .upper = ws.upper[k.s],
                                .rest = ws.row_without(k.i, k.s)});
  ws.remove_column(k.s, RemovalReason::other);
  if (price != 0) {
    const View v = ws.row(k.i);
    for (int q = 0; q < v.length; ++q) ws.move_cost(v.index[q], -price * v.value[q]);
    ws.add_offset(price * beta);
  }
  ws.change_sides(k.i, lower, upper);
  return true;
}

bool remove_from_row(Workspace& ws, const Slack& k) {
  const double lower = moved(ws.row_lower[k.i], -k.high), upper = moved(ws.row_upper[k.i], -k.low);
  if (lower == upper || !ws.allow(Rule::slack_column)) return false;
  ws.stack.push(SlackInRow{.row = k.i,
                           .column = k.s,
                           .entry = k.a,
                           .row_lower = ws.row_lower[k.i],
                           .row_upper = ws.row_upper[k.i],
                           .lower = ws.lower[k.s],
                           .upper = ws.upper[k.s],
                           .rest = ws.row_without(k.i, k.s)});
  ws.remove_column(k.s, RemovalReason::other);
  ws.change_sides(k.i, lower, upper);
  return true;
}

/* The row's side that column s presses against, `free` when it does not. */
BasisStatus binding_side(Workspace& ws, const Slack& k) {
  const bool to_lower = (ws.cost[k.s] > 0) == (k.a > 0);
  if (std::isinf(to_lower ? ws.row_lower[k.i] : ws.row_upper[k.i])) return BasisStatus::free;
  const BasisStatus at = to_lower ? BasisStatus::lower : BasisStatus::upper;
  if (std::isinf(to_lower ? k.low : k.high)) return at;
  if (ws.cost[k.s] > 0) {
    const double bound = ws.lower[k.s];
    if (ws.implied_lower(k.i, k.s, k.a) < bound - side_tolerance(ws, bound)) return BasisStatus::free;
  } else {
    const double bound = ws.upper[k.s];
    if (ws.implied_upper(k.i, k.s, k.a) > bound + side_tolerance(ws, bound)) return BasisStatus::free;
  }
  return at;
}

}  // namespace

bool remove_slack_column(Workspace& ws, int s) {
  if (!ws.enabled(Rule::slack_column) || ws.is_protected(s)) return false;
  const View v = ws.column(s);
  Slack k{v.index[0], s, v.value[0], 0, 0};
  const double lower = ws.row_lower[k.i], upper = ws.row_upper[k.i];
  if (ws.lower[s] >= ws.upper[s] || (lower == -kInf && upper == kInf)) return false;
  if (ws.row_length(k.i) == 1 || stores_too_much(ws, k.i) ||
      std::fabs(k.a) < kLeastEntry * ws.activity(k.i).largest)
    return false;
  k.low = k.a * (k.a > 0 ? ws.lower[s] : ws.upper[s]);
  k.high = k.a * (k.a > 0 ? ws.upper[s] : ws.lower[s]);
  if (moves_too_far(k.low) || moves_too_far(k.high)) return false;
  if (lower == upper) return remove_from_equation(ws, k, lower, BasisStatus::free);
  if (ws.cost[s] == 0) return !ws.settings.linear_only && remove_from_row(ws, k);
  if (!ws.settings.dual) return false;
  const BasisStatus at = binding_side(ws, k);
  if (at == BasisStatus::free) return false;
  (at == BasisStatus::lower ? k.low : k.high) = at == BasisStatus::lower ? -kInf : kInf;
  return remove_from_equation(ws, k, at == BasisStatus::lower ? lower : upper, at);
}

/* The row's dual gains the price of the slack, whose bounds were the row's sides. */
void undo_slack_in_equation(const SlackInEquation& record, Undo& undo) {
  const auto& [i, s, side, a, beta, price, lower, upper, rest] = record;
  Answer& p = undo.point;
  const double y = p.y[i];
  p.y[i] = y + undo.cost(price);
  p.d[s] = -a * y;
  const bool basic = p.row_status[i] == BasisStatus::basic;
  const bool up = (p.row_status[i] == BasisStatus::lower) == (a > 0);
  p.x[s] = up ? upper : lower;
  p.column_status[s] = basic ? BasisStatus::basic : up ? BasisStatus::upper : BasisStatus::lower;
  if (basic || undo.interior) {
    double x = beta;
    for (int k = 0; k < rest.length; ++k) x -= rest.value[k] * p.x[rest.index[k]];
    p.x[s] = x / a;
  }
  p.row_status[i] = side == BasisStatus::free ? Undo::side(BasisStatus::lower, p.y[i]) : side;
}

void duals_of_slack_in_equation(const SlackInEquation& record, std::vector<double>& y) {
  y[record.row] -= record.price;
}

bool form_of_slack_in_equation(const SlackInEquation& record, LinearForm& form) {
  substitute(form, record.column, record.entry, record.beta, record.rest);
  return true;
}

void basis_of_slack_in_equation(const SlackInEquation& record, Basis& basis) {
  basis.rows[record.row] = scaled_status(basis.columns[record.column], record.entry < 0);
}

/* With the row between its sides the slack goes to a bound where the row holds, or else takes the row to a
 * side and is basic. */
void undo_slack_in_row(const SlackInRow& record, Undo& undo) {
  const int i = record.row, s = record.column;
  const double a = record.entry, row_lower = record.row_lower, row_upper = record.row_upper;
  const double lower = record.lower, upper = record.upper;
  const View& rest = record.rest;
  Answer& p = undo.point;
  p.d[s] = -a * p.y[i];
  const auto stand = [&](BasisStatus at) {
    p.column_status[s] = at;
    p.x[s] = at == BasisStatus::lower ? lower : upper;
  };
  const bool basic = p.row_status[i] == BasisStatus::basic;
  if (!basic) {
    stand((p.row_status[i] == BasisStatus::lower) == (a > 0) ? BasisStatus::upper : BasisStatus::lower);
    if (!undo.interior) return;
  }
  double activity = 0;
  for (int k = 0; k < rest.length; ++k) activity += rest.value[k] * p.x[rest.index[k]];
  if (!basic) {
    const double reached = activity + a * p.x[s];
    if (reached < row_lower) p.x[s] = (row_lower - activity) / a;
    if (reached > row_upper) p.x[s] = (row_upper - activity) / a;
    return;
  }
  for (const BasisStatus at : {BasisStatus::lower, BasisStatus::upper}) {
    const double bound = at == BasisStatus::lower ? lower : upper;
    const double reached = activity + a * bound;
    if (std::isfinite(bound) && reached >= row_lower && reached <= row_upper) return stand(at);
  }
  p.column_status[s] = BasisStatus::basic;
  double least = kInf;
  for (const BasisStatus at : {BasisStatus::lower, BasisStatus::upper}) {
    const double x = ((at == BasisStatus::lower ? row_lower : row_upper) - activity) / a;
    const double miss = verify::outside(x, lower, upper);
    if (!std::isfinite(x) || miss >= least) continue;
    least = miss;
    p.x[s] = x;
    p.row_status[i] = at;
  }
}

bool form_of_slack_in_row(const SlackInRow& record, LinearForm& form) {
  return form.coefficients[record.column] == 0;
}

void basis_of_slack_in_row(const SlackInRow& record, Basis& basis) {
  if (basis.columns[record.column] == BasisStatus::basic) basis.rows[record.row] = BasisStatus::basic;
}

}  // namespace tovik::lp::presolve
