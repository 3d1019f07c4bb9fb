/* Tiny random LPs with small integers, degenerate on purpose, in which the structure that a presolve rule
 * looks for is planted. */
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "lp/presolve/settings.h"
#include "support/dense_lp.h"
#include "support/random.h"

namespace support {

using tovik::lp::kInf;
using tovik::lp::presolve::Rule;

class PlantedLps : public Random {
 public:
  using Random::Random;

  /* `planted` more than once: structures that meet each other. Most are feasible with an optimum. */
  DenseLp make(int rows, int columns, const std::vector<Rule>& planted) {
    DenseLp lp(rows, columns);
    kind_.assign(static_cast<size_t>(rows), 0);
    same_cost_.clear();
    no_cost_.clear();
    for (auto& row : lp.a) {
      for (double& entry : row) entry = chance(0.6) ? nonzero() : 0;
    }
    for (int j = 0; j < columns; ++j) {
      lp.lower[j] = chance(0.3) ? -kInf : pick(-2, 1);
      lp.upper[j] = chance(0.3) ? kInf : std::isinf(lp.lower[j]) ? pick(-1, 2) : lp.lower[j] + pick(0, 3);
    }
    for (const Rule rule : planted) plant(lp, rule);
    for (int i = 0; i < rows; ++i) {
      if (kind_[i] == 0) kind_[i] = "ELGRFELGR"[pick(0, 8)];
    }
    const bool with_optimum = chance(0.8);
    std::vector<double> x(static_cast<size_t>(columns)), y(static_cast<size_t>(rows));
    for (int j = 0; j < columns; ++j)
      x[j] = pick(std::isinf(lp.lower[j]) ? static_cast<int>(std::min(lp.upper[j], 2.0)) - 2
                                          : static_cast<int>(lp.lower[j]),
                  std::isinf(lp.upper[j]) ? static_cast<int>(std::max(lp.lower[j], -2.0)) + 2
                                          : static_cast<int>(lp.upper[j]));
    for (int i = 0; i < rows; ++i) y[i] = sides(lp, i, x);
    for (int j = 0; j < columns; ++j) {
      if (!with_optimum) {
        lp.cost[j] = chance(0.4) ? 0 : pick(-3, 3);
        continue;
      }
      const double d = chance(0.5) ? 0 : pick(0, 3);
      lp.cost[j] = x[j] == lp.lower[j] ? d : x[j] == lp.upper[j] ? -d : 0;
      for (int i = 0; i < rows; ++i) lp.cost[j] += lp.a[i][j] * y[i];
    }
    for (const auto& [k, j, g] : same_cost_) lp.cost[k] = g * lp.cost[j] + (chance(0.2) ? pick(-1, 1) : 0);
    for (const int j : no_cost_) lp.cost[j] = 0;
    for (const int i : forced_) force(lp, i);
    forced_.clear();
    if (chance(0.1)) {
      const int i = pick(0, rows - 1), shift = pick(-2, 2);
      lp.row_lower[i] += shift;
      lp.row_upper[i] += shift;
    }
    if (chance(0.3)) lp.offset = pick(-5, 5);
    return lp;
  }

 private:
  struct SameCost {
    int column, other;
    double ratio;
  };

  double nonzero() { return (chance(0.5) ? 1 : -1) * (chance(0.6) ? 1 : pick(2, 3)); }
  double ratio() {
    static constexpr double kRatios[] = {1, -1, 2, -2, 3, -3, 0.5, -0.5};
    return kRatios[pick(0, 7)];
  }
  int row(const DenseLp& lp) { return pick(0, lp.rows() - 1); }
  int column(const DenseLp& lp) { return pick(0, lp.columns() - 1); }
  static int other(int one, int count, int draw) {
    return count < 2 ? one : (one + 1 + draw % (count - 1)) % count;
  }
  void clear_column(DenseLp& lp, int j) {
    for (auto& r : lp.a) r[j] = 0;
  }

  /* Sides around the activity at x, mostly tight, and a dual that fits. */
  double sides(DenseLp& lp, int i, const std::vector<double>& x) {
    double activity = 0;
    for (size_t j = 0; j < x.size(); ++j) activity += lp.a[i][j] * x[j];
    const double size = chance(0.4) ? 0 : pick(1, 3), room = chance(0.6) ? 0 : pick(1, 4);
    double& low = lp.row_lower[i];
    double& high = lp.row_upper[i];
    low = -kInf, high = kInf;
    switch (kind_[i]) {
      case 'E':
        low = high = activity;
        return chance(0.5) ? size : -size;
      case 'L':
        high = activity + room;
        return room == 0 ? -size : 0;
      case 'G':
        low = activity - room;
        return room == 0 ? size : 0;
      case 'R':
        if (chance(0.5)) {
          low = activity - room, high = low + room + pick(1, 3);
          return room == 0 ? size : 0;
        }
        high = activity + room, low = high - room - pick(1, 3);
        return room == 0 ? -size : 0;
      default:
        return 0;
    }
  }

