#include "lp/presolve/lines.h"

#include <algorithm>
#include <utility>

namespace tovik::lp::presolve {

Lines::Lines(Matrix columns, const std::vector<char>& other_alive)
    : alive_(other_alive), index_(std::move(columns.index)), value_(std::move(columns.value)) {
  const int n = columns.columns;
  begin_.resize(static_cast<size_t>(n));
  live_.resize(static_cast<size_t>(n));
  for (int k = 0; k < n; ++k) {
    begin_[k] = columns.start[k];
    live_[k] = columns.start[k + 1] - columns.start[k];
  }
  stored_ = live_;
  capacity_ = live_;
}

void Lines::compact(int line) {
  int* const index = index_.data() + begin_[line];
  double* const value = value_.data() + begin_[line];
  int kept = 0;
  for (int k = 0; k < stored_[line]; ++k) {
    if (!alive_[index[k]]) continue;
    index[kept] = index[k];
    value[kept] = value[k];
    ++kept;
  }
  stored_[line] = live_[line] = kept;
}

int Lines::find(int line, int other) {
  const View entries = view(line);
  const int* const hit = std::find(entries.index, entries.index + entries.length, other);
  return hit == entries.index + entries.length ? -1 : static_cast<int>(hit - entries.index);
}

void Lines::remove(int line, int position) {
  if (stored_[line] != live_[line]) compact(line);
  const std::int64_t last = begin_[line] + live_[line] - 1;
  index_[begin_[line] + position] = index_[last];
  value_[begin_[line] + position] = value_[last];
  stored_[line] = --live_[line];
}

void Lines::append(int line, int other, double value) {
  if (stored_[line] == capacity_[line]) {
    if (stored_[line] != live_[line]) compact(line);
    if (live_[line] == capacity_[line]) move_to_end(line);
  }
  const std::int64_t at = begin_[line] + stored_[line]++;
  index_[at] = other;
  value_[at] = value;
  ++live_[line];
}

void Lines::move_to_end(int line) {
  const int capacity = live_[line] + live_[line] / 2 + 4;
  const std::int64_t from = begin_[line];
  const auto to = static_cast<std::int64_t>(index_.size());
  index_.resize(static_cast<size_t>(to + capacity));
  value_.resize(static_cast<size_t>(to + capacity));
  std::copy_n(index_.begin() + from, live_[line], index_.begin() + to);
  std::copy_n(value_.begin() + from, live_[line], value_.begin() + to);
  begin_[line] = to;
  capacity_[line] = capacity;
}

}  // namespace tovik::lp::presolve
