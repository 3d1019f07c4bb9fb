#include "fileio/lp_format/names.h"

#include <array>
#include <string>

#include "fileio/lp_format/scanner.h"
#include "fileio/lp_format/text.h"

namespace tovik::fileio::lp_format {
namespace {

bool is_control(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < ' ' || byte == 127 || byte == 255;
}

constexpr std::array<char, 256> make_replacements() {
  std::array<char, 256> table{};
  for (std::size_t c = 0; c < table.size(); ++c) table[c] = static_cast<char>(c < ' ' ? '_' : c);
  table[' '] = table['\\'] = table[127] = table[255] = '_';
  table['['] = '(';
  table[']'] = ')';
  table['|'] = 'b';
  table['*'] = 'a';
  table['/'] = 'd';
  table['^'] = 'c';
  table[':'] = '.';
  table['<'] = 'l';
  table['>'] = 'g';
  table['='] = 'e';
  table['+'] = 'p';
  table['-'] = 'm';
  return table;
}
constexpr std::array<char, 256> kReplacements = make_replacements();

bool may_start(std::string_view name) {
  return !name.empty() && is(name[0], kNameStart) && !is_exponent_letter(name[0]);
}

/* Whether the line " NAME" and `behind` is a header while `section` is open. */
bool is_header(std::string_view name, char behind, Section section) {
  if (!may_begin_header(name)) return false;
  const std::string line = ' ' + std::string(name) + behind + '\n';
  return find_header(std::string_view(line).substr(0, line.size() - 1), section).has_value();
}

}  // namespace

bool LpNameRules::acceptable(std::string_view name) const {
  if (!may_start(name)) return false;
  for (const char c : name) {
    if (is(c, kDelimiter) || is_control(c)) return false;
  }
  return true;
}

std::string LpNameRules::legal(std::string_view name) const {
  std::string text(may_start(name) ? "" : "_");
  for (const char c : name) text += kReplacements[static_cast<unsigned char>(c)];
  return text;
}

bool LpColumnRules::acceptable(std::string_view name) const {
  return LpNameRules::acceptable(name) && !is_infinity(name) && !is_header(name, ' ', Section::bounds) &&
         !is_header(name, ' ', Section::sets);
}

bool LpLabelRules::acceptable(std::string_view name) const {
  return LpNameRules::acceptable(name) && !is_header(name, ':', section_);
}

}  // namespace tovik::fileio::lp_format
