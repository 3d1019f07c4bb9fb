/* Violations of single values: of bounds by a value, of optimality by a dual. Infinite bounds are +-kInf.
 * What is not a number is kInf away from everything that is asked of it. */
#pragma once

#include <algorithm>
#include <cmath>

#include "lp/base/basis_status.h"
#include "lp/base/lp_data.h"

namespace tovik::lp::verify {

/* v where it is positive, else 0. */
inline double positive_part(double v) {
  return v > 0 ? v : v <= 0 ? 0.0 : kInf;
}

/* By how much a value misses its bounds. */
inline double outside(double value, double low, double high) {
  return std::max(positive_part(low - value), positive_part(value - high));
}

/* Bounds that leave a value no choice: equal, or crossed by a tolerance that makes them so. */
inline bool is_fixed(double low, double high) {
  return low >= high;
}

/* The part of a reduced cost, of a minimization, that has the wrong sign where its variable stands; a fixed
 * nonbasic variable may have any. For a row: its dual, and the status of its activity. */
inline double wrong_sign(double d, BasisStatus status, bool fixed) {
  if (fixed && status != BasisStatus::basic) return 0;
  if (status == BasisStatus::lower) return positive_part(-d);
  if (status == BasisStatus::upper) return positive_part(d);
  return positive_part(std::fabs(d));
}

/* Where a value stands whose basis is not known: at the nearer bound when it reaches it within the tolerance,
 * relative where the value exceeds 1; otherwise between its bounds, where every dual but 0 is wrong. */
inline BasisStatus status_at(double value, double low, double high, double tolerance) {
  const double margin = tolerance * std::max(1.0, std::fabs(value));
  const bool nearer_low = high == kInf || value - low <= high - value;
  if (low > -kInf && value <= low + margin && nearer_low) return BasisStatus::lower;
  if (high < kInf && value >= high - margin) return BasisStatus::upper;
  return BasisStatus::basic;
}

/* What a row allows its activity to be. */
struct Limits {
  double lower, upper;
};

/* sense: L, G, E or R, the latter between the right-hand side and the right-hand side plus the range. Numbers
 * are taken as they are: what counts as infinite is the caller's. */
inline Limits row_limits(char sense, double rhs, double range) {
  switch (sense) {
    case 'L':
      return {-kInf, rhs};
    case 'G':
      return {rhs, kInf};
    case 'R':
      return {std::min(rhs, rhs + range), std::max(rhs, rhs + range)};
    default:
      return {rhs, rhs};
  }
}

}  // namespace tovik::lp::verify
