/* The constraint, user-cut and lazy-constraint sections of an LP file.
 *
 * A constraint is an optional name and ':', an expression, a sense and a number. Beyond that
 *   number sense expression sense number    makes a ranged row (both senses must point the same way),
 *   number sense expression                 is read from the right when a new line or section follows,
 *   column = 0 or 1 -> constraint           is an indicator constraint; <- has its sides the other way
 * round. */
#pragma once

#include <optional>
#include <string>

#include "fileio/lp_format/expression.h"

namespace tovik::fileio::lp_format {

class ConstraintReader {
 public:
  ConstraintReader(Scanner& scanner, Builder& builder, Messages& messages, bool rows_end_with_line)
      : scanner_(scanner),
        builder_(builder),
        messages_(messages),
        expressions_(scanner, builder, messages),
        rows_end_with_line_(rows_end_with_line) {}

  bool read_section(Section section);  // false after a failure

 private:
  struct LeftSide {
    Sense sense;
    double value;
  };
  struct Row {
    Expression expression;
    std::optional<LeftSide> left;
    Sense sense = Sense::equal;
    double rhs = 0;
    int line = 0;  // where it ends
  };
  enum class Outcome { complete, unfinished, failed };

  bool read_statement();
  Outcome read_row(Row& row, bool label_allowed, Place place);
  Outcome outcome(ExpressionReader::Stop stop) const;
  bool discard();
  bool find_arrow(Arrow& arrow);
  bool read_indicator(Arrow arrow);
  bool ignore_rest_of_line();
  bool add();
  bool limits_of(const Row& row, RowLimits& limits);
  bool fail(int code, int line) { return messages_.fail(ReadFailure::at(code, line)); }

  Scanner& scanner_;
  Builder& builder_;
  Messages& messages_;
  ExpressionReader expressions_;
  bool rows_end_with_line_;
  Section section_ = Section::constraints;
  std::string label_;
  int label_line_ = 0;
  Row row_, other_;  // the statement's row; the second half of an indicator constraint
};

}  // namespace tovik::fileio::lp_format
