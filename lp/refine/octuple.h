/* Numbers with twice the digits of another type, as the unevaluated sum of two of them (Dekker 1971): about 68 of quadruple
 * ones. Errors are a few units in the last digit. An infinite number is its first half. */
#pragma once

#include <cmath>

namespace tovik::lp::refine {

/* T: a floating type of kDigits binary digits, rounding to nearest. */
template <class T, int kDigits>
class Doubled {
 public:
  Doubled() = default;
  explicit Doubled(double v) : high_(v) {}
  explicit operator double() const { return static_cast<double>(high_) + static_cast<double>(low_); }

  Doubled operator-() const { return {-high_, -low_}; }
  friend Doubled operator+(const Doubled& a, const Doubled& b) {
    if (infinite(a.high_) || infinite(b.high_)) return {a.high_ + b.high_, T(0)};
    const T sum = a.high_ + b.high_;
    const T back = sum - a.high_;
    const T error = (a.high_ - (sum - back)) + (b.high_ - back);
    return normal(sum, error + (a.low_ + b.low_));
  }
  friend Doubled operator-(const Doubled& a, const Doubled& b) { return a + -b; }
  friend Doubled operator*(const Doubled& a, const Doubled& b) {
    const T product = a.high_ * b.high_;
    if (infinite(product)) return {product, T(0)};
    const Halves x(a.high_), y(b.high_);
    const T error =
        ((x.upper * y.upper - product) + x.upper * y.lower + x.lower * y.upper) + x.lower * y.lower;
    return normal(product, error + (a.high_ * b.low_ + a.low_ * b.high_));
  }
  friend Doubled operator/(const Doubled& a, const Doubled& b) {
    const T first = a.high_ / b.high_;
    if (infinite(first) || first == 0) return {first, T(0)};
    const Doubled left = a - Doubled(first, T(0)) * b;
    const T second = left.high_ / b.high_;
    const T third = (left - Doubled(second, T(0)) * b).high_ / b.high_;
    return normal(first, second) + Doubled(third, T(0));
  }
  Doubled& operator+=(const Doubled& b) { return *this = *this + b; }
  Doubled& operator-=(const Doubled& b) { return *this = *this - b; }
  Doubled& operator*=(const Doubled& b) { return *this = *this * b; }
  Doubled& operator/=(const Doubled& b) { return *this = *this / b; }

  friend bool operator==(const Doubled& a, const Doubled& b) {
    return a.high_ == b.high_ && a.low_ == b.low_;
  }
  friend bool operator<(const Doubled& a, const Doubled& b) {
    return a.high_ < b.high_ || (a.high_ == b.high_ && a.low_ < b.low_);
  }
  friend bool operator>(const Doubled& a, const Doubled& b) { return b < a; }
  friend bool operator<=(const Doubled& a, const Doubled& b) { return a < b || a == b; }
  friend bool operator>=(const Doubled& a, const Doubled& b) { return b <= a; }

 private:
  struct Halves {
    explicit Halves(T v) {
      const T shifted = kSplit * v;
      upper = shifted - (shifted - v);
      lower = v - upper;
    }
    T upper, lower;
  };
  Doubled(T high, T low) : high_(high), low_(low) {}
  static Doubled normal(T high, T low) {
    const T sum = high + low;
    return {sum, low - (sum - high)};
  }
  static bool infinite(T v) { return std::isinf(static_cast<double>(v)); }

  static constexpr T kSplit = static_cast<T>(1ULL << ((kDigits + 1) / 2)) + 1;
  T high_ = 0, low_ = 0;
};

}  // namespace tovik::lp::refine
