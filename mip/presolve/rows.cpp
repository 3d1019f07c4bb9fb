#include <algorithm>
#include <cmath>
#include <vector>

#include "lp/presolve/tolerances.h"
#include "mip/presolve/rules.h"

namespace tovik::mip {
namespace {

using lp::presolve::Activity;
using lp::presolve::View;
using lp::presolve::Workspace;
using Kind = PresolveFinding::Kind;

class RowReduction {
 public:
  RowReduction(PresolveState& state, int row) : state_(state), ws_(state.ws()), row_(row) {}

  void run() {
    const int length = ws_.row_length(row_);
    if (length == 0) return empty();
    if (length == 1 && singleton()) return;
    const Activity activity = ws_.activity(row_);
    const double noise = lp::presolve::kRounding * length * activity.magnitude;
    const double lower = ws_.row_lower[row_], upper = ws_.row_upper[row_];
    if (activity.least() > upper + lp::presolve::infeasibility_tolerance(ws_, upper) + noise ||
        activity.most() < lower - lp::presolve::infeasibility_tolerance(ws_, lower) - noise) {
      state_.set_infeasible(Kind::row_out_of_reach, row_, -1);
      return;
    }
    const bool holds_above =
        upper == kInf || activity.most() <= upper + lp::presolve::side_tolerance(ws_, upper) - noise;
    const bool holds_below =
        lower == -kInf || activity.least() >= lower - lp::presolve::side_tolerance(ws_, lower) + noise;
    if (holds_above && holds_below) return state_.remove_row(row_);
    if (!holds_above && is_forcing(activity.least(), upper, activity)) return force(true);
    if (!holds_below && is_forcing(activity.most(), lower, activity)) return force(false);
    if ((holds_above && upper < kInf) || (holds_below && lower > -kInf)) {
      ++state_.counts.sides_improved;
      ws_.change_sides(row_, holds_below ? -kInf : lower, holds_above ? kInf : upper);
    }
  }

 private:
  void empty() {
    const double lower = ws_.row_lower[row_], upper = ws_.row_upper[row_];
    const bool fails = lower > lp::presolve::infeasibility_tolerance(ws_, lower) ||
                       upper < -lp::presolve::infeasibility_tolerance(ws_, upper);
    if (fails) {
      state_.set_infeasible({Kind::empty_row, row_, -1, -1, lower, upper});
      return;
    }
    const double tolerance = state_.tolerances().feasibility;
    if (lower <= tolerance && upper >= -tolerance) state_.remove_row(row_);
  }

  /* True when the row became bounds. */
  bool singleton() {
    const View row = ws_.row(row_);
    const int j = row.index[0];
    const double a = row.value[0];
    if (state_.is_held(j) && !state_.is_integer(j)) return false;
    // A whole number counts as within a side that it misses by no more than the tolerance.
    const double room = state_.is_integer(j) ? state_.tolerances().feasibility : 0;
    double lower = (ws_.row_lower[row_] - room) / a, upper = (ws_.row_upper[row_] + room) / a;
    if (a < 0) std::swap(lower, upper);
    if (!state_.is_integer(j) && std::max(std::fabs(finite(lower)), std::fabs(finite(upper))) > 1e12)
      return false;
    if (state_.tighten(j, lower, upper)) state_.remove_row(row_);
    return true;
  }
  static double finite(double v) { return std::isinf(v) ? 0 : v; }

  /* The extreme activity meets the side: no column can leave its bound. */
  bool is_forcing(double extreme, double side, const Activity& activity) const {
    if (std::isinf(extreme) || std::isinf(side)) return false;
    const double tolerance = std::min(lp::presolve::kExact * std::max(1.0, std::fabs(side)),
                                      0.1 * state_.tolerances().feasibility) *
                             std::min(1.0, smallest() / std::max(activity.largest, 1e-30));
    return std::fabs(extreme - side) <= tolerance;
  }
  double smallest() const {
    const View row = ws_.row(row_);
    double found = kInf;
    for (int k = 0; k < row.length; ++k) found = std::min(found, std::fabs(row.value[k]));
    return found;
  }
  void force(bool to_least) {
    const View row = ws_.row(row_);
    const std::vector<int> columns(row.index, row.index + row.length);
    const std::vector<double> values(row.value, row.value + row.length);
    for (const int j : columns) {
      if (state_.is_held(j) && !state_.is_integer(j)) return;
    }
    for (std::size_t k = 0; k < columns.size(); ++k) {
      const int j = columns[k];
      const double v = (values[k] > 0) == to_least ? ws_.lower[j] : ws_.upper[j];
      if (ws_.lower[j] != ws_.upper[j]) ws_.change_bounds(j, v, v);
    }
    state_.remove_row(row_);
  }

  PresolveState& state_;
  Workspace& ws_;
  int row_;
};

}  // namespace

void reduce_rows(PresolveState& state) {
  Workspace& ws = state.ws();
  for (const int i : ws.take_rows()) {
    if (!state.allows(PresolveRule::rows)) return;
    if (ws.row_alive(i)) RowReduction(state, i).run();
  }
}

}  // namespace tovik::mip
