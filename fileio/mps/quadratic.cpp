#include <algorithm>

#include "fileio/mps/families.h"
#include "include/tovik.h"

namespace tovik::fileio::mps {

bool QuadraticSection::open(Kind kind, const Record& header) {
  kind_ = kind;
  entries_.clear();
  row_ = -1;
  if (kind == Kind::row) return open_row(header);
  objective_seen_ = true;
  return true;
}

bool QuadraticSection::open_row(const Record& header) {
  if (header.count < 2) return context_.fail(TVK_ERROR_LINE_NO_ROW_NAME, header.line);
  const Field name = rest_of_line(header, header.field[1].text);
  const RowIndex::Found row = rows_.find(name);
  if (!row) return context_.fail(TVK_ERROR_LINE_NOT_A_ROW, header.line, name.view());
  if (row.id < 0) return context_.fail(TVK_ERROR_LINE_QUADRATIC_SENSE, header.line);
  row_ = row.id;
  const auto i = static_cast<std::size_t>(row_);
  const RowKind kind = rows_.kind_of(row_);
  if (kind == RowKind::quadratic)
    return context_.fail(ReadFailure::at(TVK_ERROR_LINE_ENTRY_REPEATS, header.line, "QCMATRIX", name.view()));
  if (kind == RowKind::indicator) return context_.fail(TVK_ERROR_LINE_INDICATOR, header.line);
  if (kind != RowKind::linear) return context_.fail(TVK_ERROR_LINE_LAZY_OR_CUT, header.line);
  if (context_.model.sense[i] != 'L' && context_.model.sense[i] != 'G')
    return context_.fail(TVK_ERROR_LINE_QUADRATIC_SENSE, header.line);
  return true;
}

bool QuadraticSection::record(const Record& record) {
  const NameTable& columns = context_.model.columns;
  int first = NameTable::kNone;
  int second[2] = {NameTable::kNone, NameTable::kNone};
  double value[2] = {0, 0};
  const auto attempt = [&](const Pairs& read, ParseError& error) {
    first = columns.find(read.name.view());
    if (first == NameTable::kNone) error = {TVK_ERROR_LINE_NOT_A_COLUMN, read.name};
    for (std::size_t i = 0; i < static_cast<std::size_t>(read.count) && error.code == 0; ++i) {
      second[i] = columns.find(read.row[i].view());
      value[i] = 0;
      if (second[i] == NameTable::kNone) {
        error = {TVK_ERROR_LINE_NOT_A_COLUMN, read.row[i]};
      } else if (!read.value[i].empty()) {
        read_number(read.value[i], Infinite::refused, value[i], error);
      }
    }
    return error.code == 0;
  };
  Pairs pairs;
  ParseError why;
  if (!try_readings(record, rows_.reading_cards(), Naming::required, attempt, pairs, why)) {
    if (why.code == TVK_ERROR_LINE_NOT_A_ROW) why = {TVK_ERROR_LINE_NOT_A_COLUMN, Field{}};
    return why.report(context_, record.line);
  }
  for (std::size_t i = 0; i < static_cast<std::size_t>(pairs.count); ++i) {
    if (pairs.value[i].empty()) context_.empty_number_read();
    if (static_cast<std::int64_t>(entries_.size()) >= kMaxEntries)
      return context_.fail(ReadFailure::plain(TVK_ERROR_TOO_MANY_COEFFICIENTS));
    entries_.push_back({std::min(first, second[i]), std::max(first, second[i]), first < second[i], value[i]});
  }
  return true;
}

bool QuadraticSection::close() {
  std::vector<QuadraticTerm> terms;
  if (!fold(terms)) return false;
  if (kind_ != Kind::row) {
    context_.model.quadratic_objective = std::move(terms);
  } else if (!terms.empty()) {
    rows_.mark(row_, RowKind::quadratic);
    quadratic_row_.push_back(row_);
    context_.model.quadratic_rows.emplace_back();
    context_.model.quadratic_rows.back().quadratic = std::move(terms);
  }
  return true;
}

/* The lines' entries as terms of the function, each pair once: checks that no entry is stated twice and that
 * a full matrix is symmetric. */
bool QuadraticSection::fold(std::vector<QuadraticTerm>& terms) {
  const FileModel& model = context_.model;
  const std::string where = kind_ == Kind::row ? std::string(model.rows.name(row_)) : "objective";
  const double square = kind_ == Kind::row ? 1.0 : 0.5;  // the objective's matrix stands for x'Qx/2
  std::sort(entries_.begin(), entries_.end(), [](const Entry& a, const Entry& b) {
    if (a.low != b.low) return a.low < b.low;
    return a.high != b.high ? a.high < b.high : a.upper < b.upper;
  });
  const auto same_pair = [](const Entry& a, const Entry& b) { return a.low == b.low && a.high == b.high; };
  for (std::size_t k = 0; k < entries_.size();) {
    const Entry& entry = entries_[k];
    std::size_t next = k + 1;
    while (next < entries_.size() && same_pair(entry, entries_[next])) ++next;
    const std::size_t count = next - k;
    const bool both_halves = kind_ != Kind::half_objective && entry.low != entry.high;
    const bool twice = count > (both_halves ? 2 : 1) || (count == 2 && entry.upper == entries_[k + 1].upper);
    if (twice)
      return context_.fail(ReadFailure::about(TVK_ERROR_DUPLICATE_PAIR, where, model.columns.name(entry.low),
                                              model.columns.name(entry.high)));
    const double other = !both_halves ? entry.value : count == 2 ? entries_[k + 1].value : 0.0;
    if (entry.value != other) return context_.fail(ReadFailure::about(TVK_ERROR_Q_NOT_SYMMETRIC, where));
    const double value = entry.low == entry.high ? square * entry.value : 2 * square * entry.value;
    if (value != 0) terms.push_back({entry.low, entry.high, value});
    k = next;
  }
  return true;
}

}  // namespace tovik::fileio::mps
