#include "fileio/mps/context.h"

#include "fileio/stream/number.h"
#include "include/tovik.h"

namespace tovik::fileio::mps {

namespace {

bool read_infinity(const Field& field, double& value) {
  Field word = field;
  const bool signed_word = field.length > 1 && (field.text[0] == '-' || field.text[0] == '+');
  if (signed_word) word = make_field(field.text + 1, field.length - 1);
  if (!word.is_keyword("INF") && !word.is_keyword("INFINITY")) return false;
  value = signed_word && field.text[0] == '-' ? -kInfinity : kInfinity;
  return true;
}

/* From the exponent's letter on; all of a number that is too large without one. */
Field exponent_of(const Field& field) {
  const std::size_t letter = field.view().find_first_of("eEdD");
  return letter == std::string_view::npos ? field : make_field(field.text + letter, field.length - letter);
}

}  // namespace

void Duplicates::add(ReadFailure repeat) {
  if (!cap_.admit()) return;
  if (any()) {
    reported_.more.push_back(std::move(repeat));
  } else {
    reported_ = std::move(repeat);
  }
}

bool Duplicates::report(Context& context) {
  if (cap_.suppressed() > 0 && closing_code_ != 0)
    reported_.more.push_back(ReadFailure::at(closing_code_, cap_.suppressed()));
  return context.fail(std::move(reported_));
}

bool read_number(const Field& field, Infinite infinite, double& value, ParseError& why) {
  const ParsedNumber parsed = parse_number(field.text, field.end());
  if (parsed.kind == ParsedNumber::Kind::number && parsed.end == field.end()) {
    value = parsed.value;
    return true;
  }
  if (infinite == Infinite::accepted && read_infinity(field, value)) return true;
  why = {TVK_ERROR_LINE_NUMBER_CONVERSION, field};
  if (parsed.kind == ParsedNumber::Kind::out_of_range && parsed.end == field.end())
    why = {TVK_ERROR_LINE_EXPONENT_RANGE, exponent_of(field)};
  return false;
}

bool split_pairs(const Record& record, Reading reading, Naming naming, Pairs& pairs) {
  Record card;
  const Record* from = &record;
  pairs.reading = reading;
  int k = 0;  // the field with the first row
  if (reading == Reading::fixed) {
    if (!scan_fixed(record, card)) return false;
    if (!card.field[0].empty() || card.field[2].empty()) return false;
    from = &card;
    k = 2;
    pairs.name = card.field[1];
    pairs.count = card.field[4].empty() ? 1 : 2;
    if (pairs.count == 1 && !card.field[5].empty()) return false;
    if (naming == Naming::required && pairs.name.empty()) return false;
  } else {
    const int missing = reading == Reading::lenient ? 1 : 0;
    const int count = record.count + missing;
    if (count < 2 || count > 5) return false;
    const bool named = count % 2 == 1;
    if (!named && naming == Naming::required) return false;
    pairs.name = named ? record.field[0] : Field{};
    pairs.count = count / 2;
    k = named ? 1 : 0;
  }
  for (int pair = 0; pair < pairs.count; ++pair, k += 2) {
    const auto i = static_cast<std::size_t>(pair);
    pairs.row[i] = from->field[static_cast<std::size_t>(k)];
    const bool absent = reading != Reading::fixed && k + 1 >= record.count;
    pairs.value[i] = absent ? Field{} : from->field[static_cast<std::size_t>(k + 1)];
  }
  return true;
}

bool has_blank_name(const Pairs& pairs) {
  bool blank = pairs.name.view().find(' ') != std::string_view::npos;
  for (std::size_t i = 0; i < static_cast<std::size_t>(pairs.count); ++i)
    blank = blank || pairs.row[i].view().find(' ') != std::string_view::npos;
  return pairs.reading == Reading::fixed && blank;
}

ParseError wrong_field_count(const Record& record) {
  if (record.count < 3) return {TVK_ERROR_LINE_NOT_A_ROW, Field{}};
  const int last =
      record.count < 5 ? record.count - 1 : 4;  // the last number, with all that stands behind it
  return {TVK_ERROR_LINE_NUMBER_CONVERSION,
          rest_of_line(record, record.field[static_cast<std::size_t>(last)].text)};
}

}  // namespace tovik::fileio::mps
