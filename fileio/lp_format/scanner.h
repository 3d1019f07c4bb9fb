/* The tokens of an LP file. Content flows over line ends; section headers stop it. */
#pragma once

#include <optional>
#include <string_view>

#include "fileio/lp_format/keywords.h"
#include "fileio/lp_format/messages.h"
#include "fileio/lp_format/text.h"

namespace tovik::fileio::lp_format {

enum class Sense { less, greater, equal };
enum class Arrow { none, forward, backward, both };

class Scanner {
 public:
  Scanner(ByteSource& source, std::size_t line_buffer, Messages& messages)
      : lines_(source, line_buffer, messages), messages_(messages) {}

  /* Skips blanks and line ends. True at a character of content; false at a section header, at the end of the
   * data and after a failure. */
  bool more() {
    for (;;) {
      skip_blanks();
      if (!is(*p_, kLineEnd)) return true;
      if (!next_line()) return false;
    }
  }
  /* The header at which the content stopped, or none at the end of the data; the open section becomes that
   * one. */
  std::optional<Section> open_next_section();

  int line() const { return lines_.number(); }
  char peek() const { return *p_; }
  void step() { ++p_; }
  /* Skips blanks within the line and shows what comes: a character of class kLineEnd when nothing is left. */
  char peek_on_line() {
    skip_blanks();
    return *p_;
  }
  /* The rest of the line, which is then done. Lives until the next call of more(). */
  std::string_view take_line();
  /* What looks like the first name of the line so many lines ahead; may be empty. */
  std::string_view coming_name(int lines) const;
  /* Whether only blanks stand before the current position in its line. */
  bool at_line_begin() const;

  /* All of these begin at the current character. Names live until the next call of more(). */
  std::string_view read_name();     // at kNameStart; cut to 255 characters with a warning
  std::string_view read_word();     // up to the next delimiter, whatever it begins with
  bool read_number(double& value);  // at kNumberStart; false after a failure
  Sense read_sense();               // at kSense
  Arrow read_arrow();               // none: nothing is taken

 private:
  bool next_line();
  bool bad_number(const char* begin);
  void skip_blanks() {
    while (is(*p_, kBlank)) ++p_;
  }

  static constexpr char kNothing[] = "\n";  // where the position stands when there is no content

  ContentLines lines_;
  Messages& messages_;
  Section section_ = Section::none;
  std::optional<Header> header_;  // met, not yet opened
  const char* p_ = kNothing;
  bool ended_ = false;
};

/* A name that could be read as an exponent: e alone, or e and a digit. */
inline bool looks_like_exponent(std::string_view name) {
  return is_exponent_letter(name[0]) && (name.size() == 1 || is_digit(name[1]));
}

/* INF or INFINITY in either case. */
bool is_infinity(std::string_view word);

}  // namespace tovik::fileio::lp_format
