#include "mip/run/filter_rows.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "include/tovik.h"

namespace tovik::mip::run {
namespace {

using Kind = SolutionFilter::Kind;

bool is_linear(const mip::Problem& problem, const SolutionFilter& filter) {
  return filter.kind == Kind::range || std::all_of(filter.column.begin(), filter.column.end(), [&](int j) {
           return problem.is_integer[j] != 0 && problem.lp.lower[j] >= 0 && problem.lp.upper[j] <= 1;
         });
}

/* New rows, by column. */
struct NewRows {
  explicit NewRows(std::size_t columns) : row(columns), value(columns) {}
  std::vector<std::vector<int>> row;
  std::vector<std::vector<double>> value;
};

/* Of x = 0 and x = 1: |x - r| = |r| + (|1 - r| - |r|) x. */
void add_row(lp::LpData& lp, const SolutionFilter& filter, double lower, double upper, NewRows& rows) {
  const int row = static_cast<int>(lp.row_lower.size());
  double constant = 0;
  for (std::size_t k = 0; k < filter.column.size(); ++k) {
    const auto j = static_cast<std::size_t>(filter.column[k]);
    double value = filter.coefficient[k];
    if (filter.kind == Kind::diversity) {
      const double r = filter.reference[k];
      constant += value * std::fabs(r);
      value *= std::fabs(1 - r) - std::fabs(r);
    }
    if (value == 0) continue;
    rows.row[j].push_back(row);
    rows.value[j].push_back(value);
  }
  lp.row_lower.push_back(lower <= -TVK_INFBOUND ? -kInf : lower - constant);
  lp.row_upper.push_back(upper >= TVK_INFBOUND ? kInf : upper - constant);
}

/* Sides that cross would make no row: then one for each, which nothing meets. */
void add_rows(lp::LpData& lp, const SolutionFilter& filter, NewRows& rows) {
  if (filter.lower <= filter.upper) return add_row(lp, filter, filter.lower, filter.upper, rows);
  add_row(lp, filter, filter.lower, TVK_INFBOUND, rows);
  add_row(lp, filter, -TVK_INFBOUND, filter.upper, rows);
}

}  // namespace

mip::Problem with_filter_rows(const mip::Problem& problem, std::span<const SolutionFilter> filters) {
  mip::Problem filtered = problem;
  const auto columns = static_cast<std::size_t>(problem.num_columns());
  NewRows rows(columns);
  for (const SolutionFilter& filter : filters) {
    if (is_linear(problem, filter)) add_rows(filtered.lp, filter, rows);
  }
  lp::Matrix& to = filtered.lp.matrix;
  const lp::Matrix& from = problem.lp.matrix;
  to.rows = static_cast<int>(filtered.lp.row_lower.size());
  to.start.assign(1, 0);
  to.index.clear();
  to.value.clear();
  for (std::size_t j = 0; j < columns; ++j) {
    for (int k = from.start[j]; k < from.start[j + 1]; ++k) {
      to.index.push_back(from.index[k]);
      to.value.push_back(from.value[k]);
    }
    to.index.insert(to.index.end(), rows.row[j].begin(), rows.row[j].end());
    to.value.insert(to.value.end(), rows.value[j].begin(), rows.value[j].end());
    to.start.push_back(static_cast<int>(to.index.size()));
  }
  return filtered;
}

}  // namespace tovik::mip::run
