#include "lp/refine/quadruple.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "lp/refine/octuple.h"
#include "lp/simplex/scaling.h"

namespace tovik::lp::refine {
namespace {

#if defined(__SIZEOF_FLOAT128__)
__extension__ typedef __float128 Quad;
constexpr int kQuadDigits = 113;
#else
using Quad = long double;
constexpr int kQuadDigits = std::numeric_limits<long double>::digits;
#endif
using Octuple = Doubled<Quad, kQuadDigits>;

/* What is taken for 0, of numbers like these. */
template <class Real>
struct Zero;
template <>
struct Zero<Quad> {
  static constexpr double kPivot = 1e-24;  // pivots, against the largest entry of their column (at least 1)
  static constexpr double kWrong = 1e-22;  // reduced costs, against the largest cost (at least 1)
};
template <>
struct Zero<Octuple> {
  static constexpr double kPivot = 1e-48;
  static constexpr double kWrong = 1e-46;
};

constexpr double kMostEntries = 2e5;      // of the tableau
constexpr double kMostWideEntries = 2e4;  // ... whose operations take some twenty times as long
constexpr int kDegenerateFactor = 2;  // degenerate steps in a row, by rows and columns, before Bland's rule
constexpr int kPatience = 50;         // iterations by rows and columns, before it is taken to cycle

template <class Real>
Real magnitude(const Real& v) {
  return v < Real(0) ? -v : v;
}

template <class Real>
Extended extended(const Real& v) {
  Extended result(static_cast<double>(v));
  result.add(static_cast<double>(v - Real(result.value())));
  return result;
}

template <class Real>
class Tableau {
 public:
  Tableau(const LpData& lp, std::int64_t iteration_limit, Control& control)
      : lp_(lp),
        m_(lp.num_rows()),
        n_(lp.num_columns()),
        total_(n_ + m_),
        limit_(iteration_limit),
        control_(control),
        scaling_(simplex::compute_scaling(lp.matrix, 0)),
        lower_(lp.lower.begin(), lp.lower.end()),
        upper_(lp.upper.begin(), lp.upper.end()),
        cost_(static_cast<std::size_t>(total_), Real(0)),
        value_(static_cast<std::size_t>(total_), Real(0)),
        d_(static_cast<std::size_t>(total_), Real(0)),
        position_(static_cast<std::size_t>(total_), -1),
        head_(static_cast<std::size_t>(m_)),
        sign_(static_cast<std::size_t>(m_), 1),
        entry_(static_cast<std::size_t>(m_) * static_cast<std::size_t>(total_), Real(0)) {
    start();
  }

  QuadrupleResult run(double primal_tolerance) {
    QuadrupleResult result;
    for (int i = 0; i < m_; ++i) cost_[n_ + i] = Real(1 / row_scale(i));
    Outcome outcome = iterate();
    Real missed(0);
    for (int i = 0; i < m_; ++i) missed = std::max(missed, value_[n_ + i] / Real(row_scale(i)));
    if (outcome == Outcome::optimal && missed > Real(primal_tolerance)) {
      result.outcome = Outcome::infeasible;
    } else if (outcome == Outcome::optimal) {
      for (int i = 0; i < m_; ++i) {
        cost_[n_ + i] = Real(0);
        lower_[n_ + i] = upper_[n_ + i] = value_[n_ + i];
      }
      for (int j = 0; j < n_; ++j) cost_[j] = Real(lp_.cost[j]) * Real(column_scale(j));
      result.outcome = iterate();
    } else {
      result.outcome = outcome;
    }
    result.iterations = iterations_;
    fill(result);
    return result;
  }

 private:
  double column_scale(int j) const { return scaling_.active() && j < n_ ? scaling_.column[j] : 1.0; }
  double row_scale(int i) const { return scaling_.active() ? scaling_.row[i] : 1.0; }
  Real& at(int row, int column) {
    return entry_[static_cast<std::size_t>(row) * static_cast<std::size_t>(total_) +
                  static_cast<std::size_t>(column)];
  }
  Real scaled(int j, int k) const {
    return Real(lp_.matrix.value[k]) * Real(column_scale(j)) * Real(row_scale(lp_.matrix.index[k]));
  }
  bool finite(Real bound) const { return std::isfinite(static_cast<double>(bound)); }

