#include "fileio/mps/fields.h"

#include <algorithm>

namespace tovik::fileio::mps {

namespace {

struct Columns {
  std::size_t first, last;  // counted from 0, the last included
};

constexpr std::array<Columns, Record::kMaxFields> kCard = {
    {{1, 2}, {4, 11}, {14, 21}, {24, 35}, {39, 46}, {49, 60}}};

bool is_blank(char c) {
  return c == ' ' || c == '\r';
}

Field trimmed(const char* first, const char* last) {
  while (first != last && is_blank(*first)) ++first;
  while (first != last && is_blank(last[-1])) --last;
  return make_field(first, static_cast<std::size_t>(last - first));
}

}  // namespace

bool Field::is_keyword(std::string_view upper_case) const {
  if (length != upper_case.size()) return false;
  for (std::size_t i = 0; i < length; ++i)
    if (upper(i) != upper_case[i]) return false;
  return true;
}

bool scan_fixed(const Record& record, Record& fixed) {
  const std::size_t length = static_cast<std::size_t>(record.end - record.begin);
  for (const char stranger : {'\t', '\0'})
    if (std::memchr(record.begin, stranger, length) != nullptr) return false;
  fixed.begin = record.begin;
  fixed.end = record.end;
  fixed.line = record.line;
  fixed.overlong = false;
  fixed.count = Record::kMaxFields;
  std::size_t gap = 0;  // first column not yet looked at
  for (std::size_t k = 0; k < kCard.size(); ++k) {
    for (; gap < std::min(kCard[k].first, length); ++gap)
      if (!is_blank(record.begin[gap])) return false;
    const std::size_t from = std::min(kCard[k].first, length);
    const std::size_t to = std::min(kCard[k].last + 1, length);
    fixed.field[k] = trimmed(record.begin + from, record.begin + to);
    gap = to;
  }
  return true;
}

}  // namespace tovik::fileio::mps
