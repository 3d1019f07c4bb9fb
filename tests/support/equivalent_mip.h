/* A mixed-integer problem said in another way: rows, columns and objects in another order, x = shift + scale y in place of
 * each column (integers and binaries turned round or negated, continuous columns times powers of two), rows times powers of
 * two of either sign. Whatever solves the one must find the same objective value, or none, for the other.
 * Powers of two and whole shifts change no coefficient by rounding. Indicators keep a slack of coefficient -1 or 1.
 * Priorities, protected columns and user cuts are not carried over. */
#pragma once

#include <algorithm>
#include <cmath>
#include <numeric>
#include <tuple>
#include <utility>
#include <vector>

#include "mip/domain/problem.h"
#include "tests/support/random.h"

namespace support {

class EquivalentMip {
 public:
  EquivalentMip(const tovik::mip::Problem& problem, Random& random)
      : given_(problem),
        random_(random),
        terms_(static_cast<std::size_t>(problem.num_columns())),
        factor_(static_cast<std::size_t>(problem.num_rows()), 1.0),
        column_at_(shuffled(problem.num_columns())),
        row_at_(shuffled(problem.num_rows())) {
    draw_terms();
    draw_factors();
    columns();
    rows();
    objects();
  }
  const tovik::mip::Problem& problem() const { return problem_; }

  /* The given problem's point. */
  std::vector<double> back(const std::vector<double>& y) const {
    std::vector<double> x;
    for (std::size_t j = 0; j < terms_.size(); ++j)
      x.push_back(terms_[j].shift + terms_[j].scale * y[column_at_[j]]);
    return x;
  }

 private:
  struct Term {
    double shift = 0, scale = 1;
  };
  enum class Role : char { free, member, switched, slack };  // of what may be done with a column

  std::vector<int> shuffled(int count) {
    std::vector<int> order(static_cast<std::size_t>(count));
    std::iota(order.begin(), order.end(), 0);
    std::shuffle(order.begin(), order.end(), random_.engine());
    return order;
  }
  double power_of_two(int most) { return std::ldexp(1.0, random_.pick(-most, most)); }

  std::vector<Role> roles() const {
    std::vector<Role> role(terms_.size(), Role::free);
    for (const tovik::mip::SemiColumn& s : given_.semi_columns) role[s.column] = Role::member;
    for (const tovik::mip::OrderedSet& set : given_.sets) {
      for (const int j : set.columns) role[j] = Role::member;
    }
    for (const tovik::mip::Indicator& i : given_.indicators) role[i.slack] = Role::slack;
    for (const tovik::mip::Indicator& i : given_.indicators) {
      if (role[i.switch_column] == Role::free) role[i.switch_column] = Role::switched;
    }
    return role;
  }
  void draw_terms() {
    const std::vector<Role> role = roles();
    std::vector<char> is_switch(terms_.size());
    for (const tovik::mip::Indicator& i : given_.indicators) is_switch[i.switch_column] = 1;
    for (std::size_t j = 0; j < terms_.size(); ++j) {
      const bool integer = given_.is_integer[j] != 0;
      const double lower = given_.lp.lower[j], upper = given_.lp.upper[j];
      if (role[j] == Role::slack) continue;
      if (role[j] == Role::switched) {
        if (random_.chance(0.5)) terms_[j] = {1, -1};
        continue;
      }
      if (is_switch[j] != 0) continue;  // 0 means two things there
      if (random_.chance(0.4)) terms_[j].scale = -1;
      if (!integer) terms_[j].scale *= power_of_two(2);
      const bool bounded = std::isfinite(lower) && std::isfinite(upper);
      if (role[j] == Role::free && bounded && random_.chance(0.5)) {
        terms_[j].shift = random_.chance(0.5) ? lower + upper : std::round(lower) - random_.pick(-1, 1);
      }
    }
  }
  /* Rows with slacks of indicators are only negated. */
  void draw_factors() {
    std::vector<char> has_slack(factor_.size());
    const tovik::lp::Matrix& m = given_.lp.matrix;
    for (const tovik::mip::Indicator& i : given_.indicators) {
      for (int k = m.start[i.slack]; k < m.start[i.slack + 1]; ++k) has_slack[m.index[k]] = 1;
    }
    for (std::size_t i = 0; i < factor_.size(); ++i) {
      if (random_.chance(0.4)) factor_[i] = -1;
      if (has_slack[i] == 0 && random_.chance(0.6)) factor_[i] *= power_of_two(3);
    }
  }
  /* Bounds of y from those of x. */
  std::pair<double, double> turned(const Term& t, double lower, double upper) const {
    const double a = (lower - t.shift) / t.scale, b = (upper - t.shift) / t.scale;
    return {std::min(a, b) + 0.0, std::max(a, b) + 0.0};
  }

