/* The sections beyond rows, columns and bounds: SOS, QMATRIX, QUADOBJ, QCMATRIX and INDICATORS.
 *
 *   SOS          " S1 NAME [PRIORITY]" begins a set (its type in columns 2-3); "    COLUMN WEIGHT" is a
 *                member, with the name of the set in front if one likes.
 *   QMATRIX      COLUMN COLUMN VALUE: the symmetric matrix Q of x'Qx/2, both halves.
 *   QUADOBJ      the same, one half.
 *   QCMATRIX     ROW on the header line: the symmetric matrix of x'Qx in that row, both halves.
 *   INDICATORS   " IF ROW COLUMN VALUE": the row holds when the column has the value, 0 or 1.
 *
 * - Errors: 1434, 1435, 1437 .. 1439, 1442, 1447 .. 1449, 1463, 1479, 1486, 3301, 5011, 5012. */
#pragma once

#include <string>
#include <vector>

#include "fileio/mps/context.h"
#include "fileio/mps/rows.h"

namespace tovik::fileio::mps {

class SetSection {
 public:
  explicit SetSection(Context& context, RowDirectory& rows) : context_(context), rows_(rows) {}
  bool record(const Record& record);

 private:
  bool header(const Record& record);
  bool member(const Record& record);

  Context& context_;
  RowDirectory& rows_;
  NameTable names_;
  std::vector<int> last_set_;  // by column, the last set that lists it, counted from 1
  bool open_ = false;
};

/* The quadratic sections, one matrix at a time. */
class QuadraticSection {
 public:
  enum class Kind { full_objective, half_objective, row };
  QuadraticSection(Context& context, RowDirectory& rows) : context_(context), rows_(rows) {}
  /* `header` is the section's own line; it names the row of Kind::row. */
  bool open(Kind kind, const Record& header);
  bool record(const Record& record);
  bool close();
  bool has_objective() const { return objective_seen_; }
  /* Parallel to the model's quadratic rows. */
  const std::vector<int>& rows_in_order() const { return quadratic_row_; }

 private:
  struct Entry {
    int low, high;  // columns, low <= high
    bool upper;     // the line named the lower column first
    double value;
  };
  bool open_row(const Record& header);
  bool fold(std::vector<QuadraticTerm>& terms);

  Context& context_;
  RowDirectory& rows_;
  Kind kind_ = Kind::full_objective;
  bool objective_seen_ = false;
  int row_ = -1;
  std::vector<bool> row_seen_;
  std::vector<Entry> entries_;
  std::vector<int> quadratic_row_;
};

class IndicatorSection {
 public:
  IndicatorSection(Context& context, RowDirectory& rows) : context_(context), rows_(rows) {}
  bool record(const Record& record);
  void close();  // call once, when the bounds are settled
  /* Parallel to the model's indicators. */
  const std::vector<int>& rows_in_order() const { return indicator_row_; }

 private:
  bool add(const Field& row, const Field& column, const Field& value, int line, ParseError& why);

  Context& context_;
  RowDirectory& rows_;
  std::vector<int> indicator_row_;
};

/* Takes user cuts, lazy constraints, quadratic and indicator rows out of the linear rows and into their own
 * lists. Call once, when everything is read. */
void extract_special_rows(FileModel& model, const std::vector<RowKind>& kinds,
                          const std::vector<int>& quadratic_rows, const std::vector<int>& indicator_rows);

}  // namespace tovik::fileio::mps
