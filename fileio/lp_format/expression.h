/* Linear and quadratic expressions of an LP file. */
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "fileio/lp_format/builder.h"
#include "fileio/lp_format/scanner.h"

namespace tovik::fileio::lp_format {

/* What an expression may hold where it stands. */
enum class Place {
  objective,   // quadratic part with "] / 2", constants; no sense
  constraint,  // quadratic part
  linear       // neither
};

class ExpressionReader {
 public:
  enum class Stop {
    failed,
    ended,  // at a section header or the end of the data
    at_sense,
    at_number,   // the expression began with a number, left_value(), and a sense, which comes next
    at_new_line  // at the beginning of a line that cannot go on with this expression (may_end_at_line)
  };
  struct Rules {
    Place place = Place::constraint;
    bool label_allowed = true;   // a name and ':' in front
    bool number_allowed = true;  // a number and a sense in front
    bool may_end_at_line = false;
  };

  ExpressionReader(Scanner& scanner, Builder& builder, Messages& messages)
      : scanner_(scanner), builder_(builder), messages_(messages) {}

  /* Adds the terms to `expression`. */
  Stop read(const Rules& rules, Expression& expression);
  const std::string& label() const { return label_; }  // of the last expression, empty without one
  int label_line() const { return label_line_; }  // where the label, or without one the expression, begins
  int last_line() const { return last_line_; }    // of the last term
  double left_value() const { return left_value_; }
  /* Whether the last expression ended in the middle of a term. */
  bool is_dangling() const { return dangling_; }

  /* The number behind a sense, with its optional sign. */
  Stop read_right_side(double& value);

 private:
  enum class Step { proceed, stop };
  struct Term {
    double factor = 1;  // sign and number
    bool has_sign = false;
    bool has_number = false;
  };

  Step stop(Stop reason) {
    stop_ = reason;
    return Step::stop;
  }
  Step fail(ReadFailure failure) {
    messages_.fail(std::move(failure));
    return stop(Stop::failed);
  }
  /* Scanner::more(), and first the names of the line that it may leave. */
  bool more();
  bool look_up_names();
  Stop read_terms();
  Step ended_inside();
  Step read_next(bool first);
  Step read_sign(Term& term, bool bracket_allowed);
  Step read_coefficient(Term& term, bool first);
  Step read_variable(const Term& term, bool first);
  Step read_column(int& column);
  Step read_quadratic(double factor);
  Step read_quadratic_term(bool first, bool& closed);
  Step read_power(int& other, int column);
  Step read_divisor(double& scale);

  Scanner& scanner_;
  Builder& builder_;
  Messages& messages_;
  Rules rules_;
  Expression* expression_ = nullptr;
  /* Names of this line's last terms, whose columns are not yet looked up: one after another is several times
   * slower. */
  struct PendingName {
    NameTable::Key key;
    std::string_view name;
  };
  std::vector<PendingName> pending_;
  std::string label_;
  int label_line_ = 0;
  int last_line_ = 0;
  double left_value_ = 0;
  bool dangling_ = false;
  bool labelled_ = false;
  Stop stop_ = Stop::ended;
};

}  // namespace tovik::fileio::lp_format
