/* Random mixed-integer problems of ten to thirty columns with the structure of the textbooks' models: packings, covers and
 * partitions, assignments with capacities, lot sizes, fixed charges on arcs, knapsack equations, piecewise linear costs by
 * ordered sets, semi-continuous portfolios, and machines with indicators. Too large for enumeration, small enough for a bare
 * branch and bound. */
#pragma once

#include <cmath>
#include <utility>
#include <vector>

#include "mip/domain/problem.h"
#include "tests/support/random.h"

namespace support {

class TextbookMip {
 public:
  static constexpr int kKinds = 8;

  explicit TextbookMip(unsigned seed) : random_(seed) {}

  tovik::mip::Problem draw() {
    problem_ = {};
    rows_.clear();
    switch (random_.below(kKinds)) {
      case 0:
        sets_of_items();
        break;
      case 1:
        assignment();
        break;
      case 2:
        lot_sizes();
        break;
      case 3:
        fixed_charges();
        break;
      case 4:
        knapsack_equations();
        break;
      case 5:
        piecewise_costs();
        break;
      case 6:
        portfolio();
        break;
      default:
        machines();
    }
    return finish();
  }
  Random& random() { return random_; }

 private:
  static constexpr double kInf = tovik::lp::kInf;
  struct Row {
    std::vector<std::pair<int, double>> terms;
    double lower, upper;
  };

  int column(double cost, double upper, bool integer) {
    problem_.lp.cost.push_back(cost);
    problem_.lp.lower.push_back(0);
    problem_.lp.upper.push_back(upper);
    problem_.is_integer.push_back(integer ? 1 : 0);
    return static_cast<int>(problem_.is_integer.size()) - 1;
  }
  int binary(double cost) { return column(cost, 1, true); }
  Row& row(double lower, double upper) {
    rows_.push_back({{}, lower, upper});
    return rows_.back();
  }
  double number(int low, int high) {
    return random_.chance(0.75) ? random_.pick(low, high) : random_.uniform(low, high);
  }

