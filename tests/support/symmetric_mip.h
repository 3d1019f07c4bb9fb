/* Problems with planted symmetries: bins, colours and machines that are equal, blocks that are permuted, packings on graphs with many
 * automorphisms. Small enough for enumeration or a search without symmetry. */
#pragma once

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

#include "mip/domain/problem.h"
#include "tests/support/random.h"

namespace support {

class SymmetricMip {
 public:
  static constexpr int kKinds = 7;

  explicit SymmetricMip(unsigned seed) : random_(seed) {}

  tovik::mip::Problem draw() { return draw(random_.below(kKinds)); }
  tovik::mip::Problem draw(int kind) {
    costs_.clear();
    uppers_.clear();
    integer_.clear();
    rows_.clear();
    switch (kind) {
      case 0:
        bins();
        break;
      case 1:
        colours();
        break;
      case 2:
        machines();
        break;
      case 3:
        blocks();
        break;
      case 4:
        ring();
        break;
      case 5:
        lots();
        break;
      default:
        cover_by_triples();
    }
    return finish();
  }
  Random& random() { return random_; }

 private:
  static constexpr double kInf = tovik::lp::kInf;
  using Terms = std::vector<std::pair<int, double>>;
  struct Row {
    Terms terms;
    double lower, upper;
  };

  int column(double cost, double upper = 1, bool integer = true) {
    costs_.push_back(cost);
    uppers_.push_back(upper);
    integer_.push_back(integer ? 1 : 0);
    return static_cast<int>(costs_.size()) - 1;
  }
  void row(Terms terms, double lower, double upper) { rows_.push_back({std::move(terms), lower, upper}); }

  /* Items of few sizes; equal bins. */
  void bins() {
    const int bins = random_.pick(2, 4), items = random_.pick(3, 5);
    const double size = random_.pick(6, 12);
    std::vector<int> opened;
    for (int b = 0; b < bins; ++b) opened.push_back(column(1));
    std::vector<Terms> contents(bins);
    for (int i = 0; i < items; ++i) {
      Terms placed;
      const double weight = random_.pick(2, 7), cost = random_.chance(0.3) ? random_.pick(-2, 2) : 0;
      for (int b = 0; b < bins; ++b) {
        placed.emplace_back(column(cost), 1);
        contents[b].emplace_back(placed.back().first, weight);
      }
      row(placed, 1, random_.chance(0.8) ? 1 : kInf);
    }
    for (int b = 0; b < bins; ++b) {
      contents[b].emplace_back(opened[b], -size);
      row(contents[b], -kInf, 0);
    }
  }
  void colours() {
    const int colours = random_.pick(2, 4), nodes = random_.pick(3, 5);
    std::vector<int> used;
    for (int c = 0; c < colours; ++c) used.push_back(column(1));
    std::vector<std::vector<int>> x(nodes);
    for (int v = 0; v < nodes; ++v) {
      Terms one;
      for (int c = 0; c < colours; ++c) {
        x[v].push_back(column(0));
        one.emplace_back(x[v][c], 1);
      }
      row(one, 1, 1);
    }
    for (int v = 0; v < nodes; ++v) {
      for (int w = v + 1; w < nodes; ++w) {
        if (random_.chance(0.5)) continue;
        for (int c = 0; c < colours; ++c) row({{x[v][c], 1}, {x[w][c], 1}, {used[c], -1}}, -kInf, 0);
      }
    }
    for (int v = 0; v < nodes; ++v) {
      for (int c = 0; c < colours; ++c) row({{x[v][c], 1}, {used[c], -1}}, -kInf, 0);
    }
  }
  /* Makespan, a continuous column, or costs by machine that not all share. */
  void machines() {
    const int machines = random_.pick(2, 4), jobs = random_.pick(3, 5);
    const int span = column(1, kInf, false);
    std::vector<Terms> load(machines, Terms{{span, -1}});
    for (int j = 0; j < jobs; ++j) {
      Terms one;
      const double time = random_.pick(1, 6);
      for (int m = 0; m < machines; ++m) {
        one.emplace_back(column(random_.chance(0.1) ? 1 : 0), 1);
        load[m].emplace_back(one.back().first, time);
      }
      row(one, 1, 1);
    }
    for (const Terms& terms : load) row(terms, -kInf, 0);
  }
  /* One random block several times, with rows that tie all together. */
  void blocks() {
    const int blocks = random_.pick(2, 3), size = random_.pick(2, 4), rows = random_.pick(1, 3);
    std::vector<double> cost(size), upper(size), tie(size);
    for (int k = 0; k < size; ++k) {
      cost[k] = random_.pick(-5, 5);
      upper[k] = random_.chance(0.8) ? 1 : 2;
      tie[k] = random_.pick(-2, 3);
    }
    std::vector<std::vector<double>> a(rows, std::vector<double>(size));
    std::vector<double> side(rows);
    for (int i = 0; i < rows; ++i) {
      for (double& v : a[i]) v = random_.pick(-4, 5);
      side[i] = random_.pick(0, 5);
    }
    Terms all;
    for (int b = 0; b < blocks; ++b) {
      std::vector<int> x;
      for (int k = 0; k < size; ++k) x.push_back(column(cost[k], upper[k]));
      for (int i = 0; i < rows; ++i) {
        Terms terms;
        for (int k = 0; k < size; ++k) terms.emplace_back(x[k], a[i][k]);
        row(terms, -kInf, side[i]);
      }
      for (int k = 0; k < size; ++k) all.emplace_back(x[k], tie[k]);
    }
    row(all, random_.pick(0, 2), kInf);
  }
  /* Neighbours on a ring, or on two, whose automorphisms are no exchanges of blocks. */
  void ring() {
    const int size = random_.pick(5, 11);
    const bool covers = random_.chance(0.5);
    const int chord = random_.pick(1, 3);
    for (int k = 0; k < size; ++k) column(covers ? 1 : -1);
    for (int k = 0; k < size; ++k) {
      Terms terms{{k, 1}, {(k + 1) % size, 1}};
      if (chord > 1) terms.emplace_back((k + 1 + chord) % size, 1);
      covers ? row(terms, 1, kInf) : row(terms, -kInf, 1);
    }
    Terms all;
    for (int k = 0; k < size; ++k) all.emplace_back(k, 1);
    if (random_.chance(0.5)) row(all, random_.pick(0, size / 2), random_.pick(size / 2, size));
  }
  /* Equal products with lots, amounts and integers that are not binary. */
  void lots() {
    const int products = random_.pick(2, 3), periods = random_.pick(1, 2);
    const double most = random_.pick(3, 6), setup = random_.pick(1, 5), demand = random_.pick(2, 5);
    std::vector<Terms> capacity(periods);
    for (int p = 0; p < products; ++p) {
      Terms stock;
      for (int t = 0; t < periods; ++t) {
        const int on = column(setup), lot = column(1, 3), amount = column(t == 0 ? 0.5 : 0.25, kInf, false);
        row({{amount, 1}, {on, -most}}, -kInf, 0);
        row({{amount, 1}, {lot, -2}}, -kInf, 0);
        stock.emplace_back(amount, 1);
        capacity[t].emplace_back(amount, 1);
        row(stock, demand * (t + 1) / periods, kInf);
      }
    }
    for (const Terms& terms : capacity) row(terms, -kInf, random_.pick(6, 14));
  }
  /* Triples of a system on seven points, or on nine with some missing. */
  void cover_by_triples() {
    const bool seven = random_.chance(0.5);
    const int points = seven ? 7 : 9;
    for (int k = 0; k < points; ++k) column(1);
    const auto triple = [&](int a, int b, int c) { row({{a, 1}, {b, 1}, {c, 1}}, 1, kInf); };
    if (seven) {
      for (int k = 0; k < 7; ++k) triple(k, (k + 1) % 7, (k + 3) % 7);
      return;
    }
    const int left_out = random_.pick(0, 11);
    int number = 0;
    for (int slope = 0; slope < 4; ++slope) {
      for (int k = 0; k < 3; ++k) {
        if (number++ == left_out) continue;
        const auto at = [&](int u) { return slope == 3 ? 3 * k + u : 3 * u + (k + slope * u) % 3; };
        triple(at(0), at(1), at(2));
      }
    }
  }

