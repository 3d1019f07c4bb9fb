#include "fileio/mps/families.h"
#include "include/tovik.h"

#include <algorithm>
#include <cmath>

namespace tovik::fileio::mps {

namespace {

constexpr int kIntegerLimit = 2100000000;  // of a set's priority
constexpr std::ptrdiff_t kHeaderIndent = 3;

}  // namespace

bool SetSection::record(const Record& record) {
  const Field& first = record.field[0];
  const bool typed = first.length == 2 && first.upper(0) == 'S' && first.text - record.begin < kHeaderIndent;
  return typed ? header(record) : member(record);
}

bool SetSection::header(const Record& record) {
  const Field& type = record.field[0];
  if (type.text[1] != '1' && type.text[1] != '2')
    return context_.fail(ReadFailure::at(TVK_ERROR_LINE_SOS_TYPE, record.line, type.text[0], type.text[1]));
  Field name = record.count > 1 ? record.field[1] : Field{};
  Record card;
  if (rows_.reading_cards() && scan_fixed(record, card)) name = card.field[1];
  if (!name.empty() && !names_.intern(name.view()).added)
    return context_.fail(ReadFailure::at(TVK_ERROR_LINE_ENTRY_REPEATS, record.line, "SOS", name.view()));
  if (record.count == 3 && !rows_.reading_cards()) {
    double priority;
    ParseError why;
    if (!read_number(record.field[2], Infinite::refused, priority, why))
      return why.report(context_, record.line);
    if (std::fabs(priority) > kIntegerLimit)
      return context_.fail(ReadFailure::at(TVK_ERROR_LINE_INTEGER_LIMIT, record.line, kIntegerLimit));
  }
  SpecialOrderedSet set;
  set.type = type.text[1];
  set.name = name.view();
  context_.model.sets.push_back(std::move(set));
  open_ = true;
  return true;
}

bool SetSection::member(const Record& record) {
  if (!open_) return context_.fail(TVK_ERROR_LINE_NO_SOS_TYPE, record.line);
  FileModel& model = context_.model;
  SpecialOrderedSet& set = model.sets.back();
  int column = NameTable::kNone;
  double weight = 0;
  const auto attempt = [&](const Pairs& read, ParseError& error) {
    if (read.count != 1) {
      error = {TVK_ERROR_LINE_NUMBER_CONVERSION, rest_of_line(record, read.value[0].text)};
      return false;
    }
    if (!read.name.empty() && read.name.view() != set.name) {
      error = {TVK_ERROR_LINE_NOT_A_COLUMN, read.name};
      return false;
    }
    column = model.columns.find(read.row[0].view());
    if (column == NameTable::kNone) {
      error = {TVK_ERROR_LINE_NOT_A_COLUMN, read.row[0]};
      return false;
    }
    return read.value[0].empty() || read_number(read.value[0], Infinite::refused, weight, error);
  };
  Pairs pairs;
  ParseError why;
  if (!try_readings(record, rows_.reading_cards(), Naming::optional, attempt, pairs, why)) {
    if (why.code == TVK_ERROR_LINE_NOT_A_ROW) why = {TVK_ERROR_LINE_NOT_A_COLUMN, record.field[0]};
    return why.report(context_, record.line);
  }
  if (pairs.value[0].empty()) context_.empty_number_read();
  last_set_.resize(static_cast<std::size_t>(model.columns.size()), 0);
  int& last = last_set_[static_cast<std::size_t>(column)];
  const int number = static_cast<int>(model.sets.size());
  if (last == number)
    return context_.fail(
        ReadFailure::at(TVK_ERROR_LINE_PAIR_REPEATS, record.line, set.name, pairs.row[0].view()));
  last = number;
  set.members.index.push_back(column);
  set.members.value.push_back(weight);
  return true;
}

bool IndicatorSection::record(const Record& record) {
  if (!record.field[0].is_keyword("IF")) return context_.fail(TVK_ERROR_LINE_INDICATOR, record.line);
  Record card;
  ParseError why, other;
  const auto try_card = [&](ParseError& error) {
    return scan_fixed(record, card) && add(card.field[1], card.field[2], card.field[3], record.line, error);
  };
  if (rows_.reading_cards() && try_card(other)) return true;
  if (record.count != 4) why = {TVK_ERROR_LINE_INDICATOR, Field{}};
  if (record.count == 4 && add(record.field[1], record.field[2], record.field[3], record.line, why))
    return true;
  if (context_.failure || (!rows_.reading_cards() && try_card(other))) return !context_.failure;
  return why.code == TVK_ERROR_LINE_INDICATOR ? context_.fail(TVK_ERROR_LINE_INDICATOR, record.line)
                                              : why.report(context_, record.line);
}

bool IndicatorSection::add(const Field& row_name, const Field& column_name, const Field& value_field,
                           int line, ParseError& why) {
  FileModel& model = context_.model;
  const RowIndex::Found row = rows_.find(row_name);
  if (!row) {
    why = {TVK_ERROR_LINE_NOT_A_ROW, row_name};
    return false;
  }
  const int column = model.columns.find(column_name.view());
  if (column == NameTable::kNone) {
    why = {TVK_ERROR_LINE_NOT_A_COLUMN, column_name};
    return false;
  }
  double value;
  if (!read_number(value_field, Infinite::refused, value, why)) return false;
  const auto i = static_cast<std::size_t>(row.id);
  const RowKind kind = row.id >= 0 ? rows_.kind_of(row.id) : RowKind::quadratic;
  const bool linear = kind == RowKind::linear || kind == RowKind::indicator;
  if (!linear || model.sense[i] == 'R' || (value != 0 && value != 1)) {
    why = {TVK_ERROR_LINE_INDICATOR, Field{}};
    return false;
  }
  if (kind == RowKind::indicator) {
    context_.fail(ReadFailure::at(TVK_ERROR_LINE_ENTRY_REPEATS, line, "indicator", row_name.view()));
    return false;
  }
  rows_.mark(row.id, RowKind::indicator);
  IndicatorRow indicator;
  indicator.column = column;
  indicator.active_at_one = value == 1;
  model.indicators.push_back(std::move(indicator));
  indicator_row_.push_back(row.id);
  return true;
}

void IndicatorSection::close() {
  const FileModel& model = context_.model;
  WarningLimit cap;
  const auto warn = [&](const char* format, int column) {
    const std::string text = std::string(format) + "\n";
    const std::size_t name = text.find("%");
    if (cap.admit())
      context_.log.warning(text.substr(0, name) + "'" + std::string(model.columns.name(column)) + "'" +
                           text.substr(name + 1));
  };
  for (const IndicatorRow& indicator : model.indicators) {
    const auto j = static_cast<std::size_t>(indicator.column);
    const double lower = model.lower[j], upper = model.upper[j];
    if (lower == upper) {
      if (lower != 0 && lower != 1)
        warn("Warning: indicator variable % is fixed to other than 0.0 or 1.0.", indicator.column);
      continue;
    }
    if (lower != 0) warn("Warning: indicator variable % has lower bound other than 0.0.", indicator.column);
    if (upper != 1) warn("Warning: indicator variable % has upper bound other than 1.0.", indicator.column);
  }
  if (cap.suppressed() > 0)
    context_.log.warn("%d indicator variable warnings not printed.\n", cap.suppressed());
}

}  // namespace tovik::fileio::mps
