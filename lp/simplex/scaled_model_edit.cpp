/* Rows and columns that go and come. */
#include <algorithm>

#include "lp/simplex/scaled_model.h"

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

void ScaledModel::edit(const ModelEdit& change, const IndexEdit& indices) {
  Matrix& matrix = *columns_;
  if (!change.deleted_rows.empty() || !change.deleted_columns.empty())
    compact(matrix, indices.row_number(), change.deleted_columns);
  matrix.rows = indices.kept_rows();
  if (!change.rows.index.empty()) append_rows(matrix, change.rows);
  append_columns(matrix, change.columns);
  matrix.rows = indices.kept_rows() + change.new_rows();
  n_ = matrix.columns;
  m_ = matrix.rows;
  total_ = n_ + m_;
  for (auto* v : {&cost_, &lower_, &upper_}) indices.edit_variables(*v);
  set_new(change, indices);
}

void ScaledModel::set_new(const ModelEdit& change, const IndexEdit& indices) {
  for (int k = 0; k < change.new_columns(); ++k) {
    const int j = indices.kept_columns() + k;
    cost_[j] = change.cost[k];
    set_bounds(j, change.lower[k], change.upper[k]);
  }
  for (int k = 0; k < change.new_rows(); ++k)
    set_bounds(n_ + indices.kept_rows() + k, -change.row_upper[k], -change.row_lower[k]);
}

}  // namespace tovik::lp::simplex
