#include "fileio/stream/number.h"

#include <algorithm>
#include <string>

namespace tovik::fileio::detail {
namespace {

bool is_digit(char c) {
  return static_cast<unsigned char>(c - '0') < 10;
}

/* Where the parts of the number stand; digits == 0 means that there is no number. */
struct Extent {
  const char* end;
  const char* exponent;  // its letter, or `end`
  long digits;
};

Extent measure(const char* first, const char* last) {
  const char* p = first;
  if (p != last && (*p == '-' || *p == '+')) ++p;
  long digits = 0;
  for (; p != last && is_digit(*p); ++p) ++digits;
  if (p != last && *p == '.') {
    const char* point = p++;
    for (; p != last && is_digit(*p); ++p) ++digits;
    if (digits == 0) p = point;
  }
  if (digits == 0) return {first, first, 0};
  const char* letter = p;
  if (p != last && ((*p | 0x20) == 'e' || (*p | 0x20) == 'd')) {
    ++p;
    if (p != last && (*p == '-' || *p == '+')) ++p;
    if (p != last && is_digit(*p)) {
      while (p != last && is_digit(*p)) ++p;
      return {p, letter, digits};
    }
  }
  return {letter, letter, digits};
}

/* Whether a number that a double cannot hold is a tiny one: the decimal position of its first digit
 * decides. */
bool is_tiny(const char* first, const Extent& extent) {
  long position = 0;  // power of ten just above the first non-zero digit
  bool seen = false, point = false;
  for (const char* p = first; p != extent.exponent; ++p) {
    if (*p == '.') {
      point = true;
    } else if (is_digit(*p)) {
      if (*p != '0') seen = true;
      if (seen && !point) ++position;
      if (!seen && point) --position;
      if (seen && point) break;
    }
  }
  long power = 0;
  if (extent.exponent != extent.end) {
    const char* p = extent.exponent + 1;
    const bool negative = *p == '-';
    if (*p == '-' || *p == '+') ++p;
    constexpr long kHuge = 1000000000000L;
    for (; p != extent.end; ++p) power = std::min(kHuge, power * 10 + (*p - '0'));
    if (negative) power = -power;
  }
  return position + power < 0;
}

}  // namespace

ParsedNumber parse_any_number(const char* first, const char* last) {
  const Extent extent = measure(first, last);
  if (extent.digits == 0) return {ParsedNumber::Kind::none, 0, first};
  const char* begin = *first == '+' ? first + 1 : first;
  const char* end = extent.end;
  std::string with_e;
  if (extent.exponent != end && (*extent.exponent | 0x20) == 'd') {
    with_e.assign(begin, end);
    with_e[static_cast<std::size_t>(extent.exponent - begin)] = 'e';
    begin = with_e.data();
    end = begin + with_e.size();
  }
  double value = 0;
  if (std::from_chars(begin, end, value).ec == std::errc::result_out_of_range) {
    if (!is_tiny(first, extent)) return {ParsedNumber::Kind::out_of_range, 0, extent.end};
    value = 0;
  }
  return {ParsedNumber::Kind::number, value, extent.end};
}

}  // namespace tovik::fileio::detail
