/* Numbers of about 32 digits, as the unevaluated sum of two doubles (Dekker 1971), for points that are
 * refined step by step. */
#pragma once

#include <cmath>
#include <vector>

#include "lp/base/sum.h"

namespace tovik::lp::refine {

class Extended {
 public:
  Extended() = default;
  explicit Extended(double v) : high_(v) {}

  void add(double v) {
    const double sum = high_ + v;
    const double back = sum - high_;
    const double error = (high_ - (sum - back)) + (v - back);
    low_ += error;
    high_ = sum + low_;
    low_ -= high_ - sum;
  }
  double value() const { return high_; }  // the nearest double
  double low() const { return low_; }
  /* sum += a * this. */
  void add_to(CompensatedSum& sum, double a) const {
    sum.add_product(a, high_);
    if (low_ != 0) sum.add_product(a, low_);
  }
  /* bound - this; infinite bounds stay. */
  double room_to(double bound) const { return std::isinf(bound) ? bound : (bound - high_) - low_; }

 private:
  double high_ = 0, low_ = 0;
};

inline std::vector<double> rounded(const std::vector<Extended>& v) {
  std::vector<double> result;
  result.reserve(v.size());
  for (const Extended& entry : v) result.push_back(entry.value());
  return result;
}

}  // namespace tovik::lp::refine
