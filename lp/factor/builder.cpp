#include "lp/factor/builder.h"

#include <algorithm>
#include <cmath>

namespace tovik::lp::factor {

namespace {

constexpr int kNone = -1;
constexpr int kLogical = -2;  // row whose logical is basic, before slots are given out

constexpr int kRowSpare = 2;  // room behind a nonempty row of U for the columns of updates

}  // namespace

void Builder::reset(int rows, Lu& lu) {
  const int slots = rows + lu.update_limit;
  lu.rows = rows;
  lu.updates = 0;
  lu.label.resize(slots);
  lu.row_slot.assign(rows, kNone);
  lu.l_column.resize(rows);
  lu.l_row.resize(rows);
  lu.u_column.resize(slots);
  lu.u_row.resize(slots);
  lu.u_row_capacity.resize(slots);
  lu.l_columns.used = lu.l_rows.used = lu.u_columns.used = lu.u_rows.used = 0;
  lu.links.assign(slots, SlotLinks{});
  lu.etas.file.used = 0;
  new_head_.assign(rows, kNone);
  if (basic_.capacity() <= matrix_->columns) basic_.resize(matrix_->columns);
  columns_.clear();
  rejected_.clear();
  exchanges_.clear();
  next_slot_ = 0;
  work_ = 0;
}

void Builder::assign(int slot, int row, int column, double pivot, Lu& lu) {
  lu.label[slot] = row;
  lu.row_slot[row] = slot;
  lu.u_column[slot].inverse = 1.0 / pivot;
  new_head_[row] = columns_[column];
  column_done_[column] = 1;
}

/* Logicals take the first slots in row order. A variable listed twice is rejected the second time by the
 * kernel (two equal columns), a logical right here. */
void Builder::pivot_logicals(const std::vector<int>& head, Lu& lu) {
  for (const int variable : head) {
    if (variable < matrix_->columns) {
      if (!basic_.insert_new(variable)) rejected_.push_back(variable);
      continue;
    }
    const int row = variable - matrix_->columns;
    if (lu.row_slot[row] == kLogical) {
      rejected_.push_back(variable);
    } else {
      lu.row_slot[row] = kLogical;
    }
  }
  for (int variable = 0; (variable = basic_.take_first(variable)) >= 0;) columns_.push_back(variable);
  for (int row = 0; row < lu.rows; ++row) {
    if (lu.row_slot[row] != kLogical) continue;
    const int slot = next_slot_++;
    lu.row_slot[row] = slot;
    lu.label[slot] = row;
    lu.u_column[slot] = {0, 0, 1.0};
    new_head_[row] = matrix_->columns + row;
  }
  lu.logicals = next_slot_;
  work_ += lu.rows;
}

/* Counts of the lines without logicals, the exclusive or of the places in each, and the columns of each row.
 */
void Builder::count_lines(const Lu& lu) {
  const int columns = static_cast<int>(columns_.size());
  column_left_.resize(columns);
  column_done_.assign(columns, 0);
  row_left_.assign(lu.rows, {});
  int active = 0;
  std::int64_t entries = 0;
  for (int c = 0; c < columns; ++c) {
    const int j = columns_[c];
    entries += matrix_->start[j + 1] - matrix_->start[j];
    Remaining left;
    for (int k = matrix_->start[j]; k < matrix_->start[j + 1]; ++k) {
      const int row = matrix_->index[k];
      if (lu.row_slot[row] != kNone || matrix_->value[k] == 0.0) continue;
      left.add(row);
      row_left_[row].add(c);
    }
    column_left_[c] = left;
    active += left.count;
  }
  basis_nonzeros_ = entries + lu.logicals + static_cast<std::int64_t>(rejected_.size());
  row_start_.resize(lu.rows + 1);
  int place = 0;
  for (int row = 0; row < lu.rows; ++row) {
    row_start_[row] = place;
    place += row_left_[row].count;
  }
  row_start_[lu.rows] = place;
  if (static_cast<int>(row_columns_.size()) < active) row_columns_.resize(active + active / 4);
  for (int c = 0; c < columns; ++c) {
    const int j = columns_[c];
    for (int k = matrix_->start[j]; k < matrix_->start[j + 1]; ++k) {
      const int row = matrix_->index[k];
      if (lu.row_slot[row] == kNone && matrix_->value[k] != 0.0) row_columns_[row_start_[row]++] = c;
    }
  }
  for (int row = lu.rows; row > 0; --row) row_start_[row] = row_start_[row - 1];
  row_start_[0] = 0;
  work_ += 2 * entries + lu.rows;
}

/* A column with one active row pivots there: all its other entries belong to U, L has none. No row loses an
 * entry. */
void Builder::pivot_column_singleton(int c, Lu& lu) {
  const int row = column_left_[c].combined;
  const int j = columns_[c];
  const int begin = matrix_->start[j], end = matrix_->start[j + 1];
  const int start = lu.u_columns.used;
  lu.u_columns.reserve(start + end - begin);
  double pivot = 0.0;
  for (int k = begin; k < end; ++k) {
    const int i = matrix_->index[k];
    if (i == row) {
      pivot = matrix_->value[k];
    } else if (matrix_->value[k] != 0.0) {
      lu.u_columns.append(lu.row_slot[i], matrix_->value[k]);
    }
  }
  work_ += end - begin + row_start_[row + 1] - row_start_[row];
  if (std::fabs(pivot) < settings_.pivot_absolute) {
    lu.u_columns.used = start;  // left to the kernel
    return;
  }
  const int slot = next_slot_++;
  lu.u_column[slot].start = start;
  lu.u_column[slot].length = lu.u_columns.used - start;
  assign(slot, row, c, pivot, lu);
  for (int k = row_start_[row]; k < row_start_[row + 1]; ++k) {
    const int other = row_columns_[k];
    if (column_left_[other].remove(row) == 1) stack_.push_back(other);
  }
}

/* Each singleton is followed at once by those it gives rise to: they lie close together in memory, in the
 * factor too. */
void Builder::pivot_column_singletons(Lu& lu) {
  for (int first = 0; first < static_cast<int>(columns_.size()); ++first) {
    if (column_left_[first].count != 1) continue;
    for (stack_.assign(1, first); !stack_.empty();) {
      const int c = stack_.back();
      stack_.pop_back();
      if (column_left_[c].count == 1) pivot_column_singleton(c, lu);
    }
  }
}

/* A row with one active column pivots there: the column's other active entries belong to L. No column loses
 * an entry. */
void Builder::pivot_row_singleton(int row, int c, Lu& lu) {
  const int j = columns_[c];
  const int begin = matrix_->start[j], end = matrix_->start[j + 1];
  double pivot = 0.0;
  for (int k = begin; k < end; ++k) {
    if (matrix_->index[k] == row) pivot = matrix_->value[k];
  }
  work_ += 2 * (end - begin);
  if (std::fabs(pivot) < settings_.pivot_absolute) return;
  const int u_start = lu.u_columns.used, l_start = lu.l_columns.used;
  lu.u_columns.reserve(u_start + end - begin);
  lu.l_columns.reserve(l_start + end - begin);
  for (int k = begin; k < end; ++k) {
    const int i = matrix_->index[k];
    const double value = matrix_->value[k];
    if (i == row || value == 0.0) continue;
    if (lu.row_slot[i] != kNone) {
      lu.u_columns.append(lu.row_slot[i], value);
      continue;
    }
    lu.l_columns.append(i, value / pivot);
    if (row_left_[i].remove(c) == 1) stack_.push_back(i);
  }
  const int slot = next_slot_++;
  lu.u_column[slot].start = u_start;
  lu.u_column[slot].length = lu.u_columns.used - u_start;
  lu.l_column[slot] = {l_start, lu.l_columns.used - l_start};
  assign(slot, row, c, pivot, lu);
}

void Builder::pivot_row_singletons(Lu& lu) {
  lu.first_l = next_slot_;
  for (int first = 0; first < lu.rows; ++first) {
    if (row_left_[first].count != 1) continue;
    for (stack_.assign(1, first); !stack_.empty();) {
      const int row = stack_.back();
      stack_.pop_back();
      if (row_left_[row].count == 1 && lu.row_slot[row] == kNone)
        pivot_row_singleton(row, row_left_[row].combined, lu);
    }
  }
}

void Builder::load_kernel(const Lu& lu) {
  kernel_rows_.clear();
  kernel_columns_.clear();
  kernel_row_.resize(lu.rows);
  for (int row = 0; row < lu.rows; ++row) {
    if (lu.row_slot[row] != kNone) continue;
    kernel_row_[row] = static_cast<int>(kernel_rows_.size());
    kernel_rows_.push_back(row);
  }
  int entries = 0;
  for (int c = 0; c < static_cast<int>(columns_.size()); ++c) {
    if (column_done_[c]) continue;
    kernel_columns_.push_back(c);
    entries += column_left_[c].count;
  }
  kernel_.begin(static_cast<int>(kernel_rows_.size()), static_cast<int>(kernel_columns_.size()), entries);
  for (const int c : kernel_columns_) {
    kernel_.begin_column();
    const int j = columns_[c];
    for (int k = matrix_->start[j]; k < matrix_->start[j + 1]; ++k) {
      const int row = matrix_->index[k];
      if (lu.row_slot[row] == kNone && matrix_->value[k] != 0.0)
        kernel_.add(kernel_row_[row], matrix_->value[k]);
    }
  }
}

/* Moves the kernel's pivots to slots. Its U comes by rows: each column is assembled from its entries in rows
 * pivoted before the kernel and, transposed, from the rows of the kernel. */
void Builder::store_kernel(Lu& lu) {
  const std::vector<KernelPivot>& pivots = kernel_.pivots();
  const File& l = kernel_.l_file();
  const File& u = kernel_.u_file();
  const int size = static_cast<int>(kernel_columns_.size());
  const int first_slot = next_slot_;
  lu.l_columns.reserve(lu.l_columns.used + l.used);
  count_.assign(size, 0);
  for (int k = 0; k < u.used; ++k) ++count_[u.index[k]];
  place_.assign(size, 0);
  for (const KernelPivot& p : pivots) {
    const int slot = next_slot_++;
    const int row = kernel_rows_[p.row];
    const int c = kernel_columns_[p.column];
    const int j = columns_[c];
    const int start = lu.u_columns.used;
    lu.u_columns.reserve(start + matrix_->start[j + 1] - matrix_->start[j] + count_[p.column]);
    for (int k = matrix_->start[j]; k < matrix_->start[j + 1]; ++k) {
      const int i_slot = lu.row_slot[matrix_->index[k]];
      if (i_slot != kNone && i_slot < first_slot && matrix_->value[k] != 0.0) {
        lu.u_columns.append(i_slot, matrix_->value[k]);
      }
    }
    place_[p.column] = lu.u_columns.used;
    lu.u_columns.used += count_[p.column];
    lu.u_column[slot].start = start;
    lu.u_column[slot].length = lu.u_columns.used - start;
    const int l_start = lu.l_columns.used;
    for (int k = p.l.start; k < p.l.start + p.l.length; ++k) {
      lu.l_columns.append(kernel_rows_[l.index[k]], l.value[k]);
    }
    lu.l_column[slot] = {l_start, p.l.length};
    assign(slot, row, c, p.value, lu);
  }
  for (int p = 0; p < static_cast<int>(pivots.size()); ++p) {
    const Line& line = pivots[p].u;
    for (int k = line.start; k < line.start + line.length; ++k) {
      const int column = u.index[k];
      if (!column_done_[kernel_columns_[column]]) continue;  // rejected: it has no column in U
      const int place = place_[column]++;
      lu.u_columns.index[place] = first_slot + p;
      lu.u_columns.value[place] = u.value[k];
    }
  }
  work_ += kernel_.work() + 2 * (l.used + u.used);
}

void Builder::pivot_kernel(Lu& lu) {
  const int left = lu.rows - next_slot_;
  bump_ = left;
  if (left == 0) return;
  load_kernel(lu);
  kernel_.eliminate(settings_);
  store_kernel(lu);
}

/* Logicals of the rows without pivot take the last slots. Their columns meet no multiplier of L, which has
 * only entries in these rows but no columns of them: they stay unit columns in U. */
void Builder::replace_rejected(Lu& lu) {
  for (int c = 0; c < static_cast<int>(columns_.size()); ++c) {
    if (!column_done_[c]) rejected_.push_back(columns_[c]);
  }
  if (rejected_.empty()) return;
  std::size_t next = 0;
  for (int row = 0; row < lu.rows; ++row) {
    if (lu.row_slot[row] != kNone) continue;
    const int slot = next_slot_++;
    lu.label[slot] = row;
    lu.row_slot[row] = slot;
    lu.u_column[slot] = {0, 0, 1.0};
    lu.l_column[slot] = {0, 0};
    new_head_[row] = matrix_->columns + row;
    exchanges_.push_back({rejected_[next++], row});
  }
}

/* Renumbers L by slots and makes its row-wise copy. */
void Builder::finish_l(Lu& lu) {
  const int first = lu.first_l, rows = lu.rows;
  count_.assign(rows - first, 0);
  for (int k = 0; k < lu.l_columns.used; ++k) {
    const int slot = lu.row_slot[lu.l_columns.index[k]];
    lu.l_columns.index[k] = slot;
    ++count_[slot - first];
  }
  lu.l_rows.reserve(lu.l_columns.used);
  lu.l_rows.used = lu.l_columns.used;
  int place = 0;
  for (int slot = first; slot < rows; ++slot) {
    lu.l_row[slot] = {place, 0};
    place += count_[slot - first];
  }
  for (int slot = first; slot < rows; ++slot) {
    const Line& line = lu.l_column[slot];
    for (int k = line.start; k < line.start + line.length; ++k) {
      Line& row = lu.l_row[lu.l_columns.index[k]];
      lu.l_rows.index[row.start + row.length] = slot;
      lu.l_rows.value[row.start + row.length++] = lu.l_columns.value[k];
    }
  }
  work_ += 2 * lu.l_columns.used + (rows - first);
}

/* Row-wise copy of U, with spare room for the columns of updates. */
void Builder::finish_u(Lu& lu) {
  const int rows = lu.rows;
  count_.assign(rows, 0);
  for (int slot = lu.logicals; slot < rows; ++slot) {
    const PivotLine& line = lu.u_column[slot];
    for (int k = line.start; k < line.start + line.length; ++k) ++count_[lu.u_columns.index[k]];
  }
  int place = 0;
  for (int slot = 0; slot < rows; ++slot) {
    lu.u_row[slot] = {place, 0, lu.u_column[slot].inverse};
    lu.u_row_capacity[slot] = count_[slot] == 0 ? 0 : count_[slot] + kRowSpare;
    place += lu.u_row_capacity[slot];
  }
  lu.u_rows.reserve(place);
  lu.u_rows.used = place;
  for (int slot = lu.logicals; slot < rows; ++slot) {
    const PivotLine& line = lu.u_column[slot];
    for (int k = line.start; k < line.start + line.length; ++k) {
      PivotLine& row = lu.u_row[lu.u_columns.index[k]];
      lu.u_rows.index[row.start + row.length] = slot;
      lu.u_rows.value[row.start + row.length++] = lu.u_columns.value[k];
    }
  }
  work_ += 2 * lu.u_columns.used + rows;
}

int Builder::build(std::vector<int>& head, const Settings& settings, Lu& lu) {
  settings_ = settings;
  reset(static_cast<int>(head.size()), lu);
  pivot_logicals(head, lu);
  count_lines(lu);
  pivot_column_singletons(lu);
  pivot_row_singletons(lu);
  pivot_kernel(lu);
  replace_rejected(lu);
  finish_l(lu);
  finish_u(lu);
  lu.position_slot = lu.row_slot;
  head = new_head_;
  return static_cast<int>(exchanges_.size());
}

}  // namespace tovik::lp::factor
