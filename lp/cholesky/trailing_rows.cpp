#include "lp/cholesky/trailing_rows.h"

#include <cstdint>

#include "lp/cholesky/blas.h"

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#define TOVIK_HAS_WIDE_ROWS
#endif

namespace tovik::lp::cholesky {
#ifdef TOVIK_HAS_WIDE_ROWS
namespace {

#define TOVIK_WIDE __attribute__((target("avx512f"), always_inline)) inline

constexpr int kLanes = 8;    // numbers of a register
constexpr int kColumns = 8;  // of X that are in registers together

/* Products of pivots and multipliers in the order of their use: for each group of columns what its columns take of each column
 * before it, then the triangle within it. */
struct Multipliers {
  alignas(64) double value[kLeaf * kLeaf];

  Multipliers(const double* block, int width, int stride) {
    double* next = value;
    for (int first = 0; first < width; first += kColumns)
      for (int j = 0; j < first + kColumns && j < width; ++j, next += kColumns) {
        const double* const column = block + static_cast<std::int64_t>(j) * stride;
        for (int i = 0; i < kColumns; ++i)
          next[i] = first + i > j && first + i < width ? column[first + i] * column[j] : 0;
      }
  }
};

template <int kRegisters>
TOVIK_WIDE void load(__m512d* value, const double* from, const __mmask8* mask) {
  for (int r = 0; r < kRegisters; ++r) value[r] = _mm512_maskz_loadu_pd(mask[r], from + r * kLanes);
}

/* Columns first .. first + kCount - 1 of rows that fill kRegisters registers; those before are done. */
template <int kRegisters, int kCount>
TOVIK_WIDE const double* solve_group(const double* multiplier, const double* inverse, int first,
                                     double* below, std::int64_t stride, const __mmask8* mask) {
  __m512d x[kCount][kRegisters], done[kRegisters];
#pragma GCC unroll 8
  for (int i = 0; i < kCount; ++i) load<kRegisters>(x[i], below + (first + i) * stride, mask);
  for (int j = 0; j < first; ++j, multiplier += kColumns) {
    load<kRegisters>(done, below + j * stride, mask);
#pragma GCC unroll 8
    for (int i = 0; i < kCount; ++i) {
      const __m512d factor = _mm512_set1_pd(multiplier[i]);
#pragma GCC unroll 4
      for (int r = 0; r < kRegisters; ++r) x[i][r] = _mm512_fnmadd_pd(done[r], factor, x[i][r]);
    }
  }
#pragma GCC unroll 8
  for (int k = 0; k < kCount; ++k, multiplier += kColumns) {
    const __m512d scale = _mm512_set1_pd(inverse[first + k]);
#pragma GCC unroll 4
    for (int r = 0; r < kRegisters; ++r) {
      x[k][r] = _mm512_mul_pd(x[k][r], scale);
      _mm512_mask_storeu_pd(below + (first + k) * stride + r * kLanes, mask[r], x[k][r]);
    }
#pragma GCC unroll 8
    for (int i = k + 1; i < kCount; ++i) {
      const __m512d factor = _mm512_set1_pd(multiplier[i]);
#pragma GCC unroll 4
      for (int r = 0; r < kRegisters; ++r) x[i][r] = _mm512_fnmadd_pd(x[k][r], factor, x[i][r]);
    }
  }
  return multiplier;
}

template <int kRegisters>
TOVIK_WIDE void solve_strip(const Multipliers& multipliers, const double* inverse, int width, double* below,
                            std::int64_t stride, const __mmask8* mask) {
  const double* next = multipliers.value;
  int first = 0;
  for (; first + kColumns <= width; first += kColumns)
    next = solve_group<kRegisters, kColumns>(next, inverse, first, below, stride, mask);
  switch (width - first) {
    case 1:
      solve_group<kRegisters, 1>(next, inverse, first, below, stride, mask);
      break;
    case 2:
      solve_group<kRegisters, 2>(next, inverse, first, below, stride, mask);
      break;
    case 3:
      solve_group<kRegisters, 3>(next, inverse, first, below, stride, mask);
      break;
    case 4:
      solve_group<kRegisters, 4>(next, inverse, first, below, stride, mask);
      break;
    case 5:
      solve_group<kRegisters, 5>(next, inverse, first, below, stride, mask);
      break;
    case 6:
      solve_group<kRegisters, 6>(next, inverse, first, below, stride, mask);
      break;
    case 7:
      solve_group<kRegisters, 7>(next, inverse, first, below, stride, mask);
      break;
    default:
      break;
  }
}

__attribute__((target("avx512f"))) void solve_wide(const double* block, const double* inverse, int width,
                                                   double* below, int rows, int stride) {
  const Multipliers multipliers(block, width, stride);
  constexpr int kRows = 2 * kLanes;
  constexpr __mmask8 kAll = 0xff;
  const __mmask8 all[2] = {kAll, kAll};
  int row = 0;
  for (; row + kRows <= rows; row += kRows)
    solve_strip<2>(multipliers, inverse, width, below + row, stride, all);
  const int rest = rows - row;
  if (rest == 0) return;
  const auto lanes = [](int count) { return static_cast<__mmask8>((1U << count) - 1); };
  const __mmask8 some[2] = {rest >= kLanes ? kAll : lanes(rest),
                            rest >= kLanes ? lanes(rest - kLanes) : __mmask8{0}};
  if (rest > kLanes)
    solve_strip<2>(multipliers, inverse, width, below + row, stride, some);
  else
    solve_strip<1>(multipliers, inverse, width, below + row, stride, some);
}

bool has_wide_registers() {
  static const bool has = __builtin_cpu_supports("avx512f") != 0;
  return has;
}

}  // namespace
#endif

void solve_trailing_rows_by_blas(const double* block, const double* inverse, int width, double* below,
                                 int rows, int stride) {
  const double one = 1;
  blas::dtrsm_("R", "L", "T", "U", &rows, &width, &one, block, &stride, below, &stride);
  for (int k = 0; k < width; ++k) {
    double* const column = below + static_cast<std::int64_t>(k) * stride;
    for (int i = 0; i < rows; ++i) column[i] *= inverse[k];
  }
}

void solve_trailing_rows(const double* block, const double* inverse, int width, double* below, int rows,
                         int stride) {
#ifdef TOVIK_HAS_WIDE_ROWS
  if (has_wide_registers()) return solve_wide(block, inverse, width, below, rows, stride);
#endif
  solve_trailing_rows_by_blas(block, inverse, width, below, rows, stride);
}

}  // namespace tovik::lp::cholesky
