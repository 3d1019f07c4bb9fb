#include "lp/cholesky/front.h"

#include <algorithm>
#include <cmath>

#include "lp/cholesky/blas.h"

namespace tovik::lp::cholesky {
namespace {

constexpr int kLeaf = 32;              // columns eliminated one by one
constexpr int kRowsAtOnce = 1024;      // of a triangular solve
constexpr double kWorthSharing = 4e6;  // operations
constexpr int kSmallFront = 24;        // products of less run in loops of our own

/* Columns of a product with `rows` rows, of which the upper triangle is wasted: the wider, the more of it, but the more is
 * done with each row that is packed. */
int tile_of(int rows) {
  return rows <= 96 ? 32 : rows <= 384 ? 64 : rows <= 1024 ? 128 : kTile;
}

}  // namespace

template <class Work>
void FrontElimination::share(int pieces, double operations, const Work& work) {
  if (team_ != nullptr && team_->workers() > 1 && operations > kWorthSharing)
    team_->run(pieces, work, [this] { pulse_.look(); });
  else
    for (int piece = 0; piece < pieces; ++piece) work(piece, worker_);
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
    solve_rows(first, std::min(first + kRowsAtOnce, rows), begin, end);
  });
}

/* X L' = A, then L := X D^-1. */
void FrontElimination::solve_rows(int first, int last, int begin, int end) {
  const int rows = last - first, width = end - begin, stride = front_.rows;
  const double one = 1;
  blas::dtrsm_("R", "L", "T", "U", &rows, &width, &one, at(begin, begin), &stride, at(first, begin), &stride);
  for (int k = begin; k < end; ++k) {
    double* const column = at(0, k);
    const double inverse = front_.inverse[k];
    for (int i = first; i < last; ++i) column[i] *= inverse;
  }
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
    blas::multiply('N', 'T', {front_.rows - first, last - first, middle - begin}, -1,
                   {at(first, begin), front_.rows}, {scaled, last - first}, 1,
                   {at(first, first), front_.rows});
    pulse_.add(inner * (last - first) * (front_.rows - first), worker);
  });
}

void FrontElimination::update_square(double* square) {
  const int below = front_.rows - front_.width, width = front_.width;
  const int tile = tile_of(below), pieces = (below + tile - 1) / tile;
  const double work = width;
  share(pieces, work * below * below, [&](int piece, int worker) {
    if (pulse_.stopped()) return;
    const int first = piece * tile, last = std::min(first + tile, below);
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
      blas::multiply('N', 'T', {below - first, last - first, width}, -1, {at(width + first, 0), front_.rows},
                     {scaled, last - first}, 0, {target, below});
    }
    pulse_.add(work * (last - first) * (below - first), worker);
  });
}

}  // namespace tovik::lp::cholesky
