#include "lp/refine/quadruple.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "lp/simplex/scaling.h"

namespace tovik::lp::refine {
namespace {

#if defined(__SIZEOF_FLOAT128__)
__extension__ typedef __float128 Quad;
#else
using Quad = long double;
#endif

constexpr double kPivot = 1e-24;      // smallest pivot, against the largest entry of its column (at least 1)
constexpr double kWrong = 1e-22;      // reduced costs, against the largest cost (at least 1)
constexpr double kMostEntries = 2e5;  // of the tableau
constexpr int kDegenerateFactor = 2;  // degenerate steps in a row, by rows and columns, before Bland's rule

Quad magnitude(Quad v) {
  return v < 0 ? -v : v;
}

Extended extended(Quad v) {
  Extended result(static_cast<double>(v));
  result.add(static_cast<double>(v - static_cast<Quad>(result.value())));
  return result;
}

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
        cost_(static_cast<std::size_t>(total_), 0),
        value_(static_cast<std::size_t>(total_), 0),
        d_(static_cast<std::size_t>(total_), 0),
        position_(static_cast<std::size_t>(total_), -1),
        head_(static_cast<std::size_t>(m_)),
        sign_(static_cast<std::size_t>(m_), 1),
        entry_(static_cast<std::size_t>(m_) * static_cast<std::size_t>(total_), 0) {
    start();
  }

