#include "lp/cholesky/solve.h"

#include <algorithm>

#include "lp/cholesky/blas.h"
#include "lp/cholesky/flush_to_zero.h"

namespace tovik::lp::cholesky {
namespace {

constexpr std::int64_t kWorthBlas = 2000;  // entries of a panel; calls cost more than smaller ones

/* One right-hand side: x := L11^-1 x, y -= L21 x, by columns, four at a time. */
void forward_one(const double* panel, int rows, int width, double* x, double* y) {
  if (static_cast<std::int64_t>(rows) * width >= kWorthBlas) {
    const int below = rows - width, step = 1;
    const double minus = -1, one = 1;
    blas::dtrsv_("L", "N", "U", &width, panel, &rows, x, &step);
    if (below > 0) blas::dgemv_("N", &below, &width, &minus, panel + width, &rows, x, &step, &one, y, &step);
    return;
  }
  for (int k = 0; k < width; ++k) {
    const double* const column = panel + static_cast<std::int64_t>(k) * rows;
    const double value = x[k];
    for (int i = k + 1; i < width; ++i) x[i] -= column[i] * value;
  }
  const int below = rows - width;
  int k = 0;
  for (; k + 4 <= width; k += 4) {
    const double* const a = panel + static_cast<std::int64_t>(k) * rows + width;
    const double *const b = a + rows, *const c = b + rows, *const d = c + rows;
    const double xa = x[k], xb = x[k + 1], xc = x[k + 2], xd = x[k + 3];
    for (int i = 0; i < below; ++i) y[i] -= a[i] * xa + b[i] * xb + (c[i] * xc + d[i] * xd);
  }
  for (; k < width; ++k) {
    const double* const a = panel + static_cast<std::int64_t>(k) * rows + width;
    const double xa = x[k];
    for (int i = 0; i < below; ++i) y[i] -= a[i] * xa;
  }
}

double dot(const double* a, const double* b, int count) {
  double s0 = 0, s1 = 0, s2 = 0, s3 = 0;
  int i = 0;
  for (; i + 4 <= count; i += 4) {
    s0 += a[i] * b[i];
    s1 += a[i + 1] * b[i + 1];
    s2 += a[i + 2] * b[i + 2];
    s3 += a[i + 3] * b[i + 3];
  }
  for (; i < count; ++i) s0 += a[i] * b[i];
  return (s0 + s1) + (s2 + s3);
}

/* x := L11^-T (x - L21' y). */
void backward_one(const double* panel, int rows, int width, double* x, const double* y) {
  if (static_cast<std::int64_t>(rows) * width >= kWorthBlas) {
    const int below = rows - width, step = 1;
    const double minus = -1, one = 1;
    if (below > 0) blas::dgemv_("T", &below, &width, &minus, panel + width, &rows, y, &step, &one, x, &step);
    blas::dtrsv_("L", "T", "U", &width, panel, &rows, x, &step);
    return;
  }
  for (int k = width - 1; k >= 0; --k) {
    const double* const column = panel + static_cast<std::int64_t>(k) * rows;
    x[k] -= dot(column + width, y, rows - width) + dot(column + k + 1, x + k + 1, width - k - 1);
  }
}

class Solve {
 public:
  Solve(const Symbolic& symbolic, const Numeric& numeric, int columns)
      : symbolic_(symbolic),
        numeric_(numeric),
        reader_(numeric.panels()),
        columns_(columns),
        x_(static_cast<std::size_t>(symbolic.size) * columns),
        below_(static_cast<std::size_t>(symbolic.largest_front) * columns) {}

  void run(double* x) {
    const int n = symbolic_.size;
    for (int c = 0; c < columns_; ++c)
      for (int k = 0; k < n; ++k) at(k, c) = x[static_cast<std::int64_t>(c) * n + symbolic_.order[k]];
    for (int s = 0; s < symbolic_.supernodes(); ++s) forward(s);
    for (int c = 0; c < columns_; ++c)
      for (int k = 0; k < n; ++k) at(k, c) *= numeric_.inverse()[k];
    for (int s = symbolic_.supernodes() - 1; s >= 0; --s) backward(s);
    for (int c = 0; c < columns_; ++c)
      for (int k = 0; k < n; ++k) x[static_cast<std::int64_t>(c) * n + symbolic_.order[k]] = at(k, c);
  }

 private:
  double& at(int position, int column) {
    return x_[static_cast<std::size_t>(column) * symbolic_.size + position];
  }

  void forward(int s) {
    const int rows = symbolic_.front(s), width = symbolic_.width(s), below = rows - width;
    const double* const panel = reader_.panel(s);
    double* const x = &at(symbolic_.start[s], 0);
    std::fill_n(below_.begin(), static_cast<std::size_t>(below) * columns_, 0.0);
    if (columns_ == 1) {
      forward_one(panel, rows, width, x, below_.data());
    } else {
      const double one = 1;
      blas::dtrsm_("L", "L", "N", "U", &width, &columns_, &one, panel, &rows, x, &symbolic_.size);
      if (below > 0)
        blas::multiply('N', 'N', {below, columns_, width}, -1, {panel + width, rows}, {x, symbolic_.size}, 0,
                       {below_.data(), below});
    }
    const int* const row = symbolic_.rows.data() + symbolic_.row_start[s];
    for (int c = 0; c < columns_; ++c) {
      double* const target = &at(0, c);
      const double* const term = below_.data() + static_cast<std::int64_t>(c) * below;
      for (int i = 0; i < below; ++i) target[row[i]] += term[i];
    }
  }

  void backward(int s) {
    const int rows = symbolic_.front(s), width = symbolic_.width(s), below = rows - width;
    const double* const panel = reader_.panel(s);
    double* const x = &at(symbolic_.start[s], 0);
    const int* const row = symbolic_.rows.data() + symbolic_.row_start[s];
    for (int c = 0; c < columns_; ++c) {
      const double* const source = &at(0, c);
      double* const copy = below_.data() + static_cast<std::int64_t>(c) * below;
      for (int i = 0; i < below; ++i) copy[i] = source[row[i]];
    }
    if (columns_ == 1) return backward_one(panel, rows, width, x, below_.data());
    const double one = 1;
    if (below > 0)
      blas::multiply('T', 'N', {width, columns_, below}, -1, {panel + width, rows}, {below_.data(), below}, 1,
                     {x, symbolic_.size});
    blas::dtrsm_("L", "L", "T", "U", &width, &columns_, &one, panel, &rows, x, &symbolic_.size);
  }

  const Symbolic& symbolic_;
  const Numeric& numeric_;
  PanelReader reader_;
  int columns_;
  std::vector<double> x_, below_;  // by position and right-hand side; the rows below of one supernode
};

}  // namespace

void solve(const Symbolic& symbolic, const Numeric& numeric, double* x, int columns) {
  const FlushToZero flush;
  if (symbolic.size > 0 && columns > 0) Solve(symbolic, numeric, columns).run(x);
}

}  // namespace tovik::lp::cholesky