  /* Columns at their bounds, artificial columns basic with what is missing. */
  void start() {
    std::vector<Real> missing(lp_.row_lower.begin(), lp_.row_lower.end());
    for (int i = 0; i < m_; ++i) missing[i] *= Real(row_scale(i));
    for (int j = 0; j < n_; ++j) {
      lower_[j] /= Real(column_scale(j));
      upper_[j] /= Real(column_scale(j));
      value_[j] =
          finite(lower_[j])
              ? (finite(upper_[j]) && magnitude(upper_[j]) < magnitude(lower_[j]) ? upper_[j] : lower_[j])
          : finite(upper_[j]) ? upper_[j]
                              : Real(0);
      for (int k = lp_.matrix.start[j]; k < lp_.matrix.start[j + 1]; ++k)
        missing[lp_.matrix.index[k]] -= scaled(j, k) * value_[j];
    }
    for (int i = 0; i < m_; ++i) {
      sign_[i] = missing[i] < Real(0) ? -1 : 1;
      value_[n_ + i] = magnitude(missing[i]);
      lower_.push_back(Real(0));
      upper_.push_back(Real(kInf));
      head_[i] = n_ + i;
      position_[n_ + i] = i;
      at(i, n_ + i) = Real(1);
    }
    for (int j = 0; j < n_; ++j) {
      for (int k = lp_.matrix.start[j]; k < lp_.matrix.start[j + 1]; ++k) {
        const int i = lp_.matrix.index[k];
        at(i, j) += Real(sign_[i]) * scaled(j, k);
      }
    }
  }

  void price() {
    d_ = cost_;
    for (int i = 0; i < m_; ++i) {
      const Real c = cost_[head_[i]];
      if (c == Real(0)) continue;
      const Real* row = &at(i, 0);
      for (int j = 0; j < total_; ++j) d_[j] -= c * row[j];
    }
  }

  /* By how much moving j improves; the direction in `up`. */
  Real attraction(int j, bool& up) const {
    if (position_[j] >= 0 || lower_[j] == upper_[j]) return Real(0);
    up = d_[j] < Real(0);
    if (up ? value_[j] >= upper_[j] : value_[j] <= lower_[j]) return Real(0);
    return magnitude(d_[j]);
  }

  Outcome iterate() {
    Real largest_cost(1);
    for (const Real c : cost_) largest_cost = std::max(largest_cost, magnitude(c));
    const Real wrong = Real(Zero<Real>::kWrong) * largest_cost;
    price();
    int degenerate = 0;
    bool exact = false;  // all is sharpened that the claim rests on, and nothing has moved since
    for (;;) {
      if (iterations_ >= limit_) return Outcome::iteration_limit;
      if (iterations_ >= static_cast<std::int64_t>(kPatience) * total_) return Outcome::numerical_failure;
      if (const Stop stop = control_.poll_clock(); stop != Stop::none)
        return stop == Stop::time_limit   ? Outcome::time_limit
               : stop == Stop::tick_limit ? Outcome::tick_limit
                                          : Outcome::user_abort;
      const bool bland = degenerate > kDegenerateFactor * total_;
      int entering = -1;
      bool entering_up = false;
      Real best = wrong;
      for (int j = 0; j < total_; ++j) {
        bool up = false;
        const Real gain = attraction(j, up);
        if (!(gain > best)) continue;
        best = gain;
        entering = j;
        entering_up = up;
        if (bland) break;
      }
      if (entering < 0) {
        if (exact) return Outcome::optimal;
        sharpen();
        exact = true;
        continue;
      }
      Real step(0);
      if (!move(entering, entering_up, bland, step)) {
        if (!exact) {
          sharpen();
          sharpen_column(entering);
          exact = true;
          continue;
        }
        ray_variable_ = entering;
        ray_up_ = entering_up;
        return Outcome::unbounded;
      }
      degenerate = step > Real(0) ? 0 : degenerate + 1;
      exact = false;
      ++iterations_;
      control_.add_work(static_cast<std::uint64_t>(m_) * static_cast<std::uint64_t>(total_));
    }
  }

