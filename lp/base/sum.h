/* Sums that decide feasibility: the error of each addition and product is carried along (Neumaier 1974). */
#pragma once

#include <cmath>

namespace tovik::lp {

class CompensatedSum {
 public:
  void add(double v) {
    const double t = sum_ + v;
    error_ += std::fabs(sum_) >= std::fabs(v) ? (sum_ - t) + v : (v - t) + sum_;
    sum_ = t;
  }
  void add_product(double a, double b) {
    const double p = a * b;
    add(p);
    error_ += std::fma(a, b, -p);
  }
  /* a * (to - from) with no more loss than one add_product() has. */
  struct Difference {
    Difference(double to, double from) : high(to - from) {
      const double back = high - to;  // -from, but for rounding
      low = (to - (high - back)) - (from + back);
    }
    double high, low;  // together exactly to - from
  };
  void add_product(double a, const Difference& d) {
    add_product(a, d.high);
    error_ += a * d.low;
  }
  double value() const { return sum_ + error_; }
  /* What value() leaves out: together they are the sum but for the rounding of the errors' own sum. */
  double rest() const {
    const double v = value();
    return (sum_ - v) + error_;
  }

 private:
  double sum_ = 0;
  double error_ = 0;
};

}  // namespace tovik::lp
