/* Random LPs of 5 to 30 rows with the structure of real ones and what presolve looks for: networks,
 * staircases, coverings, mixtures; with parallel rows and columns, fixed, free and slack columns, forcing and
 * singleton rows, and wide ranges of coefficients. */
#pragma once

#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>
#include <utility>
#include <vector>

#include "support/dense_lp.h"
#include "support/random.h"

namespace support {

using tovik::lp::kInf;

class StructuredLps : public Random {
 public:
  using Random::Random;

  /* Most have an optimum, some are infeasible or unbounded. `wide`: entries from 1e-4 to 1e7, bounds of
   * 1e7. */
  DenseLp make(bool wide) {
    const int m = pick(5, 30), n = pick(5, 40);
    DenseLp lp(m, n);
    fill(lp);
    for (int j = 0; j < n; ++j) bound(lp, j, wide);
    for (int k = pick(0, 8); k > 0; --k) plant_columns(lp);
    for (int k = pick(0, 8); k > 0; --k) plant_rows(lp);
    if (wide) stretch(lp);
    rows_and_costs(lp, wide);
    return lp;
  }

  /* The same problem with rows and columns in another order, columns negated, and both scaled by powers of
   * two. The objective stays. */
  DenseLp disguised(const DenseLp& lp) {
    const int m = lp.rows(), n = lp.columns();
    DenseLp other(m, n);
    other.offset = lp.offset;
    const std::vector<int> row = shuffled(m), column = shuffled(n);
    std::vector<double> row_scale, column_scale;
    for (int i = 0; i < m; ++i) row_scale.push_back(std::ldexp(chance(0.3) ? -1 : 1, pick(-3, 3)));
    for (int j = 0; j < n; ++j) column_scale.push_back(std::ldexp(chance(0.3) ? -1 : 1, pick(-3, 3)));
    const auto scaled = [](double low, double high, double factor) {
      return factor > 0 ? std::pair{low * factor, high * factor} : std::pair{high * factor, low * factor};
    };
    for (int j = 0; j < n; ++j) {
      const double s = column_scale[j];
      const int to = column[j];
      std::tie(other.lower[to], other.upper[to]) = scaled(lp.lower[j], lp.upper[j], 1 / s);
      other.cost[to] = lp.cost[j] * s;
      for (int i = 0; i < m; ++i) other.a[row[i]][to] = lp.a[i][j] * s * row_scale[i];
    }
    for (int i = 0; i < m; ++i)
      std::tie(other.row_lower[row[i]], other.row_upper[row[i]]) =
          scaled(lp.row_lower[i], lp.row_upper[i], row_scale[i]);
    return other;
  }

 private:
  std::vector<int> shuffled(int count) {
    std::vector<int> order(static_cast<size_t>(count));
    std::iota(order.begin(), order.end(), 0);
    std::shuffle(order.begin(), order.end(), engine());
    return order;
  }
  double nonzero() {
    return (chance(0.5) ? 1 : -1) * (chance(0.5) ? 1 : chance(0.7) ? pick(2, 9) : pick(1, 99) / 7.0);
  }
  double ratio() {
    static constexpr double kRatios[] = {1, -1, 2, -2, 3, -3, 0.5, -0.25, 1.0 / 3};
    return kRatios[pick(0, 8)];
  }

  void fill(DenseLp& lp) {
    const int m = lp.rows(), n = lp.columns(), family = pick(0, 4);
    const int stages = pick(2, 4);
    for (int j = 0; j < n; ++j) {
      if (family == 0) {  // arcs from node to node
        const int from = pick(0, m - 1), to = (from + pick(1, m - 1)) % m;
        lp.a[from][j] = -1;
        lp.a[to][j] = chance(0.8) ? 1 : 0.9;
      } else if (family == 1) {  // stages linked one to the next
        const int stage = j * stages / n, first = stage * m / stages;
        const int last = std::min(m - 1, (stage + 1) * m / stages + (chance(0.3) ? 2 : 0));
        for (int k = pick(1, 5); k > 0; --k) lp.a[pick(first, last)][j] = nonzero();
      } else if (family == 2) {  // sets
        for (int k = pick(1, 6); k > 0; --k) lp.a[pick(0, m - 1)][j] = 1;
      } else {
        for (int k = pick(1, family == 3 ? 4 : m / 2 + 1); k > 0; --k) lp.a[pick(0, m - 1)][j] = nonzero();
      }
    }
  }
  void bound(DenseLp& lp, int j, bool wide) {
    static constexpr int kKinds = 7;
    const int kind = pick(0, kKinds - 1), low = pick(-5, 5);
    lp.lower[j] = 0, lp.upper[j] = kind < 3 ? kInf : pick(1, 10);
    if (kind == 3) lp.lower[j] = low, lp.upper[j] = low + pick(0, 6);
    if (kind == 4) lp.lower[j] = -kInf;
    if (kind == 5 && chance(0.5)) lp.lower[j] = -kInf, lp.upper[j] = kInf;
    if (wide && chance(0.1)) lp.upper[j] = 1e7;
    if (wide && chance(0.05)) lp.lower[j] = -1e7, lp.upper[j] = 1e7;
  }
  void plant_columns(DenseLp& lp) {
    const int j = pick(0, lp.columns() - 1), other = pick(0, lp.columns() - 1);
    const int i = pick(0, lp.rows() - 1), i2 = pick(0, lp.rows() - 1);
    const double g = ratio();
    switch (pick(0, 5)) {
      case 0:  // parallel
        for (auto& row : lp.a) row[other] = j == other ? row[j] : g * row[j];
        parallel_.push_back({other, j, g});
        break;
      case 1:  // fixed
        lp.lower[j] = lp.upper[j] = pick(-3, 3);
        break;
      case 2:  // slack
        for (auto& row : lp.a) row[j] = 0;
        lp.a[i][j] = nonzero();
        break;
      case 3:  // free with two entries
        for (auto& row : lp.a) row[j] = 0;
        lp.a[i][j] = nonzero();
        lp.a[i2][j] = nonzero();
        lp.lower[j] = -kInf, lp.upper[j] = kInf;
        break;
      case 4:
        lp.lower[j] = -kInf, lp.upper[j] = kInf;
        break;
      default:  // one direction only
        for (auto& row : lp.a) row[j] = std::fabs(row[j]);
        break;
    }
  }
  void plant_rows(DenseLp& lp) {
    const int i = pick(0, lp.rows() - 1), other = pick(0, lp.rows() - 1), third = pick(0, lp.rows() - 1);
    const int j = pick(0, lp.columns() - 1), j2 = pick(0, lp.columns() - 1);
    std::vector<double>& row = lp.a[i];
    const double g = ratio();
    switch (pick(0, 5)) {
      case 0:
        for (size_t k = 0; k < row.size(); ++k) lp.a[other][k] = i == other ? row[k] : g * row[k];
        break;
      case 1:  // nearly parallel, and dependent
        for (size_t k = 0; k < row.size(); ++k)
          lp.a[other][k] = g * row[k] + (chance(0.5) ? 0 : lp.a[third][k]);
        break;
      case 2:
        row.assign(row.size(), 0.0);
        row[j] = nonzero();
        break;
      case 3:
        row.assign(row.size(), 0.0);
        row[j] = nonzero();
        row[j2] = nonzero();
        equation_.push_back(i);
        break;
      case 4:
        forced_.push_back(i);
        break;
      default:
        equation_.push_back(i);
        break;
    }
  }
  void stretch(DenseLp& lp) {
    for (auto& row : lp.a) {
      const double s = chance(0.3) ? std::pow(10.0, pick(-2, 3)) : 1;
      for (size_t j = 0; j < row.size(); ++j) {
        row[j] *= s * (chance(0.05) ? std::pow(10.0, pick(-2, 4)) : 1);
        if (lp.lower[j] == -1e7 || lp.upper[j] == 1e7) row[j] = std::clamp(row[j], -99.0, 99.0);
      }
    }
  }

