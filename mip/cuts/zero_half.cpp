#include "mip/cuts/zero_half.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace tovik::mip {
namespace {

constexpr double kMostLoss = 0.9;  // 1 less twice the violation
constexpr double kAtBound = 1e-6;
constexpr double kLargestCoefficient = 1e6;
constexpr std::size_t kRows = 3000, kLongest = 2000, kCuts = 200;

bool is_odd(double v) {
  return std::fabs(std::remainder(v, 2.0)) > 0.5;
}

/* Columns or rows that are in one of two ascending lists only. */
std::vector<int> difference(const std::vector<int>& a, const std::vector<int>& b) {
  std::vector<int> result;
  std::set_symmetric_difference(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(result));
  return result;
}

}  // namespace

Verdict ZeroHalfCuts::call(Worker& worker, const Moment& moment) {
  const Problem& problem = worker.global.problem;
  const std::span<const double> x = worker.relaxation->primal();
  work_ = 0;
  found_.clear();
  distance_.assign(x.size(), 0.0);
  for (int j = 0; j < problem.num_columns(); ++j) {
    distance_[j] =
        std::max(0.0, std::min(x[j] - worker.domain.global_lower(j), worker.domain.global_upper(j) - x[j]));
  }
  read_rows(worker);
  eliminate(worker, moment.budget);
  RowSum sum(problem.num_columns());
  Rounding rounding(worker);
  bool found = false;
  for (const std::vector<int>& rows : found_) found |= make_cut(worker, rows, sum, rounding);
  worker.out.work += work_ + sum.entries() + rounding.work();
  return found ? Verdict::found : Verdict::nothing;
}

void ZeroHalfCuts::read_rows(const Worker& worker) {
  rows_.clear();
  for (int i = 0; i < worker.num_rows() && rows_.size() < kRows; ++i) {
    ParityRow row;
    if (read_row(worker, i, &row)) rows_.push_back(std::move(row));
  }
  for (const ParityRow& row : rows_) keep_if_violated(row);
}

/* Of the side that the row stands nearer to. False where it cannot be of use. */
bool ZeroHalfCuts::read_row(const Worker& worker, int i, ParityRow* row) const {
  const RelaxationRow r = worker.row(i);
  if (!r.is_integral || r.columns.size() > kLongest) return false;
  const std::span<const double> x = worker.relaxation->primal();
  const Slack slack = slack_of(r, x);
  if (!slack.exists || slack.value >= kMostLoss) return false;
  row->slack = std::max(0.0, slack.value);
  row->rows = {i};
  bool odd_side = is_odd(slack.at_upper ? r.upper : r.lower);
  for (std::size_t k = 0; k < r.columns.size(); ++k) {
    const int j = r.columns[k];
    if (std::fabs(r.values[k]) > kLargestCoefficient) return false;
    if (!is_odd(r.values[k])) continue;
    const double lower = worker.domain.global_lower(j), upper = worker.domain.global_upper(j);
    if (std::isinf(distance_[j])) return false;
    odd_side = odd_side != is_odd(x[j] - lower <= upper - x[j] ? lower : upper);
    if (distance_[j] > kAtBound) row->odd.push_back(j);
  }
  row->odd_side = odd_side;
  std::sort(row->odd.begin(), row->odd.end());
  return true;
}

/* What a cut from the row loses: it is violated by half of what is left of 1. */
double ZeroHalfCuts::loss(const ParityRow& row) const {
  double sum = row.slack;
  for (const int j : row.odd) sum += distance_[j];
  return sum;
}

void ZeroHalfCuts::keep_if_violated(const ParityRow& row) {
  if (row.odd_side && found_.size() < kCuts && loss(row) < kMostLoss) found_.push_back(row.rows);
}

void ZeroHalfCuts::add_to(ParityRow& row, const ParityRow& other) {
  work_ += static_cast<std::int64_t>(row.odd.size() + other.odd.size() + row.rows.size() + other.rows.size());
  row.odd = difference(row.odd, other.odd);
  row.rows = difference(row.rows, other.rows);
  row.slack += other.slack;
  row.odd_side = row.odd_side != other.odd_side;
  row.is_in = row.slack < kMostLoss;
  if (row.is_in) keep_if_violated(row);
}

/* Columns far from their bounds first: they cost most. */
void ZeroHalfCuts::eliminate(const Worker& worker, std::int64_t budget) {
  std::vector<int> order;
  for (const ParityRow& row : rows_) order.insert(order.end(), row.odd.begin(), row.odd.end());
  std::sort(order.begin(), order.end());
  order.erase(std::unique(order.begin(), order.end()), order.end());
  std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return distance_[a] > distance_[b]; });
  for (const int column : order) {
    if (work_ > budget || found_.size() >= kCuts || worker.must_stop()) return;
    eliminate_column(column);
  }
}

/* With the row of least slack; what is left of that stands for the column at its bound. */
void ZeroHalfCuts::eliminate_column(int column) {
  std::vector<ParityRow*> with;
  for (ParityRow& row : rows_) {
    if (row.is_in && std::binary_search(row.odd.begin(), row.odd.end(), column)) with.push_back(&row);
  }
  work_ += static_cast<std::int64_t>(rows_.size());
  if (with.empty()) return;
  ParityRow& pivot = **std::min_element(with.begin(), with.end(), [](const ParityRow* a, const ParityRow* b) {
    return a->slack != b->slack ? a->slack < b->slack : a->odd.size() < b->odd.size();
  });
  for (ParityRow* row : with) {
    if (row != &pivot) add_to(*row, pivot);
  }
  std::erase(pivot.odd, column);
  pivot.slack += distance_[column];
  pivot.is_in = pivot.slack < kMostLoss;
}

bool ZeroHalfCuts::make_cut(Worker& worker, const std::vector<int>& rows, RowSum& sum,
                            Rounding& rounding) const {
  const std::span<const double> x = worker.relaxation->primal();
  sum.clear();
  for (const int i : rows) {
    // Weights by which the slacks' coefficients are positive.
    if (!sum.add(worker, i, slack_of(worker.row(i), x).at_upper ? 0.5 : -0.5, x)) return false;
  }
  return rounding.separate(sum, 1, x, CutClass::zero_half, &worker.out.cuts);
}

}  // namespace tovik::mip
