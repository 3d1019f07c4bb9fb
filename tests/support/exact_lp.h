/* Tiny LPs in exact arithmetic: every optimal basis, and whether a basis is what it should be.
 *
 * A row's activity is one more variable: variable n + i with the column -e_i in [A, -I] v = 0. Its reduced
 * cost is the row's dual, so rows and columns obey one rule of signs. */
#pragma once

#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "lp/base/lp_data.h"
#include "lp/presolve/undo.h"
#include "support/rational.h"

namespace support {

using tovik::lp::Answer;
using tovik::lp::BasisStatus;
using tovik::lp::kInf;
using tovik::lp::LpData;

class ExactLp {
 public:
  using Bound = std::optional<Rational>;

  /* Numbers that stand for no simple fraction throw. */
  explicit ExactLp(const LpData& lp)
      : m_(lp.num_rows()),
        n_(lp.num_columns()),
        offset_(std::fabs(lp.offset) < kClose ? Rational() : Rational::near(lp.offset)) {
    const auto bound = [](double value) {
      return std::isinf(value) ? Bound{} : Bound{Rational::near(value)};
    };
    for (int j = 0; j < n_; ++j) {
      column_.emplace_back(static_cast<size_t>(m_));
      for (int k = lp.matrix.start[j]; k < lp.matrix.start[j + 1]; ++k)
        column_.back()[lp.matrix.index[k]] = Rational::near(lp.matrix.value[k]);
      cost_.push_back(Rational::near(lp.cost[j]));
      lower_.push_back(bound(lp.lower[j]));
      upper_.push_back(bound(lp.upper[j]));
    }
    for (int i = 0; i < m_; ++i) {
      column_.emplace_back(static_cast<size_t>(m_));
      column_.back()[i] = Rational(-1);
      cost_.emplace_back();
      lower_.push_back(bound(lp.row_lower[i]));
      upper_.push_back(bound(lp.row_upper[i]));
    }
  }

  int size() const { return n_ + m_; }
  bool equal_bounds(int k) const { return lower_[k] && upper_[k] && *lower_[k] == *upper_[k]; }
  Rational objective(const std::vector<Rational>& v) const {
    Rational sum = offset_;
    for (int j = 0; j < n_; ++j) sum = sum + cost_[j] * v[j];
    return sum;
  }

  /* f(statuses, values, duals) for each optimal basis, by variable. Objects with equal bounds stand at either
   * side, whatever their dual. */
  template <class F>
  int each_optimal_basis(F f) const {
    int found = 0;
    for (unsigned set = 0; set < 1U << size(); ++set) {
      if (__builtin_popcount(set) != m_) continue;
      std::vector<BasisStatus> at(static_cast<size_t>(size()), BasisStatus::lower);
      for (int k = 0; k < size(); ++k) {
        if ((set >> k & 1U) != 0) at[k] = BasisStatus::basic;
      }
      std::vector<std::vector<Rational>> inverse;
      if (!invert(at, inverse)) continue;
      const std::vector<Rational> dual = duals(at, inverse);
      std::vector<int> choices;  // variables that may stand at either bound
      if (!place_by_sign(at, dual, choices)) continue;
      for (unsigned c = 0; c < 1U << choices.size(); ++c) {
        for (size_t k = 0; k < choices.size(); ++k)
          at[choices[k]] = (c >> k & 1U) != 0 ? BasisStatus::upper : BasisStatus::lower;
        const std::vector<Rational> value = values(at, inverse);
        if (!within_bounds(value)) continue;
        ++found;
        f(at, value, dual);
      }
    }
    return found;
  }
  std::optional<Rational> optimum() const {
    std::optional<Rational> best;
    each_optimal_basis([&](const auto&, const auto& value, const auto&) { best = objective(value); });
    return best;
  }
  bool has_optimum() const { return optimum().has_value(); }
  bool feasible() const {
    ExactLp plain = *this;
    plain.cost_.assign(plain.cost_.size(), Rational());
    return plain.has_optimum();
  }

  /* What is wrong with a primal-dual basic solution; empty when it is optimal and its statuses define it. */
  std::string fault(const Answer& p, Rational* objective_value) const {
    std::vector<BasisStatus> at(p.column_status);
    at.insert(at.end(), p.row_status.begin(), p.row_status.end());
    int basics = 0;
    for (const BasisStatus a : at) basics += a == BasisStatus::basic;
    if (basics != m_) return "wrong number of basics: " + std::to_string(basics);
    for (int k = 0; k < size(); ++k) {
      if ((at[k] == BasisStatus::lower && !lower_[k]) || (at[k] == BasisStatus::upper && !upper_[k]) ||
          (at[k] == BasisStatus::free && (lower_[k] || upper_[k])))
        return "no such bound: " + name(k);
    }
    std::vector<std::vector<Rational>> inverse;
    if (!invert(at, inverse)) return "singular basis";
    const std::vector<Rational> dual = duals(at, inverse), value = values(at, inverse);
    for (int k = 0; k < size(); ++k) {
      const double given = k < n_ ? p.d[k] : p.y[k - n_];
      if (std::fabs(dual[k].real() - given) > kClose * (1 + std::fabs(given)))
        return "dual of " + name(k) + " is " + std::to_string(dual[k].real()) + ", not " +
               std::to_string(given);
      if (k < n_ && std::fabs(value[k].real() - p.x[k]) > kClose * (1 + std::fabs(p.x[k])))
        return "value of " + name(k) + " is " + std::to_string(value[k].real()) + ", not " +
               std::to_string(p.x[k]);
      const int sign = dual[k].sign();
      if (!equal_bounds(k) &&
          ((at[k] == BasisStatus::lower && sign < 0) || (at[k] == BasisStatus::upper && sign > 0) ||
           (at[k] == BasisStatus::free && sign != 0)))
        return "sign of the dual of " + name(k);
      if ((lower_[k] && value[k] < *lower_[k]) || (upper_[k] && *upper_[k] < value[k]))
        return "bound of " + name(k);
    }
    *objective_value = objective(value);
    return {};
  }