  void rows_and_costs(DenseLp& lp, bool wide) {
    const int m = lp.rows(), n = lp.columns();
    std::vector<double> x(static_cast<size_t>(n));
    for (int j = 0; j < n; ++j) {
      const double low = std::isinf(lp.lower[j]) ? std::min(lp.upper[j], 9.0) - 9 : lp.lower[j];
      const double high = std::isinf(lp.upper[j]) ? std::max(lp.lower[j], 0.0) + 9 : lp.upper[j];
      x[j] = chance(0.3) ? low : chance(0.3) ? high : low + (high - low) * pick(0, 4) / 4;
      if (wide && std::fabs(x[j]) > 1e5 && chance(0.9)) x[j] = std::fabs(low) < std::fabs(high) ? low : high;
    }
    const bool with_optimum = chance(0.85);
    for (int j = 0; j < n; ++j) {
      const double d = chance(0.4) ? 0 : pick(0, 20);
      lp.cost[j] = !with_optimum ? pick(-3, 9) : x[j] == lp.lower[j] ? d : x[j] == lp.upper[j] ? -d : 0;
    }
    for (int i = 0; i < m; ++i) {
      const double y = row_sides(lp, i, x);
      for (int j = 0; with_optimum && j < n; ++j) lp.cost[j] += lp.a[i][j] * y;
    }
    for (const auto& [other, j, g] : parallel_)
      lp.cost[other] = g * lp.cost[j] + (chance(0.7) ? 0 : pick(-2, 2));
    for (const int i : forced_) force(lp, i);
    if (chance(0.07)) {
      const int i = pick(0, m - 1);
      lp.row_lower[i] += 5, lp.row_upper[i] += 5;
    }
    parallel_.clear(), forced_.clear(), equation_.clear();
  }
  /* Returns a dual that fits the side at which x stands. */
  double row_sides(DenseLp& lp, int i, const std::vector<double>& x) {
    double activity = 0;
    for (size_t j = 0; j < x.size(); ++j) activity += lp.a[i][j] * x[j];
    double& low = lp.row_lower[i];
    double& high = lp.row_upper[i];
    const int kind = std::find(equation_.begin(), equation_.end(), i) != equation_.end() ? 0 : pick(0, 6);
    const double room = chance(0.5) ? 0 : pick(1, 9), y = room == 0 && chance(0.7) ? pick(1, 5) : 0;
    low = kind == 1 || kind == 2 ? -kInf : activity - (kind == 0 ? 0 : room);
    high = kind == 3 || kind == 4 ? kInf : kind == 0 ? activity : activity + (kind < 3 ? room : pick(0, 5));
    if (kind == 6 && chance(0.3)) low = -kInf, high = kInf;
    return kind == 0 ? (chance(0.5) ? y : -y) : std::isinf(low) ? (std::isinf(high) ? 0 : -y) : y;
  }
  void force(DenseLp& lp, int i) {
    double side = 0;
    for (int j = 0; j < lp.columns(); ++j) {
      const double a = lp.a[i][j];
      if (a != 0) side += a * (a > 0 ? lp.upper[j] : lp.lower[j]);
    }
    if (std::isinf(side)) return;
    lp.row_lower[i] = side;
    if (lp.row_upper[i] < side) lp.row_upper[i] = chance(0.5) ? side : kInf;
  }

  struct Parallel {
    int column, other;
    double ratio;
  };
  std::vector<Parallel> parallel_;
  std::vector<int> forced_, equation_;
};

}  // namespace support
