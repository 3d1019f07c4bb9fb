/* Fractions of 64-bit integers, in lowest terms. What does not fit throws std::overflow_error. */
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <stdexcept>

namespace support {

class Rational {
 public:
  Rational(std::int64_t value = 0) : top_(value) {}
  Rational(std::int64_t top, std::int64_t bottom) : Rational(reduced(top, bottom)) {}

  /* The fraction with a small denominator that `value` stands for; throws when there is none. */
  static Rational near(double value) {
    constexpr double kClose = 1e-11;  // relative
    constexpr int kTerms = 20;
    std::int64_t top = 1, bottom = 0, old_top = 0, old_bottom = 1;
    double rest = value;
    for (int k = 0; k < kTerms; ++k) {
      const double whole = std::floor(rest + 0.5);
      if (std::fabs(whole) > 1e7) break;
      const auto term = static_cast<std::int64_t>(whole);
      const std::int64_t next_top = term * top + old_top, next_bottom = term * bottom + old_bottom;
      old_top = top, old_bottom = bottom, top = next_top, bottom = next_bottom;
      if (std::abs(bottom) > 1000000) break;
      const double found = static_cast<double>(top) / static_cast<double>(bottom);
      if (std::fabs(found - value) <= kClose * std::fabs(value)) return {top, bottom};
      rest = 1 / (rest - whole);
    }
    throw std::domain_error("no simple fraction");
  }

  double real() const { return static_cast<double>(top_) / static_cast<double>(bottom_); }
  int sign() const { return top_ > 0 ? 1 : top_ < 0 ? -1 : 0; }

  friend Rational operator+(const Rational& a, const Rational& b) {
    return reduced(Wide{a.top_} * b.bottom_ + Wide{b.top_} * a.bottom_, Wide{a.bottom_} * b.bottom_);
  }
  friend Rational operator-(const Rational& a) { return Rational(-a.top_, a.bottom_); }
  friend Rational operator-(const Rational& a, const Rational& b) { return a + -b; }
  friend Rational operator*(const Rational& a, const Rational& b) {
    if (a.top_ == 0 || b.top_ == 0) return {};
    return reduced(Wide{a.top_} * b.top_, Wide{a.bottom_} * b.bottom_);
  }
  friend Rational operator/(const Rational& a, const Rational& b) {
    return reduced(Wide{a.top_} * b.bottom_, Wide{a.bottom_} * b.top_);
  }
  friend bool operator==(const Rational& a, const Rational& b) {
    return a.top_ == b.top_ && a.bottom_ == b.bottom_;
  }
  friend bool operator<(const Rational& a, const Rational& b) {
    return Wide{a.top_} * b.bottom_ < Wide{b.top_} * a.bottom_;
  }

 private:
  __extension__ using Wide = __int128;
  static Rational reduced(Wide top, Wide bottom) {
    if (bottom < 0) top = -top, bottom = -bottom;
    Wide a = top < 0 ? -top : top, b = bottom;
    while (b != 0) {
      const Wide c = a % b;
      a = b, b = c;
    }
    if (a > 1) top /= a, bottom /= a;
    constexpr Wide most = std::numeric_limits<std::int64_t>::max();
    if (top > most || top < -most || bottom > most) throw std::overflow_error("fraction too long");
    Rational r;
    r.top_ = static_cast<std::int64_t>(top);
    r.bottom_ = static_cast<std::int64_t>(bottom);
    return r;
  }

  std::int64_t top_ = 0, bottom_ = 1;
};

}  // namespace support
