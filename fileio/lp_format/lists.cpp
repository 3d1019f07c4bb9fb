#include "fileio/lp_format/lists.h"

#include "include/tovik.h"

namespace tovik::fileio::lp_format {

bool TypeReader::read_section(Section section) {
  builder_.open_type_section();
  while (scanner_.more()) {
    const char c = scanner_.peek();
    if (is(c, kDelimiter)) {
      return messages_.fail(ReadFailure::at(TVK_ERROR_LINE_EXPECTED_IDENTIFIER, scanner_.line(), c));
    }
    const std::string_view name = scanner_.read_name();
    if (!is(c, kNameStart) || looks_like_exponent(name)) {
      messages_.name_not_valid(scanner_.line(), name);
      continue;
    }
    const int column = builder_.find_column(name);
    if (column < 0) {
      messages_.name_unknown(scanner_.line(), name);
    } else {
      declare(section, column);
    }
  }
  return !messages_.failed();
}

void TypeReader::declare(Section section, int column) {
  if (section == Section::binaries) {
    builder_.declare_binary(column);
  } else if (section == Section::semicontinuous) {
    builder_.declare_semicontinuous(column);
  } else {
    builder_.declare_integer(column);
  }
}

bool SetReader::read_section() {
  has_set_ = false;
  while (scanner_.more()) {
    if (!read_statement()) return false;
  }
  return !messages_.failed();
}

bool SetReader::read_word(std::string& word) {
  if (!is(scanner_.peek(), kNameStart)) {
    return messages_.fail(
        ReadFailure::at(TVK_ERROR_LINE_EXPECTED_IDENTIFIER, scanner_.line(), scanner_.peek()));
  }
  word = scanner_.read_name();
  if (!looks_like_exponent(word)) return true;
  return messages_.fail(ReadFailure::at(TVK_ERROR_LINE_IDENTIFIER, scanner_.line(), word));
}

bool SetReader::expect_colon() {
  const char c = scanner_.peek_on_line();
  if (c != ':') {
    const char shown = is(c, kLineEnd) ? ' ' : c;
    return messages_.fail(ReadFailure::at(TVK_ERROR_LINE_EXPECTED_COLON, scanner_.line(), shown));
  }
  scanner_.step();
  return true;
}

/* Called behind "word:": a second colon makes the word a set type. */
bool SetReader::take_type_mark(const std::string& word, bool& is_type) {
  is_type = scanner_.peek_on_line() == ':';
  if (!is_type) return true;
  scanner_.step();
  if (word.size() == 2 && (word[0] == 'S' || word[0] == 's') && (word[1] == '1' || word[1] == '2'))
    return true;
  return messages_.fail(
      ReadFailure::at(TVK_ERROR_LINE_SOS_TYPE, scanner_.line(), word[0], word.size() > 1 ? word[1] : ' '));
}

/* One member, or the head of a set. */
bool SetReader::read_statement() {
  std::string word, type;
  bool is_type = false;
  const int line = scanner_.line();
  if (!read_word(word) || !expect_colon() || !take_type_mark(word, is_type)) return false;
  if (is_type) return begin_set("", word, line);
  if (scanner_.more() && is(scanner_.peek(), kNameStart)) {
    if (!read_word(type) || !expect_colon() || !take_type_mark(type, is_type)) return false;
    if (is_type) return begin_set(word, type, line);
    return messages_.fail(ReadFailure::at(TVK_ERROR_LINE_NO_SOS_TYPE, line));
  }
  return !messages_.failed() && read_member(word);
}

bool SetReader::begin_set(const std::string& name, const std::string& type, int line) {
  has_set_ = true;
  return builder_.add_set(name, type[1], line);
}

/* The weight behind "name:". */
bool SetReader::read_member(const std::string& name) {
  double sign = 1, weight = 0;
  if (!has_set_) return messages_.fail(ReadFailure::at(TVK_ERROR_LINE_NO_SOS_TYPE, scanner_.line()));
  bool more = scanner_.more();
  if (more && is(scanner_.peek(), kSign)) {
    sign = scanner_.peek() == '-' ? -1 : 1;
    scanner_.step();
    more = scanner_.more();
  }
  if (!more) return messages_.fail(ReadFailure::at(TVK_ERROR_LINE_EXPECTED_NUMBER_FIRST, scanner_.line()));
  if (!is(scanner_.peek(), kNumberStart)) {
    return messages_.fail(ReadFailure::at(TVK_ERROR_LINE_EXPECTED_NUMBER, scanner_.line(), scanner_.peek()));
  }
  if (!scanner_.read_number(weight)) return false;
  const int column = builder_.find_column(name);
  if (column < 0) return messages_.fail(ReadFailure::at(TVK_ERROR_LINE_NOT_A_COLUMN, scanner_.line(), name));
  builder_.add_set_member(column, sign * weight);
  return true;
}

}  // namespace tovik::fileio::lp_format
