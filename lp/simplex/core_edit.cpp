/* Rows and columns that go and come under a basis that stays. */
#include <algorithm>

#include "lp/simplex/core.h"
#include "lp/simplex/model_edit.h"

namespace tovik::lp::simplex {
namespace {

/* Takes out entries of lines that are gone and renumbers the others; empty maps: nothing goes. */
void compact(Matrix& matrix, const std::vector<int>& row_number, std::span<const int> deleted_columns) {
  int kept = 0;
  int column = 0;
  size_t next = 0;
  for (int j = 0; j < matrix.columns; ++j) {
    const int begin = matrix.start[j];
    const int end = matrix.start[j + 1];
    if (next < deleted_columns.size() && deleted_columns[next] == j) {
      ++next;
      continue;
    }
    matrix.start[column++] = kept;
    for (int k = begin; k < end; ++k) {
      const int row = row_number.empty() ? matrix.index[k] : row_number[matrix.index[k]];
      if (row < 0) continue;
      matrix.index[kept] = row;
      matrix.value[kept++] = matrix.value[k];
    }
  }
  matrix.start[column] = kept;
  matrix.start.resize(static_cast<size_t>(column) + 1);
  matrix.index.resize(static_cast<size_t>(kept));
  matrix.value.resize(static_cast<size_t>(kept));
  matrix.columns = column;
}

/* Appends to each column its entries in new rows, the first of which is matrix.rows: from the end, in place.
 */
void append_rows(Matrix& matrix, const Matrix& rows) {
  std::vector<int> more(static_cast<size_t>(matrix.columns) + 1, 0);
  for (const int j : rows.index) ++more[j];
  const int added = static_cast<int>(rows.index.size());
  int end = matrix.start[matrix.columns];
  matrix.index.resize(static_cast<size_t>(end + added));
  matrix.value.resize(static_cast<size_t>(end + added));
  int shift = added;
  for (int j = matrix.columns - 1; shift > 0; --j) {
    const int begin = matrix.start[j];
    matrix.start[j + 1] = end + shift;
    shift -= more[j];
    std::copy_backward(matrix.index.begin() + begin, matrix.index.begin() + end,
                       matrix.index.begin() + end + shift);
    std::copy_backward(matrix.value.begin() + begin, matrix.value.begin() + end,
                       matrix.value.begin() + end + shift);
    more[j] = end + shift;  // where its next new entry goes
    end = begin;
  }
  for (int i = 0; i < rows.columns; ++i) {
    for (int k = rows.start[i]; k < rows.start[i + 1]; ++k) {
      const int place = more[rows.index[k]]++;
      matrix.index[place] = matrix.rows + i;
      matrix.value[place] = rows.value[k];
    }
  }
}

void append_columns(Matrix& matrix, const Matrix& columns) {
  const int entries = matrix.start[matrix.columns];
  matrix.index.insert(matrix.index.end(), columns.index.begin(), columns.index.end());
  matrix.value.insert(matrix.value.end(), columns.value.begin(), columns.value.end());
  for (int j = 1; j <= columns.columns; ++j) matrix.start.push_back(entries + columns.start[j]);
  matrix.columns += columns.columns;
}

}  // namespace

std::vector<int> Core::positions_of_logicals(std::span<const int> rows_of_logicals) const {
  std::vector<int> positions;
  if (rows_of_logicals.empty()) return positions;
  std::vector<char> wanted(static_cast<size_t>(m), 0);
  for (const int i : rows_of_logicals) wanted[i] = 1;
  for (int p = 0; p < m; ++p) {
    if (head[p] >= n && wanted[head[p] - n]) positions.push_back(p);
  }
  return positions;
}

void Core::edit(const ModelEdit& change) {
  const std::vector<int> positions = positions_of_logicals(change.deleted_rows);
  const std::vector<int> row_number =
      change.deleted_rows.empty() ? std::vector<int>{} : renumbering(m, change.deleted_rows);
  const std::vector<int> column_number =
      change.deleted_columns.empty() ? std::vector<int>{} : renumbering(n, change.deleted_columns);
  const int kept_columns = n - static_cast<int>(change.deleted_columns.size());
  const int kept_rows = m - static_cast<int>(change.deleted_rows.size());
  const int new_n = kept_columns + change.new_columns();

  erase_indices(head, positions);
  for (int& j : head) {
    if (j >= n) {
      j = new_n + (row_number.empty() ? j - n : row_number[j - n]);
    } else if (!column_number.empty()) {
      j = column_number[j];
    }
  }
  for (int i = 0; i < change.new_rows(); ++i) head.push_back(new_n + kept_rows + i);
  for (auto* v : {&x, &x_lower, &x_upper}) {
    erase_indices(*v, positions);
    v->resize(head.size(), 0.0);
  }

  const auto edit_all = [&](auto& v, auto fill) {
    erase_indices(v, change.deleted_rows, n);
    erase_indices(v, change.deleted_columns);
    v.insert(v.begin() + kept_columns, static_cast<size_t>(change.new_columns()), fill);
    v.resize(v.size() + static_cast<size_t>(change.new_rows()), fill);
  };
  for (auto* v : {&cost, &lower, &upper, &work_cost, &work_lower, &work_upper, &value, &d, &random_value})
    edit_all(*v, 0.0);
  for (auto* v : {&nonbasic, &move}) edit_all(*v, static_cast<signed char>(0));

  Matrix& matrix = own_matrix();
  if (!change.deleted_rows.empty() || !change.deleted_columns.empty())
    compact(matrix, row_number, change.deleted_columns);
  matrix.rows = kept_rows;
  if (!change.rows.index.empty()) append_rows(matrix, change.rows);
  append_columns(matrix, change.columns);
  matrix.rows = kept_rows + change.new_rows();

  position.resize(static_cast<size_t>(new_n + matrix.rows));
  n = new_n;
  m = matrix.rows;
  total = n + m;
  for (int k = 0; k < change.new_columns(); ++k) {
    const int j = kept_columns + k;
    cost[j] = change.cost[k];
    lower[j] = change.lower[k];
    upper[j] = change.upper[k];
    nonbasic[j] = 1;
    random_value[j] = random.real();
  }
  for (int k = 0; k < change.new_rows(); ++k) {
    const int j = n + kept_rows + k;
    lower[j] = -change.row_upper[k];
    upper[j] = -change.row_lower[k];
    random_value[j] = random.real();
  }
  const auto take_over = [&](int j) {
    work_cost[j] = cost[j];
    work_lower[j] = lower[j];
    work_upper[j] = upper[j];
  };
  for (int k = 0; k < change.new_columns(); ++k) {
    take_over(kept_columns + k);
    place_nonbasic(kept_columns + k, 0);
  }
  for (int k = 0; k < change.new_rows(); ++k) take_over(n + kept_rows + k);
  if (change.moves_rows()) {
    has_factor = false;
    buffer_.resize(m);
  }
  find_positions();
  factor.set_rebuild_overhead(2 * static_cast<std::int64_t>(matrix.index.size()) + 4 * total);
  rows_are_stale = true;
}

}  // namespace tovik::lp::simplex
