#include "lp/factor/dense_tail.h"

#include <algorithm>
#include <cmath>

/* The inner loop is compiled a second time for wider registers, chosen when the library is loaded. Both do
 * the same operations in the same order (no fused multiply-add), so results do not depend on the machine. */
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(__SANITIZE_ADDRESS__) && \
    !defined(__SANITIZE_THREAD__)
#define TOVIK_WIDE_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define TOVIK_WIDE_CLONES
#endif

namespace tovik::lp::factor {

namespace {

constexpr int kPanel = 32;
constexpr std::int64_t kFlopsPerTick =
    8;  // dense operations are that much cheaper than an entry of a sparse line

TOVIK_WIDE_CLONES
void subtract_one(double* __restrict target, const double* __restrict l, double x, int count) {
  for (int i = 0; i < count; ++i) target[i] -= l[i] * x;
}

TOVIK_WIDE_CLONES
void subtract_four(double* __restrict target, const double* __restrict l0, const double* __restrict l1,
                   const double* __restrict l2, const double* __restrict l3, const double* x, int count) {
  const double x0 = x[0], x1 = x[1], x2 = x[2], x3 = x[3];
  for (int i = 0; i < count; ++i) {
    double value = target[i];
    value -= l0[i] * x0;
    value -= l1[i] * x1;
    value -= l2[i] * x2;
    value -= l3[i] * x3;
    target[i] = value;
  }
}

}  // namespace

void DenseTail::reset(int rows, int columns) {
  rows_ = rows;
  columns_ = columns;
  values_.assign(static_cast<std::size_t>(rows) * columns, 0.0);
  row_at_.resize(rows);
  for (int i = 0; i < rows; ++i) row_at_[i] = i;
  pivot_column_.clear();
  swapped_with_.clear();
  work_ = 0;
}

void DenseTail::swap_rows(int rank, int from, int first, int end) {
  if (rank == from) return;
  for (int j = first; j < end; ++j) std::swap(at(rank, j), at(from, j));
}

/* Unblocked elimination of the columns [first, end); row swaps reach every column before `end`. */
void DenseTail::factor_panel(int first, int end, double tolerance) {
  for (int j = first; j < end && rank() < rows_; ++j) {
    const int k = rank();
    double* column = &at(0, j);
    int best = k;
    double largest = 0.0;
    for (int i = k; i < rows_; ++i) {
      if (std::fabs(column[i]) > largest) {
        largest = std::fabs(column[i]);
        best = i;
      }
    }
    if (largest < tolerance) continue;
    swap_rows(k, best, 0, end);
    std::swap(row_at_[k], row_at_[best]);
    pivot_column_.push_back(j);
    swapped_with_.push_back(best);
    const double inverse = 1.0 / column[k];
    for (int i = k + 1; i < rows_; ++i) column[i] *= inverse;
    for (int next = j + 1; next < end; ++next) {
      const double x = at(k, next);
      if (x != 0.0) subtract_one(&at(0, next) + k + 1, column + k + 1, x, rows_ - k - 1);
    }
    work_ += static_cast<std::int64_t>(rows_ - k) * (end - j) / kFlopsPerTick;
  }
}

/* Applies the pivots first_rank.. of the last panel to one column behind it. */
void DenseTail::update_trailing(int first_rank, int column) {
  double* target = &at(0, column);
  const int last = rank();
  for (int k = first_rank; k < last; ++k) std::swap(target[k], target[swapped_with_[k]]);
  for (int k = first_rank; k < last; ++k) {
    const double x = target[k];
    if (x == 0.0) continue;
    const double* l = &at(0, pivot_column_[k]);
    for (int i = k + 1; i < last; ++i) target[i] -= l[i] * x;
  }
  int k = first_rank;
  for (; k + 4 <= last; k += 4) {
    subtract_four(target + last, &at(last, pivot_column_[k]), &at(last, pivot_column_[k + 1]),
                  &at(last, pivot_column_[k + 2]), &at(last, pivot_column_[k + 3]), target + k, rows_ - last);
  }
  for (; k < last; ++k) subtract_one(target + last, &at(last, pivot_column_[k]), target[k], rows_ - last);
  work_ += static_cast<std::int64_t>(rows_ - first_rank) * (last - first_rank) / kFlopsPerTick;
}

void DenseTail::eliminate(double absolute_tolerance) {
  for (int first = 0; first < columns_; first += kPanel) {
    const int end = std::min(first + kPanel, columns_);
    const int first_rank = rank();
    factor_panel(first, end, absolute_tolerance);
    if (rank() == rows_ || rank() == first_rank) continue;
    for (int j = end; j < columns_; ++j) update_trailing(first_rank, j);
  }
}

}  // namespace tovik::lp::factor
