#include "model/routines/start_update.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "model/store/model.h"

namespace tovik::model {

namespace {

void reserve_entries(std::vector<int>& status, int more) {
  const std::size_t size = status.size() + static_cast<std::size_t>(more);
  if (size > status.capacity()) status.reserve(std::max(size, status.capacity() + status.capacity() / 2));
}

int resting_status(double lower, double upper) {
  const bool has_lower = lower > -kInfinity, has_upper = upper < kInfinity;
  if (has_lower && has_upper) return std::fabs(lower) <= std::fabs(upper) ? TVK_AT_LOWER : TVK_AT_UPPER;
  if (has_lower) return TVK_AT_LOWER;
  return has_upper ? TVK_AT_UPPER : TVK_FREE_SUPER;
}

/* Starting values are one per row or column as well, but of use only for the model they were given for. */
void drop_values(Start& start) noexcept {
  for (auto* values : {&start.primal, &start.row_primal, &start.dual, &start.row_dual}) values->clear();
}

void drop_basis(Start& start) noexcept {
  start.column_status.clear();
  start.row_status.clear();
  start.balanced = true;
}

/* Deleted rows whose slacks were not basic, or deleted basic columns, leave statuses that are no basis; an engine
 * makes one of them by a pivot each. */
void settle(Start& start, bool covered, bool balanced) noexcept {
  if (!covered) return drop_basis(start);
  start.balanced = start.balanced && balanced;
}

/* Takes a range out of the statuses; returns how many of it were basic. */
std::ptrdiff_t take(std::vector<int>& status, int first, int last) noexcept {
  const auto begin = status.begin() + first, end = status.begin() + last + 1;
  const std::ptrdiff_t basic = std::count(begin, end, TVK_BASIC);
  status.erase(begin, end);
  return basic;
}

std::ptrdiff_t take(std::vector<int>& status, std::span<const int> marks) noexcept {
  std::size_t kept = 0;
  std::ptrdiff_t basic = 0;
  for (std::size_t k = 0; k < marks.size(); ++k) {
    if (marks[k] != 1) {
      status[kept++] = status[k];
    } else {
      basic += status[k] == TVK_BASIC;
    }
  }
  status.resize(kept);
  return basic;
}

bool covers(const std::vector<int>& status, std::span<const int> marks) {
  return status.size() == marks.size();
}
bool covers(const std::vector<int>& status, int last) {
  return status.size() > static_cast<std::size_t>(last);
}

}  // namespace

void reserve_start(Problem& problem, int rows, int columns) {
  if (!problem.start.has_statuses()) return;
  reserve_entries(problem.start.row_status, rows);
  reserve_entries(problem.start.column_status, columns);
}

void extend_start(Problem& problem) noexcept {
  Start& start = problem.start;
  drop_values(start);
  if (!start.has_statuses()) return;
  const Model& model = *problem.model;
  start.row_status.resize(static_cast<std::size_t>(model.num_rows()), TVK_BASIC);
  const auto lower = model.lower(), upper = model.upper();
  for (std::size_t j = start.column_status.size(); j < lower.size(); ++j) {
    start.column_status.push_back(resting_status(lower[j], upper[j]));
  }
}

void drop_start_rows(Problem& problem, int first, int last) noexcept {
  Start& start = problem.start;
  drop_values(start);
  if (!start.has_statuses()) return;
  const bool covered = covers(start.row_status, last);
  settle(start, covered, covered && take(start.row_status, first, last) == last - first + 1);
}

void drop_start_columns(Problem& problem, int first, int last) noexcept {
  Start& start = problem.start;
  drop_values(start);
  if (!start.has_statuses()) return;
  const bool covered = covers(start.column_status, last);
  settle(start, covered, covered && take(start.column_status, first, last) == 0);
}

void drop_start_rows(Problem& problem, std::span<const int> marks) noexcept {
  Start& start = problem.start;
  drop_values(start);
  if (!start.has_statuses()) return;
  const std::ptrdiff_t rows = std::count(marks.begin(), marks.end(), 1);
  const bool covered = covers(start.row_status, marks);
  settle(start, covered, covered && take(start.row_status, marks) == rows);
}

void drop_start_columns(Problem& problem, std::span<const int> marks) noexcept {
  Start& start = problem.start;
  drop_values(start);
  if (!start.has_statuses()) return;
  const bool covered = covers(start.column_status, marks);
  settle(start, covered, covered && take(start.column_status, marks) == 0);
}

}  // namespace tovik::model
