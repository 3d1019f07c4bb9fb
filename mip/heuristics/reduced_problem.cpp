#include "mip/heuristics/reduced_problem.h"

#include <cmath>
#include <utility>

#include "mip/domain/activity.h"

namespace tovik::mip {
namespace {

std::vector<char> columns_of_objects(const Problem& problem) {
  std::vector<char> is_used(static_cast<std::size_t>(problem.num_columns()), 0);
  for (const SemiColumn& s : problem.semi_columns) is_used[s.column] = 1;
  for (const OrderedSet& s : problem.sets) {
    for (const int j : s.columns) is_used[j] = 1;
  }
  for (const Indicator& s : problem.indicators) is_used[s.switch_column] = is_used[s.slack] = 1;
  return is_used;
}

}  // namespace

ReducedProblem::ReducedProblem(const Domain& domain) {
  choose_columns(domain);
  choose_rows(domain);
  copy_entries(domain);
  copy_objects(domain.problem());
}

void ReducedProblem::choose_columns(const Domain& domain) {
  const Problem& whole = domain.problem();
  const std::vector<char> stays = columns_of_objects(whole);
  const int columns = whole.num_columns();
  new_column_.assign(static_cast<std::size_t>(columns), -1);
  fixed_.assign(domain.lower().begin(), domain.lower().end());
  lp::LpData& lp = reduced_.lp;
  lp.offset = whole.lp.offset;
  for (int j = 0; j < columns; ++j) {
    if (domain.is_fixed(j) && stays[j] == 0) {
      lp.offset += whole.lp.cost[j] * domain.lower(j);
      continue;
    }
    new_column_[j] = static_cast<int>(lp.cost.size());
    const bool is_integer = whole.is_integer[j] != 0;
    // Bounds that rows imply for continuous columns would only make vertices degenerate.
    const bool follows = is_integer || stays[j] != 0;
    lp.cost.push_back(whole.lp.cost[j]);
    lp.lower.push_back(follows ? domain.lower(j) : whole.lp.lower[j]);
    lp.upper.push_back(follows ? domain.upper(j) : whole.lp.upper[j]);
    reduced_.is_integer.push_back(whole.is_integer[j]);
    if (!whole.priorities.empty()) reduced_.priorities.push_back(whole.priorities[j]);
  }
}

void ReducedProblem::choose_rows(const Domain& domain) {
  const lp::LpData& whole = domain.problem().lp;
  const int rows = whole.num_rows();
  new_row_.assign(static_cast<std::size_t>(rows), -1);
  fixed_activity_.assign(static_cast<std::size_t>(rows), 0.0);
  lp::LpData& lp = reduced_.lp;
  for (int i = 0; i < rows; ++i) {
    const RowView row = domain.row(i);
    ActivityBound least, largest;
    int left = 0;
    for (std::size_t k = 0; k < row.columns.size(); ++k) {
      const double a = row.values[k];
      const int j = new_column_[row.columns[k]];
      if (j < 0) {
        fixed_activity_[i] += a * fixed_[row.columns[k]];
        continue;
      }
      ++left;
      least.add(a, a > 0 ? lp.lower[j] : lp.upper[j]);
      largest.add(a, a > 0 ? lp.upper[j] : lp.lower[j]);
    }
    if (left == 0) continue;
    const double lower = whole.row_lower[i] - fixed_activity_[i];
    const double upper = whole.row_upper[i] - fixed_activity_[i];
    const bool holds_below = std::isinf(lower) || (least.is_finite() && least.finite_part() >= lower);
    const bool holds_above = std::isinf(upper) || (largest.is_finite() && largest.finite_part() <= upper);
    if (holds_below && holds_above) continue;
    new_row_[i] = static_cast<int>(lp.row_lower.size());
    lp.row_lower.push_back(lower);
    lp.row_upper.push_back(upper);
  }
}

void ReducedProblem::copy_entries(const Domain& domain) {
  const lp::Matrix& from = domain.problem().lp.matrix;
  lp::Matrix& to = reduced_.lp.matrix;
  to.rows = static_cast<int>(reduced_.lp.row_lower.size());
  to.columns = static_cast<int>(reduced_.lp.cost.size());
  to.start.assign(1, 0);
  for (int j = 0; j < from.columns; ++j) {
    if (new_column_[j] < 0) continue;
    for (int k = from.start[j]; k < from.start[j + 1]; ++k) {
      const int i = new_row_[from.index[k]];
      if (i < 0) continue;
      to.index.push_back(i);
      to.value.push_back(from.value[k]);
    }
    to.start.push_back(static_cast<int>(to.index.size()));
  }
}

void ReducedProblem::copy_objects(const Problem& whole) {
  for (SemiColumn s : whole.semi_columns) {
    s.column = new_column_[s.column];
    reduced_.semi_columns.push_back(s);
  }
  for (OrderedSet s : whole.sets) {
    for (int& j : s.columns) j = new_column_[j];
    reduced_.sets.push_back(std::move(s));
  }
  for (Indicator s : whole.indicators) {
    s.switch_column = new_column_[s.switch_column];
    s.slack = new_column_[s.slack];
    reduced_.indicators.push_back(s);
  }
}

std::vector<double> ReducedProblem::expand(std::span<const double> x) const {
  std::vector<double> whole = fixed_;
  for (std::size_t j = 0; j < whole.size(); ++j) {
    if (new_column_[j] >= 0) whole[j] = x[new_column_[j]];
  }
  return whole;
}

void ReducedProblem::add_row(std::span<const int> columns, std::span<const double> values, double lower,
                             double upper) {
  lp::LpData& lp = reduced_.lp;
  std::vector<double> entry(static_cast<std::size_t>(lp.num_columns()));
  double fixed = 0;
  for (std::size_t k = 0; k < columns.size(); ++k) {
    const int j = new_column_[columns[k]];
    if (j < 0) {
      fixed += values[k] * fixed_[columns[k]];
    } else {
      entry[j] = values[k];
    }
  }
  lp::Matrix extended;
  extended.rows = lp.matrix.rows + 1;
  extended.columns = lp.matrix.columns;
  for (int j = 0; j < lp.matrix.columns; ++j) {
    for (int k = lp.matrix.start[j]; k < lp.matrix.start[j + 1]; ++k) {
      extended.index.push_back(lp.matrix.index[k]);
      extended.value.push_back(lp.matrix.value[k]);
    }
    if (entry[j] != 0) {
      extended.index.push_back(lp.matrix.rows);
      extended.value.push_back(entry[j]);
    }
    extended.start.push_back(static_cast<int>(extended.index.size()));
  }
  lp.matrix = std::move(extended);
  lp.row_lower.push_back(lower - fixed);
  lp.row_upper.push_back(upper - fixed);
}

}  // namespace tovik::mip