  void sets_of_items() {
    const int n = random_.pick(10, 20), m = random_.pick(5, 12);
    const bool profit = random_.chance(0.5);
    for (int j = 0; j < n; ++j) binary(profit ? -number(1, 9) : number(1, 9));
    for (int i = 0; i < m; ++i) {
      const int kind = random_.below(8);
      Row& r = kind < 3 ? row(-kInf, 1) : kind < 6 ? row(1, kInf) : kind == 6 ? row(1, 1) : row(2, 3);
      const double density = random_.uniform(0.15, 0.5);
      for (int j = 0; j < n; ++j) {
        if (random_.chance(density)) r.terms.emplace_back(j, 1);
      }
    }
  }
  /* Of tasks to agents whose capacities bind. */
  void assignment() {
    const int agents = random_.pick(2, 4), tasks = random_.pick(4, 6);
    std::vector<std::vector<int>> x(static_cast<std::size_t>(agents));
    for (auto& of_agent : x) {
      for (int t = 0; t < tasks; ++t) of_agent.push_back(binary(number(5, 30)));
    }
    for (int t = 0; t < tasks; ++t) {
      Row& r = row(1, random_.chance(0.8) ? 1 : 2);
      for (const auto& of_agent : x) r.terms.emplace_back(of_agent[t], 1);
    }
    for (const auto& of_agent : x) {
      Row& r = row(-kInf, 0);
      double sum = 0;
      for (const int j : of_agent) {
        r.terms.emplace_back(j, number(4, 20));
        sum += r.terms.back().second;
      }
      r.upper = std::floor(sum / agents * random_.uniform(0.9, 1.4));
    }
  }
  /* Periods with demands; a set-up pays for each lot, which may be whole. */
  void lot_sizes() {
    const bool whole = random_.chance(0.3);
    const int periods = random_.pick(3, whole ? 4 : 6);
    const double capacity = random_.pick(8, 25);
    const bool tight = random_.chance(0.5), least_lot = random_.chance(0.3);
    int stock = -1;
    for (int t = 0; t < periods; ++t) {
      const double most = tight ? capacity : 100;
      const int lot = column(number(1, 5), least_lot ? most : kInf, whole);
      const int setup = binary(number(5, 40));
      const int next = column(number(0, 3), random_.chance(0.2) ? random_.pick(5, 15) : kInf, false);
      if (least_lot) problem_.semi_columns.push_back({lot, std::floor(most / 3), most});
      const double demand = random_.chance(0.2) ? 0 : number(1, 12);
      Row& balance = row(demand, demand);
      balance.terms = {{lot, 1}, {next, -1}};
      if (stock >= 0) balance.terms.emplace_back(stock, 1);
      row(-kInf, 0).terms = {{lot, 1}, {setup, -most}};
      stock = next;
    }
  }
  /* Flow from a source to demands over arcs that must be opened. */
  void fixed_charges() {
    const int nodes = random_.pick(3, 5);
    std::vector<std::size_t> balance;
    double sum = 0;
    for (int v = 1; v < nodes; ++v) {
      const double demand = number(0, 8);
      sum += demand;
      row(demand, demand);
    }
    for (int a = 0; a < nodes; ++a) {
      for (int b = 1; b < nodes; ++b) {
        if (a == b || !random_.chance(0.75)) continue;
        const double capacity = random_.chance(0.6) ? sum : number(3, 12);
        const int flow = column(number(0, 4), random_.chance(0.5) ? capacity : kInf, false);
        const int open = binary(number(3, 30));
        rows_[static_cast<std::size_t>(b - 1)].terms.emplace_back(flow, 1);
        if (a > 0) rows_[static_cast<std::size_t>(a - 1)].terms.emplace_back(flow, -1);
        row(-kInf, 0).terms = {{flow, 1}, {open, -capacity}};
      }
    }
  }
  void knapsack_equations() {
    const int n = random_.pick(8, 14), m = random_.pick(1, 2);
    for (int j = 0; j < n; ++j) column(number(-9, 9), random_.pick(1, 4), true);
    for (int i = 0; i < m; ++i) {
      Row& r = row(0, 0);
      for (int j = 0; j < n; ++j) {
        const double a = random_.pick(2, 40);
        r.terms.emplace_back(j, a);
        r.lower += a * random_.pick(0, static_cast<int>(problem_.lp.upper[j]));
      }
      if (random_.chance(0.3)) r.lower += 1;
      r.upper = r.lower;
    }
    if (random_.chance(0.5)) {
      const int slack = column(number(1, 20), kInf, false);
      for (Row& r : rows_) r.terms.emplace_back(slack, random_.chance(0.5) ? 1 : -1);
    }
  }
  /* Costs of some quantities by points between which they are linear; a choice among others by a set of type 1. */
  void piecewise_costs() {
    const int quantities = random_.pick(2, 3);
    std::vector<int> all;
    for (int q = 0; q < quantities; ++q) {
      const int points = random_.pick(3, 5), quantity = column(0, kInf, random_.chance(0.2));
      std::vector<int> weights;
      std::vector<std::pair<int, double>> at;
      double place = 0;
      for (int k = 0; k < points; ++k) {
        weights.push_back(column(number(-10, 10), 1, false));
        at.emplace_back(weights.back(), place);
        place += random_.pick(1, 4);
      }
      Row& whole = row(1, 1);
      for (const int w : weights) whole.terms.emplace_back(w, 1);
      Row& value = row(0, 0);
      value.terms = at;
      value.terms.emplace_back(quantity, -1);
      problem_.sets.push_back({2, weights});
      all.push_back(quantity);
    }
    const double demand = random_.pick(2, 9);
    Row& meet = row(demand, random_.chance(0.3) ? demand : kInf);
    for (const int q : all) meet.terms.emplace_back(q, random_.chance(0.8) ? 1 : random_.pick(-1, 2));
    if (!random_.chance(0.6)) return;
    tovik::mip::OrderedSet choice{1, {}};
    for (int k = random_.pick(2, 4); k > 0; --k) {
      choice.columns.push_back(column(number(-3, 6), random_.pick(1, 6), random_.chance(0.3)));
      rows_[static_cast<std::size_t>(rows_.size() - 1)].terms.emplace_back(choice.columns.back(),
                                                                           number(1, 3));
    }
    problem_.sets.push_back(choice);
  }
  /* Shares that are not held or not small, few of them. */
  void portfolio() {
    const int n = random_.pick(6, 12), held = random_.pick(2, 4);
    Row& budget = row(10, 10);
    for (int j = 0; j < n; ++j) {
      const double least = number(1, 4), most = least + number(0, 5);
      const int x = column(-number(0, 9), most, random_.chance(0.2));
      if (random_.chance(0.8)) problem_.semi_columns.push_back({x, std::ceil(least), std::ceil(most)});
      problem_.lp.upper[x] = std::ceil(most);
      budget.terms.emplace_back(x, 1);
    }
    if (random_.chance(0.3)) budget.lower = -kInf;
    const std::vector<std::pair<int, double>> shares = budget.terms;
    for (int i = random_.pick(1, 3); i > 0; --i) {  // risks
      Row& risk = row(-kInf, number(10, 40));
      for (const auto& [x, one] : shares) risk.terms.emplace_back(x, number(0, 6));
    }
    std::vector<int> switches;
    for (const auto& [x, one] : shares) {
      switches.push_back(binary(random_.chance(0.3) ? number(0, 3) : 0));
      row(-kInf, 0).terms = {{x, 1}, {switches.back(), -problem_.lp.upper[x]}};
    }
    Row& count = row(-kInf, held);
    for (const int z : switches) count.terms.emplace_back(z, 1);
  }
  /* Jobs on one machine, the order of each two by a pair of indicators; the end, or the weighted sum of starts, is minimized. */
  void machines() {
    const int jobs = random_.pick(3, 4);
    const bool by_end = random_.chance(0.5);
    const int end = column(by_end ? 1 : 0, random_.chance(0.5) ? kInf : 60, false);
    std::vector<int> start;
    std::vector<double> length;
    for (int k = 0; k < jobs; ++k) {
      start.push_back(column(by_end ? 0 : number(1, 5), random_.chance(0.3) ? 40 : kInf, false));
      problem_.lp.lower[start.back()] = random_.pick(0, 6);  // release
      length.push_back(number(1, 8));
      row(length.back(), kInf).terms = {{end, 1}, {start.back(), -1}};
    }
    for (int a = 0; a < jobs; ++a) {
      for (int b = a + 1; b < jobs; ++b) {
        const int first = binary(random_.chance(0.2) ? number(-3, 3) : 0);
        after(first, 1, start[b], start[a], length[a]);
        after(first, 0, start[a], start[b], length[b]);
      }
    }
  }
  /* While the switch is active: late - early >= gap. */
  void after(int column_of_switch, double active, int late, int early, double gap) {
    const int slack = column(0, kInf, false);
    const bool turned = random_.chance(0.3);
    Row& r = turned ? row(-kInf, -gap) : row(gap, kInf);
    const double sign = turned ? -1 : 1;
    r.terms = {{late, sign}, {early, -sign}, {slack, sign}};
    problem_.indicators.push_back({column_of_switch, active, slack});
  }

  tovik::mip::Problem finish() {
    tovik::mip::Problem& p = problem_;
    std::vector<std::vector<std::pair<int, double>>> by_column(p.is_integer.size());
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      p.lp.row_lower.push_back(rows_[i].lower);
      p.lp.row_upper.push_back(rows_[i].upper);
      for (const auto& [j, a] : rows_[i].terms) {
        if (a != 0) by_column[j].emplace_back(static_cast<int>(i), a);
      }
    }
    p.lp.matrix.rows = static_cast<int>(rows_.size());
    p.lp.matrix.columns = static_cast<int>(by_column.size());
    for (const auto& entries : by_column) {
      for (const auto& [i, a] : entries) {
        p.lp.matrix.index.push_back(i);
        p.lp.matrix.value.push_back(a);
      }
      p.lp.matrix.start.push_back(static_cast<int>(p.lp.matrix.index.size()));
    }
    return std::move(p);
  }

  Random random_;
  tovik::mip::Problem problem_;
  std::vector<Row> rows_;
};

}  // namespace support
