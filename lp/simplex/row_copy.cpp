#include "lp/simplex/row_copy.h"

#include <cmath>
#include <utility>

namespace tovik::lp::simplex {

void RowCopy::build(const Matrix& columns, std::span<const char> active) {
  columns_ = &columns;
  const int rows = columns.rows;
  const int n = columns.columns;
  const size_t entries = columns.index.size();
  active_.assign(active.begin(), active.end());
  start_.assign(static_cast<size_t>(rows) + 1, 0);
  active_end_.assign(static_cast<size_t>(rows), 0);
  index_.resize(entries);
  value_.resize(entries);
  back_.resize(entries);
  place_.resize(entries);
  active_entries_ = 0;
  std::vector<int> active_count(static_cast<size_t>(rows), 0);
  for (int j = 0; j < n; ++j) {
    for (int k = columns.start[j]; k < columns.start[j + 1]; ++k) {
      const int i = columns.index[k];
      ++start_[i + 1];
      if (active_[j]) ++active_count[i];
    }
    if (active_[j]) active_entries_ += columns.start[j + 1] - columns.start[j];
  }
  for (int i = 0; i < rows; ++i) start_[i + 1] += start_[i];
  std::vector<int> next_active(start_.begin(), start_.end() - 1);
  std::vector<int> next_rest(static_cast<size_t>(rows));
  for (int i = 0; i < rows; ++i) {
    active_end_[i] = start_[i] + active_count[i];
    next_rest[i] = active_end_[i];
  }
  for (int j = 0; j < n; ++j) {
    for (int k = columns.start[j]; k < columns.start[j + 1]; ++k) {
      const int i = columns.index[k];
      const int slot = active_[j] ? next_active[i]++ : next_rest[i]++;
      index_[slot] = j;
      value_[slot] = columns.value[k];
      back_[slot] = k;
      place_[k] = slot;
    }
  }
}

void RowCopy::exchange(int a, int b) {
  std::swap(index_[a], index_[b]);
  std::swap(value_[a], value_[b]);
  std::swap(back_[a], back_[b]);
  place_[back_[a]] = a;
  place_[back_[b]] = b;
}

void RowCopy::activate(int j) {
  if (active_[j]) return;
  active_[j] = 1;
  const int end = columns_->start[j + 1];
  for (int k = columns_->start[j]; k < end; ++k) {
    const int border = active_end_[columns_->index[k]]++;
    if (place_[k] != border) exchange(place_[k], border);
  }
  active_entries_ += end - columns_->start[j];
}

void RowCopy::deactivate(int j) {
  if (!active_[j]) return;
  active_[j] = 0;
  const int end = columns_->start[j + 1];
  for (int k = columns_->start[j]; k < end; ++k) {
    const int border = --active_end_[columns_->index[k]];
    if (place_[k] != border) exchange(place_[k], border);
  }
  active_entries_ -= end - columns_->start[j];
}

std::int64_t RowCopy::row_work(const SparseVector& rho) const {
  std::int64_t work = 0;
  for (int k = 0; k < rho.count; ++k) work += active_end_[rho.index[k]] - start_[rho.index[k]];
  return work;
}

std::int64_t RowCopy::price_by_rows(const SparseVector& rho, double expected_density, bool list_always,
                                    SparseVector& out) const {
  constexpr double kListDensity =
      0.1;  // beyond this share of touched columns the list costs more than it saves
  const int n = columns_->columns;
  double* const target = out.array.data();
  int* const list = out.index.data();
  std::int64_t touched = 0;
  int count = 0;
  int k = 0;
  const bool listed = rho.count >= 0;
  const int steps = listed ? rho.count : static_cast<int>(start_.size()) - 1;
  if (expected_density <= kListDensity && listed) {
    const int most = static_cast<int>(kListDensity * n);
    for (; k < steps; ++k) {
      const int i = rho.index[k];
      const int begin = start_[i];
      const int end = active_end_[i];
      if (count + (end - begin) > most && count > most / 2) break;
      const double multiplier = rho.array[i];
      if (multiplier == 0) continue;
      touched += end - begin;
      for (int e = begin; e < end; ++e) {
        const int j = index_[e];
        const double old = target[j];
        const double sum = old + multiplier * value_[e];
        if (old == 0) list[count++] = j;
        target[j] = std::fabs(sum) < kTiny ? kZero : sum;
      }
      if (count > most) {
        ++k;
        break;
      }
    }
    if (k >= steps) {
      out.count = count;
      return touched;
    }
  }
  for (; k < steps; ++k) {
    const int i = listed ? rho.index[k] : k;
    const double multiplier = rho.array[i];
    if (multiplier == 0) continue;
    const int begin = start_[i];
    const int end = active_end_[i];
    touched += end - begin;
    for (int e = begin; e < end; ++e) target[index_[e]] += multiplier * value_[e];
  }
  if (!list_always) {
    out.count = -1;
    return touched;
  }
  count = 0;
  for (int j = 0; j < n; ++j) {
    const double v = target[j];
    if (v == 0) continue;
    if (std::fabs(v) < kTiny) {
      target[j] = 0;
    } else {
      list[count++] = j;
    }
  }
  out.count = count;
  return touched + n;
}

std::int64_t RowCopy::price_by_columns(const SparseVector& rho, SparseVector& out) const {
  const int n = columns_->columns;
  const double* const x = rho.array.data();
  int count = 0;
  for (int j = 0; j < n; ++j) {
    if (!active_[j]) continue;
    double sum = 0;
    for (int k = columns_->start[j]; k < columns_->start[j + 1]; ++k)
      sum += x[columns_->index[k]] * columns_->value[k];
    if (std::fabs(sum) >= kTiny) {
      out.array[j] = sum;
      out.index[count++] = j;
    }
  }
  out.count = count;
  return active_entries_ + n;
}

}  // namespace tovik::lp::simplex