  /* The row's side becomes the activity that its columns' bounds just allow. */
  void force(DenseLp& lp, int i) {
    const bool lower_side = chance(0.5);
    double side = 0;
    for (int j = 0; j < lp.columns(); ++j) {
      const double a = lp.a[i][j];
      if (a != 0) side += a * ((a > 0) == lower_side ? lp.upper[j] : lp.lower[j]);
    }
    if (std::isinf(side)) return;
    lp.row_lower[i] = lower_side ? side : chance(0.5) ? side : side - pick(1, 3);
    lp.row_upper[i] = !lower_side ? side : chance(0.5) ? side : side + pick(1, 3);
    if (chance(0.3)) (lower_side ? lp.row_upper[i] : lp.row_lower[i]) = lower_side ? kInf : -kInf;
  }

  void free_column(DenseLp& lp, int j) { lp.lower[j] = -kInf, lp.upper[j] = kInf; }

  void plant(DenseLp& lp, Rule rule) {
    const int i = row(lp), j = column(lp);
    const int i2 = other(i, lp.rows(), pick(0, 9)), j2 = other(j, lp.columns(), pick(0, 9));
    std::vector<double>& r = lp.a[i];
    switch (rule) {
      case Rule::singleton_row:
        r.assign(r.size(), 0.0);
        r[j] = nonzero();
        break;
      case Rule::forcing_row:
        for (int k = 0; k < lp.columns(); ++k) {
          if (r[k] == 0) continue;
          if (std::isinf(lp.lower[k])) lp.lower[k] = std::min(lp.upper[k], 1.0) - 1;
          if (std::isinf(lp.upper[k])) lp.upper[k] = lp.lower[k] + pick(0, 2);
        }
        forced_.push_back(i);
        break;
      case Rule::empty_row:
        r.assign(r.size(), 0.0);
        break;
      case Rule::empty_column:
        clear_column(lp, j);
        break;
      case Rule::fixed_column:
        lp.lower[j] = lp.upper[j] = pick(-2, 2);
        break;
      case Rule::redundant_row:
        kind_[i] = "LGRF"[pick(0, 3)];
        break;
      case Rule::dual_fixing:
      case Rule::dominated_column:
        for (int k = 0; k < lp.rows(); ++k) {
          if (lp.a[k][j] == 0) continue;
          if (rule == Rule::dual_fixing || chance(0.5)) kind_[k] = lp.a[k][j] > 0 ? 'L' : 'G';
        }
        break;
      case Rule::doubleton_equation:
        r.assign(r.size(), 0.0);
        r[j] = nonzero();
        r[j2] = r[j] * ratio();
        kind_[i] = 'E';
        break;
      case Rule::free_column:
        if (r[j] == 0) r[j] = nonzero();
        kind_[i] = 'E';
        if (chance(0.5)) free_column(lp, j);
        break;
      case Rule::slack_column:
        clear_column(lp, j);
        r[j] = nonzero();
        if (chance(0.6)) kind_[i] = 'E';
        if (chance(0.5)) no_cost_.push_back(j);
        break;
      case Rule::parallel_rows: {
        const double g = ratio();
        for (size_t k = 0; k < r.size(); ++k) lp.a[i2][k] = i == i2 ? r[k] : g * r[k];
        break;
      }
      case Rule::parallel_columns: {
        if (j == j2) break;
        const double g = ratio();
        for (auto& line : lp.a) line[j2] = g * line[j];
        same_cost_.push_back({j2, j, g});
        break;
      }
      case Rule::zero_cost_column:
        for (int k = 0; k < lp.rows(); ++k) {
          if (lp.a[k][j] != 0) kind_[k] = lp.a[k][j] > 0 ? 'G' : 'L';
        }
        lp.upper[j] = kInf;
        if (chance(0.5)) {
          for (auto& line : lp.a) line[j] = -line[j];
          lp.upper[j] = std::isinf(lp.lower[j]) ? kInf : -lp.lower[j];
          lp.lower[j] = -kInf;
        }
        no_cost_.push_back(j);
        break;
      case Rule::sparsify:
        if (i == i2) break;
        for (double& entry : r) entry = entry == 0 && chance(0.7) ? nonzero() : entry;
        lp.a[i2] = r;
        for (double& entry : lp.a[i2]) entry *= 2;
        lp.a[i2][j] += nonzero();
        if (chance(0.4)) lp.a[i2][j2] += nonzero();
        kind_[i] = 'E';
        break;
      case Rule::dependent_rows:
        if (lp.rows() < 3) break;
        for (size_t k = 0; k < r.size(); ++k) lp.a[2][k] = lp.a[0][k] + (i == 0 ? 2 : -1) * lp.a[1][k];
        kind_[0] = kind_[1] = kind_[2] = 'E';
        break;
      case Rule::dual_equation:
        clear_column(lp, j);
        r[j] = nonzero();
        kind_[i] = "LGR"[pick(0, 2)];
        (chance(0.5) ? lp.lower[j] : lp.upper[j]) = chance(0.5) ? -kInf : kInf;
        if (lp.lower[j] == kInf) lp.lower[j] = -kInf;
        if (lp.upper[j] == -kInf) lp.upper[j] = kInf;
        break;
      case Rule::count:
        break;
    }
  }

  std::vector<char> kind_;  // by row: E, L, G, R or free; 0 not decided
  std::vector<SameCost> same_cost_;
  std::vector<int> no_cost_, forced_;
};

}  // namespace support
