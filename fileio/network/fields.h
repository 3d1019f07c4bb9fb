/* The fields of one line of a network file, in place. */
#pragma once

#include <cstdint>
#include <string_view>

#include "fileio/record/model_reader.h"
#include "fileio/stream/number.h"
#include "fileio/stream/stream.h"

namespace tovik::fileio {

class NetworkFields {
 public:
  enum class FieldStatus { value, nothing, bad };  // nothing: the line ends here

  /* The byte behind the line must be a line feed. */
  explicit NetworkFields(std::string_view line) : at_(line.data()), end_(line.data() + line.size()) {
    skip_blanks();
  }

  bool at_end() const { return at_ == end_; }
  bool at_word(std::string_view word) const { return field() == word; }
  std::string_view field() const {
    const char* p = at_;
    while (p != end_ && !is_blank(*p)) ++p;
    return {at_, static_cast<std::size_t>(p - at_)};
  }
  void skip_field() {
    at_ += field().size();
    skip_blanks();
  }

  /* A whole number; one that is out of all bounds comes as the largest or smallest one. */
  FieldStatus integer(std::int64_t& value) {
    if (at_end()) return FieldStatus::nothing;
    const char* p = at_;
    const bool negative = *p == '-';
    if (*p == '-' || *p == '+') ++p;
    const char* digits = p;
    constexpr std::int64_t kLarge = 100000000000000000;
    value = 0;
    for (; static_cast<unsigned char>(*p - '0') < 10; ++p)
      value = value < kLarge ? 10 * value + (*p - '0') : value;
    if (p == digits || !ends_at(p)) return FieldStatus::bad;
    if (negative) value = -value;
    return leave(p);
  }

  FieldStatus number(double& value) {
    if (at_end()) return FieldStatus::nothing;
    const ParsedNumber parsed = parse_number(at_, end_);
    if (parsed.kind != ParsedNumber::Kind::number || !ends_at(parsed.end)) return FieldStatus::bad;
    value = parsed.value;
    return leave(parsed.end);
  }

  /* A number or an infinite one. */
  FieldStatus bound(double& value) {
    const FieldStatus status = number(value);
    return status == FieldStatus::bad ? infinite_bound(value) : status;
  }

 private:
  static bool is_blank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
  bool ends_at(const char* p) const { return p == end_ || is_blank(*p); }
  void skip_blanks() {
    while (at_ != end_ && is_blank(*at_)) ++at_;
  }
  FieldStatus leave(const char* p) {
    at_ = p;
    skip_blanks();
    return FieldStatus::value;
  }
  FieldStatus infinite_bound(double& value) {
    std::string_view word = field();
    const ParsedNumber parsed = parse_number(at_, end_);
    const bool too_large = parsed.kind == ParsedNumber::Kind::out_of_range && ends_at(parsed.end);
    const bool negative = word.starts_with('-');
    if (negative || word.starts_with('+')) word.remove_prefix(1);
    const bool inf = starts_with_keyword(word, "INF") && word.size() == 3;
    const bool infinity = starts_with_keyword(word, "INFINITY") && word.size() == 8;
    if (!too_large && !inf && !infinity) return FieldStatus::bad;
    value = negative ? -kInfinity : kInfinity;
    skip_field();
    return FieldStatus::value;
  }

  const char* at_;
  const char* end_;
};

}  // namespace tovik::fileio
