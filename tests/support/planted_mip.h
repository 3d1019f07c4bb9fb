/* Random small mixed-integer problems with what presolve looks for planted in them: copies of columns and rows, equations of
 * two columns, slacks, packing and covering rows, columns that others dominate, rows with common divisors. */
#pragma once

#include <cmath>
#include <vector>

#include "tests/support/random_mip.h"

namespace support {

class PlantedMip {
 public:
  explicit PlantedMip(unsigned seed) : maker_(seed) {}

  tovik::mip::Problem draw() {
    problem_ = maker_.draw();
    load();
    Random& random = maker_.random();
    const int plants = random.pick(0, 3);
    for (int k = 0; k < plants && num_columns() < 9; ++k) plant(random.pick(0, kKinds - 1));
    store();
    return problem_;
  }
  Random& random() { return maker_.random(); }

 private:
  static constexpr int kKinds = 11;

  int num_columns() const { return problem_.num_columns(); }

  void load() {
    const tovik::lp::Matrix& m = problem_.lp.matrix;
    dense_.assign(static_cast<std::size_t>(problem_.num_rows()), std::vector<double>(num_columns()));
    for (int j = 0; j < m.columns; ++j) {
      for (int k = m.start[j]; k < m.start[j + 1]; ++k) dense_[m.index[k]][j] = m.value[k];
    }
  }
  void store() {
    tovik::lp::Matrix& m = problem_.lp.matrix;
    m.rows = static_cast<int>(dense_.size());
    m.columns = num_columns();
    m.start.assign(1, 0);
    m.index.clear();
    m.value.clear();
    for (int j = 0; j < m.columns; ++j) {
      for (int i = 0; i < m.rows; ++i) {
        if (dense_[i][j] == 0) continue;
        m.index.push_back(i);
        m.value.push_back(dense_[i][j]);
      }
      m.start.push_back(static_cast<int>(m.index.size()));
    }
  }

  void plant(int kind) {
    switch (kind) {
      case 0:
        return copy_of_column();
      case 1:
        return copy_of_row();
      case 2:
        return equation_of_two();
      case 3:
        return slack();
      case 4:
        return packing_row();
      case 5:
        return divisible_row();
      case 6:
        return dominated_column();
      case 7:
        return covering_rows();
      case 8:
        return conflicts();
      case 9:
        return nested_row();
      default:
        return defined_column();
    }
  }
  bool is_binary(int j) const {
    return problem_.is_integer[j] != 0 && problem_.lp.lower[j] == 0 && problem_.lp.upper[j] == 1;
  }
  int any_column() { return random().below(num_columns()); }
  double ratio() {
    return random().chance(0.5) ? (random().chance(0.5) ? 1 : -1)
                                : random().pick(1, 3) - 4 * random().pick(0, 1);
  }

  int add_column(double cost, double lower, double upper, char integer) {
    problem_.lp.cost.push_back(cost);
    problem_.lp.lower.push_back(lower);
    problem_.lp.upper.push_back(upper);
    problem_.is_integer.push_back(integer);
    ++problem_.lp.matrix.columns;
    for (std::vector<double>& row : dense_) row.push_back(0);
    return num_columns() - 1;
  }
  int add_row(double lower, double upper) {
    problem_.lp.row_lower.push_back(lower);
    problem_.lp.row_upper.push_back(upper);
    ++problem_.lp.matrix.rows;
    dense_.emplace_back(static_cast<std::size_t>(num_columns()));
    return static_cast<int>(dense_.size()) - 1;
  }

