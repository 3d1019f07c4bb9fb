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

}  // namespace

ImpliedBounds imply_bounds(const Core& core) {
  ImpliedBounds result{core.model.lower(), core.model.upper(), 0};
  const Matrix& matrix = core.matrix();
  std::vector<double>& lower = result.lower;
  std::vector<double>& upper = result.upper;
  Activities activity(core.m());
  for (int j = 0; j < core.n(); ++j) {
    for (int k = matrix.start[j]; k < matrix.start[j + 1]; ++k)
      activity.add(matrix.index[k], matrix.value[k], lower[j], upper[j]);
  }
  std::vector<char> made_lower(static_cast<size_t>(core.n()), 0), made_upper(made_lower);
  int changes = 0;
  const auto move = [&](int j, double bound, bool is_upper) {
    double& old = is_upper ? upper[j] : lower[j];
    for (int k = matrix.start[j]; k < matrix.start[j + 1]; ++k) {
      activity.change(matrix.index[k], matrix.value[k], old, bound, is_upper);
    }
    if (std::isinf(old)) ++result.found;
    old = bound;
    ++changes;
  };
  for (int sweep = 0; sweep < kSweeps; ++sweep) {
    changes = 0;
    for (int j = 0; j < core.n(); ++j) {
      if (lower[j] != -kInf && upper[j] != kInf && !made_lower[j] && !made_upper[j]) continue;
      double high = kInf;
      double low = -kInf;
      for (int k = matrix.start[j]; k < matrix.start[j + 1]; ++k) {
        const int i = matrix.index[k];
        const double a = matrix.value[k];
        if (std::fabs(a) < kSmallEntry) continue;
        const double row_lower = -core.model.upper(core.n() + i);
        const double row_upper = -core.model.lower(core.n() + i);
        // a x_j <= row_upper - (smallest activity of the others), a x_j >= row_lower - (largest of the
        // others)
        const double own_low = a > 0 ? lower[j] : upper[j];
        const double own_high = a > 0 ? upper[j] : lower[j];
        const bool own_low_infinite = std::isinf(own_low);
        const bool own_high_infinite = std::isinf(own_high);
        if (row_upper < kInf && activity.low_infinite[i] == (own_low_infinite ? 1 : 0)) {
          const double rest = activity.low[i] - (own_low_infinite ? 0.0 : a * own_low);
          const double bound = (row_upper - rest) / a;
          if (a > 0) {
            high = std::min(high, bound);
          } else {
            low = std::max(low, bound);
          }
        }
        if (row_lower > -kInf && activity.high_infinite[i] == (own_high_infinite ? 1 : 0)) {
          const double rest = activity.high[i] - (own_high_infinite ? 0.0 : a * own_high);
          const double bound = (row_lower - rest) / a;
          if (a > 0) {
            low = std::max(low, bound);
          } else {
            high = std::min(high, bound);
          }
        }
      }
      if ((upper[j] == kInf || (made_upper[j] && high < upper[j] - kBetter * (1.0 + std::fabs(upper[j])))) &&
          std::fabs(high) < kLargest && high > std::max(lower[j], low)) {
        move(j, high, true);
        made_upper[j] = 1;
      }
      if ((lower[j] == -kInf || (made_lower[j] && low > lower[j] + kBetter * (1.0 + std::fabs(lower[j])))) &&
          std::fabs(low) < kLargest && low < std::min(upper[j], high)) {
        move(j, low, false);
        made_lower[j] = 1;
      }
    }
    if (changes == 0) break;
  }
  for (int j = 0; j < core.n(); ++j) {
    if (made_upper[j]) upper[j] += kLoosen * (1.0 + std::fabs(upper[j]));
    if (made_lower[j]) lower[j] -= kLoosen * (1.0 + std::fabs(lower[j]));
  }
  return result;
}

}  // namespace tovik::lp::simplex
