/* Text to double, correctly rounded and independent of the locale. */
#pragma once

#include <charconv>
#include <cstdint>
#include <system_error>

namespace tovik::fileio {

struct ParsedNumber {
  enum class Kind { number, none, out_of_range };
  Kind kind;
  double value;     // of Kind::number only
  const char* end;  // first byte behind the number; `first` itself when there is none
};

namespace detail {
inline constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                          1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                          1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
ParsedNumber parse_any_number(const char* first, const char* last);
}  // namespace detail

/* The longest decimal number that [first, last) begins with: digits with an optional point and an optional
 * exponent whose letter is e, E, d or D; an optional sign in front. "inf", "nan" and hexadecimal forms are
 * not numbers. A value too large for a double is out_of_range; one too small is 0.
 *
 * Up to 15 digits without exponent are exact in a double and need one correctly rounded division at most;
 * everything else goes through std::from_chars. */
inline ParsedNumber parse_number(const char* first, const char* last) {
  const char* p = first;
  const bool negative = p != last && *p == '-';
  if (p != last && (*p == '-' || *p == '+')) ++p;
  const char* digits = p;
  std::uint64_t mantissa = 0;
  while (p != last && static_cast<unsigned char>(*p - '0') < 10) {
    mantissa = mantissa * 10 + static_cast<unsigned char>(*p - '0');
    ++p;
  }
  auto count = p - digits;
  long fraction = 0;
  if (p != last && *p == '.') {
    const char* point = p++;
    while (p != last && static_cast<unsigned char>(*p - '0') < 10) {
      mantissa = mantissa * 10 + static_cast<unsigned char>(*p - '0');
      ++p;
    }
    fraction = p - point - 1;
    count += fraction;
  }
  const bool exponent = p != last && ((*p | 0x20) == 'e' || (*p | 0x20) == 'd');
  if (count == 0 || count > 15 || exponent) return detail::parse_any_number(first, last);
  double value = static_cast<double>(mantissa);
  if (fraction != 0) value /= detail::kPowersOfTen[fraction];
  return {ParsedNumber::Kind::number, negative ? -value : value, p};
}

/* The same for a whole text: true when [first, last) is one number and nothing else; `value` is set then. */
inline bool parse_whole_number(const char* first, const char* last, double& value) {
  const ParsedNumber parsed = parse_number(first, last);
  if (parsed.kind != ParsedNumber::Kind::number || parsed.end != last) return false;
  value = parsed.value;
  return true;
}

}  // namespace tovik::fileio
