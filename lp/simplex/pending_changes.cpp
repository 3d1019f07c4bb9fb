#include "lp/simplex/pending_changes.h"

#include <cmath>

namespace tovik::lp::simplex {

void PendingChanges::resize() {
  clear();
  if (value_shift_.dimension() != core_.m()) {
    value_shift_.resize(core_.m());
    cost_shift_.resize(core_.m());
  }
  if (row_.dimension() != core_.n()) row_.resize(core_.n());
  is_touched_.resize(static_cast<size_t>(core_.total()), 0);
}

void PendingChanges::clear() {
  for (const Touched& t : touched_) {
    if (static_cast<size_t>(t.variable) < is_touched_.size()) is_touched_[t.variable] = 0;
  }
  touched_.clear();
  moved_.clear();
}

void PendingChanges::note(int j) {
  if (is_touched_[j]) return;
  is_touched_[j] = 1;
  touched_.push_back(
      {j, core_.basis.nonbasic(j) != 0 && j < core_.n() && core_.is_fixed(j), core_.basis.value(j)});
}

double PendingChanges::reduced_cost(int j) const {
  const Matrix& matrix = core_.matrix();
  double sum = core_.work.cost(j);
  for (int k = matrix.start[j]; k < matrix.start[j + 1]; ++k)
    sum -= matrix.value[k] * multiplier(matrix.index[k]);
  return sum;
}

/* The working cost becomes the model's. */
void PendingChanges::change_cost(int j, double nonbasic_value, double& objective) {
  const double change = core_.work.take_model_cost(core_.model, j);
  if (change == 0) return;
  if (core_.basis.nonbasic(j)) {
    core_.values.add_dual(j, change);
    objective += change * nonbasic_value;
    return;
  }
  const int p = core_.basis.position(j);
  objective += change * core_.values.x(p);
  if (cost_shift_.array[p] == 0) cost_shift_.index[cost_shift_.count++] = p;
  cost_shift_.array[p] = change;
}

/* Changes of basic costs move the multipliers and with them the reduced costs of what their rows meet. */
void PendingChanges::spread_costs(MarkedList& wrong) {
  if (cost_shift_.count == 0) return;
  core_.btran(cost_shift_, cost_density_);
  for_listed(cost_shift_, [&](int i) {
    const double change = cost_shift_.array[i];
    const int j = core_.n() + i;
    if (change == 0 || !core_.basis.nonbasic(j)) return;
    core_.values.add_dual(j, -change);
    judge(j, wrong);
  });
  row_.clear();
  core_.price(cost_shift_, row_);
  for_listed(row_, [&](int j) {
    if (row_.array[j] == 0 || !core_.basis.nonbasic(j)) return;
    core_.values.add_dual(j, -row_.array[j]);
    judge(j, wrong);
  });
  cost_shift_.clear();
}

/* A nonbasic variable whose reduced cost has changed: boxed ones move, others may be left wrong. Touched ones
 * wait for their place. */
void PendingChanges::judge(int j, MarkedList& wrong) {
  const double low = core_.work.lower(j);
  const double high = core_.work.upper(j);
  const double tolerance = core_.dual_tolerance();
  if (low == high || is_touched_[j]) return;
  if (core_.basis.move(j) == 0 ? std::fabs(core_.values.d(j)) <= tolerance
                               : core_.basis.move(j) * core_.values.d(j) >= -tolerance)
    return;
  if (high - low < kInf) {
    const double before = core_.basis.value(j);
    core_.place_nonbasic(j, core_.values.d(j) > 0 ? 1 : -1);
    moved_.push_back({j, core_.basis.value(j) - before});
  } else {
    wrong.add(j);
  }
}

/* A touched nonbasic variable goes to the bound that its reduced cost asks for, else to the nearer one. */
void PendingChanges::place(const Touched& t, MarkedList& wrong) {
  const int j = t.variable;
  if (j < core_.n() && (t.inactive || core_.is_fixed(j))) core_.values.set_dual(j, reduced_cost(j));
  const double d = core_.values.d(j);
  const double low = core_.work.lower(j);
  const double high = core_.work.upper(j);
  const bool nearer_low = std::fabs(t.value - low) <= std::fabs(t.value - high);
  const bool clear = std::fabs(d) > core_.dual_tolerance();
  core_.place_nonbasic(j, clear ? (d > 0 ? 1 : -1) : nearer_low ? 1 : -1);
  if (core_.basis.value(j) != t.value) moved_.push_back({j, core_.basis.value(j) - t.value});
  judge(j, wrong);
}

void PendingChanges::move_values(Dual& dual, double& objective) {
  if (moved_.empty()) return;
  value_shift_.clear();
  for (const Moved& v : moved_) {
    objective += core_.values.d(v.variable) * v.change;
    core_.model.add_column(v.variable, -v.change, value_shift_);
  }
  moved_.clear();
  if (value_shift_.count == 0) return;
  core_.ftran(value_shift_, value_density_);
  for_listed(value_shift_, [&](int p) {
    if (value_shift_.array[p] == 0) return;
    core_.values.add_x(p, value_shift_.array[p]);
    dual.touch(p);
  });
  core_.charge(value_shift_.count >= 0 ? value_shift_.count : core_.m());
}

/* What was wrong before may have been mended by what has changed since. */
void PendingChanges::recheck(MarkedList& wrong) {
  if (wrong.view().empty()) return;
  recheck_.assign(wrong.view().begin(), wrong.view().end());
  wrong.clear();
  for (const int j : recheck_) {
    if (core_.basis.nonbasic(j)) judge(j, wrong);
  }
}

void PendingChanges::apply(Dual& dual, double& objective, MarkedList& wrong) {
  cost_shift_.clear();
  for (const Touched& t : touched_) change_cost(t.variable, t.value, objective);
  spread_costs(wrong);
  for (const Touched& t : touched_) {
    const int j = t.variable;
    is_touched_[j] = 0;
    if (core_.basis.nonbasic(j)) {
      place(t, wrong);
      continue;
    }
    core_.take_basic_bounds(j);
    dual.touch(core_.basis.position(j));
  }
  touched_.clear();
  recheck(wrong);
  move_values(dual, objective);
}

void PendingChanges::remove_shifts(Dual& dual, double& objective, MarkedList& wrong) {
  if (!core_.work.costs_shifted()) return;
  cost_shift_.clear();
  for (const int j : core_.work.shifted()) {
    const bool moves = core_.work.cost(j) != core_.model.cost(j);
    change_cost(j, core_.basis.value(j), objective);
    if (moves && core_.basis.nonbasic(j)) judge(j, wrong);
  }
  core_.work.forget_shifts();
  spread_costs(wrong);
  recheck(wrong);
  move_values(dual, objective);
}

}  // namespace tovik::lp::simplex
