#include "lp/presolve/compressed_vectors.h"

#include <algorithm>
#include <utility>

namespace tovik::lp::presolve {

CompressedVectors::CompressedVectors(Matrix columns, const std::vector<char>& minor_alive)
    : alive_(minor_alive), index_(std::move(columns.index)), value_(std::move(columns.value)) {
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

void CompressedVectors::compact(int major) {
  int* const index = index_.data() + begin_[major];
  double* const value = value_.data() + begin_[major];
  int kept = 0;
  for (int k = 0; k < stored_[major]; ++k) {
    if (!alive_[index[k]]) continue;
    index[kept] = index[k];
    value[kept] = value[k];
    ++kept;
  }
  stored_[major] = live_[major] = kept;
}

int CompressedVectors::find(int major, int minor) {
  const View entries = view(major);
  const int* const hit = std::find(entries.index, entries.index + entries.length, minor);
  return hit == entries.index + entries.length ? -1 : static_cast<int>(hit - entries.index);
}

void CompressedVectors::remove(int major, int position) {
  if (stored_[major] != live_[major]) compact(major);
  const std::int64_t last = begin_[major] + live_[major] - 1;
  index_[begin_[major] + position] = index_[last];
  value_[begin_[major] + position] = value_[last];
  stored_[major] = --live_[major];
}

void CompressedVectors::append(int major, int minor, double value) {
  if (stored_[major] == capacity_[major]) {
    if (stored_[major] != live_[major]) compact(major);
    if (live_[major] == capacity_[major]) move_to_end(major);
  }
  const std::int64_t at = begin_[major] + stored_[major]++;
  index_[at] = minor;
  value_[at] = value;
  ++live_[major];
}

void CompressedVectors::move_to_end(int major) {
  const int capacity = live_[major] + live_[major] / 2 + 4;
  const std::int64_t from = begin_[major];
  const auto to = static_cast<std::int64_t>(index_.size());
  index_.resize(static_cast<size_t>(to + capacity));
  value_.resize(static_cast<size_t>(to + capacity));
  std::copy_n(index_.begin() + from, live_[major], index_.begin() + to);
  std::copy_n(value_.begin() + from, live_[major], value_.begin() + to);
  begin_[major] = to;
  capacity_[major] = capacity;
}

}  // namespace tovik::lp::presolve