  /* The ratio test and the pivot. False: nothing stops the entering variable. */
  bool move(int q, bool up, bool bland, Real& step) {
    Real largest(1);
    for (int i = 0; i < m_; ++i) largest = std::max(largest, magnitude(at(i, q)));
    const Real smallest = Real(Zero<Real>::kPivot) * largest;
    step = up ? upper_[q] - value_[q] : value_[q] - lower_[q];
    int leaving = -1;
    Real pivot(0);
    for (int i = 0; i < m_; ++i) {
      const Real rate = up ? -at(i, q) : at(i, q);  // of the basic variable, by the step
      if (magnitude(rate) <= smallest) continue;
      const Real bound = rate > Real(0) ? upper_[head_[i]] : lower_[head_[i]];
      if (!finite(bound)) continue;
      const Real room = std::max(Real(0), (bound - value_[head_[i]]) / rate);
      const bool better = leaving < 0    ? room <= step
                          : room != step ? room < step
                          : bland        ? head_[i] < head_[leaving]
                                         : magnitude(rate) > pivot;
      if (!better) continue;
      step = room;
      leaving = i;
      pivot = magnitude(rate);
    }
    if (leaving < 0 && !finite(step)) return false;
    for (int i = 0; i < m_; ++i) {
      if (at(i, q) != Real(0)) value_[head_[i]] += (up ? -at(i, q) : at(i, q)) * step;
    }
    value_[q] = leaving < 0 ? (up ? upper_[q] : lower_[q]) : value_[q] + (up ? step : -step);
    if (leaving >= 0) {
      const int out = head_[leaving];
      const Real rate = up ? -at(leaving, q) : at(leaving, q);
      value_[out] = rate > Real(0) ? upper_[out] : lower_[out];
      eliminate(leaving, q);
    }
    return true;
  }

  void eliminate(int p, int q) {
    position_[head_[p]] = -1;
    position_[q] = p;
    head_[p] = q;
    Real* row = &at(p, 0);
    const Real inverse = Real(1) / row[q];
    for (int j = 0; j < total_; ++j) row[j] *= inverse;
    row[q] = Real(1);
    const auto subtract = [&](Real* from, Real factor) {
      for (int j = 0; j < total_; ++j)
        if (row[j] != Real(0)) from[j] -= factor * row[j];
      from[q] = Real(0);
    };
    for (int i = 0; i < m_; ++i)
      if (i != p && at(i, q) != Real(0)) subtract(&at(i, 0), at(i, q));
    if (d_[q] != Real(0)) subtract(d_.data(), d_[q]);
  }

  /* Calls f(row, entry) for the column that belongs to j before the first pivot. */
  template <class F>
  void each_start_entry(int j, F f) const {
    if (j >= n_) {
      f(j - n_, Real(1));
      return;
    }
    for (int k = lp_.matrix.start[j]; k < lp_.matrix.start[j + 1]; ++k) {
      const int i = lp_.matrix.index[k];
      f(i, Real(sign_[i]) * scaled(j, k));
    }
  }

  /* Pivots have left errors in all that was updated: what values, duals and reduced costs leave of the LP's own equations is
   * taken away by the inverse while that helps. */
  void sharpen() {
    sharpen_values();
    sharpen_duals();
  }

  /* left: what v leaves, by row or position; correct: takes that away from v. */
  template <class Left, class Correct>
  void correct_while_better(std::vector<Real>& v, Left left, Correct correct) {
    constexpr int kMost = 6;
    const Real enough(0.5);
    std::vector<Real> rest = left();
    Real error = largest(rest);
    for (int k = 0; k < kMost && error > Real(0); ++k) {
      const std::vector<Real> before = v;
      correct(rest);
      rest = left();
      const Real last = std::exchange(error, largest(rest));
      if (error < enough * last) continue;
      if (!(error <= last)) v = before;
      return;
    }
  }

  void sharpen_values() {
    const auto left = [&] {
      std::vector<Real> rest(lp_.row_lower.begin(), lp_.row_lower.end());
      for (int i = 0; i < m_; ++i) rest[i] *= Real(row_scale(i) * sign_[i]);
      for (int j = 0; j < total_; ++j)
        if (value_[j] != Real(0)) each_start_entry(j, [&](int i, Real a) { rest[i] -= a * value_[j]; });
      return rest;
    };
    correct_while_better(value_, left, [&](const std::vector<Real>& rest) {
      for (int p = 0; p < m_; ++p) value_[head_[p]] += by_inverse(p, rest);
    });
  }

  void sharpen_duals() {
    const auto left = [&] {
      std::vector<Real> rest;
      for (int p = 0; p < m_; ++p) rest.push_back(reduced_cost(head_[p]));
      return rest;
    };
    correct_while_better(d_, left, [&](const std::vector<Real>& rest) {
      for (int p = 0; p < m_; ++p) {
        const Real* inverse = &at(p, n_);
        for (int i = 0; i < m_ && rest[p] != Real(0); ++i) d_[n_ + i] -= rest[p] * inverse[i];
      }
    });
    for (int j = 0; j < n_; ++j) d_[j] = position_[j] >= 0 ? Real(0) : reduced_cost(j);
  }

