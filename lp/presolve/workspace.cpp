#include "lp/presolve/workspace.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

#include "lp/presolve/tolerances.h"

namespace tovik::lp::presolve {
namespace {

constexpr double kHugeProduct = 1e13;  // a contribution that counts as infinite: too coarse to reason with
constexpr double kCancelled = 1e-12;   // relative to the larger operand: noise of a cancellation
constexpr double kCoarse = 1e6;        // a residual this much below its largest part is summed afresh
constexpr std::int64_t kPollEvery = 1024;  // reductions between looks at the stop signals
constexpr double kReportSeconds = 5;

/* Contribution of one entry to the least activity; infinite when unbounded or too large to count with. */
double least_term(double a, double lower, double upper) {
  const double term = a > 0 ? a * lower : a * upper;
  return term <= -kHugeProduct ? -kInf : term >= kHugeProduct ? -kInf : term;
}

double most_term(double a, double lower, double upper) {
  return -least_term(-a, lower, upper);
}

double largest(const View& v) {
  double found = 0;
  for (int k = 0; k < v.length; ++k) found = std::max(found, std::fabs(v.value[k]));
  return found;
}

}  // namespace

double Workspace::column_max(int j) {
  return largest(column(j));
}

Workspace::Workspace(const LpData& original_lp, const Settings& s, Control& c, const std::vector<char>& kept)
    : original(original_lp),
      settings(s),
      control(c),
      cost(original_lp.cost),
      lower(original_lp.lower),
      upper(original_lp.upper),
      row_lower(original_lp.row_lower),
      row_upper(original_lp.row_upper),
      row_alive_(original_lp.row_lower.size(), 1),
      column_alive_(original_lp.cost.size(), 1),
      protected_(kept),
      rows_(transpose(original_lp.matrix), column_alive_),
      columns_(original_lp.matrix, row_alive_),
      column_dirty_(original_lp.cost.size(), 0),
      row_removal_(original_lp.row_lower.size(), RemovalReason::kept),
      column_removal_(original_lp.cost.size(), RemovalReason::kept),
      activity_(original_lp.row_lower.size()),
      activity_fresh_(original_lp.row_lower.size(), 0),
      row_queued_(original_lp.row_lower.size(), 0),
      column_queued_(original_lp.cost.size(), 0),
      mark_(original_lp.cost.size(), 0),
      row_mark_(original_lp.row_lower.size(), 0),
      rows_left_(original_lp.num_rows()),
      columns_left_(original_lp.num_columns()),
      offset_(original_lp.offset) {
  for (int i = 0; i < num_rows(); ++i) queue_row(i);
  for (int j = 0; j < num_columns(); ++j) queue_column(j);
  last_report_ = control.seconds();
}

double Workspace::entry(int i, int j) {
  if (row_length(i) <= column_length(j)) {
    const int k = rows_.find(i, j);
    return k < 0 ? 0.0 : row(i).value[k];
  }
  const int k = columns_.find(j, i);
  return k < 0 ? 0.0 : column(j).value[k];
}

const Activity& Workspace::activity(int i) {
  Activity& sum = activity_[i];
  if (activity_fresh_[i]) return sum;
  activity_fresh_[i] = 1;
  sum = Activity{};
  const View v = row(i);
  add_work(v.length);
  for (int k = 0; k < v.length; ++k) {
    const int j = v.index[k];
    const double least = least_term(v.value[k], lower[j], upper[j]);
    const double most = most_term(v.value[k], lower[j], upper[j]);
    sum.largest = std::max(sum.largest, std::fabs(v.value[k]));
    if (least == -kInf) {
      ++sum.infinite_min;
    } else {
      sum.min += least;
      sum.magnitude = std::max(sum.magnitude, std::fabs(least));
    }
    if (most == kInf) {
      ++sum.infinite_max;
    } else {
      sum.max += most;
      sum.magnitude = std::max(sum.magnitude, std::fabs(most));
    }
  }
  return sum;
}

/* Least value of sign * row i without column j, whose entry is a. */
double Workspace::rest_without(int i, int j, double a, double sign) {
  const Activity& sum = activity(i);
  const int infinite = sign > 0 ? sum.infinite_min : sum.infinite_max;
  const double total = sign > 0 ? sum.min : -sum.max;
  const double own = least_term(sign * a, lower[j], upper[j]);
  if (own == -kInf) return infinite == 1 ? total : -kInf;
  if (infinite > 0) return -kInf;
  const double rest = total - own;
  if (sum.magnitude <= kCoarse * std::max(1.0, std::fabs(rest))) return rest;
  double fresh = 0;
  const View v = row(i);
  add_work(v.length);
  for (int k = 0; k < v.length; ++k) {
    const int other = v.index[k];
    if (other != j) fresh += least_term(sign * v.value[k], lower[other], upper[other]);
  }
  return fresh;
}

double Workspace::implied_lower(int i, int j, double a) {
  if (a > 0) {
    if (row_lower[i] == -kInf) return -kInf;
    const double rest = most_without(i, j, a);
    return rest == kInf ? -kInf : (row_lower[i] - rest) / a;
  }
  if (row_upper[i] == kInf) return -kInf;
  const double rest = least_without(i, j, a);
  return rest == -kInf ? -kInf : (row_upper[i] - rest) / a;
}

double Workspace::implied_upper(int i, int j, double a) {
  if (a > 0) {
    if (row_upper[i] == kInf) return kInf;
    const double rest = least_without(i, j, a);
    return rest == -kInf ? kInf : (row_upper[i] - rest) / a;
  }
  if (row_lower[i] == -kInf) return kInf;
  const double rest = most_without(i, j, a);
  return rest == kInf ? kInf : (row_lower[i] - rest) / a;
}

bool Workspace::allow(Rule rule) {
  if (done() || !enabled(rule)) return false;
  if (reductions_ >= settings.limit) {
    exhausted_ = true;
    return false;
  }
  if (++reductions_ % kPollEvery == 0) {
    stop = control.poll();
    if (stop == Stop::none) stop = control.poll_clock();
    if (stop != Stop::none) return false;
  }
  ++counts.hits[static_cast<size_t>(rule)];
  return true;
}

void Workspace::declare_infeasible(PresolveStatus found) {
  if (status.code == StatusCode::reduced) status = std::move(found);
}

void Workspace::queue_row(int i) {
  if (row_queued_[i]) return;
  row_queued_[i] = 1;
  changed_rows_.push_back(i);
}

void Workspace::queue_column(int j) {
  if (column_queued_[j]) return;
  column_queued_[j] = 1;
  changed_columns_.push_back(j);
}

std::vector<int> Workspace::take(std::vector<int>& list, std::vector<char>& flags) {
  std::vector<int> taken;
  taken.swap(list);
  for (const int k : taken) flags[k] = 0;
  return taken;
}

void Workspace::change_bounds(int j, double new_lower, double new_upper) {
  lower[j] = new_lower;
  upper[j] = new_upper;
  const View v = column(j);
  add_work(v.length);
  for (int k = 0; k < v.length; ++k) {
    touch_row(v.index[k]);
    queue_row(v.index[k]);
  }
  queue_column(j);
}

void Workspace::change_sides(int i, double new_lower, double new_upper) {
  const bool other_duals = (new_lower == -kInf) != (row_lower[i] == -kInf) ||
                           (new_upper == kInf) != (row_upper[i] == kInf) ||
                           (new_lower == new_upper) != equation(i);
  row_lower[i] = new_lower;
  row_upper[i] = new_upper;
  queue_row(i);
  if (!other_duals) return;
  const View v = row(i);
  add_work(v.length);
  for (int k = 0; k < v.length; ++k) queue_column(v.index[k]);
}

void Workspace::move_cost(int j, double delta) {
  const double sum = cost[j] + delta;
  cost[j] = std::fabs(sum) <= kCancelled * std::fabs(delta) ? 0.0 : sum;
  queue_column(j);
}

void Workspace::add_offset(double value) {
  const double sum = offset_ + value;
  offset_error_ += std::fabs(offset_) >= std::fabs(value) ? (offset_ - sum) + value : (value - sum) + offset_;
  offset_ = sum;
}

void Workspace::shift_sides(int i, double delta) {
  if (delta == 0) return;
  row_lower[i] = moved(row_lower[i], delta);
  row_upper[i] = moved(row_upper[i], delta);
  queue_row(i);
}

void Workspace::remove_row(int i, RemovalReason reason) {
  const View v = row(i);
  add_work(v.length);
  for (int k = 0; k < v.length; ++k) {
    columns_.forget_entry(v.index[k]);
    queue_column(v.index[k]);
  }
  row_alive_[i] = 0;
  rows_.clear(i);
  row_removal_[i] = reason;
  if (reason != RemovalReason::aggregated) ++counts.rows_eliminated;
  --rows_left_;
}

void Workspace::remove_column(int j, RemovalReason reason) {
  const View v = column(j);
  add_work(v.length);
  for (int k = 0; k < v.length; ++k) {
    rows_.forget_entry(v.index[k]);
    touch_row(v.index[k]);
    queue_row(v.index[k]);
  }
  column_alive_[j] = 0;
  columns_.clear(j);
  column_removal_[j] = reason;
  if (reason != RemovalReason::aggregated) ++counts.columns_eliminated;
  --columns_left_;
}

ColumnEntries Workspace::column_entries(int j) {
  if (!column_dirty_[j]) return {};
  return {true, column(j)};
}

View Workspace::row_without(int i, int j) {
  const View v = row(i);
  add_work(v.length);
  scratch_index_.resize(static_cast<size_t>(v.length));
  scratch_value_.resize(static_cast<size_t>(v.length));
  int kept = 0;
  for (int k = 0; k < v.length; ++k) {
    scratch_index_[kept] = v.index[k];
    scratch_value_[kept] = v.value[k];
    kept += v.index[k] != j;
  }
  return {kept, scratch_index_.data(), scratch_value_.data()};
}

void Workspace::add_row_multiple(int target, double factor, int source, int pivot) {
  const View from = row(source);
  scratch_index_.assign(from.index, from.index + from.length);
  scratch_value_.assign(from.value, from.value + from.length);
  const View to = row(target);
  add_work(from.length + to.length);
  for (int k = 0; k < to.length; ++k) mark_[to.index[k]] = k + 1;
  const int marked = to.length;
  std::vector<int> gone;
  for (size_t k = 0; k < scratch_index_.size(); ++k) {
    const int j = scratch_index_[k];
    const double change = factor * scratch_value_[k];
    column_dirty_[j] = 1;
    queue_column(j);
    const int position = mark_[j] - 1;
    if (position < 0) {
      if (j == pivot) continue;
      rows_.append(target, j, change);
      columns_.append(j, target, change);
      continue;
    }
    const double old = row(target).value[position];
    const double sum = old + change;
    if (j == pivot || std::fabs(sum) <= kCancelled * std::max(std::fabs(old), std::fabs(change))) {
      gone.push_back(j);
    } else {
      rows_.set_value(target, position, sum);
      columns_.set_value(j, columns_.find(j, target), sum);
      add_work(column_length(j));
    }
  }
  const View after = row(target);
  for (int k = 0; k < marked; ++k) mark_[after.index[k]] = 0;
  for (const int j : gone) {
    rows_.remove(target, rows_.find(target, j));
    columns_.remove(j, columns_.find(j, target));
  }
  touch_row(target);
  queue_row(target);
  if (equation(source)) shift_sides(target, factor * row_lower[source]);
}

void Workspace::set_entry(int i, int j, double value) {
  const int in_row = rows_.find(i, j);
  add_work(row_length(i) + column_length(j));
  if (in_row < 0) {
    if (value == 0) return;
    rows_.append(i, j, value);
    columns_.append(j, i, value);
  } else if (value == 0) {
    rows_.remove(i, in_row);
    columns_.remove(j, columns_.find(j, i));
  } else {
    rows_.set_value(i, in_row, value);
    columns_.set_value(j, columns_.find(j, i), value);
  }
  column_dirty_[j] = 1;
  touch_row(i);
  queue_row(i);
  queue_column(j);
}

void Workspace::scale_row(int i, double factor, double new_lower, double new_upper) {
  const View v = row(i);
  for (int k = 0; k < v.length; ++k) {
    const int j = v.index[k];
    const double scaled = v.value[k] * factor;
    rows_.set_value(i, k, scaled);
    columns_.set_value(j, columns_.find(j, i), scaled);
    column_dirty_[j] = 1;
    add_work(column_length(j));
  }
  touch_row(i);
  change_sides(i, new_lower, new_upper);
}

void Workspace::report(bool in_aggregator) {
  char text[120];
  last_report_ = control.seconds();
  if (!in_aggregator) {
    std::snprintf(text, sizeof text, "Presolve has eliminated %d rows and %d columns...\n",
                  counts.rows_eliminated, counts.columns_eliminated);
    control.log(text);
  }
  if (counts.substitutions > 0) {
    std::snprintf(text, sizeof text, "Aggregator has done %d substitutions...\n", counts.substitutions);
    control.log(text);
  }
  if (!in_aggregator && counts.bounds_improved > 0) {
    std::snprintf(text, sizeof text, "Presolve has improved bounds %d times...\n", counts.bounds_improved);
    control.log(text);
  }
  control.flush();
}

Progress Workspace::progress() const {
  const int both = counts.substitutions;
  return PresolveProgress{counts.rows_eliminated + both, counts.columns_eliminated + both, both,
                          counts.bounds_improved};
}

bool Workspace::may_continue(bool in_aggregator) {
  if (done()) return false;
  if (display && control.seconds() - last_report_ > kReportSeconds) report(in_aggregator);
  stop = control.iteration_callback(*this);
  if (stop == Stop::none) stop = control.poll();
  if (stop == Stop::none) stop = control.poll_clock();
  return stop == Stop::none;
}

std::int64_t Workspace::entries_left() const {
  std::int64_t entries = 0;
  for (int j = 0; j < num_columns(); ++j) {
    if (column_alive(j)) entries += column_length(j);
  }
  return entries;
}

LpData Workspace::extract(std::vector<int>& row_map, std::vector<int>& column_map) {
  LpData lp;
  row_map.clear();
  column_map.clear();
  std::vector<int> place(static_cast<size_t>(num_rows()), -1);
  for (int i = 0; i < num_rows(); ++i) {
    if (!row_alive(i)) continue;
    place[i] = static_cast<int>(row_map.size());
    row_map.push_back(i);
    lp.row_lower.push_back(row_lower[i]);
    lp.row_upper.push_back(row_upper[i]);
  }
  Matrix& matrix = lp.matrix;
  const auto entries = static_cast<size_t>(entries_left());
  matrix.index.reserve(entries);
  matrix.value.reserve(entries);
  for (int j = 0; j < num_columns(); ++j) {
    if (!column_alive(j)) continue;
    column_map.push_back(j);
    lp.cost.push_back(cost[j]);
    lp.lower.push_back(lower[j]);
    lp.upper.push_back(upper[j]);
    const View v = column(j);
    for (int k = 0; k < v.length; ++k) matrix.index.push_back(place[v.index[k]]);
    matrix.value.insert(matrix.value.end(), v.value, v.value + v.length);
    matrix.start.push_back(static_cast<int>(matrix.index.size()));
  }
  matrix.rows = static_cast<int>(row_map.size());
  matrix.columns = static_cast<int>(column_map.size());
  lp.offset = offset();
  return lp;
}

}  // namespace tovik::lp::presolve
