/* The least and the largest value of a row over the bounds of its columns, kept up to date as bounds move.
 *
 * Each is a sum with its rounding error carried along, and a count of contributions without bound; values of
 * magnitude kLargest and more count as infinite, so that they cannot swallow the others. */
#pragma once

#include <cmath>

#include "lp/base/lp_data.h"

namespace tovik::mip {

class ActivityBound {
 public:
  static constexpr double kLargest = 1e15;

  void add(double coefficient, double bound) { change(coefficient * bound, 1); }
  void remove(double coefficient, double bound) { change(coefficient * bound, -1); }
  int infinite() const { return infinite_; }
  double finite_part() const { return sum_ + error_; }
  /* value: of the sum where nothing is infinite. */
  bool is_finite() const { return infinite_ == 0; }
  /* Without one contribution: its value is returned in `rest` where all others are finite. */
  bool rest(double coefficient, double bound, double* rest) const {
    const double own = coefficient * bound;
    if (std::fabs(own) < kLargest) {
      if (infinite_ != 0) return false;
      *rest = (sum_ - own) + error_;
      return true;
    }
    if (infinite_ != 1) return false;
    *rest = finite_part();
    return true;
  }

 private:
  void change(double v, int direction) {
    if (!(std::fabs(v) < kLargest)) {
      infinite_ += direction;
      return;
    }
    const double w = direction * v;
    const double t = sum_ + w;
    const double back = t - sum_;
    error_ += (sum_ - (t - back)) + (w - back);
    sum_ = t;
  }

  double sum_ = 0, error_ = 0;
  int infinite_ = 0;
};

}  // namespace tovik::mip
