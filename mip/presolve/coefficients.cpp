#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "lp/base/sum.h"
#include "mip/domain/common_step.h"
#include "mip/presolve/rules.h"

namespace tovik::mip {
namespace {

using lp::presolve::Activity;
using lp::presolve::View;
using lp::presolve::Workspace;

bool has_integers_only(PresolveState& state, const View& row) {
  for (int k = 0; k < row.length; ++k) {
    if (!state.is_integer(row.index[k])) return false;
  }
  return true;
}

void reduce_divisor(PresolveState& state, int i) {
  constexpr double kRounding = 1e-12;  // of a side
  Workspace& ws = state.ws();
  const View row = ws.row(i);
  ws.add_work(row.length);
  if (row.length < 2 || !has_integers_only(state, row)) return;
  const CommonStep step = common_step({row.value, static_cast<std::size_t>(row.length)});
  if (!step.is_known()) return;
  const double factor = step.scale / step.divisor;
  const double lower = ws.row_lower[i] * factor, upper = ws.row_upper[i] * factor;
  if (std::max(std::isinf(lower) ? 0 : std::fabs(lower), std::isinf(upper) ? 0 : std::fabs(upper)) > 1e9)
    return;
  const double room = state.tolerances().feasibility * factor;
  const double new_lower =
      std::isinf(lower) ? lower : std::ceil(lower - room - kRounding * std::fabs(lower)) + 0.0;
  const double new_upper =
      std::isinf(upper) ? upper : std::floor(upper + room + kRounding * std::fabs(upper)) + 0.0;
  if (new_lower > new_upper) {
    state.set_infeasible(PresolveFinding::Kind::no_whole_solution, i, -1);
    return;
  }
  if (new_lower == lower && new_upper == upper && factor == 1) return;
  if (std::fabs(new_lower - lower) > 1e-9 || std::fabs(new_upper - upper) > 1e-9)
    ++state.counts.sides_improved;
  ws.scale_row(i, factor, new_lower, new_upper);
}

/* A row with one side, as sign * (row) <= side. Where it can be exceeded by `excess` only, an integer column that is not at
 * the bound that brings it closest makes it hold if its coefficient is larger than that: a coefficient of `excess` does, too. */
class Tightening {
 public:
  Tightening(PresolveState& state, int row) : state_(state), ws_(state.ws()), row_(row) {}

  void run() {
    const bool has_upper = ws_.row_upper[row_]<kInf, has_lower = ws_.row_lower[row_]> - kInf;
    if (has_upper == has_lower || ws_.row_length(row_) < 2) return;
    if (state_.settings().coefficients == 1 && !has_integers_only(state_, ws_.row(row_))) return;
    const double sign = has_upper ? 1 : -1;
    const double side = has_upper ? ws_.row_upper[row_] : -ws_.row_lower[row_];
    const Activity activity = ws_.activity(row_);
    const double most = has_upper ? activity.most() : -activity.least();
    const double excess = most - side;
    if (std::isinf(most) || !(excess > kLeast) || excess < kShare * activity.magnitude) return;
    shorten(sign, side, excess);
  }

 private:
  static constexpr double kLeast = 1e-4;  // excess with which to reckon
  static constexpr double kShare = 1e-7;  // of the largest term: less is rounding
  static constexpr double kGain = 1e-6;   // relative: by which a coefficient must shrink

  void shorten(double sign, double side, double excess) {
    const View row = ws_.row(row_);
    const std::vector<int> columns(row.index, row.index + row.length);
    const std::vector<double> values(row.value, row.value + row.length);
    lp::CompensatedSum new_side;
    new_side.add(side);
    bool changed = false;
    for (std::size_t k = 0; k < columns.size(); ++k) {
      const int j = columns[k];
      const double a = sign * values[k];
      if (!state_.is_integer(j) || std::fabs(a) <= excess * (1 + kGain)) continue;
      const double cut = std::fabs(a) - excess;
      new_side.add_product(cut, a > 0 ? -ws_.upper[j] : ws_.lower[j]);
      ws_.set_entry(row_, j, sign * (a > 0 ? excess : -excess));
      ++state_.counts.coefficients_modified;
      changed = true;
    }
    if (!changed) return;
    if (sign > 0) {
      ws_.change_sides(row_, -kInf, new_side.value());
    } else {
      ws_.change_sides(row_, -new_side.value(), kInf);
    }
  }

  PresolveState& state_;
  Workspace& ws_;
  int row_;
};

}  // namespace

void reduce_divisors(PresolveState& state) {
  Workspace& ws = state.ws();
  for (int i = 0; i < ws.num_rows(); ++i) {
    if (!state.allows(PresolveRule::divisors)) return;
    if (ws.row_alive(i)) reduce_divisor(state, i);
  }
}

void tighten_coefficients(PresolveState& state) {
  if (state.settings().coefficients == 0) return;
  Workspace& ws = state.ws();
  for (int i = 0; i < ws.num_rows(); ++i) {
    if (!state.allows(PresolveRule::coefficients)) return;
    if (ws.row_alive(i)) Tightening(state, i).run();
  }
}

}  // namespace tovik::mip
