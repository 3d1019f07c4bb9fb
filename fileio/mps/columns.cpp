#include "fileio/mps/columns.h"

#include "fileio/stream/number.h"
#include "include/tovik.h"

namespace tovik::fileio::mps {

bool ColumnSection::open(int line) {
  if (reference_name_.empty()) return true;
  const std::string padded = reference_name_ + std::string(kScanSlack, '\0');
  reference_ = rows_.find(make_field(padded.data(), reference_name_.size()));
  return reference_ || context_.fail(TVK_ERROR_LINE_NOT_A_ROW, line, reference_name_);
}

bool ColumnSection::plain_record(const Record& record) {
  if (record.count != 3 && record.count != 5) return false;
  ResolvedPairs resolved;
  const std::size_t pairs = record.count == 3 ? 1 : 2;
  for (std::size_t pair = 0; pair < pairs; ++pair) {
    resolved[pair].row = rows_.find(record.field[1 + 2 * pair]);
    if (!resolved[pair].row) return false;
  }
  for (std::size_t pair = 0; pair < pairs; ++pair) {
    const Field& number = record.field[2 + 2 * pair];
    if (!parse_whole_number(number.text, number.end(), resolved[pair].value)) return false;
  }
  if (!is_current(record.field[0]) && !enter_column(record.field[0])) return false;
  for (std::size_t pair = 0; pair < pairs; ++pair) store(resolved[pair]);
  return true;
}

bool ColumnSection::other_record(const Record& record) {
  if (context_.failure) return false;
  for (std::size_t k = 1; k <= 2 && k + 1 < static_cast<std::size_t>(record.count); ++k)
    if (record.field[k].is("'MARKER'")) return marker_record(record, k);
  ResolvedPairs resolved;
  Pairs pairs;
  ParseError why;
  const auto attempt = [&](const Pairs& read, ParseError& error) { return resolve(read, resolved, error); };
  if (!try_readings(record, rows_.reading_cards(), Naming::required, attempt, pairs, why))
    return why.report(context_, record.line);
  if (has_blank_name(pairs)) rows_.read_cards();
  if (!is_current(pairs.name) && !enter_column(pairs.name)) return false;
  for (std::size_t pair = 0; pair < static_cast<std::size_t>(pairs.count); ++pair) {
    if (pairs.value[pair].empty()) context_.empty_number_read();
    store(resolved[pair]);
  }
  return true;
}

bool ColumnSection::resolve(const Pairs& pairs, ResolvedPairs& resolved, ParseError& why) {
  for (std::size_t pair = 0; pair < static_cast<std::size_t>(pairs.count); ++pair) {
    resolved[pair] = {rows_.find(pairs.row[pair]), 0.0};
    if (!resolved[pair].row) {
      why = {TVK_ERROR_LINE_NOT_A_ROW, pairs.row[pair]};
      return false;
    }
    const Field& number = pairs.value[pair];
    if (!number.empty() && !read_number(number, Infinite::refused, resolved[pair].value, why)) return false;
  }
  return true;
}

bool ColumnSection::enter_column(const Field& name) {
  FileModel& model = context_.model;
  length_ = name.length;
  word_ = name.word;
  column_ = model.columns.append(name.view());
  if (column_ >= kMaxEntries) return context_.fail(ReadFailure::plain(TVK_ERROR_TOO_MANY_COLUMNS));
  if (static_cast<std::int64_t>(model.index.size()) >= kMaxEntries)
    return context_.fail(ReadFailure::plain(TVK_ERROR_TOO_MANY_COEFFICIENTS));
  model.start.push_back(static_cast<std::int64_t>(model.index.size()));
  model.objective.push_back(0.0);
  if (integer_ && model.types.empty()) model.types.assign(static_cast<std::size_t>(column_), 'C');
  if (integer_ || !model.types.empty()) model.types.push_back(integer_ ? 'I' : 'C');
  if (in_set_) {
    SparseTerms& members = model.sets.back().members;
    members.index.push_back(column_);
    members.value.push_back(static_cast<double>(members.index.size()));
  }
  return true;
}

void ColumnSection::store(const Resolved& entry) {
  FileModel& model = context_.model;
  const RowIndex::Found row = entry.row;
  if (*row.stamp == column_) {
    repeated_rows_.add(
        ReadFailure::about(TVK_ERROR_COLUMN_REPEATS_ROW, model.columns.name(column_), rows_.text_of(row.id)));
    return;
  }
  *row.stamp = column_;
  if (in_set_ && row.stamp == reference_.stamp) model.sets.back().members.value.back() = entry.value;
  if (row.id < 0) {
    if (rows_.is_objective(row.id)) model.objective.back() = entry.value;
  } else if (entry.value != 0) {
    model.index.push_back(row.id);
    model.value.push_back(entry.value);
  }
}

bool ColumnSection::marker_record(const Record& record, std::size_t marker) {
  const Field& word = record.field[marker + 1];
  if (word.is("'INTORG'")) {
    if (integer_) return context_.fail(TVK_ERROR_LINE_INTORG, record.line);
    integer_ = true;
  } else if (word.is("'INTEND'")) {
    if (!integer_) return context_.fail(TVK_ERROR_LINE_INTEND, record.line);
    integer_ = false;
  } else if (word.is("'SOSORG'") || word.is("'SOSEND'")) {
    return set_marker(record, marker);
  } else if (unidentified_.admit()) {
    context_.log.warn("Line %d:  Unidentified MARKER found. Ignored.\n", record.line);
  }
  return true;
}

/* "S1 NAME 'MARKER' 'SOSORG'", or without the type, which then is 1. */
bool ColumnSection::set_marker(const Record& record, std::size_t marker) {
  if (record.field[marker + 1].is("'SOSEND'")) {
    if (!in_set_) return context_.fail(TVK_ERROR_LINE_SOSEND, record.line);
    in_set_ = false;
    return true;
  }
  if (in_set_) return context_.fail(TVK_ERROR_LINE_SOSORG, record.line);
  SpecialOrderedSet set;
  set.type = '1';
  set.name = record.field[marker - 1].view();
  if (marker == 2) {
    const Field& type = record.field[0];
    set.type = type.upper(1);
    if (type.length != 2 || type.upper(0) != 'S' || (set.type != '1' && set.type != '2'))
      return context_.fail(ReadFailure::at(TVK_ERROR_LINE_SOS_TYPE, record.line, type.text[0],
                                           type.length > 1 ? type.text[1] : ' '));
  }
  context_.model.sets.push_back(std::move(set));
  in_set_ = true;
  return true;
}

bool ColumnSection::close() {
  Duplicates repeated_columns(TVK_ERROR_MORE_COLUMN_REPEATS);
  for (const int repeat : context_.model.columns.index_appended())
    repeated_columns.add(ReadFailure::about(TVK_ERROR_COLUMN_REPEATS, context_.model.columns.name(repeat)));
  if (repeated_columns.any()) return repeated_columns.report(context_);
  if (repeated_rows_.any()) return repeated_rows_.report(context_);
  FileModel& model = context_.model;
  const auto columns = static_cast<std::size_t>(model.columns.size());
  model.start.push_back(static_cast<std::int64_t>(model.index.size()));
  if (!model.types.empty()) model.types.resize(columns, 'C');
  model.lower.assign(columns, 0.0);
  model.upper.assign(columns, kInfinity);
  return true;
}

}  // namespace tovik::fileio::mps