  /* Columns and rows in a random order. */
  tovik::mip::Problem finish() {
    const auto columns = static_cast<int>(costs_.size());
    std::vector<int> place(costs_.size());
    std::iota(place.begin(), place.end(), 0);
    std::shuffle(place.begin(), place.end(), random_.engine());
    std::shuffle(rows_.begin(), rows_.end(), random_.engine());
    tovik::mip::Problem p;
    tovik::lp::LpData& lp = p.lp;
    lp.cost.resize(costs_.size());
    lp.upper.resize(costs_.size());
    lp.lower.resize(costs_.size());
    p.is_integer.resize(costs_.size());
    for (int j = 0; j < columns; ++j) {
      lp.cost[place[j]] = costs_[j];
      lp.upper[place[j]] = uppers_[j];
      p.is_integer[place[j]] = integer_[j];
    }
    std::vector<std::vector<std::pair<int, double>>> entries(costs_.size());
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      for (const auto& [j, a] : rows_[i].terms) {
        if (a != 0) entries[place[j]].emplace_back(static_cast<int>(i), a);
      }
      lp.row_lower.push_back(rows_[i].lower);
      lp.row_upper.push_back(rows_[i].upper);
    }
    lp.matrix.rows = static_cast<int>(rows_.size());
    lp.matrix.columns = columns;
    for (auto& list : entries) {
      std::sort(list.begin(), list.end());
      for (const auto& [i, a] : list) {
        lp.matrix.index.push_back(i);
        lp.matrix.value.push_back(a);
      }
      lp.matrix.start.push_back(static_cast<int>(lp.matrix.index.size()));
    }
    return p;
  }

  Random random_;
  std::vector<double> costs_, uppers_;
  std::vector<char> integer_;
  std::vector<Row> rows_;
};

}  // namespace support
