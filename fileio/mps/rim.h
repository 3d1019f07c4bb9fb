/* The sections RHS and RANGES. Only the first set of each counts; its name is reported, the others are skipped.
 *
 * A range r makes a row two-sided: 'L' rows go from rhs - |r| to rhs, 'G' rows from rhs to rhs + |r|, 'E'
 * rows from rhs to rhs + r (below rhs when r is negative). Values for the objective are ignored with a
 * warning.
 * - Errors: 1434, 1435, 1438, 1447, 1448. */
#pragma once

#include <string>
#include <vector>

#include "fileio/mps/context.h"
#include "fileio/mps/rows.h"

namespace tovik::fileio::mps {

/* The one set of a section that counts: the first whose name appears. */
class ChosenSet {
 public:
  explicit ChosenSet(const char* word) : word_(word) {}
  /* Whether a line of the set `name` counts: any line before a set was chosen. */
  bool counts(const Field& name) const { return !chosen_ || name.view() == file_name_; }
  /* Chooses the set of the first line that counts and reports its name. */
  void choose(Context& context, const Field& name);
  void skip(Context& context);  // warns once that more than one set was met
  const char* word() const { return word_; }
  const std::string& name() const { return name_; }

 private:
  const char* word_;
  bool chosen_ = false, warned_more_ = false;
  std::string file_name_, name_;  // as the lines have it, and as it is reported
};

class RimSection {
 public:
  enum class Kind { rhs, ranges };
  RimSection(Context& context, RowDirectory& rows, Kind kind);
  bool record(const Record& record);
  bool close();  // call once, at the end of the file

 private:
  struct Resolved {
    RowIndex::Found row[2];
    double value[2];
    bool counts;
  };
  bool resolve(const Pairs& pairs, Resolved& resolved, ParseError& why) const;
  bool apply(std::int32_t row, double value, int line);
  void set_range(std::size_t row, double value);

  Context& context_;
  RowDirectory& rows_;
  Kind kind_;
  ChosenSet set_;
  std::vector<bool> given_;  // by row
  WarningLimit objective_warnings_, free_row_warnings_;
  Duplicates repeats_{0};
};

}  // namespace tovik::fileio::mps
