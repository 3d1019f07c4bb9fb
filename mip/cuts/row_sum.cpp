#include "mip/cuts/row_sum.h"

#include <algorithm>
#include <cmath>

namespace tovik::mip {

Slack slack_of(const RelaxationRow& row, std::span<const double> x) {
  double activity = 0;
  for (std::size_t k = 0; k < row.columns.size(); ++k) activity += row.values[k] * x[row.columns[k]];
  const double to_lower = std::isinf(row.lower) ? kInf : activity - row.lower;
  const double to_upper = std::isinf(row.upper) ? kInf : row.upper - activity;
  return {std::min(to_lower, to_upper), to_upper <= to_lower, !std::isinf(to_lower) || !std::isinf(to_upper)};
}

void RowSum::clear() {
  for (const int j : columns_) {
    values_[j] = {};
    sizes_[j] = 0;
    is_listed_[j] = 0;
  }
  columns_.clear();
  slacks_.clear();
  rows_.clear();
  side_ = {};
  side_size_ = 0;
  rank_ = 0;
}

bool RowSum::has_row(int row) const {
  return std::find(rows_.begin(), rows_.end(), row) != rows_.end();
}

bool RowSum::add(const Worker& worker, int row, double multiplier, std::span<const double> x) {
  const RelaxationRow r = worker.row(row);
  bool at_upper = true;
  if (r.lower != r.upper) {
    const Slack slack = slack_of(r, x);
    if (!slack.exists) return false;
    at_upper = slack.at_upper;
    // a x + t = upper, or a x - t = lower.
    slacks_.push_back({row, at_upper ? multiplier : -multiplier, at_upper, slack.value});
  }
  const double side = at_upper ? r.upper : r.lower;
  side_.add_product(multiplier, side);
  side_size_ = std::max(side_size_, std::fabs(multiplier * side));
  for (std::size_t k = 0; k < r.columns.size(); ++k) {
    const int j = r.columns[k];
    if (is_listed_[j] == 0) {
      is_listed_[j] = 1;
      columns_.push_back(j);
    }
    values_[j].add_product(multiplier, r.values[k]);
    sizes_[j] = std::max(sizes_[j], std::fabs(multiplier * r.values[k]));
  }
  entries_ += static_cast<std::int64_t>(r.columns.size());
  rows_.push_back(row);
  const int problem_rows = worker.global.problem.num_rows();
  if (row >= problem_rows) rank_ = std::max(rank_, worker.cut_rows[row - problem_rows].rank);
  return true;
}

}  // namespace tovik::mip
