/* The text layer of the LP reader: what each byte is, and the file as lines of plain content. */
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "fileio/lp_format/messages.h"
#include "fileio/stream/stream.h"

namespace tovik::fileio::lp_format {

enum CharacterClass : unsigned char {
  kBlank = 1,
  kLineEnd = 2,    // line feed, form feed, carriage return, zero, and the backslash that starts a comment
  kDelimiter = 4,  // ends a name
  kNameStart = 8,
  kNumberStart = 16,  // digits and the point
  kSign = 32,
  kSense = 64,
  kQuadratic = 128,  // [ ] * / ^
};

namespace detail {
constexpr std::array<unsigned char, 256> make_character_classes() {
  std::array<unsigned char, 256> table{};
  const auto add = [&table](std::string_view members, int classes) {
    for (const char c : members) table[static_cast<unsigned char>(c)] |= static_cast<unsigned char>(classes);
  };
  add(" \t\v", kBlank | kDelimiter);
  add(std::string_view("\0\n\f\r\\", 5), kLineEnd | kDelimiter);
  add(":|", kDelimiter);
  add("+-", kDelimiter | kSign);
  add("<>=", kDelimiter | kSense);
  add("[]*/^", kDelimiter | kQuadratic);
  add("0123456789.", kNumberStart);
  add("!\"#$%&'(),;?@_`{}~", kNameStart);
  for (int c = 'a'; c <= 'z'; ++c) table[static_cast<std::size_t>(c)] |= kNameStart;
  for (int c = 'A'; c <= 'Z'; ++c) table[static_cast<std::size_t>(c)] |= kNameStart;
  for (std::size_t c = 128; c < 255; ++c) table[c] |= kNameStart;
  return table;
}
inline constexpr std::array<unsigned char, 256> kCharacterClasses = make_character_classes();
}  // namespace detail

inline bool is(char c, int classes) {
  return (detail::kCharacterClasses[static_cast<unsigned char>(c)] & classes) != 0;
}
inline bool is_digit(char c) {
  return static_cast<unsigned char>(c - '0') < 10;
}
inline bool is_exponent_letter(char c) {
  return c == 'e' || c == 'E';
}

/* The lines of the file without comments, line ends and invalid characters (which are warned about). A form
 * feed, a lone carriage return or a zero byte ends a line as a line feed does, but only line feeds are
 * counted.
 *
 * A line may have any length, but from 559 characters on there must be a sign in every stretch of that
 * length, or the read fails with 1464: what has none cannot be an expression. Comments are not bound by
 * that. */
class ContentLines {
 public:
  ContentLines(ByteSource& source, std::size_t line_buffer, Messages& messages)
      : lines_(source, line_buffer), messages_(messages) {}

  bool next();  // false at the end of the data and after a failure
  /* The content; the byte behind it is of class kLineEnd. Lives until the next call of next(). */
  std::string_view line() const { return line_; }
  int number() const { return lines_.number(); }
  /* As far as known, the text behind this line, comments and all. */
  std::string_view coming() const { return lines_.coming(); }
  /* Whether line() begins a line; false for what follows in an over-long one. */
  bool is_fresh() const { return fresh_; }

 private:
  bool check_length(std::string_view raw);
  bool cut_piece(std::string_view& raw);
  void clean(std::string_view raw);

  LineReader lines_;
  Messages& messages_;
  std::string_view line_;
  std::string_view rest_;  // content behind a line end inside of a physical line
  std::string scratch_;    // a line that had to be cleaned
  bool has_rest_ = false;
  bool fresh_ = true;
};

}  // namespace tovik::fileio::lp_format
