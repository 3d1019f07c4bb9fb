#include "lp/factor/kernel.h"

#include <algorithm>
#include <cmath>

namespace tovik::lp::factor {

namespace {

constexpr int kSearchedLines = 4;       // lines with an acceptable entry that are looked at per pivot
constexpr double kDenseShare = 0.5;     // active part at least so full: finish with the dense kernel
constexpr double kMaxDenseArea = 64e6;  // 512 MB
constexpr double kWasteShare = 0.5;     // compress a file when so much of it is abandoned room
constexpr int kSpareEntries = 4;        // room behind a line that moves: this plus a share of its length
constexpr double kSpareShare = 0.3;

int room_for(int length) {
  return length + kSpareEntries + static_cast<int>(kSpareShare * length);
}

}  // namespace

void Kernel::Buckets::reset(int lines, int counts) {
  head.assign(counts + 1, -1);
  next.resize(lines);
  previous.resize(lines);
  linked.assign(lines, 0);
}

void Kernel::Buckets::link(int line, int count) {
  const int first = head[count];
  next[line] = first;
  previous[line] = -1;
  if (first >= 0) previous[first] = line;
  head[count] = line;
  linked[line] = 1;
}

void Kernel::Buckets::unlink(int line, int count) {
  if (!linked[line]) return;
  linked[line] = 0;
  if (previous[line] >= 0) {
    next[previous[line]] = next[line];
  } else {
    head[count] = next[line];
  }
  if (next[line] >= 0) previous[next[line]] = previous[line];
}

void Kernel::begin(int rows, int columns, int entries) {
  num_rows_ = left_rows_ = rows;
  num_columns_ = left_columns_ = columns;
  work_ = 0;
  active_entries_ = 0;
  columns_.used = 0;
  columns_.reserve(2 * entries + 8 * columns);
  column_.clear();
  row_.assign(rows, {0, 0, 0});
  pivots_.clear();
  l_.used = u_.used = 0;
}

void Kernel::begin_column() {
  if (!column_.empty()) {
    Slot& last = column_.back();
    last.capacity = room_for(last.length);
    columns_.used = last.start + last.capacity;
    columns_.reserve(columns_.used);
  }
  column_.push_back({columns_.used, 0, 0});
}

void Kernel::add(int row, double value) {
  Slot& line = column_.back();
  columns_.reserve(line.start + line.length + 1);
  columns_.index[line.start + line.length] = row;
  columns_.value[line.start + line.length++] = value;
  ++row_[row].length;
  ++active_entries_;
}

/* Row patterns and the lists, once all columns are in. */
void Kernel::build_rows() {
  Slot& last = column_.back();
  last.capacity = room_for(last.length);
  columns_.used = last.start + last.capacity;
  columns_.reserve(columns_.used);
  rows_used_ = 0;
  for (Slot& line : row_) {
    line.capacity = room_for(line.length);
    line.start = rows_used_;
    rows_used_ += line.capacity;
    line.length = 0;
  }
  if (static_cast<int>(rows_.size()) < rows_used_) rows_.resize(rows_used_ + rows_used_ / 2);
  for (int j = 0; j < num_columns_; ++j) {
    const Slot& column = column_[j];
    for (int k = column.start; k < column.start + column.length; ++k) {
      Slot& row = row_[columns_.index[k]];
      rows_[row.start + row.length++] = j;
    }
  }
  column_list_.reset(num_columns_, num_rows_);
  row_list_.reset(num_rows_, num_columns_);
  row_old_count_.resize(num_rows_);
  // From the back, so that the lists start in input order.
  for (int line = num_columns_ - 1; line >= 0; --line) column_list_.link(line, column_[line].length);
  for (int line = num_rows_ - 1; line >= 0; --line) {
    if (row_[line].length > 0) row_list_.link(line, row_[line].length);
    row_old_count_[line] = row_[line].length;
  }
  column_max_.assign(num_columns_, -1.0);
  row_done_.assign(num_rows_, 0);
  column_done_.assign(num_columns_, 0);
  multiplier_.assign(num_rows_, 0.0);
  mark_.assign(num_rows_, 0);
  stamp_ = 0;
  min_column_ = min_row_ = 0;
  work_ += 2 * active_entries_ + num_rows_;
}

double Kernel::column_max(int column) {
  double& largest = column_max_[column];
  if (largest < 0.0) {
    const Slot& line = column_[column];
    largest = 0.0;
    for (int k = line.start; k < line.start + line.length; ++k) {
      largest = std::max(largest, std::fabs(columns_.value[k]));
    }
    work_ += line.length;
  }
  return largest;
}

void Kernel::try_column(int column, Choice& best) {
  const Slot& line = column_[column];
  const double least = settings_.threshold * column_max(column);
  work_ += line.length;
  for (int k = line.start; k < line.start + line.length; ++k) {
    const double size = std::fabs(columns_.value[k]);
    if (size < least) continue;
    const int row = columns_.index[k];
    const std::int64_t merit =
        static_cast<std::int64_t>(row_[row].length - 1) * static_cast<std::int64_t>(line.length - 1);
    if (merit < best.merit || (merit == best.merit && size > best.size)) best = {row, column, merit, size};
  }
}

/* Returns whether the row has an entry that may be pivoted. */
bool Kernel::try_row(int row, Choice& best) {
  const Slot& line = row_[row];
  bool acceptable = false;
  for (int t = line.start; t < line.start + line.length; ++t) {
    const int column = rows_[t];
    const Slot& entries = column_[column];
    const std::int64_t merit =
        static_cast<std::int64_t>(line.length - 1) * static_cast<std::int64_t>(entries.length - 1);
    if (merit >= best.merit) {
      acceptable = true;  // not known, but then not worth knowing
      continue;
    }
    int k = entries.start;
    while (columns_.index[k] != row) ++k;
    work_ += 2 + k - entries.start;
    const double size = std::fabs(columns_.value[k]);
    const double largest = column_max(column);
    if (size < settings_.threshold * largest || size < settings_.pivot_absolute) continue;
    acceptable = true;
    best = {row, column, merit, size};
  }
  return acceptable;
}

void Kernel::reject_column(int column) {
  Slot& line = column_[column];
  column_list_.unlink(column, line.length);
  for (int k = line.start; k < line.start + line.length; ++k) {
    const int row = columns_.index[k];
    remove_from_row(row, column);
    relink_row(row);
  }
  active_entries_ -= line.length;
  line.length = 0;
  column_done_[column] = 1;
  --left_columns_;
}

/* Cheapest acceptable pivot among a few lines of least count; false when no column is left. */
bool Kernel::choose(Choice& best) {
  int searched = 0;
  while (min_column_ <= num_rows_ && column_list_.head[min_column_] < 0) ++min_column_;
  while (min_row_ <= num_columns_ && row_list_.head[min_row_] < 0) ++min_row_;
  const int last = std::max(num_rows_, num_columns_);
  for (int count = std::min(min_column_, min_row_); count <= last; ++count) {
    const std::int64_t reachable = static_cast<std::int64_t>(count - 1) * (count - 1);
    if (best.merit <= reachable) return true;
    for (int column = count <= num_rows_ ? column_list_.head[count] : -1; column >= 0;) {
      const int next = column_list_.next[column];
      if (count == 0 || column_max(column) < settings_.pivot_absolute) {
        reject_column(column);
      } else {
        try_column(column, best);
        if (best.merit <= reachable || ++searched >= kSearchedLines) return true;
      }
      column = next;
    }
    if (count == 0) continue;
    const std::int64_t reachable_row = static_cast<std::int64_t>(count - 1) * count;
    if (best.merit <= reachable_row) return true;
    for (int row = count <= num_columns_ ? row_list_.head[count] : -1; row >= 0;) {
      const int next = row_list_.next[row];
      if (try_row(row, best)) {
        if (best.merit <= reachable_row || ++searched >= kSearchedLines) return best.column >= 0;
      } else {
        row_list_.unlink(row, count);  // parked until its count changes
      }
      row = next;
    }
  }
  return best.column >= 0;
}

void Kernel::remove_from_row(int row, int column) {
  Slot& line = row_[row];
  int k = line.start;
  while (rows_[k] != column) ++k;
  work_ += 1 + k - line.start;
  rows_[k] = rows_[line.start + --line.length];
}

void Kernel::relink_row(int row) {
  row_list_.unlink(row, row_old_count_[row]);
  const int count = row_[row].length;
  row_old_count_[row] = count;
  if (count == 0) return;
  row_list_.link(row, count);
  min_row_ = std::min(min_row_, count);
}

void Kernel::compress_columns() {
  order_.clear();
  for (int j = 0; j < num_columns_; ++j) {
    if (!column_done_[j]) order_.push_back(j);
  }
  std::sort(order_.begin(), order_.end(),
            [this](int a, int b) { return column_[a].start < column_[b].start; });
  int used = 0;
  for (const int j : order_) {
    Slot& line = column_[j];
    std::copy_n(columns_.index.begin() + line.start, line.length, columns_.index.begin() + used);
    std::copy_n(columns_.value.begin() + line.start, line.length, columns_.value.begin() + used);
    line.start = used;
    line.capacity = std::min(line.capacity, room_for(line.length));
    used += line.capacity;
  }
  columns_.used = used;
  work_ += active_entries_;
}

void Kernel::compress_rows() {
  order_.clear();
  for (int i = 0; i < num_rows_; ++i) {
    if (!row_done_[i]) order_.push_back(i);
  }
  std::sort(order_.begin(), order_.end(), [this](int a, int b) { return row_[a].start < row_[b].start; });
  int used = 0;
  for (const int i : order_) {
    Slot& line = row_[i];
    std::copy_n(rows_.begin() + line.start, line.length, rows_.begin() + used);
    line.start = used;
    line.capacity = std::min(line.capacity, room_for(line.length));
    used += line.capacity;
  }
  rows_used_ = used;
  work_ += active_entries_;
}

void Kernel::reserve_column(int column, int extra) {
  const int needed = column_[column].length + extra;
  if (needed <= column_[column].capacity) return;
  const int room = room_for(needed);
  if (columns_.used + room > static_cast<int>(columns_.index.size())) {
    if (static_cast<double>(active_entries_) < (1.0 - kWasteShare) * columns_.used) compress_columns();
    columns_.reserve(columns_.used + room);
  }
  Slot& line = column_[column];
  if (needed <= line.capacity) return;
  std::copy_n(columns_.index.begin() + line.start, line.length, columns_.index.begin() + columns_.used);
  std::copy_n(columns_.value.begin() + line.start, line.length, columns_.value.begin() + columns_.used);
  line.start = columns_.used;
  line.capacity = room;
  columns_.used += room;
  work_ += line.length;
}

void Kernel::reserve_row(int row, int extra) {
  const int needed = row_[row].length + extra;
  if (needed <= row_[row].capacity) return;
  const int room = room_for(needed);
  if (rows_used_ + room > static_cast<int>(rows_.size())) {
    if (static_cast<double>(active_entries_) < (1.0 - kWasteShare) * rows_used_) compress_rows();
    if (rows_used_ + room > static_cast<int>(rows_.size())) rows_.resize((rows_used_ + room) * 3 / 2);
  }
  Slot& line = row_[row];
  if (needed <= line.capacity) return;
  std::copy_n(rows_.begin() + line.start, line.length, rows_.begin() + rows_used_);
  line.start = rows_used_;
  line.capacity = room;
  rows_used_ += room;
  work_ += line.length;
}

/* Removes the entry of the pivot row from a column and returns it. */
double Kernel::take_from_column(int row, int column) {
  Slot& line = column_[column];
  int k = line.start;
  while (columns_.index[k] != row) ++k;
  work_ += 1 + k - line.start;
  const double value = columns_.value[k];
  const int last = line.start + --line.length;
  columns_.index[k] = columns_.index[last];
  columns_.value[k] = columns_.value[last];
  if (std::fabs(value) >= column_max_[column]) column_max_[column] = -1.0;
  return value;
}

/* Turns the pivot column into multipliers, which go to the L file and, by row, to multiplier_. */
void Kernel::take_pivot_column(int row, int column) {
  const double pivot_value = take_from_column(row, column);
  const Slot& line = column_[column];
  pivots_.push_back({row, column, pivot_value, {l_.used, line.length}, {u_.used, row_[row].length - 1}});
  l_.reserve(l_.used + line.length);
  affected_.clear();
  for (int k = line.start; k < line.start + line.length; ++k) {
    const int i = columns_.index[k];
    const double multiple = columns_.value[k] / pivot_value;
    l_.append(i, multiple);
    multiplier_[i] = multiple;
    affected_.push_back(i);
    remove_from_row(i, column);
  }
}

/* column -= multiple * pivot column. The first loop takes every entry alike, most multipliers being zero:
 * testing them would cost more than the multiplication. */
void Kernel::update_column(int column, double multiple) {
  const int affected = static_cast<int>(affected_.size());
  reserve_column(column, affected);
  Slot& line = column_[column];
  int* index = columns_.index.data() + line.start;
  double* value = columns_.value.data() + line.start;
  const double* multiplier = multiplier_.data();
  int* mark = mark_.data();
  const int stamp = ++stamp_;
  const double drop = settings_.drop;
  const int old_length = line.length;
  double largest = 0.0;
  int kept = 0;
  for (int k = 0; k < old_length; ++k) {
    const int i = index[k];
    const double entry = value[k] - multiplier[i] * multiple;
    const double size = std::fabs(entry);
    mark[i] = stamp;
    if (size < drop) {
      remove_from_row(i, column);
      continue;
    }
    index[kept] = i;
    value[kept++] = entry;
    largest = std::max(largest, size);
  }
  for (const int i : affected_) {
    if (mark[i] == stamp) continue;
    const double entry = -multiplier[i] * multiple;
    const double size = std::fabs(entry);
    if (size < drop) continue;
    index[kept] = i;
    value[kept++] = entry;
    largest = std::max(largest, size);
    reserve_row(i, 1);
    Slot& row = row_[i];
    rows_[row.start + row.length++] = column;
  }
  line.length = kept;
  active_entries_ += kept - old_length;
  column_max_[column] = largest;
  work_ += old_length + affected;
}

void Kernel::pivot(int row, int column) {
  column_list_.unlink(column, column_[column].length);
  row_list_.unlink(row, row_old_count_[row]);
  active_entries_ -= row_[row].length + column_[column].length - 1;
  take_pivot_column(row, column);
  pivot_row_.assign(rows_.begin() + row_[row].start, rows_.begin() + row_[row].start + row_[row].length);
  u_.reserve(u_.used + static_cast<int>(pivot_row_.size()));
  for (const int other : pivot_row_) {
    if (other == column) continue;
    column_list_.unlink(other, column_[other].length);
    const double value = take_from_column(row, other);
    u_.append(other, value);
    if (!affected_.empty()) update_column(other, value);
    const int count = column_[other].length;
    column_list_.link(other, count);
    min_column_ = std::min(min_column_, count);
  }
  for (const int i : affected_) {
    multiplier_[i] = 0.0;
    relink_row(i);
  }
  row_[row].length = 0;
  column_[column].length = 0;
  row_done_[row] = column_done_[column] = 1;
  --left_rows_;
  --left_columns_;
}

bool Kernel::is_dense() const {
  const double area = static_cast<double>(left_rows_) * left_columns_;
  return area <= kMaxDenseArea && static_cast<double>(active_entries_) >= kDenseShare * area;
}

void Kernel::eliminate_dense() {
  dense_rows_.clear();
  dense_columns_.clear();
  dense_place_.resize(num_rows_);
  for (int i = 0; i < num_rows_; ++i) {
    if (row_done_[i]) continue;
    dense_place_[i] = static_cast<int>(dense_rows_.size());
    dense_rows_.push_back(i);
  }
  for (int j = 0; j < num_columns_; ++j) {
    if (!column_done_[j]) dense_columns_.push_back(j);
  }
  const int rows = static_cast<int>(dense_rows_.size());
  const int columns = static_cast<int>(dense_columns_.size());
  dense_.reset(rows, columns);
  for (int j = 0; j < columns; ++j) {
    const Slot& line = column_[dense_columns_[j]];
    for (int k = line.start; k < line.start + line.length; ++k) {
      dense_.at(dense_place_[columns_.index[k]], j) = columns_.value[k];
    }
  }
  dense_.eliminate(settings_.pivot_absolute);
  work_ += dense_.work() + static_cast<std::int64_t>(rows) * columns / 4;
  const int rank = dense_.rank();
  for (int p = 0; p < rank; ++p) {
    const int pivot_column = dense_.pivot_column(p);
    const double* column = dense_.column(pivot_column);
    const int l_start = l_.used, u_start = u_.used;
    l_.reserve(l_.used + rows);
    u_.reserve(u_.used + columns);
    for (int i = p + 1; i < rows; ++i) {
      if (std::fabs(column[i]) >= settings_.drop) l_.append(dense_rows_[dense_.row_at(i)], column[i]);
    }
    for (int q = p + 1; q < rank; ++q) {
      const double value = dense_.column(dense_.pivot_column(q))[p];
      if (std::fabs(value) >= settings_.drop) u_.append(dense_columns_[dense_.pivot_column(q)], value);
    }
    pivots_.push_back({dense_rows_[dense_.row_at(p)],
                       dense_columns_[pivot_column],
                       column[p],
                       {l_start, l_.used - l_start},
                       {u_start, u_.used - u_start}});
  }
}

void Kernel::eliminate(const Settings& settings) {
  settings_ = settings;
  if (num_columns_ == 0) return;
  build_rows();
  while (left_columns_ > 0) {
    if (is_dense()) {
      eliminate_dense();
      return;
    }
    Choice best;
    if (!choose(best)) return;
    pivot(best.row, best.column);
  }
}

}  // namespace tovik::lp::factor
