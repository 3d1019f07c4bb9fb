/* Random small mixed-integer problems of every kind, and their truth by enumeration: all values of the integer columns and all
 * decisions of the objects, an LP for the rest. */
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "lp/simplex/solver.h"
#include "mip/domain/problem.h"
#include "tests/support/quiet_control.h"
#include "tests/support/random.h"

namespace support {

using tovik::lp::kInf;

struct MipTruth {
  bool feasible = false, unbounded = false;
  double objective = kInf;
};

class RandomMip {
 public:
  explicit RandomMip(unsigned seed) : random_(seed) {}

  tovik::mip::Problem draw() {
    tovik::mip::Problem p;
    integers_ = random_.pick(0, 5);
    const int continuous = random_.pick(integers_ == 0 ? 1 : 0, 3);
    for (int j = 0; j < integers_; ++j) add_integer(p);
    for (int j = 0; j < continuous; ++j) add_continuous(p);
    rows(p, random_.pick(0, 5));
    if (random_.chance(0.3)) add_semi_column(p);
    if (random_.chance(0.3)) add_set(p);
    if (integers_ > 0 && random_.chance(0.3)) add_indicator(p);
    return p;
  }
  Random& random() { return random_; }

 private:
  double coefficient() { return random_.chance(0.7) ? random_.pick(-5, 5) : random_.uniform(-5, 5); }
  void column(tovik::mip::Problem& p, double lower, double upper, char integer) {
    p.lp.lower.push_back(lower);
    p.lp.upper.push_back(upper);
    p.lp.cost.push_back(random_.chance(0.2) ? 0 : coefficient());
    p.is_integer.push_back(integer);
    ++p.lp.matrix.columns;
    p.lp.matrix.start.push_back(p.lp.matrix.start.back());
  }
  void add_integer(tovik::mip::Problem& p) {
    const int lower = random_.chance(0.6) ? 0 : random_.pick(-3, 2);
    column(p, lower, lower + (random_.chance(0.6) ? 1 : random_.pick(0, 3)), 1);
  }
  void add_continuous(tovik::mip::Problem& p) {
    const double lower = random_.chance(0.6) ? 0 : random_.chance(0.2) ? -kInf : random_.pick(-3, 3);
    column(p, lower, random_.chance(0.4) ? kInf : std::max(lower, -3.0) + random_.pick(0, 6), 0);
  }
  /* Row i gets its entries at the end of the columns. */
  void rows(tovik::mip::Problem& p, int count) {
    const int n = p.num_columns();
    std::vector<std::vector<double>> dense(static_cast<std::size_t>(count), std::vector<double>(n));
    for (int i = 0; i < count; ++i) {
      double at = 0;
      for (int j = 0; j < n; ++j) {
        if (random_.chance(0.7)) dense[i][j] = coefficient();
        const double low = std::isinf(p.lp.lower[j]) ? -2 : p.lp.lower[j];
        at += dense[i][j] * (low + random_.pick(0, 1));
      }
      if (random_.chance(0.3)) at += random_.pick(-3, 3);
      const int kind = random_.pick(0, 4);
      p.lp.row_lower.push_back(kind == 0 || kind == 1 ? -kInf : at - (kind == 4 ? random_.pick(0, 4) : 0));
      p.lp.row_upper.push_back(kind == 2 ? kInf : at);
    }
    tovik::lp::Matrix& m = p.lp.matrix;
    m.rows = count;
    m.start.assign(1, 0);
    for (int j = 0; j < n; ++j) {
      for (int i = 0; i < count; ++i) {
        if (dense[i][j] == 0) continue;
        m.index.push_back(i);
        m.value.push_back(dense[i][j]);
      }
      m.start.push_back(static_cast<int>(m.index.size()));
    }
  }
  void add_semi_column(tovik::mip::Problem& p) {
    const int j = random_.below(p.num_columns());
    const double lower = random_.pick(1, 2), upper = random_.chance(0.2) ? kInf : lower + random_.pick(0, 2);
    const bool integer = p.is_integer[j] != 0;
    p.lp.lower[j] = 0;
    p.lp.upper[j] = integer ? std::min(upper, 4.0) : upper;
    p.semi_columns.push_back({j, lower, p.lp.upper[j]});
  }
  void add_set(tovik::mip::Problem& p) {
    tovik::mip::OrderedSet set;
    set.type = random_.pick(1, 2);
    for (int j = 0; j < p.num_columns(); ++j) {
      if (random_.chance(0.6)) set.columns.push_back(j);
    }
    if (!set.columns.empty()) p.sets.push_back(set);
  }
  void add_indicator(tovik::mip::Problem& p) {
    const int z = random_.below(integers_);
    p.lp.lower[z] = 0;
    p.lp.upper[z] = 1;
    for (const tovik::mip::SemiColumn& s : p.semi_columns) {
      if (s.column == z) return;
    }
    if (p.num_rows() == 0) return;
    const int row = random_.below(p.num_rows());
    const int slack = p.num_columns();
    column(p, 0, kInf, 0);
    p.lp.cost.back() = 0;
    p.lp.matrix.index.push_back(row);
    p.lp.matrix.value.push_back(std::isinf(p.lp.row_upper[row]) ? 1 : -1);
    p.lp.matrix.start.back() = static_cast<int>(p.lp.matrix.index.size());
    p.indicators.push_back({z, static_cast<double>(random_.pick(0, 1)), slack});
  }

