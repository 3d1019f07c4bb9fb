/* The section COLUMNS: coefficients, costs, integer and set markers.
 *
 * The matrix grows column by column as the lines come; a column's name is looked at only when it differs from
 * that of the line before. Coefficients of free rows that are not the objective are dropped, zeros are kept
 * out of the matrix. Columns between integer markers are of type 'I' with bounds 0 and infinity. Columns
 * between set markers form a special ordered set, with the coefficients of the reference row, or else their
 * positions, as weights.
 * - Errors: 1432, 1433, 1434, 1435, 1442, 1443, 1446, 1448, 1480 .. 1483. */
#pragma once

#include <array>
#include <string>

#include "fileio/mps/context.h"
#include "fileio/mps/rows.h"

namespace tovik::fileio::mps {

class ColumnSection {
 public:
  ColumnSection(Context& context, RowDirectory& rows) : context_(context), rows_(rows) {}

  void name_reference_row(const Field& name) { reference_name_.assign(name.view()); }
  /* Call once, before the first line. */
  bool open(int line);
  bool record(const Record& record) {
    return (!rows_.reading_cards() && plain_record(record)) || other_record(record);
  }
  /* Fetches what record() will look up; worth it some lines ahead. */
  [[gnu::always_inline]] void prefetch(const Record& record) const {
    if (record.count != 3 && record.count != 5) return;
    rows_.prefetch(record.field[1]);
    if (record.count == 5) rows_.prefetch(record.field[3]);
  }
  /* Call once, behind the last line: reports repeats and completes the columns' arrays. */
  bool close();

 private:
  struct Resolved {
    RowIndex::Found row;
    double value;
  };
  using ResolvedPairs = std::array<Resolved, 2>;

  bool plain_record(const Record& record);  // false: not a plain line, nothing has been done
  bool other_record(const Record& record);
  bool marker_record(const Record& record, std::size_t marker);
  bool set_marker(const Record& record, std::size_t marker);
  bool resolve(const Pairs& pairs, ResolvedPairs& resolved, ParseError& why);
  bool is_current(const Field& name) const {
    return name.length == length_ && name.word == word_ &&
           (name.length <= 8 || context_.model.columns.name(column_) == name.view());
  }
  bool enter_column(const Field& name);
  void store(const Resolved& entry);

  Context& context_;
  RowDirectory& rows_;
  std::uint32_t length_ = 0;  // the current column's name: length and first bytes
  std::uint64_t word_ = 0;
  int column_ = -1;
  bool integer_ = false;
  bool in_set_ = false;
  std::string reference_name_;
  RowIndex::Found reference_;
  WarningLimit unidentified_;
  Duplicates repeated_rows_{0};
};

}  // namespace tovik::fileio::mps