 private:
  static constexpr double kClose = 1e-9;

  std::string name(int k) const {
    return k < n_ ? "column " + std::to_string(k) : "row " + std::to_string(k - n_);
  }
  bool within_bounds(const std::vector<Rational>& value) const {
    for (int k = 0; k < size(); ++k) {
      if ((lower_[k] && value[k] < *lower_[k]) || (upper_[k] && *upper_[k] < value[k])) return false;
    }
    return true;
  }
  bool place_by_sign(std::vector<BasisStatus>& at, const std::vector<Rational>& dual,
                     std::vector<int>& choices) const {
    for (int k = 0; k < size(); ++k) {
      if (at[k] == BasisStatus::basic) continue;
      const int sign = equal_bounds(k) ? 0 : dual[k].sign();
      const bool low = lower_[k] && sign >= 0, high = upper_[k] && sign <= 0;
      if (low && high) {
        choices.push_back(k);
      } else if (low || high) {
        at[k] = low ? BasisStatus::lower : BasisStatus::upper;
      } else if (!lower_[k] && !upper_[k] && sign == 0) {
        at[k] = BasisStatus::free;
      } else {
        return false;
      }
    }
    return true;
  }
  /* Rows of the result belong to the basics in the order of their indices. */
  bool invert(const std::vector<BasisStatus>& at, std::vector<std::vector<Rational>>& inverse) const {
    std::vector<std::vector<Rational>> work(static_cast<size_t>(m_));
    for (int i = 0; i < m_; ++i) {
      for (int k = 0; k < size(); ++k) {
        if (at[k] == BasisStatus::basic) work[i].push_back(column_[k][i]);
      }
      work[i].resize(static_cast<size_t>(2 * m_));
      work[i][m_ + i] = Rational(1);
    }
    for (int k = 0; k < m_; ++k) {
      int pivot = k;
      while (pivot < m_ && work[pivot][k].sign() == 0) ++pivot;
      if (pivot == m_) return false;
      std::swap(work[pivot], work[k]);
      const Rational divisor = work[k][k];
      for (Rational& r : work[k]) r = r / divisor;
      for (int i = 0; i < m_; ++i) {
        const Rational factor = work[i][k];
        if (i == k || factor.sign() == 0) continue;
        for (int c = k; c < 2 * m_; ++c) work[i][c] = work[i][c] - factor * work[k][c];
      }
    }
    inverse.clear();
    for (const auto& row : work) inverse.emplace_back(row.begin() + m_, row.end());
    return true;
  }
  std::vector<Rational> duals(const std::vector<BasisStatus>& at,
                              const std::vector<std::vector<Rational>>& inverse) const {
    std::vector<Rational> y(static_cast<size_t>(m_)), d = cost_;
    int position = 0;
    for (int k = 0; k < size(); ++k) {
      if (at[k] != BasisStatus::basic) continue;
      if (cost_[k].sign() != 0) {
        for (int i = 0; i < m_; ++i) y[i] = y[i] + cost_[k] * inverse[position][i];
      }
      ++position;
    }
    for (int k = 0; k < size(); ++k) {
      for (int i = 0; i < m_; ++i) d[k] = d[k] - column_[k][i] * y[i];
    }
    return d;
  }
  std::vector<Rational> values(const std::vector<BasisStatus>& at,
                               const std::vector<std::vector<Rational>>& inverse) const {
    std::vector<Rational> v(static_cast<size_t>(size())), rest(static_cast<size_t>(m_));
    for (int k = 0; k < size(); ++k) {
      if (at[k] == BasisStatus::basic || at[k] == BasisStatus::free) continue;
      v[k] = at[k] == BasisStatus::lower ? *lower_[k] : *upper_[k];
      for (int i = 0; i < m_; ++i) rest[i] = rest[i] - column_[k][i] * v[k];
    }
    int position = 0;
    for (int k = 0; k < size(); ++k) {
      if (at[k] != BasisStatus::basic) continue;
      for (int i = 0; i < m_; ++i) v[k] = v[k] + inverse[position][i] * rest[i];
      ++position;
    }
    return v;
  }

  int m_, n_;
  std::vector<std::vector<Rational>> column_;  // dense, by variable
  std::vector<Rational> cost_;
  std::vector<Bound> lower_, upper_;
  Rational offset_;
};

}  // namespace support
