#include "fileio/lp_format/bounds.h"

#include <algorithm>

#include "fileio/stream/number.h"
#include "include/tovik.h"

namespace tovik::fileio::lp_format {
namespace {

constexpr std::string_view kSenses = "<>=";

/* Ends with FREE in either case. */
bool ends_with_free(std::string_view text) {
  return ends_with_keyword(text, "FREE");
}

/* INF or INFINITY with an optional sign. */
bool is_signed_infinity(std::string_view text) {
  if (!text.empty() && is(text[0], kSign)) text.remove_prefix(1);
  return is_infinity(text);
}

bool begins_value(std::string_view text) {
  return !text.empty() && is(text[0], kSign | kNumberStart);
}

}  // namespace

bool BoundReader::read_section() {
  constexpr int kAhead = 3;
  while (scanner_.more()) {
    builder_.prefetch_column(scanner_.coming_name(kAhead));  // its place is on the way while others are read
    if (!builder_.count_bound() || !read_statement()) return false;
  }
  return !messages_.failed();
}

bool BoundReader::read_statement() {
  text_.clear();
  for (const char c : scanner_.take_line()) {
    if (!is(c, kBlank)) text_.push_back(c);
  }
  const std::size_t sense = text_.find_first_of(kSenses);
  if (sense == std::string::npos) return read_free();
  const std::string_view left = std::string_view(text_).substr(0, sense);
  if (begins_value(left)) return read_value_first();
  if (!is_infinity(left)) return read_name_first();
  // A column may be called inf: it is one when a value stands on the other side.
  const std::string_view right =
      std::string_view(text_).substr(std::min(text_.find_first_not_of(kSenses, sense), text_.size()));
  return begins_value(right) || is_infinity(right) ? read_name_first() : read_value_first();
}

bool BoundReader::read_free() {
  if (!ends_with_free(text_) || text_.size() == 4) return fail(TVK_ERROR_LINE_NO_BOUND_SENSE);
  const int column = column_of(std::string_view(text_).substr(0, text_.size() - 4));
  if (column >= 0) {
    builder_.set_lower(column, -kInfinity);
    builder_.set_upper(column, kInfinity);
  }
  return true;
}

/* The sense at `at`, which moves behind it. */
bool BoundReader::read_sense(std::size_t& at, Sense& sense) {
  const auto character = [this](std::size_t i) { return i < text_.size() ? text_[i] : '\0'; };
  const char first = character(at), second = character(at + 1);
  if (!is(first, kSense)) return fail(TVK_ERROR_LINE_BOUND_SENSE);
  const bool two = first == '=' ? second == '<' || second == '>' : second == '=';
  const char direction = first == '=' && two ? second : first;
  sense = direction == '=' ? Sense::equal : direction == '<' ? Sense::less : Sense::greater;
  at += two ? 2 : 1;
  return true;
}

bool BoundReader::read_value(std::string_view text, double& value) {
  if (text.empty()) return fail(TVK_ERROR_LINE_NO_BOUND_NUMBER);
  if (is_signed_infinity(text)) {
    value = text[0] == '-' ? -kInfinity : kInfinity;
    return true;
  }
  if (!begins_value(text)) {
    const bool exponent = looks_like_exponent(text);
    return exponent ? messages_.fail(ReadFailure::at(TVK_ERROR_LINE_EXPONENT_WITH_NUMBER, scanner_.line(),
                                                     text, "started"))
                    : fail(TVK_ERROR_LINE_NO_BOUND_NUMBER);
  }
  if (text.size() == 1 && is(text[0], kSign)) {
    value = text[0] == '-' ? -1 : 1;
    return true;
  }
  const char* end = text.data() + text.size();
  const bool fortran_exponent = text.find_first_of("dD") != std::string_view::npos;
  const ParsedNumber number = parse_number(text.data(), end);
  if (number.kind == ParsedNumber::Kind::out_of_range && number.end == end) {
    const std::size_t letter = text.find_first_of("eE");
    if (letter != std::string_view::npos) {
      return messages_.fail(
          ReadFailure::at(TVK_ERROR_LINE_EXPONENT_RANGE, scanner_.line(), text.substr(letter)));
    }
  }
  if (number.kind != ParsedNumber::Kind::number || number.end != end || fortran_exponent) {
    return messages_.fail(ReadFailure::at(TVK_ERROR_LINE_NUMBER_CONVERSION, scanner_.line(), text));
  }
  value = number.value;
  return true;
}

int BoundReader::column_of(std::string_view name) {
  if (name.size() > kMaxNameLength) {
    name = name.substr(0, kMaxNameLength);
    messages_.name_truncated(scanner_.line(), name);
  }
  const int column = builder_.find_column(name);
  if (column >= 0) return column;
  const bool valid = !name.empty() && is(name[0], kNameStart) && !looks_like_exponent(name);
  if (valid) {
    messages_.name_unknown(scanner_.line(), name);
  } else {
    messages_.name_not_valid(scanner_.line(), name);
  }
  return NameTable::kNone;
}

void BoundReader::apply(int column, Sense sense, double value) {
  if (sense != Sense::less) builder_.set_lower(column, value);
  if (sense != Sense::greater) builder_.set_upper(column, value);
}

bool BoundReader::read_name_first() {
  std::size_t at = 0;
  while (at < text_.size() && !is(text_[at], kDelimiter)) ++at;
  const std::string_view name = std::string_view(text_).substr(0, at);
  Sense sense = Sense::equal;
  double value = 0;
  if (!read_sense(at, sense) || !read_value(std::string_view(text_).substr(at), value)) return false;
  const int column = column_of(name);
  if (column >= 0) apply(column, sense, value);
  return true;
}

bool BoundReader::read_value_first() {
  std::size_t at = text_.find_first_of(kSenses);
  double left = 0, right = 0;
  Sense left_sense = Sense::equal, right_sense = Sense::equal;
  if (!read_value(std::string_view(text_).substr(0, at), left) || !read_sense(at, left_sense)) return false;
  const std::size_t begin = at;
  while (at < text_.size() && !is(text_[at], kDelimiter)) ++at;
  const std::string_view name = std::string_view(text_).substr(begin, at - begin);
  if (name.empty()) {
    return at < text_.size()
               ? messages_.fail(
                     ReadFailure::at(TVK_ERROR_LINE_EXPECTED_IDENTIFIER, scanner_.line(), text_[at]))
               : messages_.fail(ReadFailure::at(TVK_ERROR_LINE_IDENTIFIER, scanner_.line(), name));
  }
  const bool three_parts = at < text_.size();
  if (three_parts) {
    if (!read_sense(at, right_sense) || !read_value(std::string_view(text_).substr(at), right)) return false;
    if (left_sense != right_sense) {
      messages_.log().warn("Warning, line %d: Possible sense conflict.\n", scanner_.line());
    }
  }
  const int column = column_of(name);
  if (column < 0) return true;
  const Sense turned = left_sense == Sense::less      ? Sense::greater
                       : left_sense == Sense::greater ? Sense::less
                                                      : Sense::equal;
  apply(column, turned, left);
  if (three_parts) apply(column, right_sense, right);
  return true;
}

}  // namespace tovik::fileio::lp_format
