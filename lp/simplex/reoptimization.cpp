#include "lp/simplex/reoptimization.h"

#include <algorithm>
#include <cmath>

#include "lp/verify/bounds.h"

namespace tovik::lp::simplex {
namespace {

constexpr double kStrict = 1e-9;  // violations of touched entries beyond this are for the algorithms to judge
constexpr double kResidual = 1e-8;  // largest disagreement between the user's sums and the engine's values
constexpr int kRefreshes = 1000;    // refreshes between two complete extractions
constexpr int kLeastTouched = 64;   // changes that are always followed one by one
constexpr int kTouchedShare = 10;   // beyond them, one variable in so many

using verify::outside;
using verify::wrong_sign;

}  // namespace

/* Everything that counts rows, columns or changes, for the present sizes. */
void Reoptimization::resize() {
  const auto most = static_cast<size_t>(std::max(kLeastTouched, core_.total() / kTouchedShare));
  if (shift_.dimension() != core_.m()) {
    shift_.resize(core_.m());
    cost_shift_.resize(core_.m());
  }
  rows_.resize(core_.m());
  columns_.resize(core_.n());
  for (const Touched& t : touched_) is_touched_[t.variable] = 0;
  touched_.clear();
  touched_.reserve(most);
  is_touched_.resize(static_cast<size_t>(core_.total()), 0);
}

void Reoptimization::settle(const Options& options) {
  forget();
  resize();
  primal_tolerance_ = options.primal_tolerance;
  dual_tolerance_ = options.dual_tolerance;
  refreshes_ = 0;
  state_ = State::optimal;
}

void Reoptimization::note(int j) {
  if (!holds() || is_touched_[j]) return;
  if (touched_.size() == touched_.capacity()) return forget();
  is_touched_[j] = 1;
  touched_.push_back({j, core_.basis.value(j), j < core_.n() ? user_.lp.cost[j] : 0.0});
}

bool Reoptimization::needs_factor() const {
  return holds() && std::any_of(touched_.begin(), touched_.end(), [&](const Touched& t) {
           return core_.basis.nonbasic(t.variable)
                      ? core_.basis.value(t.variable) != t.value
                      : t.variable < core_.n() && user_.lp.cost[t.variable] != t.cost;
         });
}

bool Reoptimization::follows(const Options& options) const {
  return state_ == State::optimal && options.primal_tolerance == primal_tolerance_ &&
         options.dual_tolerance == dual_tolerance_;
}

bool Reoptimization::is_due() const {
  return refreshes_ >= kRefreshes;
}

bool Reoptimization::bounds_cross() const {
  return std::any_of(touched_.begin(), touched_.end(), [&](const Touched& t) {
    return !(core_.model.lower(t.variable) <= core_.model.upper(t.variable));
  });
}

Reoptimization::State Reoptimization::refresh(const Options& options) {
  if (touched_.empty() && holds() && options.primal_tolerance == primal_tolerance_ &&
      options.dual_tolerance == dual_tolerance_) {
    return state_;
  }
  if (!follows(options) || bounds_cross() || (needs_factor() && !core_.has_factor())) {
    forget();
    return state_;
  }
  ++refreshes_;
  move_costs();
  move_values();
  for (const Touched& t : touched_) {
    const int j = t.variable;
    is_touched_[j] = 0;
    j < core_.n() ? sums_.columns().add(j) : sums_.rows().add(j - core_.n());
  }
  touched_.clear();
  in_step_ = true;
  state_ = judge(options);
  core_.charge(sums_.take_work());
  return state_;
}

void Reoptimization::prepare_edit(const ModelEdit& change) {
  const bool moves = std::any_of(change.deleted_columns.begin(), change.deleted_columns.end(),
                                 [&](int j) { return core_.basis.value(j) != 0; });
  if (state_ != State::optimal || !touched_.empty() || moves) forget();
}

void Reoptimization::edit(const ModelEdit& change) {
  if (!holds()) return;
  const auto columns = static_cast<size_t>(core_.n());
  const auto rows = static_cast<size_t>(core_.m());
  for (auto* v : {&answer_.x, &answer_.d}) {
    erase_indices(*v, change.deleted_columns);
    v->resize(columns, 0.0);
  }
  for (auto* v : {&answer_.activity, &answer_.y}) {
    erase_indices(*v, change.deleted_rows);
    v->resize(rows, 0.0);
  }
  erase_indices(answer_.column_status, change.deleted_columns);
  answer_.column_status.resize(columns, BasisStatus::lower);
  erase_indices(answer_.row_status, change.deleted_rows);
  answer_.row_status.resize(rows, BasisStatus::basic);
  sums_.edit(change, answer_.x, answer_.y);
  resize();
  if (static_cast<size_t>(change.new_columns() + change.new_rows()) > touched_.capacity()) return forget();
  for (int j = core_.n() - change.new_columns(); j < core_.n(); ++j) enter_column(j);
  for (int i = core_.m() - change.new_rows(); i < core_.m(); ++i) enter_row(i);
}

/* A new column comes from 0 to the bound that its reduced cost asks for. */
void Reoptimization::enter_column(int j) {
  const double d = sums_.reduced_cost(j);
  if (d != 0) core_.place_nonbasic(j, d > 0 ? 1 : -1);
  is_touched_[j] = 1;
  touched_.push_back({j, 0.0, 0.0});
}

void Reoptimization::enter_row(int i) {
  const int j = core_.n() + i;
  const int p = core_.basis.position(j);
  core_.values.set_x(p, -sums_.activity(i) * user_.row_scale(i));
  is_touched_[j] = 1;
  touched_.push_back({j, 0.0, 0.0});
}

double Reoptimization::user_value(int j) const {
  return core_.basis.nonbasic(j) ? user_.nonbasic_value(j)
                                 : core_.values.x(core_.basis.position(j)) * user_.column_scale(j);
}

void Reoptimization::move_column(int j, double value) {
  sums_.move_x(j, answer_.x[j], value);
  answer_.x[j] = value;
}

/* Reduced costs follow from the duals: the user's sums give them when the columns are judged. */
void Reoptimization::move_costs() {
  cost_shift_.clear();
  for (const Touched& t : touched_) {
    const int j = t.variable;
    if (j >= core_.n() || user_.lp.cost[j] == t.cost) continue;
    core_.work.take_model_cost(core_.model, j);
    sums_.change_cost(j, t.cost, user_.lp.cost[j], answer_.x[j]);
    if (core_.basis.nonbasic(j)) continue;
    const int p = core_.basis.position(j);
    cost_shift_.array[p] = core_.model.cost(j) - t.cost * user_.column_scale(j);
    cost_shift_.index[cost_shift_.count++] = p;
  }
  if (cost_shift_.count == 0) return;
  core_.btran(cost_shift_, cost_density_);
  core_.ensure_rows();
  const auto move = [&](int i) {
    const double change = cost_shift_.array[i];
    if (change == 0 || !core_.basis.nonbasic(core_.n() + i)) return;
    core_.values.add_dual(core_.n() + i, -change);
    const double y = -core_.values.d(core_.n() + i) * user_.row_scale(i);
    sums_.move_y(i, answer_.y[i], y);
    answer_.y[i] = y;
  };
  for_listed(cost_shift_, move);
}

void Reoptimization::move_values() {
  shift_.clear();
  for (const Touched& t : touched_) {
    const int j = t.variable;
    if (!core_.basis.nonbasic(j)) {
      core_.take_basic_bounds(j);
    } else if (core_.basis.value(j) != t.value) {
      core_.model.add_column(j, t.value - core_.basis.value(j), shift_);
      if (j < core_.n()) move_column(j, user_value(j));
    }
  }
  if (shift_.count == 0) return;
  core_.ftran(shift_, value_density_);
  const auto move = [&](int p) {
    if (shift_.array[p] == 0) return;
    const int j = core_.basis.head(p);
    core_.values.add_x(p, shift_.array[p]);
    j < core_.n() ? move_column(j, user_value(j)) : sums_.rows().add(j - core_.n());
  };
  for_listed(shift_, move);
}

void Reoptimization::judge_column(int j, Findings& found) {
  const double scale = user_.column_scale(j);
  const double x = answer_.x[j];
  const double d = sums_.reduced_cost(j);
  const BasisStatus status = core_.status(j);
  answer_.d[j] = d;
  answer_.column_status[j] = status;
  found.user_primal = std::max(found.user_primal, outside(x, user_.lp.lower[j], user_.lp.upper[j]));
  if (status == BasisStatus::basic) {
    const int p = core_.basis.position(j);
    found.primal =
        std::max(found.primal, outside(core_.values.x(p), core_.values.x_lower(p), core_.values.x_upper(p)));
    found.residual = std::max(found.residual, std::fabs(d) * scale);
    found.user_dual = std::max(found.user_dual, std::fabs(d));
    return;
  }
  core_.values.set_dual(j, d * scale);
  const double wrong = wrong_sign(d, status, verify::is_fixed(user_.lp.lower[j], user_.lp.upper[j]));
  found.dual = std::max(found.dual, wrong * scale);
  found.user_dual = std::max(found.user_dual, wrong);
}

void Reoptimization::judge_row(int i, Findings& found) {
  const int j = core_.n() + i;
  const double activity = sums_.activity(i);
  const double scaled = activity * user_.row_scale(i);
  const BasisStatus status = core_.status(j);
  answer_.activity[i] = activity;
  answer_.row_status[i] = activity_status(status);
  found.user_primal =
      std::max(found.user_primal, outside(activity, user_.lp.row_lower[i], user_.lp.row_upper[i]));
  if (status == BasisStatus::basic) {
    const int p = core_.basis.position(j);
    found.primal =
        std::max(found.primal, outside(core_.values.x(p), core_.values.x_lower(p), core_.values.x_upper(p)));
    found.residual = std::max(found.residual, std::fabs(scaled + core_.values.x(p)));
    found.user_dual = std::max(found.user_dual, std::fabs(answer_.y[i]));
    return;
  }
  found.residual = std::max(found.residual, std::fabs(scaled + core_.basis.value(j)));
  const bool fixed = verify::is_fixed(user_.lp.row_lower[i], user_.lp.row_upper[i]);
  found.dual = std::max(found.dual, wrong_sign(core_.values.d(j), status, fixed));
  found.user_dual = std::max(found.user_dual, wrong_sign(answer_.y[i], answer_.row_status[i], fixed));
}

Reoptimization::State Reoptimization::judge(const Options& options) {
  Findings found;
  for (const int j : sums_.columns().view()) {
    judge_column(j, found);
    columns_.add(j);
  }
  for (const int i : sums_.rows().view()) {
    judge_row(i, found);
    rows_.add(i);
  }
  sums_.columns().clear();
  sums_.rows().clear();
  answer_.objective = sums_.objective();
  if (!(found.residual <= kResidual)) return State::unknown;
  if (found.user_primal > options.primal_tolerance) return State::primal_infeasible;
  if (!(found.primal <= kStrict)) return State::unknown;
  const bool dual = found.dual <= kStrict && found.user_dual <= options.dual_tolerance;
  return dual ? State::optimal : State::primal_feasible;
}

void Reoptimization::taken() {
  columns_.clear();
  rows_.clear();
}

}  // namespace tovik::lp::simplex
