/* An LP in plain data that is edited beside an engine, and random changes of it in all kinds of numbers. */
#pragma once

#include <algorithm>
#include <cmath>
#include <random>
#include <span>
#include <vector>

#include "lp/base/lp_data.h"

namespace support {

using Random = std::mt19937_64;

inline int pick(Random& random, int low, int high) {
  return std::uniform_int_distribution<int>(low, high)(random);
}

/* Small integers, halves, odd decimals, and now and then something large or small. */
inline double number(Random& random) {
  const double whole = pick(random, -9, 9);
  switch (pick(random, 0, 9)) {
    case 0:
      return whole / 2;
    case 1:
      return whole + 0.1 * pick(random, 0, 9);
    case 2:
      return whole * 1000;
    case 3:
      return whole / 1000;
    default:
      return whole;
  }
}

struct LpMirror {
  struct Entry {
    int column;
    double value;
  };
  using Row = std::vector<Entry>;
  std::vector<double> cost, lower, upper, row_lower, row_upper;
  std::vector<Row> rows;

  int num_columns() const { return static_cast<int>(cost.size()); }
  int num_rows() const { return static_cast<int>(rows.size()); }

  tovik::lp::LpData data() const {
    tovik::lp::LpData lp;
    lp.cost = cost;
    lp.lower = lower;
    lp.upper = upper;
    lp.row_lower = row_lower;
    lp.row_upper = row_upper;
    lp.matrix = tovik::lp::transpose(by_rows());
    return lp;
  }
  /* One row a column. */
  tovik::lp::Matrix by_rows() const {
    tovik::lp::Matrix m;
    m.rows = num_columns();
    m.columns = num_rows();
    for (const Row& row : rows) {
      for (const Entry& e : row) {
        m.index.push_back(e.column);
        m.value.push_back(e.value);
      }
      m.start.push_back(static_cast<int>(m.index.size()));
    }
    return m;
  }
  double activity(int i, std::span<const double> x) const {
    double sum = 0;
    for (const Entry& e : rows[i]) sum += e.value * x[e.column];
    return sum;
  }
  double objective(std::span<const double> x) const {
    double sum = 0;
    for (int j = 0; j < num_columns(); ++j) sum += cost[j] * x[j];
    return sum;
  }
  /* Largest violation of x, relative to the sizes that make it up. */
  double violation(std::span<const double> x) const {
    double worst = 0;
    for (int j = 0; j < num_columns(); ++j) {
      const double size = 1 + std::fabs(x[j]);
      worst = std::max({worst, (lower[j] - x[j]) / size, (x[j] - upper[j]) / size});
    }
    for (int i = 0; i < num_rows(); ++i) {
      double size = 1;
      for (const Entry& e : rows[i]) size += std::fabs(e.value * x[e.column]);
      const double a = activity(i, x);
      worst = std::max({worst, (row_lower[i] - a) / size, (a - row_upper[i]) / size});
    }
    return worst;
  }

  static void random_bounds(Random& random, double& low, double& high) {
    const double a = number(random);
    const double length = std::fabs(number(random));
    low = a;
    high = a + length;
    switch (pick(random, 0, 7)) {
      case 0:
        low = -tovik::lp::kInf;
        break;
      case 1:
      case 2:
        high = tovik::lp::kInf;
        break;
      case 3:
        high = low;
        break;
      case 4:
        low = pick(random, 0, 3) == 0 ? -tovik::lp::kInf : 0;
        high = low == 0 ? 1 : tovik::lp::kInf;
        break;
      default:
        break;
    }
  }
  Row random_row(Random& random) const {
    Row row;
    for (int j = 0; j < num_columns(); ++j) {
      if (pick(random, 0, 3) != 0) continue;
      const double v = number(random);
      if (v != 0) row.push_back({j, v});
    }
    return row;
  }
  /* Sides that a point within the bounds meets more often than not. */
  void random_sides(Random& random, const Row& row, double& low, double& high) const {
    double at = 0;
    for (const Entry& e : row) {
      const double v = std::isfinite(lower[e.column])   ? lower[e.column]
                       : std::isfinite(upper[e.column]) ? upper[e.column]
                                                        : 0.0;
      at += e.value * (v + 0.5 * pick(random, 0, 2));
    }
    low = at - std::fabs(number(random));
    high = at + std::fabs(number(random));
    const int kind = pick(random, 0, 3);
    if (kind == 0) low = -tovik::lp::kInf;
    if (kind == 1) high = tovik::lp::kInf;
    if (kind == 2) high = low;
  }
  static LpMirror random(Random& random) {
    LpMirror lp;
    const int n = pick(random, 1, 14);
    const int m = pick(random, 0, 10);
    for (int j = 0; j < n; ++j) {
      lp.cost.push_back(number(random));
      lp.lower.push_back(0);
      lp.upper.push_back(0);
      random_bounds(random, lp.lower[j], lp.upper[j]);
    }
    for (int i = 0; i < m; ++i) lp.add_row(random);
    return lp;
  }
  void add_row(Random& random) {
    Row row = random_row(random);
    double low, high;
    random_sides(random, row, low, high);
    rows.push_back(std::move(row));
    row_lower.push_back(low);
    row_upper.push_back(high);
  }
  void delete_rows(std::span<const int> gone) {
    for (auto i = gone.rbegin(); i != gone.rend(); ++i) {
      rows.erase(rows.begin() + *i);
      row_lower.erase(row_lower.begin() + *i);
      row_upper.erase(row_upper.begin() + *i);
    }
  }
  void delete_columns(std::span<const int> gone) {
    for (auto g = gone.rbegin(); g != gone.rend(); ++g) {
      const int j = *g;
      for (auto* v : {&cost, &lower, &upper}) v->erase(v->begin() + j);
      for (Row& row : rows) {
        std::erase_if(row, [j](const Entry& e) { return e.column == j; });
        for (Entry& e : row) e.column -= e.column > j;
      }
    }
  }
};

/* Some of 0..count-1, ascending; at least one stays. */
inline std::vector<int> some_of(Random& random, int count, int at_most) {
  std::vector<int> chosen;
  for (int i = 0; i < count; ++i) {
    if (static_cast<int>(chosen.size()) < std::min(at_most, count - 1) && pick(random, 0, 2) == 0)
      chosen.push_back(i);
  }
  return chosen;
}

}  // namespace support