  QuadrupleResult run(double primal_tolerance) {
    QuadrupleResult result;
    for (int i = 0; i < m_; ++i) cost_[n_ + i] = static_cast<Quad>(1 / row_scale(i));
    Outcome outcome = iterate();
    Quad missed = 0;
    for (int i = 0; i < m_; ++i) missed = std::max(missed, value_[n_ + i] / static_cast<Quad>(row_scale(i)));
    if (outcome == Outcome::optimal && missed > static_cast<Quad>(primal_tolerance)) {
      result.outcome = Outcome::infeasible;
    } else if (outcome == Outcome::optimal) {
      for (int i = 0; i < m_; ++i) {
        cost_[n_ + i] = 0;
        lower_[n_ + i] = upper_[n_ + i] = value_[n_ + i];
      }
      for (int j = 0; j < n_; ++j)
        cost_[j] = static_cast<Quad>(lp_.cost[j]) * static_cast<Quad>(column_scale(j));
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
  Quad& at(int row, int column) {
    return entry_[static_cast<std::size_t>(row) * static_cast<std::size_t>(total_) +
                  static_cast<std::size_t>(column)];
  }
  Quad scaled(int j, int k) const {
    return static_cast<Quad>(lp_.matrix.value[k]) * static_cast<Quad>(column_scale(j)) *
           static_cast<Quad>(row_scale(lp_.matrix.index[k]));
  }
  bool finite(Quad bound) const { return std::isfinite(static_cast<double>(bound)); }

  /* Columns at their bounds, artificial columns basic with what is missing. */
  void start() {
    std::vector<Quad> missing(lp_.row_lower.begin(), lp_.row_lower.end());
    for (int i = 0; i < m_; ++i) missing[i] *= static_cast<Quad>(row_scale(i));
    for (int j = 0; j < n_; ++j) {
      lower_[j] /= static_cast<Quad>(column_scale(j));
      upper_[j] /= static_cast<Quad>(column_scale(j));
      value_[j] =
          finite(lower_[j])
              ? (finite(upper_[j]) && magnitude(upper_[j]) < magnitude(lower_[j]) ? upper_[j] : lower_[j])
          : finite(upper_[j]) ? upper_[j]
                              : Quad(0);
      for (int k = lp_.matrix.start[j]; k < lp_.matrix.start[j + 1]; ++k)
        missing[lp_.matrix.index[k]] -= scaled(j, k) * value_[j];
    }
    for (int i = 0; i < m_; ++i) {
      sign_[i] = missing[i] < 0 ? -1 : 1;
      value_[n_ + i] = magnitude(missing[i]);
      lower_.push_back(0);
      upper_.push_back(static_cast<Quad>(kInf));
      head_[i] = n_ + i;
      position_[n_ + i] = i;
      at(i, n_ + i) = 1;
    }
    for (int j = 0; j < n_; ++j) {
      for (int k = lp_.matrix.start[j]; k < lp_.matrix.start[j + 1]; ++k) {
        const int i = lp_.matrix.index[k];
        at(i, j) += static_cast<Quad>(sign_[i]) * scaled(j, k);
      }
    }
  }

  void price() {
    d_ = cost_;
    for (int i = 0; i < m_; ++i) {
      const Quad c = cost_[head_[i]];
      if (c == 0) continue;
      const Quad* row = &at(i, 0);
      for (int j = 0; j < total_; ++j) d_[j] -= c * row[j];
    }
  }

  /* By how much moving j improves; the direction in `up`. */
  Quad attraction(int j, bool& up) const {
    if (position_[j] >= 0 || lower_[j] == upper_[j]) return 0;
    up = d_[j] < 0;
    if (up ? value_[j] >= upper_[j] : value_[j] <= lower_[j]) return 0;
    return magnitude(d_[j]);
  }

  Outcome iterate() {
    Quad largest_cost = 1;
    for (const Quad c : cost_) largest_cost = std::max(largest_cost, magnitude(c));
    const Quad wrong = static_cast<Quad>(kWrong) * largest_cost;
    price();
    int degenerate = 0;
    for (;;) {
      if (iterations_ >= limit_) return Outcome::iteration_limit;
      if (const Stop stop = control_.poll_clock(); stop != Stop::none)
        return stop == Stop::time_limit   ? Outcome::time_limit
               : stop == Stop::tick_limit ? Outcome::tick_limit
                                          : Outcome::user_abort;
      const bool bland = degenerate > kDegenerateFactor * total_;
      int entering = -1;
      bool entering_up = false;
      Quad best = wrong;
      for (int j = 0; j < total_; ++j) {
        bool up = false;
        const Quad gain = attraction(j, up);
        if (!(gain > best)) continue;
        best = gain;
        entering = j;
        entering_up = up;
        if (bland) break;
      }
      if (entering < 0) return Outcome::optimal;
      Quad step = 0;
      if (!move(entering, entering_up, bland, step)) {
        ray_variable_ = entering;
        ray_up_ = entering_up;
        return Outcome::unbounded;
      }
      degenerate = step > 0 ? 0 : degenerate + 1;
      ++iterations_;
      control_.add_work(static_cast<std::uint64_t>(m_) * static_cast<std::uint64_t>(total_));
    }
  }

  /* The ratio test and the pivot. False: nothing stops the entering variable. */
  bool move(int q, bool up, bool bland, Quad& step) {
    Quad largest = 1;
    for (int i = 0; i < m_; ++i) largest = std::max(largest, magnitude(at(i, q)));
    const Quad smallest = static_cast<Quad>(kPivot) * largest;
    step = up ? upper_[q] - value_[q] : value_[q] - lower_[q];
    int leaving = -1;
    Quad pivot = 0;
    for (int i = 0; i < m_; ++i) {
      const Quad rate = up ? -at(i, q) : at(i, q);  // of the basic variable, by the step
      if (magnitude(rate) <= smallest) continue;
      const Quad bound = rate > 0 ? upper_[head_[i]] : lower_[head_[i]];
      if (!finite(bound)) continue;
      const Quad room = std::max(Quad(0), (bound - value_[head_[i]]) / rate);
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
      if (at(i, q) != 0) value_[head_[i]] += (up ? -at(i, q) : at(i, q)) * step;
    }
    value_[q] = leaving < 0 ? (up ? upper_[q] : lower_[q]) : value_[q] + (up ? step : -step);
    if (leaving >= 0) {
      const int out = head_[leaving];
      const Quad rate = up ? -at(leaving, q) : at(leaving, q);
      value_[out] = rate > 0 ? upper_[out] : lower_[out];
      eliminate(leaving, q);
    }
    return true;
  }

  void eliminate(int p, int q) {
    position_[head_[p]] = -1;
    position_[q] = p;
    head_[p] = q;
    Quad* row = &at(p, 0);
    const Quad inverse = 1 / row[q];
    for (int j = 0; j < total_; ++j) row[j] *= inverse;
    row[q] = 1;
    const auto subtract = [&](Quad* from, Quad factor) {
      for (int j = 0; j < total_; ++j)
        if (row[j] != 0) from[j] -= factor * row[j];
      from[q] = 0;
    };
    for (int i = 0; i < m_; ++i)
      if (i != p && at(i, q) != 0) subtract(&at(i, 0), at(i, q));
    if (d_[q] != 0) subtract(d_.data(), d_[q]);
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
      result.iterate.x.push_back(extended(value_[j] * static_cast<Quad>(column_scale(j))));
      result.iterate.basis.columns.push_back(status(j));
    }
    for (int i = 0; i < m_; ++i) {
      result.iterate.y.push_back(
          extended(static_cast<Quad>(sign_[i] * row_scale(i)) * (cost_[n_ + i] - d_[n_ + i])));
      result.iterate.basis.rows.push_back(position_[n_ + i] >= 0 ? BasisStatus::basic : BasisStatus::lower);
    }
    if (result.outcome != Outcome::unbounded) return;
    std::vector<Quad> ray(static_cast<std::size_t>(total_), 0);
    ray[ray_variable_] = ray_up_ ? 1 : -1;
    for (int i = 0; i < m_; ++i) {
      const Quad a = entry_[static_cast<std::size_t>(i) * static_cast<std::size_t>(total_) +
                            static_cast<std::size_t>(ray_variable_)];
      ray[head_[i]] = ray_up_ ? -a : a;
    }
    for (int j = 0; j < n_; ++j) result.ray.push_back(extended(ray[j] * static_cast<Quad>(column_scale(j))));
  }

  const LpData& lp_;
  const int m_, n_, total_;
  const std::int64_t limit_;
  Control& control_;
  const simplex::Scaling scaling_;
  std::vector<Quad> lower_, upper_, cost_, value_, d_;
  std::vector<int> position_;  // of a basic variable, else -1
  std::vector<int> head_;
  std::vector<int> sign_;    // of each artificial column
  std::vector<Quad> entry_;  // m x (n + m), by row
  std::int64_t iterations_ = 0;
  int ray_variable_ = -1;
  bool ray_up_ = false;
};

}  // namespace

bool affordable(int rows, int columns) {
  return static_cast<double>(rows) * (static_cast<double>(rows) + columns) <= kMostEntries;
}

QuadrupleResult solve_quadruple(const LpData& lp, double primal_tolerance, std::int64_t iteration_limit,
                                Control& control) {
  return Tableau(lp, iteration_limit, control).run(primal_tolerance);
}

}  // namespace tovik::lp::refine
