/* The model as the checks look at it, and the checks. Each check is one file of this folder, takes time in
 * proportion to the entries of the matrix (a logarithm more where it sorts) and adds what it finds. */
#pragma once

#include <limits>

#include "cli/check/findings.h"
#include "cli/model_data.h"
#include "cli/sum.h"

namespace tovik::cli {

struct LintModel {
  explicit LintModel(const Model& source);

  const Model& model;
  int rows, columns;
  double direction;           // 1 minimize, -1 maximize
  Vectors by_row, by_column;  // indices ascend
  std::vector<double> cost;
  std::vector<char> type;
  Limits row, bound;  // infinite ends are infinities
  std::string row_name(int i) const { return model.row_name(i); }
  std::string column_name(int j) const { return model.column_name(j); }
  bool integer(int j) const {
    const char t = type[static_cast<std::size_t>(j)];
    return t == 'I' || t == 'B' || t == 'N';
  }
  double lower(int j) const;  // what the column's value can be: 0 counts for a semi-continuous one,
  double upper(int j) const;  // and a binary one lies in [0, 1]
  bool binary(int j) const { return integer(j) && lower(j) == 0 && upper(j) == 1; }
};

/* "= 4", "<= 4", ">= 4" or "in [1, 4]". */
std::string limits_text(double lower, double upper);

/* 1 for each column that a constraint beside the matrix, a set or the quadratic objective mentions. */
std::vector<char> mentioned_elsewhere(const LintModel& m);

/* The least and largest value that a row's terms can add up to within the bounds; infinite terms are counted,
 * so that one term can be taken out again. */
class ActivityBounds {
 public:
  void add(double coefficient, double lower, double upper);
  double least() const { return infinite_below_ > 0 ? -kInfinite : below_.value(); }
  double largest() const { return infinite_above_ > 0 ? kInfinite : above_.value(); }
  /* The largest value without the term (coefficient, lower, upper), which was added before. */
  double largest_without(double coefficient, double lower, double upper) const;
  /* Digits that the sums do not have. */
  double rounding() const { return 1e-13 * (below_.magnitude() + above_.magnitude()); }

 private:
  static constexpr double kInfinite = std::numeric_limits<double>::infinity();
  Sum below_, above_;
  int infinite_below_ = 0, infinite_above_ = 0;
};

void lint_ranges(const LintModel& model, Findings& findings);   // widths of numbers, tiny and huge ones
void lint_columns(const LintModel& model, Findings& findings);  // bounds against types, empty columns
void lint_rows(const LintModel& model, Findings& findings);     // activities against limits, empty rows
void lint_big_m(const LintModel& model, Findings& findings);  // rows that a binary switches by a huge number
void lint_parallel(const LintModel& model,
                   Findings& findings);  // rows or columns that are multiples of others
void lint_fractions(const LintModel& model, Findings& findings);  // 0.333333 in integer equations
void lint_families(const LintModel& model, Findings& findings);   // sets and indicators
void lint_names(const LintModel& model, Findings& findings);
/* Last, and only where nothing else is wrong: bounds implied by several rows. */
void lint_propagation(const LintModel& model, Findings& findings);

}  // namespace tovik::cli