  void sharpen_column(int q) {
    std::vector<Real> column;
    for (int p = 0; p < m_; ++p) column.push_back(at(p, q));
    const auto left = [&] {
      std::vector<Real> rest(column.size(), Real(0));
      each_start_entry(q, [&](int i, Real a) { rest[i] += a; });
      for (int p = 0; p < m_; ++p)
        each_start_entry(head_[p], [&](int i, Real a) { rest[i] -= a * column[p]; });
      return rest;
    };
    correct_while_better(column, left, [&](const std::vector<Real>& rest) {
      for (int p = 0; p < m_; ++p) column[p] += by_inverse(p, rest);
    });
    for (int p = 0; p < m_; ++p) at(p, q) = column[p];
  }

  /* From the duals, which are what the artificial columns' costs and reduced costs differ by. */
  Real reduced_cost(int j) const {
    Real d = cost_[j];
    each_start_entry(j, [&](int i, Real a) { d -= a * (cost_[n_ + i] - d_[n_ + i]); });
    return d;
  }

  Real by_inverse(int row, const std::vector<Real>& v) {
    Real sum(0);
    const Real* inverse = &at(row, n_);
    for (int i = 0; i < m_; ++i) sum += inverse[i] * v[i];
    return sum;
  }

  static Real largest(const std::vector<Real>& v) {
    Real result(0);
    for (const Real& entry : v) result = std::max(result, magnitude(entry));
    return result;
  }

  BasisStatus status(int j) const {
    if (position_[j] >= 0) return BasisStatus::basic;
    return value_[j] == lower_[j]   ? BasisStatus::lower
           : value_[j] == upper_[j] ? BasisStatus::upper
                                    : BasisStatus::free;
  }

  /* B^-1 stands in the artificial columns, but for their signs: y_i = sign_i (cost - d) there. */
  void fill(QuadrupleResult& result) const {
    for (int j = 0; j < n_; ++j) {
      result.iterate.x.push_back(extended(value_[j] * Real(column_scale(j))));
      result.iterate.basis.columns.push_back(status(j));
    }
    for (int i = 0; i < m_; ++i) {
      result.iterate.y.push_back(extended(Real(sign_[i] * row_scale(i)) * (cost_[n_ + i] - d_[n_ + i])));
      result.iterate.basis.rows.push_back(position_[n_ + i] >= 0 ? BasisStatus::basic : BasisStatus::lower);
    }
    if (result.outcome != Outcome::unbounded) return;
    std::vector<Real> ray(static_cast<std::size_t>(total_), Real(0));
    ray[ray_variable_] = Real(ray_up_ ? 1 : -1);
    for (int i = 0; i < m_; ++i) {
      const Real a = entry_[static_cast<std::size_t>(i) * static_cast<std::size_t>(total_) +
                            static_cast<std::size_t>(ray_variable_)];
      ray[head_[i]] = ray_up_ ? -a : a;
    }
    for (int j = 0; j < n_; ++j) result.ray.push_back(extended(ray[j] * Real(column_scale(j))));
  }

  const LpData& lp_;
  const int m_, n_, total_;
  const std::int64_t limit_;
  Control& control_;
  const simplex::Scaling scaling_;
  std::vector<Real> lower_, upper_, cost_, value_, d_;
  std::vector<int> position_;  // of a basic variable, else -1
  std::vector<int> head_;
  std::vector<int> sign_;    // of each artificial column
  std::vector<Real> entry_;  // m x (n + m), by row
  std::int64_t iterations_ = 0;
  int ray_variable_ = -1;
  bool ray_up_ = false;
};

}  // namespace

bool affordable(Precision precision, int rows, int columns) {
  return static_cast<double>(rows) * (static_cast<double>(rows) + columns) <=
         (precision == Precision::octuple ? kMostWideEntries : kMostEntries);
}

QuadrupleResult solve_quadruple(const LpData& lp, Precision precision, double primal_tolerance,
                                std::int64_t iteration_limit, Control& control) {
  return precision == Precision::octuple
             ? Tableau<Octuple>(lp, iteration_limit, control).run(primal_tolerance)
             : Tableau<Quad>(lp, iteration_limit, control).run(primal_tolerance);
}

}  // namespace tovik::lp::refine
