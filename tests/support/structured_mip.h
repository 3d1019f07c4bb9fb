/* Random small mixed-integer problems with the rows that cut families look for: knapsacks, packings and partitions of
 * binaries, capacities of continuous columns that a binary switches, balances of such columns, and rows of all kinds. */
#pragma once

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "mip/domain/problem.h"
#include "tests/support/random.h"

namespace support {

class StructuredMip {
 public:
  explicit StructuredMip(unsigned seed) : random_(seed) {}

  tovik::mip::Problem draw() {
    problem_ = {};
    rows_.clear();
    wanted_ = random_.uniform(0, 1);
    const int binaries = random_.pick(3, 8);
    for (int j = 0; j < binaries; ++j) column(0, 1, 1);
    if (random_.chance(0.4)) column(random_.pick(-2, 1), random_.pick(2, 3), 1);
    const int integers = columns();
    const int continuous = random_.pick(0, 4);
    for (int j = 0; j < continuous; ++j) {
      const double lower = random_.chance(0.7) ? 0 : random_.pick(-3, 2);
      column(lower, random_.chance(0.3) ? tovik::lp::kInf : lower + random_.pick(1, 9), 0);
    }
    const int periods = random_.chance(0.3) ? random_.pick(2, 4) : 0;
    for (int k = 2 * periods; k > 0; --k)
      column(0, random_.chance(0.5) ? tovik::lp::kInf : random_.pick(3, 20), 0);
    if (periods > 0) stocks(columns() - 2 * periods, periods, binaries);
    if (random_.chance(0.7)) knapsack(integers, random_.pick(2, 9));
    if (random_.chance(0.4)) knapsack(integers, random_.pick(2, 30));
    for (int k = random_.pick(0, 3); k > 0; --k) packing(binaries);
    for (int j = integers; j < integers + continuous; ++j) {
      if (random_.chance(0.7)) switched(j, random_.below(binaries));
    }
    if (continuous > 0 && random_.chance(0.8)) balance(integers);
    if (continuous > 0 && random_.chance(0.4)) balance(integers);
    for (int k = random_.pick(0, 2); k > 0; --k) mixed();
    finish();
    return std::move(problem_);
  }
  Random& random() { return random_; }

 private:
  struct Row {
    std::vector<double> a;
    double lower, upper;
  };
  int columns() const { return static_cast<int>(problem_.is_integer.size()); }
  void column(double lower, double upper, char integer) {
    problem_.lp.lower.push_back(lower);
    problem_.lp.upper.push_back(upper);
    const double cost = weight(9);
    problem_.lp.cost.push_back(random_.chance(wanted_) ? -cost : cost);
    problem_.is_integer.push_back(integer);
  }
  Row& row(double lower, double upper) {
    rows_.push_back({std::vector<double>(problem_.is_integer.size()), lower, upper});
    return rows_.back();
  }
  double weight(int largest) {
    return random_.chance(0.8) ? random_.pick(1, largest) : random_.uniform(0.5, largest);
  }
  /* Of integer columns: some complemented, some with equal weights. */
  void knapsack(int integers, int largest) {
    Row& r = row(-tovik::lp::kInf, 0);
    double sum = 0;
    for (int j = 0; j < integers; ++j) {
      if (random_.chance(0.15)) continue;
      const double a = weight(largest);
      const bool negative = random_.chance(0.2);
      r.a[j] = negative ? -a : a;
      r.upper += a * (negative ? -problem_.lp.upper[j] : problem_.lp.lower[j]);
      sum += a * (problem_.lp.upper[j] - problem_.lp.lower[j]);
    }
    r.upper += std::floor(sum * random_.uniform(0.3, 0.8));
    if (random_.chance(0.3)) flip(r);
  }
  static void flip(Row& r) {
    for (double& a : r.a) a = -a;
    r.lower = std::exchange(r.upper, -r.lower);
    r.lower = -r.lower;
  }
  void packing(int binaries) {
    Row& r = row(random_.chance(0.2) ? 1 : -tovik::lp::kInf, 1);
    for (int j = 0; j < binaries; ++j) {
      if (!random_.chance(0.5)) continue;
      const bool negative = random_.chance(0.2);
      r.a[j] = negative ? -1 : 1;
      if (negative) {
        r.lower -= 1;
        r.upper -= 1;
      }
    }
  }
  /* x <= capacity z, or x <= capacity (1 - z). */
  void switched(int x, int z) {
    Row& r = row(-tovik::lp::kInf, 0);
    const double capacity = weight(9);
    r.a[x] = 1;
    r.a[z] = -capacity;
    if (random_.chance(0.2)) {
      r.a[z] = capacity;
      r.upper = capacity;
    }
  }
  /* Flow in against flow out and a demand. */
  void balance(int first) {
    Row& r = row(0, random_.pick(0, 12));
    for (std::size_t j = static_cast<std::size_t>(first); j < r.a.size(); ++j) {
      if (random_.chance(0.8)) r.a[j] = random_.chance(0.7) ? 1 : -1;
    }
    if (random_.chance(0.3)) r.a[random_.below(first)] = random_.pick(-5, 5);
    if (random_.chance(0.5))
      r.lower = r.upper;
    else if (random_.chance(0.5))
      r.lower = -tovik::lp::kInf;
    else
      r.lower = std::exchange(r.upper, tovik::lp::kInf);
  }
  /* A product's periods: what comes in by a switch and what was in stock meets a demand or is stored. */
  void stocks(int first, int periods, int binaries) {
    for (int t = 0; t < periods; ++t) {
      switched(first + t, random_.below(binaries));
      const double demand = random_.pick(0, 9);
      Row& r = row(demand, random_.chance(0.7) ? demand : tovik::lp::kInf);
      r.a[first + t] = random_.chance(0.8) ? 1 : random_.pick(1, 3);
      if (t > 0) r.a[first + periods + t - 1] = 1;
      r.a[first + periods + t] = -1;
      if (random_.chance(0.2)) flip(r);
    }
  }
  void mixed() {
    Row& r = row(-tovik::lp::kInf, 0);
    for (std::size_t j = 0; j < r.a.size(); ++j) {
      if (!random_.chance(0.6)) continue;
      r.a[j] = random_.chance(0.6) ? random_.pick(-6, 6) : random_.uniform(-6, 6);
      const double lower = problem_.lp.lower[j];
      r.upper += r.a[j] * (lower + random_.uniform(0, 1) * std::min(3.0, problem_.lp.upper[j] - lower));
    }
    if (random_.chance(0.3)) flip(r);
  }
  void finish() {
    tovik::lp::Matrix& m = problem_.lp.matrix;
    m.rows = static_cast<int>(rows_.size());
    m.columns = static_cast<int>(problem_.is_integer.size());
    m.start.assign(1, 0);
    for (int j = 0; j < m.columns; ++j) {
      for (int i = 0; i < m.rows; ++i) {
        if (rows_[i].a[j] == 0) continue;
        m.index.push_back(i);
        m.value.push_back(rows_[i].a[j]);
      }
      m.start.push_back(static_cast<int>(m.index.size()));
    }
    for (const Row& r : rows_) {
      problem_.lp.row_lower.push_back(r.lower);
      problem_.lp.row_upper.push_back(r.upper);
    }
  }

  Random random_;
  tovik::mip::Problem problem_;
  std::vector<Row> rows_;
  double wanted_ = 0;  // share of the columns that the objective wants large
};

}  // namespace support
