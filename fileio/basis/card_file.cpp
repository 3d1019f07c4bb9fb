#include "fileio/basis/card_file.h"

#include <charconv>

#include "fileio/mps/names.h"
#include "fileio/stream/number.h"
#include "include/tovik.h"

namespace tovik::fileio {
namespace {

bool is_blank(char c) {
  return static_cast<unsigned char>(c) <= ' ';
}

void split(std::string_view line, std::vector<std::string_view>& fields) {
  fields.clear();
  std::size_t at = 0;
  for (;;) {
    while (at < line.size() && is_blank(line[at])) ++at;
    if (at == line.size()) return;
    const std::size_t begin = at;
    while (at < line.size() && !is_blank(line[at])) ++at;
    fields.push_back(line.substr(begin, at - begin));
  }
}

}  // namespace

bool CardFile::next() {
  while (!failure_ && lines_.next()) {
    if (!lines_.complete()) return fail(ReadFailure::at(TVK_ERROR_LINE_TOO_LONG, line(), kLineLimit));
    const std::string_view text = lines_.line();
    split(text, fields_);
    if (fields_.empty() || text[0] == '*') continue;
    if (is_blank(text[0])) return true;
    if (starts_with_keyword(fields_[0], "ENDATA")) return false;
    if (!starts_with_keyword(fields_[0], "NAME")) return fail(TVK_ERROR_LINE_BASIS_INDICATOR, fields_[0]);
  }
  if (!failure_) log_.warning("Warning: 'ENDATA' missing.\n");
  return false;
}

bool CardFile::fail(ReadFailure failure) {
  failure_ = std::move(failure);
  return false;
}

bool CardFile::read_number(std::string_view field, double& value) {
  return parse_whole_number(field.data(), field.data() + field.size(), value) ||
         fail(TVK_ERROR_LINE_NUMBER_CONVERSION, field);
}

void CardFile::unknown_name(std::string_view name, const char* kind) {
  if (!unknown_.admit()) return;
  log_.warn("Warning, line %d: '%.255s' is not %s.\n", line(), std::string(name).c_str(), kind);
}

void CardFile::close() {
  if (unknown_.suppressed() > 0) log_.warn("%d warnings not printed.\n", unknown_.suppressed());
}

WriterNames card_names(const model::NameTable& table, const model::NameFamily& family, int count,
                       ReaderLog& log) {
  WriterNames names = WriterNames::from(table, family.letter, count, mps::MpsNameRules());
  if (count > 0 && names.origin() == WriterNames::Origin::generated)
    log.warn("Default %-6s names %c1, %c2 ... being created.\n", family.kind, family.letter, family.letter);
  if (names.origin() == WriterNames::Origin::rewritten)
    log.warning("Warning:  Output names have been modified to conform to MPS format.\n");
  return names;
}

CardNames::CardNames(const model::NameTable& names)
    : names_(names),
      rewritten_(WriterNames::from(names, ' ', names.size(), mps::MpsNameRules()).origin() ==
                 WriterNames::Origin::rewritten) {}

int CardNames::find(std::string_view name) const {
  const int rewritten = rewritten_ ? find_rewritten(name) : -1;
  return rewritten >= 0 ? rewritten : names_.find(name);
}

/* Such a name tells its position. */
int CardNames::find_rewritten(std::string_view name) const {
  const std::size_t mark = name.rfind('#');
  int position = -1;
  if (mark == std::string_view::npos) return -1;
  const char* const end = name.data() + name.size();
  const auto parsed = std::from_chars(name.data() + mark + 1, end, position);
  if (parsed.ec != std::errc() || parsed.ptr != end || position < 0 || position >= names_.size()) return -1;
  return rewritten_name(names_.name(position), position, mps::MpsNameRules()) == name ? position : -1;
}

}  // namespace tovik::fileio
