#include "lp/simplex/implied_bounds.h"

#include <algorithm>
#include <cmath>

namespace tovik::lp::simplex {
namespace {

constexpr int kSweeps = 4;
constexpr double kBetter = 0.1;       // share by which a found bound must improve to be moved again
constexpr double kLargest = 1e6;      // larger bounds (scaled) would make basic values too large to be exact
constexpr double kLoosen = 1e-2;      // relative and absolute distance kept from the implied value
constexpr double kSmallEntry = 1e-4;  // entries that would blow a bound up

/* Smallest and largest activity of each row: the finite part and the number of infinite contributions. */
struct Activities {
  std::vector<double> low, high;
  std::vector<int> low_infinite, high_infinite;

  explicit Activities(int rows)
      : low(static_cast<size_t>(rows), 0.0),
        high(low),
        low_infinite(static_cast<size_t>(rows), 0),
        high_infinite(low_infinite) {}

  void add(int i, double a, double lower, double upper) {
    const double at_low = a > 0 ? lower : upper;
    const double at_high = a > 0 ? upper : lower;
    if (std::isinf(at_low)) {
      ++low_infinite[i];
    } else {
      low[i] += a * at_low;
    }
    if (std::isinf(at_high)) {
      ++high_infinite[i];
    } else {
      high[i] += a * at_high;
    }
  }
  /* A bound moves to a finite value. */
  void change(int i, double a, double old, double bound, bool is_upper) {
    const bool high_side = (a > 0) == is_upper;
    double& sum = high_side ? high[i] : low[i];
    if (std::isinf(old)) {
      --(high_side ? high_infinite[i] : low_infinite[i]);
      sum += a * bound;
    } else {
      sum += a * (bound - old);
    }
  }
};

/* The search for bounds: sweeps over the columns that lack one. */
class Search {
 public:
  Search(const Core& core, ImpliedBounds& result)
      : core_(core),
        matrix_(core.matrix()),
        lower_(result.lower),
        upper_(result.upper),
        found_(result.found),
        activity_(core.m()),
        made_lower_(static_cast<size_t>(core.n()), 0),
        made_upper_(made_lower_) {
    for (int j = 0; j < core.n(); ++j) {
      for (int k = matrix_.start[j]; k < matrix_.start[j + 1]; ++k)
        activity_.add(matrix_.index[k], matrix_.value[k], lower_[j], upper_[j]);
    }
  }

  /* Whether a bound was found or moved. */
  bool sweep() {
    bool changed = false;
    for (int j = 0; j < core_.n(); ++j) {
      if (lower_[j] != -kInf && upper_[j] != kInf && !made_lower_[j] && !made_upper_[j]) continue;
      const Interval implied = implied_by_rows(j);
      if (improves_upper(j, implied)) {
        move(j, implied.high, true);
        changed = true;
      }
      if (improves_lower(j, implied)) {
        move(j, implied.low, false);
        changed = true;
      }
    }
    return changed;
  }

  /* Keeps the bounds that were made away from the implied values. */
  void loosen() {
    for (int j = 0; j < core_.n(); ++j) {
      if (made_upper_[j]) upper_[j] += kLoosen * (1.0 + std::fabs(upper_[j]));
      if (made_lower_[j]) lower_[j] -= kLoosen * (1.0 + std::fabs(lower_[j]));
    }
  }

 private:
  struct Interval {
    double low = -kInf, high = kInf;

    /* x <= bound where the entry is positive, else x >= bound. */
    void cut(bool from_above, double bound) {
      if (from_above) {
        high = std::min(high, bound);
      } else {
        low = std::max(low, bound);
      }
    }
  };

  /* Each row: a x_j <= its upper side - (smallest activity of the others), a x_j >= its lower side - (largest of
   * the others). */
  Interval implied_by_rows(int j) const {
    Interval implied;
    for (int k = matrix_.start[j]; k < matrix_.start[j + 1]; ++k) {
      const int i = matrix_.index[k];
      const double a = matrix_.value[k];
      if (std::fabs(a) < kSmallEntry) continue;
      const double row_lower = -core_.model.upper(core_.n() + i);
      const double row_upper = -core_.model.lower(core_.n() + i);
      const double own_low = a > 0 ? lower_[j] : upper_[j];
      const double own_high = a > 0 ? upper_[j] : lower_[j];
      const bool own_low_infinite = std::isinf(own_low);
      const bool own_high_infinite = std::isinf(own_high);
      if (row_upper < kInf && activity_.low_infinite[i] == (own_low_infinite ? 1 : 0)) {
        const double rest = activity_.low[i] - (own_low_infinite ? 0.0 : a * own_low);
        implied.cut(a > 0, (row_upper - rest) / a);
      }
      if (row_lower > -kInf && activity_.high_infinite[i] == (own_high_infinite ? 1 : 0)) {
        const double rest = activity_.high[i] - (own_high_infinite ? 0.0 : a * own_high);
        implied.cut(a < 0, (row_lower - rest) / a);
      }
    }
    return implied;
  }

  /* A bound that was given stays; one that was made moves when it gains enough. */
  bool improves_upper(int j, const Interval& implied) const {
    const double upper = upper_[j], high = implied.high;
    return (upper == kInf || (made_upper_[j] && high < upper - kBetter * (1.0 + std::fabs(upper)))) &&
           std::fabs(high) < kLargest && high > std::max(lower_[j], implied.low);
  }
  bool improves_lower(int j, const Interval& implied) const {
    const double lower = lower_[j], low = implied.low;
    return (lower == -kInf || (made_lower_[j] && low > lower + kBetter * (1.0 + std::fabs(lower)))) &&
           std::fabs(low) < kLargest && low < std::min(upper_[j], implied.high);
  }

  void move(int j, double bound, bool is_upper) {
    double& old = is_upper ? upper_[j] : lower_[j];
    for (int k = matrix_.start[j]; k < matrix_.start[j + 1]; ++k)
      activity_.change(matrix_.index[k], matrix_.value[k], old, bound, is_upper);
    if (std::isinf(old)) ++found_;
    old = bound;
    (is_upper ? made_upper_ : made_lower_)[j] = 1;
  }

  const Core& core_;
  const Matrix& matrix_;
  std::vector<double>& lower_;
  std::vector<double>& upper_;
  int& found_;
  Activities activity_;
  std::vector<char> made_lower_, made_upper_;
};

}  // namespace

ImpliedBounds imply_bounds(const Core& core) {
  ImpliedBounds result{core.model.lower(), core.model.upper(), 0};
  Search search(core, result);
  int sweeps = 0;
  while (sweeps < kSweeps && search.sweep()) ++sweeps;
  search.loosen();
  return result;
}

}  // namespace tovik::lp::simplex
