/* Sums of products as accurate as if computed with twice the digits.
 * Also known are the largest term and the sum of their magnitudes, which tell how many digits of the value
 * mean anything.
 *
 * - Paper: Ogita, Rump, Oishi, Accurate sum and dot product, SIAM J. Sci. Comput. 26 (2005). */
#pragma once

#include <algorithm>
#include <cmath>

namespace tovik::cli {

class Sum {
 public:
  void add(double a, double b) {
    const double product = a * b;
    const double product_error = std::fma(a, b, -product);
    const double sum = total_ + product;
    const double shift = sum - total_;
    error_ += (total_ - (sum - shift)) + (product - shift) + product_error;
    total_ = sum;
    largest_ = std::max(largest_, std::abs(product));
    magnitude_ += std::abs(product);
  }
  void add(double a) { add(a, 1.0); }
  double value() const { return total_ + error_; }
  double size() const { return std::max(1.0, largest_); }
  double magnitude() const { return magnitude_; }

 private:
  double total_ = 0, error_ = 0, largest_ = 0, magnitude_ = 0;
};

}  // namespace tovik::cli