  void copy_of_column() {
    const int j = any_column();
    const double g = ratio();
    const bool integer = random().chance(problem_.is_integer[j] != 0 ? 0.8 : 0.2);
    const double lower = random().pick(-1, 1), upper = lower + random().pick(0, 2);
    const double cost = g * problem_.lp.cost[j] + (random().chance(0.5) ? 0 : random().pick(-2, 2));
    const int k = add_column(cost, lower, !integer && random().chance(0.3) ? kInf : upper, integer ? 1 : 0);
    for (std::vector<double>& row : dense_) row[k] = g * row[j];
  }
  void copy_of_row() {
    if (dense_.empty()) return;
    const auto i = static_cast<std::size_t>(random().below(static_cast<int>(dense_.size())));
    const double g = ratio();
    const double lower = problem_.lp.row_lower[i], upper = problem_.lp.row_upper[i];
    double low = g > 0 ? g * lower : g * upper, high = g > 0 ? g * upper : g * lower;
    if (random().chance(0.4)) low -= random().pick(-1, 2);
    if (random().chance(0.4)) high += random().pick(-1, 2);
    if (low > high) std::swap(low, high);
    const int k = add_row(low, high);
    for (int j = 0; j < num_columns(); ++j) dense_[k][j] = g * dense_[i][j];
  }
  double low_value(int j) const { return std::isinf(problem_.lp.lower[j]) ? -1 : problem_.lp.lower[j]; }
  void equation_of_two() {
    if (num_columns() < 2) return;
    const int j = any_column(), k = any_column();
    if (j == k) return;
    const double a = random().pick(1, 3), b = ratio() * random().pick(1, 2);
    const double side = a * (low_value(j) + random().pick(0, 1)) + b * (low_value(k) + random().pick(0, 1)) +
                        (random().chance(0.1) ? 1 : 0);
    const int i = add_row(side, side);
    dense_[i][j] = a;
    dense_[i][k] = b;
  }
  void slack() {
    if (dense_.empty()) return;
    const auto i = static_cast<std::size_t>(random().below(static_cast<int>(dense_.size())));
    const bool integer = random().chance(0.4);
    const int s = add_column(random().chance(0.5) ? 0 : random().pick(-2, 2), 0,
                             !integer && random().chance(0.5) ? kInf : random().pick(1, 3), integer ? 1 : 0);
    dense_[i][s] = ratio();
  }
  void packing_row() {
    const int i = add_row(random().chance(0.2) ? 1 : -kInf, 1);
    for (int j = 0; j < num_columns(); ++j) {
      if (is_binary(j) && random().chance(0.8)) dense_[i][j] = 1;
    }
  }
  /* A column that does no row more good than another one. */
  void dominated_column() {
    const int j = any_column();
    const bool unlimited = random().chance(0.3) && problem_.is_integer[j] == 0;
    if (unlimited) problem_.lp.upper[j] = kInf;
    const double cost = problem_.lp.cost[j] + random().pick(0, 2);
    const int k = add_column(cost, 0, random().pick(1, 2), random().chance(0.8) ? 1 : 0);
    for (std::size_t i = 0; i < dense_.size(); ++i) {
      const bool above = problem_.lp.row_upper[i]<kInf, below = problem_.lp.row_lower[i]> - kInf;
      const int worse = above == below ? 0 : random().pick(0, 2);
      dense_[i][k] = dense_[i][j] + (above ? worse : -worse);
    }
    if (random().chance(0.5)) packing_row();
  }
  /* Rows that binary columns cover, some of them columns of their own. */
  void covering_rows() {
    std::vector<int> columns;
    for (int j = 0; j < num_columns(); ++j) {
      if (is_binary(j) && random().chance(0.8)) columns.push_back(j);
    }
    const int own = random().pick(1, 2);
    for (int k = 0; k < own; ++k) columns.push_back(add_column(random().pick(0, 4), 0, 1, 1));
    const int rows = random().pick(1, 3);
    for (int k = 0; k < rows; ++k) {
      const int i = add_row(random().pick(1, 2), kInf);
      for (const int j : columns) {
        if (random().chance(0.7)) dense_[i][j] = random().pick(1, 2);
      }
    }
  }
  /* Binary columns, or their complements, of which most pairs exclude each other. */
  void conflicts() {
    std::vector<int> columns;
    for (int j = 0; j < num_columns(); ++j) {
      if (is_binary(j)) columns.push_back(j);
    }
    while (columns.size() < 4) columns.push_back(add_column(random().pick(-3, 1), 0, 1, 1));
    std::vector<char> complemented(static_cast<std::size_t>(num_columns()));
    for (const int j : columns) complemented[j] = random().chance(0.3) ? 1 : 0;
    const auto exclude = [&](const std::vector<int>& members, bool equation) {
      const double scale = ratio();
      const int i = add_row(0, 0);
      double side = 1;
      for (const int j : members) {
        dense_[i][j] = scale * (complemented[j] != 0 ? -1 : 1);
        side -= complemented[j];
      }
      problem_.lp.row_upper[i] = scale > 0 || equation ? scale * side : kInf;
      problem_.lp.row_lower[i] = scale < 0 || equation ? scale * side : -kInf;
    };
    for (std::size_t k = 0; k < columns.size(); ++k) {
      for (std::size_t l = 0; l < k; ++l) {
        if (random().chance(0.7)) exclude({columns[k], columns[l]}, false);
      }
    }
    std::vector<int> some;
    for (const int j : columns) {
      if (random().chance(0.6)) some.push_back(j);
    }
    if (some.size() > 1 && random().chance(0.5)) exclude(some, random().chance(0.5));
  }
  /* A multiple of a row and a little more. */
  void nested_row() {
    if (dense_.empty()) return;
    const auto i = static_cast<std::size_t>(random().below(static_cast<int>(dense_.size())));
    const double g = ratio(), move = random().pick(-2, 2);
    double low = g * problem_.lp.row_lower[i], high = g * problem_.lp.row_upper[i];
    if (g < 0) std::swap(low, high);
    const int k = add_row(low + move, high + move);
    for (int j = 0; j < num_columns(); ++j) {
      dense_[k][j] = g * dense_[i][j];
      const bool is_slack = problem_.lp.cost[j] == 0 && problem_.is_integer[j] == 0;
      if (!is_slack && random().chance(0.3)) dense_[k][j] += random().pick(-2, 2);
    }
  }
  void divisible_row() {
    const double g = random().chance(0.5) ? random().pick(2, 4) : 0.5;
    double at = 0;
    std::vector<double> row(static_cast<std::size_t>(num_columns()));
    for (int j = 0; j < num_columns(); ++j) {
      if (problem_.is_integer[j] == 0 || random().chance(0.2)) continue;
      row[j] = g * random().pick(-3, 3);
      at += row[j] * (problem_.lp.lower[j] + random().pick(0, 1));
    }
    const bool equation = random().chance(0.3);
    const double side = at + (random().chance(equation ? 0.1 : 0.6) ? 0.3 * g : 0);
    const int i = add_row(equation ? side : -kInf, side);
    dense_[i] = row;
  }
  /* A continuous column that an equation defines. */
  void defined_column() {
    const int i = add_row(0, 0);
    double low = 0, high = 0;
    for (int j = 0; j < num_columns(); ++j) {
      if (std::isinf(problem_.lp.lower[j]) || std::isinf(problem_.lp.upper[j]) || random().chance(0.5))
        continue;
      const double a = random().pick(-2, 2);
      dense_[i][j] = a;
      low += std::min(a * problem_.lp.lower[j], a * problem_.lp.upper[j]);
      high += std::max(a * problem_.lp.lower[j], a * problem_.lp.upper[j]);
    }
    const bool wide = random().chance(0.6);
    const int s = add_column(random().pick(-2, 2), wide ? low : 0, wide ? high : kInf, 0);
    for (std::vector<double>& row : dense_) row[s] = random().chance(0.5) ? random().pick(-2, 2) : 0;
    dense_[i][s] = -1;
  }

  RandomMip maker_;
  tovik::mip::Problem problem_;
  std::vector<std::vector<double>> dense_;
};

}  // namespace support
