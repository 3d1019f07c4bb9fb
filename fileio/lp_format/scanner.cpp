#include "fileio/lp_format/scanner.h"

#include <algorithm>
#include <string>

#include "fileio/stream/number.h"
#include "include/tovik.h"

namespace tovik::fileio::lp_format {

bool Scanner::next_line() {
  if (header_ || ended_) return false;
  if (!lines_.next()) {
    ended_ = true;
    p_ = kNothing;
    return false;
  }
  p_ = lines_.line().data();
  if (lines_.is_fresh()) header_ = find_header(lines_.line(), section_);
  if (header_) p_ = kNothing;
  return !header_;
}

std::optional<Section> Scanner::open_next_section() {
  if (!header_) return std::nullopt;
  section_ = header_->section;
  p_ = header_->content;
  header_.reset();
  return section_;
}

std::string_view Scanner::take_line() {
  const std::string_view all = lines_.line();
  const std::string_view rest(p_, static_cast<std::size_t>(all.data() + all.size() - p_));
  p_ += rest.size();
  return rest;
}

bool Scanner::at_line_begin() const {
  if (p_ == kNothing || !lines_.is_fresh()) return false;
  for (const char* q = lines_.line().data(); q != p_; ++q) {
    if (!is(*q, kBlank)) return false;
  }
  return true;
}

std::string_view Scanner::coming_name(int lines) const {
  std::string_view text = lines_.coming().substr(0, 2 * kMaxNameLength);
  for (; lines > 1; --lines) text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1);
  std::size_t begin = 0;
  while (begin < text.size() && !is(text[begin], kNameStart | kLineEnd)) ++begin;
  std::size_t end = begin;
  while (end < text.size() && !is(text[end], kDelimiter)) ++end;
  return text.substr(begin, end - begin);
}

std::string_view Scanner::read_word() {
  const char* begin = p_;
  while (!is(*p_, kDelimiter)) ++p_;
  return {begin, static_cast<std::size_t>(p_ - begin)};
}

std::string_view Scanner::read_name() {
  std::string_view name = read_word();
  if (name.size() > kMaxNameLength) {
    name = name.substr(0, kMaxNameLength);
    messages_.name_truncated(line(), name);
  }
  return name;
}

bool Scanner::read_number(double& value) {
  const char* begin = p_;
  const char* q = p_;
  while (is(*q, kNumberStart)) ++q;
  if (is_exponent_letter(*q)) {
    const char* exponent = q + 1;
    if (*exponent == '+' || *exponent == '-') ++exponent;
    if (is_digit(*exponent)) {
      while (is_digit(*exponent)) ++exponent;
      q = exponent;
    } else if (exponent != q + 1 || is(*exponent, kDelimiter)) {
      // An exponent without digits. (A letter that goes on as a name is one: 3ex is three times ex.)
      p_ = exponent;
      return messages_.fail(ReadFailure::at(TVK_ERROR_LINE_EXPONENT_WITH_NUMBER, line(),
                                            std::string_view(q, static_cast<std::size_t>(exponent - q)),
                                            "ended"));
    }
  }
  const ParsedNumber number = parse_number(begin, q);
  p_ = q;
  if (number.kind != ParsedNumber::Kind::number || number.end != q) return bad_number(begin);
  value = number.value;
  return true;
}

/* The failure of the number text from `begin` to the current position. */
bool Scanner::bad_number(const char* begin) {
  const std::string_view text(begin, static_cast<std::size_t>(p_ - begin));
  const std::size_t letter = text.find_first_of("eE");
  double value;
  const bool well_formed =
      letter != std::string_view::npos && parse_whole_number(text.data(), text.data() + letter, value);
  if (well_formed)
    return messages_.fail(ReadFailure::at(TVK_ERROR_LINE_EXPONENT_RANGE, line(), text.substr(letter)));
  return messages_.fail(ReadFailure::at(TVK_ERROR_LINE_NUMBER_CONVERSION, line(), text));
}

Sense Scanner::read_sense() {
  const char first = *p_++;
  const char second = *p_;
  if (first == '=') {
    if (second != '<' && second != '>') return Sense::equal;
    ++p_;
    return second == '<' ? Sense::less : Sense::greater;
  }
  if (second == '=') ++p_;
  return first == '<' ? Sense::less : Sense::greater;
}

Arrow Scanner::read_arrow() {
  if (p_[0] == '-' && p_[1] == '>') {
    p_ += 2;
    return Arrow::forward;
  }
  if (p_[0] != '<' || p_[1] != '-') return Arrow::none;
  p_ += 2;
  if (*p_ != '>') return Arrow::backward;
  ++p_;
  return Arrow::both;
}

bool is_infinity(std::string_view word) {
  constexpr std::string_view kLong = "INFINITY";
  if (word.size() != 3 && word.size() != kLong.size()) return false;
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (word[i] != kLong[i] && word[i] != static_cast<char>(kLong[i] | 0x20)) return false;
  }
  return true;
}

}  // namespace tovik::fileio::lp_format