  Random random_;
  int integers_ = 0;
};

/* Calls `leaf` with the LP of every assignment of the integer columns and every decision of the objects. Every integer column
 * must have finite bounds. */
template <class Leaf>
class EachLeaf {
 public:
  EachLeaf(const tovik::mip::Problem& problem, Leaf leaf) : problem_(problem), lp_(problem.lp), leaf_(leaf) {}

  void run() { integers(0); }

 private:
  void integers(int j) {
    if (j == problem_.num_columns()) return semi_columns(0);
    if (problem_.is_integer[j] == 0) return integers(j + 1);
    for (double v = problem_.lp.lower[j]; v <= problem_.lp.upper[j]; ++v) {
      lp_.lower[j] = lp_.upper[j] = v;
      integers(j + 1);
    }
  }
  void semi_columns(std::size_t k) {
    if (k == problem_.semi_columns.size()) return sets(0);
    const tovik::mip::SemiColumn& s = problem_.semi_columns[k];
    const double lower = lp_.lower[s.column], upper = lp_.upper[s.column];
    const auto with = [&](double l, double u) {
      lp_.lower[s.column] = std::max(lower, l);
      lp_.upper[s.column] = std::min(upper, u);
      if (lp_.lower[s.column] <= lp_.upper[s.column]) semi_columns(k + 1);
    };
    with(0, 0);
    with(s.lower, s.upper);
    lp_.lower[s.column] = lower;
    lp_.upper[s.column] = upper;
  }
  void sets(std::size_t k) {
    if (k == problem_.sets.size()) return solve();
    const tovik::mip::OrderedSet& set = problem_.sets[k];
    const tovik::lp::LpData before = lp_;
    for (std::size_t first = 0; first < set.columns.size(); ++first) {
      bool possible = true;
      for (std::size_t i = 0; i < set.columns.size(); ++i) {
        if (i >= first && i < first + static_cast<std::size_t>(set.type)) continue;
        const int j = set.columns[i];
        possible = possible && lp_.lower[j] <= 0 && lp_.upper[j] >= 0;
        lp_.lower[j] = lp_.upper[j] = 0;
      }
      if (possible) sets(k + 1);
      lp_ = before;
    }
  }
  void solve() {
    for (const tovik::mip::Indicator& i : problem_.indicators) {
      lp_.upper[i.slack] = lp_.lower[i.switch_column] == i.active_value ? 0 : kInf;
    }
    leaf_(lp_);
  }

  const tovik::mip::Problem& problem_;
  tovik::lp::LpData lp_;
  Leaf leaf_;
};

class Enumeration {
 public:
  explicit Enumeration(const tovik::mip::Problem& problem) : problem_(problem) {}

  MipTruth run() {
    MipTruth truth;
    EachLeaf leaves(problem_, [&truth](const tovik::lp::LpData& lp) {
      QuietControl control;
      tovik::lp::simplex::Solver solver(lp, {}, control, nullptr);
      const tovik::lp::Outcome outcome = solver.solve(tovik::lp::Method::dual);
      if (outcome == tovik::lp::Outcome::unbounded) truth.feasible = truth.unbounded = true;
      if (outcome != tovik::lp::Outcome::optimal) return;
      truth.feasible = true;
      truth.objective = std::min(truth.objective, solver.answer().objective);
    });
    leaves.run();
    return truth;
  }

 private:
  const tovik::mip::Problem& problem_;
};

}  // namespace support
