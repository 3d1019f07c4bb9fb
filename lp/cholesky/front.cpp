#include "lp/cholesky/front.h"

#include <algorithm>
#include <cmath>

#include "lp/cholesky/blas.h"
#include "lp/cholesky/trailing_rows.h"

namespace tovik::lp::cholesky {
namespace {

constexpr int kRowsAtOnce = 1024;      // of a triangular solve
constexpr int kHalvable = 64;          // columns of a square on the diagonal
constexpr double kWorthHalving = 4e5;  // operations
constexpr int kSmallFront = 24;        // products of less run in loops of our own

/* The lower trapezoid of C := beta C - A B', `columns` of `rows` numbers each: squares on the diagonal are halved as long as
 * that saves more than calls cost. */
void multiply_lower(int rows, blas::ConstBlock a, blas::ConstBlock b, int inner, double beta, blas::Block c,
                    int columns) {
  if (columns < kHalvable || static_cast<double>(columns) * columns * inner < kWorthHalving) {
    blas::multiply('N', 'T', {rows, columns, inner}, -1, a, b, beta, c);
    return;
  }
  const int half = columns / 2 / 8 * 8;
  if (rows > columns)
    blas::multiply('N', 'T', {rows - columns, columns, inner}, -1, {a.value + columns, a.stride}, b, beta,
                   {c.value + columns, c.stride});
  multiply_lower(columns, a, b, inner, beta, c, half);
  multiply_lower(columns - half, {a.value + half, a.stride}, {b.value + half, b.stride}, inner, beta,
                 {c.value + half + static_cast<std::int64_t>(half) * c.stride, c.stride}, columns - half);
}

}  // namespace

/* Columns of a product with `rows` rows, of which the upper triangle is wasted: the wider, the more of it, but the more is
 * done with each row that is packed. */
int FrontElimination::tile_of(int rows) {
  return rows <= 96 ? 32 : rows <= 384 ? 64 : rows <= 1024 ? 128 : kTile;
}

/* Halves, so that most of the work is done by products with a long inner dimension. */
void FrontElimination::eliminate(int begin, int end) {
  if (pulse_.stopped()) return;
  if (end - begin <= kLeaf) return eliminate_leaf(begin, end);
  const int leaves = (end - begin + kLeaf - 1) / kLeaf;
  const int middle = begin + leaves / 2 * kLeaf;
  eliminate(begin, middle);
  update(begin, middle, end);
  eliminate(middle, end);
}

void FrontElimination::pivot(int column) {
  Workspace& own = workspaces_[worker_];
  const double sign = front_.signs == nullptr || front_.signs[column] > 0 ? 1 : -1;
  double& d = *at(column, column);
  const double size = sign * d;
  if (size > pivoting_.smallest && std::isfinite(size)) {
    own.smallest_pivot = own.smallest_pivot == 0 ? size : std::min(own.smallest_pivot, size);
    own.largest_pivot = std::max(own.largest_pivot, size);
  } else {
    ++own.replaced;
    d = pivoting_.replacement > 0 ? sign * pivoting_.replacement : 0;
  }
  front_.inverse[column] = d == 0 ? 0 : 1 / d;
}

void FrontElimination::eliminate_leaf(int begin, int end) {
  const int rows = front_.rows;
  const bool together =
      rows - begin <= 2 * kLeaf;  // few rows: the rest of the panel goes along with the block
  const int last = together ? rows : end;
  for (int k = begin; k < end; ++k) {
    pivot(k);
    double* const column = at(0, k);
    const double inverse = front_.inverse[k];
    for (int j = k + 1; j < end; ++j) {
      const double factor = column[j] * inverse;
      double* const other = at(0, j);
      for (int i = j; i < last; ++i) other[i] -= factor * column[i];
    }
    for (int i = k + 1; i < last; ++i) column[i] *= inverse;
  }
  if (last == rows) return;
  const int pieces = (rows - end + kRowsAtOnce - 1) / kRowsAtOnce;
  const double width = end - begin;
  share(pieces, width * width * (rows - end), [&](int piece, int) {
    const int first = end + piece * kRowsAtOnce;
    solve_trailing_rows(at(begin, begin), front_.inverse + begin, end - begin, at(first, begin),
                        std::min(kRowsAtOnce, rows - first), rows);
  });
}

/* scaled(i - first, k - begin) = L(i, k) D(k). */
void FrontElimination::scale_rows(int first, int last, int begin, int end, double* scaled) const {
  const int rows = last - first;
  for (int k = begin; k < end; ++k, scaled += rows) {
    const double d = *at(k, k);
    const double* const column = at(first, k);
    for (int i = 0; i < rows; ++i) scaled[i] = column[i] * d;
  }
}

/* Columns middle .. end - 1 lose what columns begin .. middle - 1 take away. */
void FrontElimination::update(int begin, int middle, int end) {
  const int tile = tile_of(front_.rows - middle);
  const int pieces = (end - middle + tile - 1) / tile;
  const double inner = middle - begin;
  share(pieces, inner * (end - middle) * (front_.rows - middle), [&](int piece, int worker) {
    if (pulse_.stopped()) return;
    const int first = middle + piece * tile, last = std::min(first + tile, end);
    double* const scaled = workspaces_[worker].scaled.data();
    scale_rows(first, last, begin, middle, scaled);
    multiply_lower(front_.rows - first, {at(first, begin), front_.rows}, {scaled, last - first},
                   middle - begin, 1, {at(first, first), front_.rows}, last - first);
    pulse_.add(inner * (last - first) * (front_.rows - first), worker);
  });
}

void FrontElimination::update_square_columns(double* square, int first, int last, int worker) {
  const int below = front_.rows - front_.width, width = front_.width;
  double* const scaled = workspaces_[worker].scaled.data();
  double* const target = square + first + static_cast<std::int64_t>(first) * below;
  scale_rows(width + first, width + last, 0, width, scaled);
  if (width * (below - first) < kSmallFront) {
    for (int j = first; j < last; ++j)
      for (int i = j; i < below; ++i) {
        double sum = 0;
        for (int k = 0; k < width; ++k) sum -= *at(width + i, k) * scaled[j - first + k * (last - first)];
        square[i + static_cast<std::int64_t>(j) * below] = sum;
      }
  } else {
    multiply_lower(below - first, {at(width + first, 0), front_.rows}, {scaled, last - first}, width, 0,
                   {target, below}, last - first);
  }
  pulse_.add(static_cast<double>(width) * (last - first) * (below - first), worker);
}

}  // namespace tovik::lp::cholesky
