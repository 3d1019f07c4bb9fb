#include "mip/presolve/state.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lp/presolve/tolerances.h"

namespace tovik::mip {
namespace {

constexpr std::int64_t kBudget = 400;  // entries that may be touched, relative to the size of the problem
constexpr std::int64_t kLeastBudget = 2000000;
constexpr std::int64_t kPollEvery = 100000;  // entries

lp::presolve::Settings workspace_settings(const Tolerances& tolerances) {
  lp::presolve::Settings s;
  s.feasibility = tolerances.feasibility;
  return s;
}

std::int64_t size_of(const Problem& problem) {
  return static_cast<std::int64_t>(problem.lp.matrix.index.size()) + problem.num_rows() +
         problem.num_columns();
}

}  // namespace

PresolveState::PresolveState(const Problem& problem, const PresolveSettings& the_settings,
                             const Tolerances& tolerance, lp::Control& stop_control)
    : postsolve(problem.is_integer),
      semi_columns(problem.semi_columns),
      sets(problem.sets),
      indicators(problem.indicators),
      problem_(problem),
      settings_(the_settings),
      tolerances_(tolerance),
      lp_settings_(workspace_settings(tolerance)),
      workspace_(problem.lp, lp_settings_, stop_control, protected_),
      is_integer_(problem.is_integer),
      is_held_(problem.is_integer.size(), 0),
      size_(size_of(problem)),
      budget_(std::max(kLeastBudget, kBudget * size_)) {
  workspace_.display = false;
  count_held();
}

void PresolveState::count_held() {
  std::fill(is_held_.begin(), is_held_.end(), 0);
  for (const SemiColumn& s : semi_columns) is_held_[s.column] = 1;
  for (const OrderedSet& s : sets) {
    for (const int j : s.columns) is_held_[j] = 1;
  }
  for (const Indicator& s : indicators) is_held_[s.switch_column] = is_held_[s.slack] = 1;
  for (std::size_t j = 0; j < problem_.is_protected.size(); ++j) is_held_[j] |= problem_.is_protected[j];
}

bool PresolveState::goes_on() {
  if (is_infeasible() || was_stopped()) return false;
  if (workspace_.status.code != lp::presolve::StatusCode::reduced) {
    const lp::presolve::PresolveStatus& found = workspace_.status;
    finding_ = {PresolveFinding::Kind::rows_inconsistent, found.row, found.other_row, found.column, 0, 0};
    return false;
  }
  if (workspace_.work() >= next_poll_) {
    next_poll_ = workspace_.work() + kPollEvery;
    workspace_.stop = workspace_.control.poll();
    if (workspace_.stop == lp::Stop::none) workspace_.stop = workspace_.control.poll_clock();
  }
  return !was_stopped() && budget_left() > 0;
}

void PresolveState::set_infeasible(PresolveFinding::Kind kind, int row, int column) {
  finding_.kind = kind;
  finding_.row = row;
  finding_.column = column;
}

bool PresolveState::is_fixed(int j) const {
  const double l = workspace_.lower[j], u = workspace_.upper[j];
  return l == u || (!is_integer(j) && u - l <= lp::presolve::kSame * std::fabs(l));
}

bool PresolveState::tighten(int j, double lower, double upper) {
  constexpr double kRounding = 1e-9;  // by which a computed bound may miss a whole number
  const double own_lower = workspace_.lower[j], own_upper = workspace_.upper[j];
  if (is_integer(j)) {
    lower = std::ceil(lower - kRounding);
    upper = std::floor(upper + kRounding);
  }
  double l = std::max(lower, own_lower), u = std::min(upper, own_upper);
  if (l > u) {
    if (is_integer(j)) {
      set_infeasible(PresolveFinding::Kind::no_whole_value, -1, j);
      return false;
    }
    const double size = std::max({1.0, std::fabs(l), std::fabs(u)});
    if (l - u > 10 * tolerances_.feasibility * size) {
      set_infeasible(PresolveFinding::Kind::column_bounds_cross, -1, j);
      return false;
    }
    if (l - u > lp::presolve::kExact * size) return false;
    l = u = lower > own_lower ? own_upper : own_lower;
  }
  if (l == own_lower && u == own_upper) return true;
  ++counts.bounds_improved;
  workspace_.change_bounds(j, l, u);
  return true;
}

void PresolveState::fix(int j, double value) {
  postsolve.fixed(j, value);
  if (value != 0) {
    workspace_.add_offset(workspace_.cost[j] * value);
    const lp::presolve::View column = workspace_.column(j);
    for (int k = 0; k < column.length; ++k) workspace_.shift_sides(column.index[k], -column.value[k] * value);
  }
  workspace_.remove_column(j, lp::presolve::RemovalReason::fixed);
}

void PresolveState::substitute(int i, int s) {
  const lp::presolve::View row = workspace_.row(i);
  double pivot = 0;
  std::vector<Term> terms;
  for (int k = 0; k < row.length; ++k) {
    if (row.index[k] == s) pivot = row.value[k];
  }
  for (int k = 0; k < row.length; ++k) {
    if (row.index[k] != s) terms.push_back({row.index[k], -row.value[k] / pivot});
  }
  postsolve.substituted(s, workspace_.row_lower[i] / pivot, terms);
  workspace_.substitute(i, s);
  ++counts.substitutions;
}

void PresolveState::replace(int gone, int kept, double factor, double constant) {
  const Term term{kept, factor};
  postsolve.substituted(gone, constant, std::span(&term, 1));
  const lp::presolve::View column = workspace_.column(gone);
  const std::vector<int> rows(column.index, column.index + column.length);
  const std::vector<double> values(column.value, column.value + column.length);
  for (std::size_t k = 0; k < rows.size(); ++k) {
    const double old = workspace_.entry(rows[k], kept), change = values[k] * factor;
    const double sum = old + change;
    const bool cancels = std::fabs(sum) <= 1e-12 * std::max(std::fabs(old), std::fabs(change));
    workspace_.set_entry(rows[k], kept, cancels ? 0.0 : sum);
    workspace_.shift_sides(rows[k], -values[k] * constant);
  }
  workspace_.add_offset(workspace_.cost[gone] * constant);
  workspace_.move_cost(kept, workspace_.cost[gone] * factor);
  workspace_.remove_column(gone, lp::presolve::RemovalReason::aggregated);
  ++counts.columns_eliminated;
}

Problem PresolveState::extract(std::vector<int>& row_map, std::vector<int>& column_map) {
  Problem out;
  out.lp = workspace_.extract(row_map, column_map);
  std::vector<int> place(is_integer_.size(), -1);
  for (std::size_t k = 0; k < column_map.size(); ++k) {
    const int j = column_map[k];
    place[j] = static_cast<int>(k);
    out.is_integer.push_back(is_integer_[j]);
    if (!problem_.priorities.empty()) out.priorities.push_back(problem_.priorities[j]);
    if (!problem_.is_protected.empty()) out.is_protected.push_back(problem_.is_protected[j]);
  }
  for (SemiColumn s : semi_columns) {
    s.column = place[s.column];
    out.semi_columns.push_back(s);
  }
  for (OrderedSet s : sets) {
    for (int& j : s.columns) j = place[j];
    out.sets.push_back(std::move(s));
  }
  for (Indicator s : indicators) {
    s.switch_column = place[s.switch_column];
    s.slack = place[s.slack];
    out.indicators.push_back(s);
  }
  return out;
}

}  // namespace tovik::mip
