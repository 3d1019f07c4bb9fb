/* One line of an MPS file cut into fields, in place.
 *
 * - Field: a slice of the line, with its first eight bytes as a number: names of up to eight characters, the
 *   common case, are compared and hashed without touching the text again.
 * - Record: a line as free fields (separated by blanks; every byte up to the blank counts as one, so tabs and
 *   carriage returns need no care), or as the six fixed fields of the old card layout.
 *
 * The scanner reads up to kScanSlack bytes beyond the line; the buffer that holds it provides them. */
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace tovik::fileio::mps {

inline constexpr std::size_t kScanSlack = 16;

struct Field {
  const char* text = nullptr;
  std::uint32_t length = 0;
  std::uint64_t word = 0;  // the first eight bytes, the first one lowest, zero behind the end

  bool empty() const { return length == 0; }
  const char* end() const { return text + length; }
  std::string_view view() const { return {text, length}; }
  bool is(std::string_view word_text) const { return view() == word_text; }
  char upper(std::size_t i) const {  // 0 behind the end
    const char c = i < length ? text[i] : '\0';
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  }
  bool is_keyword(std::string_view upper_case) const;  // whole word, either case
};

struct Record {
  static constexpr int kMaxFields = 6;
  const char* begin = nullptr;  // the line, without its line feed
  const char* end = nullptr;
  int line = 0;
  int count = 0;          // fields on the line; only the first six are kept
  bool overlong = false;  // some field may be longer than a name may be
  std::array<Field, kMaxFields> field;
};

namespace detail {

inline std::uint64_t load_word(const char* p) {
  std::uint64_t w;
  std::memcpy(&w, p, sizeof w);
  if constexpr (std::endian::native == std::endian::big) w = __builtin_bswap64(w);
  return w;
}

/* The high bit of each byte that is a blank or below; exact up to the first one found. */
inline std::uint64_t blank_bytes(std::uint64_t w) {
  return (w - 0x2121212121212121u) & ~w & 0x8080808080808080u;
}

inline std::uint64_t low_bytes(std::uint64_t w, unsigned count) {  // count 1 .. 8
  return w & (~std::uint64_t{0} >> (64 - 8 * count));
}

}  // namespace detail

/* A field over text that has kScanSlack readable bytes behind it. */
inline Field make_field(const char* text, std::size_t length) {
  Field f{text, static_cast<std::uint32_t>(length), 0};
  if (length > 0)
    f.word = detail::low_bytes(detail::load_word(text), length < 8 ? static_cast<unsigned>(length) : 8);
  return f;
}

/* Cuts the line that begins at `p` (and ends with a line feed) into free fields; returns its line feed. */
inline const char* scan_free(const char* p, Record& record) {
  record.begin = p;
  record.overlong = false;
  int count = 0;
  for (;;) {
    for (;;) {
      const std::uint64_t other = detail::load_word(p) ^ 0x2020202020202020u;
      if (other == 0) {
        p += 8;
        continue;
      }
      p += std::countr_zero(other) >> 3;
      if (static_cast<unsigned char>(*p) > ' ') break;
      if (*p == '\n') {
        record.end = p;
        record.count = count;
        return p;
      }
      ++p;
    }
    Field f{p, 0, detail::load_word(p)};
    std::uint64_t blanks = detail::blank_bytes(f.word);
    if (blanks != 0) {
      const unsigned length = static_cast<unsigned>(std::countr_zero(blanks)) >> 3;
      f.length = length;
      f.word = detail::low_bytes(f.word, length);
      p += length;
    } else {
      do {
        p += 8;
        blanks = detail::blank_bytes(detail::load_word(p));
      } while (blanks == 0);
      p += std::countr_zero(blanks) >> 3;
      f.length = static_cast<std::uint32_t>(p - f.text);
      record.overlong |= f.length > 255;
    }
    if (count < Record::kMaxFields) record.field[static_cast<std::size_t>(count)] = f;
    ++count;
  }
}

/* All that stands on the line from `text` on, blanks at its end aside. */
inline Field rest_of_line(const Record& record, const char* text) {
  const char* end = record.end;
  while (end != text && static_cast<unsigned char>(end[-1]) <= ' ') --end;
  return make_field(text, static_cast<std::size_t>(end - text));
}

/* Reads the line of `record` by the card layout: columns 2-3, 5-12, 15-22, 25-36, 40-47 and 50-61, nothing
 * between. The fields may hold blanks and may be empty; count is 6. False when the line does not keep to the
 * layout. */
bool scan_fixed(const Record& record, Record& fixed);

}  // namespace tovik::fileio::mps
