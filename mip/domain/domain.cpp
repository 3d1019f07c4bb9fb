#include "mip/domain/domain.h"

#include <cmath>

namespace tovik::mip {
namespace {

constexpr double kIntegerSlack = 1e-6;  // by which a bound may miss an integer and still count as it

double round_bound(Side side, double value) {
  if (std::isinf(value)) return value;
  return side == Side::lower ? std::ceil(value - kIntegerSlack) : std::floor(value + kIntegerSlack);
}

}  // namespace

Domain::Domain(const Problem& problem, const Tolerances& tolerances)
    : problem_(problem),
      tolerances_(tolerances),
      rows_(lp::transpose(problem.lp.matrix)),
      lower_(problem.lp.lower),
      upper_(problem.lp.upper),
      global_lower_(lower_),
      global_upper_(upper_),
      last_lower_(lower_.size(), -1),
      last_upper_(upper_.size(), -1),
      least_(static_cast<std::size_t>(problem.num_rows())),
      largest_(static_cast<std::size_t>(problem.num_rows())),
      is_queued_(static_cast<std::size_t>(problem.num_rows())),
      has_moved_(lower_.size()) {
  const lp::Matrix& columns = problem.lp.matrix;
  for (int j = 0; j < columns.columns; ++j) {
    for (int k = columns.start[j]; k < columns.start[j + 1]; ++k) {
      const double a = columns.value[k];
      const int i = columns.index[k];
      least_[i].add(a, a > 0 ? lower_[j] : upper_[j]);
      largest_[i].add(a, a > 0 ? upper_[j] : lower_[j]);
    }
    if (lower_[j] > upper_[j] + tolerances_.feasibility) infeasible_ = true;
  }
}

RowView Domain::row(int i) const {
  const auto begin = static_cast<std::size_t>(rows_.start[i]);
  const auto count = static_cast<std::size_t>(rows_.start[i + 1]) - begin;
  return {std::span(rows_.index).subspan(begin, count), std::span(rows_.value).subspan(begin, count)};
}

bool Domain::tighten(int column, Side side, double value, Reason reason) {
  if (infeasible_) return false;
  if (problem_.is_integer[column] != 0) value = round_bound(side, value);
  const bool is_lower = side == Side::lower;
  double& bound = is_lower ? lower_[column] : upper_[column];
  if (is_lower ? value <= bound : value >= bound) return false;
  const double other = is_lower ? upper_[column] : lower_[column];
  if (is_lower ? value > other : value < other) {
    if (std::fabs(value - other) > tolerances_.feasibility || problem_.is_integer[column] != 0) {
      infeasible_ = true;
      contradiction_ = {column, side, value, reason};
      return false;
    }
    value = other;
    if (value == bound) return false;
  }
  int& last = is_lower ? last_lower_[column] : last_upper_[column];
  trail_.push_back({column, side, value, bound, last, reason});
  last = position() - 1;
  const double before = bound;
  bound = value;
  move(column, side, before, value, true);
  return true;
}

/* A lower bound is what a positive coefficient contributes to the least activity. */
void Domain::move(int column, Side side, double from, double to, bool queue) {
  const lp::Matrix& columns = problem_.lp.matrix;
  for (int k = columns.start[column]; k < columns.start[column + 1]; ++k) {
    const double a = columns.value[k];
    const int i = columns.index[k];
    const bool to_least = (a > 0) == (side == Side::lower);
    ActivityBound& activity = to_least ? least_[i] : largest_[i];
    activity.remove(a, from);
    activity.add(a, to);
    if (!queue || is_queued_[i] != 0) continue;
    // The least activity speaks against the row's upper side, the largest against its lower one.
    if (std::isinf(to_least ? problem_.lp.row_upper[i] : problem_.lp.row_lower[i])) continue;
    is_queued_[i] = 1;
    queued_.push_back(i);
  }
  work_ += columns.start[column + 1] - columns.start[column];
  note_moved(column);
}

double Domain::bound_before(int j, Side side, int p) const {
  double value = side == Side::lower ? lower_[j] : upper_[j];
  for (int q = last_move(j, side); q >= p; q = trail_[q].earlier) value = trail_[q].before;
  return value;
}

void Domain::note_moved(int column) {
  if (has_moved_[column] != 0) return;
  has_moved_[column] = 1;
  moved_.push_back(column);
}

void Domain::backtrack(int to) {
  while (position() > to) {
    const BoundMove& last = trail_.back();
    const bool is_lower = last.side == Side::lower;
    (is_lower ? lower_ : upper_)[last.column] = last.before;
    (is_lower ? last_lower_ : last_upper_)[last.column] = last.earlier;
    move(last.column, last.side, last.value, last.before, false);
    trail_.pop_back();
  }
  infeasible_ = false;
  forget_queued_rows();
}

void Domain::commit() {
  for (const BoundMove& m : trail_) {
    last_lower_[m.column] = last_upper_[m.column] = -1;
    global_lower_[m.column] = lower_[m.column];
    global_upper_[m.column] = upper_[m.column];
  }
  trail_.clear();
}

int Domain::take_queued_row() {
  const int i = queued_[next_queued_++];
  is_queued_[i] = 0;
  if (next_queued_ == queued_.size()) {
    queued_.clear();
    next_queued_ = 0;
  }
  return i;
}

void Domain::queue_all_rows() {
  for (int i = 0; i < problem_.num_rows(); ++i) {
    if (is_queued_[i] != 0) continue;
    is_queued_[i] = 1;
    queued_.push_back(i);
  }
}

void Domain::forget_queued_rows() {
  for (std::size_t k = next_queued_; k < queued_.size(); ++k) is_queued_[queued_[k]] = 0;
  queued_.clear();
  next_queued_ = 0;
}

void Domain::forget_moved_columns() {
  for (const int j : moved_) has_moved_[j] = 0;
  moved_.clear();
}

}  // namespace tovik::mip