  void columns() {
    problem_.lp.offset = given_.lp.offset;
    const auto n = terms_.size();
    for (std::vector<double>* const v : {&problem_.lp.cost, &problem_.lp.lower, &problem_.lp.upper})
      v->resize(n);
    problem_.is_integer.resize(n);
    for (std::size_t j = 0; j < n; ++j) {
      const Term& t = terms_[j];
      const int to = column_at_[j];
      problem_.lp.offset += given_.lp.cost[j] * t.shift;
      problem_.lp.cost[to] = given_.lp.cost[j] * t.scale;
      std::tie(problem_.lp.lower[to], problem_.lp.upper[to]) =
          turned(t, given_.lp.lower[j], given_.lp.upper[j]);
      problem_.is_integer[to] = given_.is_integer[j];
    }
  }
  void rows() {
    const auto m = static_cast<std::size_t>(given_.num_rows());
    const tovik::lp::Matrix& from = given_.lp.matrix;
    std::vector<double> shift(m);
    std::vector<std::vector<std::pair<int, double>>> entries(terms_.size());  // by column of y
    for (int j = 0; j < from.columns; ++j) {
      for (int k = from.start[j]; k < from.start[j + 1]; ++k) {
        const int i = from.index[k];
        shift[i] += from.value[k] * terms_[j].shift;
        entries[column_at_[j]].emplace_back(row_at_[i], from.value[k] * terms_[j].scale * factor_[i]);
      }
    }
    tovik::lp::Matrix& to = problem_.lp.matrix;
    to.rows = from.rows;
    to.columns = from.columns;
    for (auto& column : entries) {
      std::sort(column.begin(), column.end());
      for (const auto& [row, value] : column) {
        to.index.push_back(row);
        to.value.push_back(value);
      }
      to.start.push_back(static_cast<int>(to.index.size()));
    }
    problem_.lp.row_lower.resize(m);
    problem_.lp.row_upper.resize(m);
    for (std::size_t i = 0; i < m; ++i) {
      std::tie(problem_.lp.row_lower[row_at_[i]], problem_.lp.row_upper[row_at_[i]]) =
          turned({shift[i], 1 / factor_[i]}, given_.lp.row_lower[i], given_.lp.row_upper[i]);
    }
  }
  void objects() {
    for (const tovik::mip::SemiColumn& s : given_.semi_columns) {
      const auto [lower, upper] = turned(terms_[s.column], s.lower, s.upper);
      problem_.semi_columns.push_back({column_at_[s.column], lower, upper});
    }
    for (tovik::mip::OrderedSet set : given_.sets) {
      for (int& j : set.columns) j = column_at_[j];
      if (random_.chance(0.5)) std::reverse(set.columns.begin(), set.columns.end());
      problem_.sets.push_back(std::move(set));
    }
    for (const tovik::mip::Indicator& i : given_.indicators) {
      const Term& t = terms_[i.switch_column];
      problem_.indicators.push_back(
          {column_at_[i.switch_column], (i.active_value - t.shift) / t.scale + 0.0, column_at_[i.slack]});
    }
    std::shuffle(problem_.semi_columns.begin(), problem_.semi_columns.end(), random_.engine());
    std::shuffle(problem_.sets.begin(), problem_.sets.end(), random_.engine());
    std::shuffle(problem_.indicators.begin(), problem_.indicators.end(), random_.engine());
  }

  const tovik::mip::Problem& given_;
  Random& random_;
  std::vector<Term> terms_;
  std::vector<double> factor_;
  std::vector<int> column_at_, row_at_;  // where columns and rows of the given problem stand
  tovik::mip::Problem problem_;
};

}  // namespace support
