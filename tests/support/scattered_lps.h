/* Random LPs for engines: entries scattered over a table, bounds of every kind, and a simplex core that
 * stands at a random regular basis of one. */
#pragma once

#include <cmath>
#include <vector>

#include "lp/simplex/core.h"
#include "support/dense_lp.h"
#include "support/quiet_control.h"
#include "support/random.h"

namespace support {

/* Bounds of one of the seven kinds: none, lower, upper, boxed, fixed, boxed around zero, at zero. */
inline void random_bounds(Random& random, double& low, double& high) {
  using tovik::lp::kInf;
  const int a = random.pick(-4, 4);
  const int b = a + random.pick(1, 5);
  switch (random.pick(0, 6)) {
    case 0:
      low = -kInf, high = kInf;
      break;
    case 1:
      low = a, high = kInf;
      break;
    case 2:
      low = -kInf, high = b;
      break;
    case 3:
      low = a, high = b;
      break;
    case 4:
      low = high = a;
      break;
    case 5:
      low = -b * b, high = b * b;
      break;
    default:
      low = 0, high = kInf;
      break;
  }
}

/* One entry in three. Small integers make ties, zero steps and dependent columns common. */
inline DenseLp scattered_lp(Random& random, int rows, int columns) {
  DenseLp lp(rows, columns);
  for (int j = 0; j < columns; ++j) {
    for (int i = 0; i < rows; ++i) {
      if (random.pick(0, 2) > 0) continue;
      const int v = random.pick(1, 3);
      lp.a[i][j] = random.chance(0.5) ? v : -v;
    }
    lp.cost[j] = random.pick(-3, 5);
    random_bounds(random, lp.lower[j], lp.upper[j]);
  }
  for (int i = 0; i < rows; ++i) random_bounds(random, lp.row_lower[i], lp.row_upper[i]);
  return lp;
}

/* A core beside the table that it was made of. */
struct TableCore {
  explicit TableCore(DenseLp model) : lp(std::move(model)), core(lp.data(), options(), control) {}

  /* Statuses at random; what is singular is mended with logicals. */
  void random_basis(Random& random) {
    std::vector<tovik::lp::BasisStatus> status(static_cast<size_t>(core.total()));
    for (auto& s : status) s = static_cast<tovik::lp::BasisStatus>(random.pick(0, 3));
    core.set_basis(status);
    core.refactor();
  }
  /* Entry i of the column of variable j in [A I]. */
  double entry(int i, int j) const {
    return j < core.n()        ? lp.a[static_cast<size_t>(i)][static_cast<size_t>(j)]
           : j - core.n() == i ? 1.0
                               : 0.0;
  }
  /* The inverse of the basis by elimination on the table: row p of the result belongs to position p. */
  std::vector<std::vector<double>> basis_inverse() const {
    const auto m = static_cast<size_t>(core.m());
    std::vector<std::vector<double>> work(m, std::vector<double>(2 * m));
    for (size_t i = 0; i < m; ++i) {
      for (size_t p = 0; p < m; ++p)
        work[i][p] = entry(static_cast<int>(i), core.basis.head(static_cast<int>(p)));
      work[i][m + i] = 1;
    }
    for (size_t p = 0; p < m; ++p) {
      size_t pivot = p;
      for (size_t i = p; i < m; ++i) {
        if (std::fabs(work[i][p]) > std::fabs(work[pivot][p])) pivot = i;
      }
      std::swap(work[p], work[pivot]);
      for (size_t i = 0; i < m; ++i) {
        if (i == p || work[i][p] == 0) continue;
        const double factor = work[i][p] / work[p][p];
        for (size_t k = p; k < 2 * m; ++k) work[i][k] -= factor * work[p][k];
      }
    }
    std::vector<std::vector<double>> inverse(m);
    for (size_t p = 0; p < m; ++p) {
      for (size_t k = m; k < 2 * m; ++k) inverse[p].push_back(work[p][k] / work[p][p]);
    }
    return inverse;
  }

  DenseLp lp;
  QuietControl control;
  tovik::lp::simplex::Core core;

 private:
  static tovik::lp::simplex::Options options() {
    tovik::lp::simplex::Options mends;
    mends.singular_limit = 1000;
    return mends;
  }
};

}  // namespace support
