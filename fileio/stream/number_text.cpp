#include "fileio/stream/number_text.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace tovik::fileio {
namespace {

constexpr double kPlainInteger = 1e15;  // whole numbers below it are written with all their digits

bool is_plain_integer(double value) {
  return std::fabs(value) < kPlainInteger && value == static_cast<double>(static_cast<std::int64_t>(value));
}

char* write_integer(char* to, double value) {
  if (std::signbit(value)) *to++ = '-';
  return std::to_chars(to, to + kNumberText, static_cast<std::int64_t>(std::fabs(value))).ptr;
}

/* The decimal digits of a finite value: d0.d1d2... times ten to the exponent. */
struct Digits {
  char text[kNumberText];
  int count;
  int exponent;
};

/* The digits of a magnitude that has few behind the point, as most numbers of models have: the whole number
 * `scaled` for which scaled / 10^k rounds to the magnitude. Below 10^15 only one can, so it is the shortest
 * too. False for the others. */
bool few_digits(double magnitude, Digits& digits) {
  constexpr struct {
    int count;
    double power;
  } kPlaces[] = {{2, 1e2}, {5, 1e5}, {9, 1e9}};
  if (!(magnitude >= 1e-4 && magnitude < kPlainInteger)) return false;
  for (const auto& places : kPlaces) {
    const double product = magnitude * places.power;
    if (product >= kPlainInteger) return false;
    auto scaled = static_cast<std::int64_t>(product + 0.5);
    if (static_cast<double>(scaled) / places.power != magnitude) continue;
    int behind_point = places.count;
    for (; scaled % 10 == 0; scaled /= 10) --behind_point;
    const char* const end = std::to_chars(digits.text, digits.text + kNumberText, scaled).ptr;
    digits.count = static_cast<int>(end - digits.text);
    digits.exponent = digits.count - 1 - behind_point;
    return true;
  }
  return false;
}

Digits shortest_digits(double magnitude) {
  Digits digits;
  if (few_digits(magnitude, digits)) return digits;
  char text[kNumberText];
  const char* const end =
      std::to_chars(text, text + sizeof text, magnitude, std::chars_format::scientific).ptr;
  const char* letter = end - 4;
  while (*letter != 'e') --letter;
  digits.text[0] = text[0];
  digits.count = letter == text + 1 ? 1 : static_cast<int>(letter - text) - 1;
  if (digits.count > 1) std::memcpy(digits.text + 1, text + 2, static_cast<std::size_t>(digits.count) - 1);
  digits.exponent = 0;
  for (const char* p = letter + 2; p != end; ++p) digits.exponent = digits.exponent * 10 + (*p - '0');
  if (letter[1] == '-') digits.exponent = -digits.exponent;
  return digits;
}

/* Rounds the shortest digits of a value to `count` of them, as the value itself would round: nothing shorter
 * lies between the two. Only when what falls away is a single 5 does it tell nothing; then false. */
bool round_digits(Digits& digits, int count) {
  if (digits.count == count + 1 && digits.text[count] == '5') return false;
  const bool up = digits.text[count] >= '5';
  digits.count = count;
  if (up) {
    while (digits.count > 0 && digits.text[digits.count - 1] == '9') --digits.count;
    if (digits.count > 0) {
      ++digits.text[digits.count - 1];
    } else {
      digits.text[0] = '1';
      digits.count = 1;
      ++digits.exponent;
    }
  }
  while (digits.count > 1 && digits.text[digits.count - 1] == '0') --digits.count;
  return true;
}

char* copy(char* to, const char* from, int count) {
  std::memcpy(to, from, static_cast<std::size_t>(count));
  return to + count;
}

char* zeros(char* to, int count) {
  std::memset(to, '0', static_cast<std::size_t>(count));
  return to + count;
}

char* write_power(char* to, int exponent) {
  *to++ = 'e';
  *to++ = exponent < 0 ? '-' : '+';
  const int size = exponent < 0 ? -exponent : exponent;
  if (size < 10) *to++ = '0';
  return std::to_chars(to, to + 4, size).ptr;
}

/* The rule of printf's %g: plain notation for exponents from -4 up to the precision, else with a power. */
char* lay_out(char* to, const Digits& digits, int precision) {
  const int whole = digits.exponent + 1;  // digits before the point
  if (digits.exponent < -4 || digits.exponent >= precision) {
    *to++ = digits.text[0];
    if (digits.count > 1) {
      *to++ = '.';
      to = copy(to, digits.text + 1, digits.count - 1);
    }
    return write_power(to, digits.exponent);
  }
  if (whole <= 0) {
    to = zeros(to, 1);
    *to++ = '.';
    return copy(zeros(to, -whole), digits.text, digits.count);
  }
  if (digits.count <= whole) return zeros(copy(to, digits.text, digits.count), whole - digits.count);
  to = copy(to, digits.text, whole);
  *to++ = '.';
  return copy(to, digits.text + whole, digits.count - whole);
}

}  // namespace

char* write_shortest(char* to, double value) {
  if (is_plain_integer(value)) return write_integer(to, value);
  if (!std::isfinite(value)) return std::to_chars(to, to + kNumberText, value).ptr;
  if (std::signbit(value)) *to++ = '-';
  return lay_out(to, shortest_digits(std::fabs(value)), 17);
}

char* write_general15(char* to, double value) {
  constexpr int kDigits = 15;
  if (is_plain_integer(value)) return write_integer(to, value);
  if (!std::isfinite(value)) return std::to_chars(to, to + kNumberText, value).ptr;
  Digits digits = shortest_digits(std::fabs(value));
  if (digits.count > kDigits && !round_digits(digits, kDigits)) {
    return std::to_chars(to, to + kNumberText, value, std::chars_format::general, kDigits).ptr;
  }
  if (std::signbit(value)) *to++ = '-';
  return lay_out(to, digits, kDigits);
}

char* write_exponent(char* to, double value, int digits) {
  return std::to_chars(to, to + kNumberText, value, std::chars_format::scientific, digits).ptr;
}

char* write_fitting(char* to, double value, int width) {
  char* end = write_shortest(to, value);
  for (int digits = width; end - to > width && digits > 0; --digits) {
    end = std::to_chars(to, to + kNumberText, value, std::chars_format::general, digits).ptr;
  }
  return end;
}

}  // namespace tovik::fileio
