#include "fileio/lp_format/expression.h"

#include "include/tovik.h"

namespace tovik::fileio::lp_format {

ExpressionReader::Stop ExpressionReader::read(const Rules& rules, Expression& expression) {
  rules_ = rules;
  expression_ = &expression;
  label_.clear();
  label_line_ = last_line_ = scanner_.line();
  labelled_ = false;
  dangling_ = false;
  stop_ = Stop::ended;
  pending_.clear();
  const Stop reason = read_terms();
  return !messages_.failed() && look_up_names() ? reason : Stop::failed;
}

ExpressionReader::Stop ExpressionReader::read_terms() {
  bool first = true;
  while (more()) {
    const bool had_label = labelled_;
    if (read_next(first) == Step::stop) return stop_;
    first = labelled_ != had_label;
  }
  return Stop::ended;
}

bool ExpressionReader::more() {
  if (is(scanner_.peek_on_line(), kLineEnd) && !look_up_names()) return false;
  return scanner_.more();
}

/* The last columns of the expression are placeholders for the pending names. */
bool ExpressionReader::look_up_names() {
  int* column = expression_->columns.data() + expression_->columns.size() - pending_.size();
  for (const PendingName& pending : pending_) {
    *column = builder_.column(pending.name, pending.key);
    if (*column++ < 0) return false;
  }
  pending_.clear();
  return true;
}

ExpressionReader::Step ExpressionReader::ended_inside() {
  dangling_ = true;
  return stop(Stop::ended);
}

/* One signed term, a label, or what ends the expression. */
ExpressionReader::Step ExpressionReader::read_next(bool first) {
  Term term;
  const char c = scanner_.peek();
  if (is(c, kSign)) {
    if (read_sign(term, true) == Step::stop) return Step::stop;
  } else if (is(c, kSense)) {
    if (rules_.place == Place::objective) {
      return fail(ReadFailure::at(TVK_ERROR_LINE_SENSE_IN_OBJECTIVE, scanner_.line()));
    }
    const bool row_without_terms = first && labelled_ && rules_.place == Place::constraint;
    if (first && !row_without_terms) {
      return fail(ReadFailure::at(TVK_ERROR_LINE_EXPECTED_IDENTIFIER_FIRST, scanner_.line()));
    }
    if (row_without_terms)
      messages_.log().warn("Warning, line %d: Constraint '%s' has no terms.\n", scanner_.line(),
                           label_.c_str());
    return stop(Stop::at_sense);
  } else if (!first) {
    if (rules_.may_end_at_line && scanner_.at_line_begin()) return stop(Stop::at_new_line);
    return fail(ReadFailure::at(rules_.place == Place::objective ? TVK_ERROR_LINE_EXPECTED_SIGN
                                                                 : TVK_ERROR_LINE_EXPECTED_SIGN_OR_SENSE,
                                scanner_.line(), c));
  }
  last_line_ = scanner_.line();
  if (scanner_.peek() == '[') {
    if (rules_.place == Place::linear) {
      return fail(ReadFailure::at(TVK_ERROR_LINE_QUADRATIC_IN_CONSTRAINT, scanner_.line()));
    }
    return read_quadratic(term.factor);
  }
  if (is(scanner_.peek(), kNumberStart)) {
    if (read_coefficient(term, first) == Step::stop) return Step::stop;
    if (term.has_number && !is(scanner_.peek(), kNameStart)) return Step::proceed;  // a constant
  }
  return read_variable(term, first);
}

/* The sign at the current position, up to what follows it. */
ExpressionReader::Step ExpressionReader::read_sign(Term& term, bool bracket_allowed) {
  const int line = scanner_.line();
  term.has_sign = true;
  term.factor = scanner_.peek() == '-' ? -1 : 1;
  scanner_.step();
  if (!more()) return ended_inside();
  const char c = scanner_.peek();
  if (is(c, kSign)) return fail(ReadFailure::at(TVK_ERROR_LINES_ADJACENT_SIGNS, line, scanner_.line()));
  if (is(c, kSense))
    return fail(ReadFailure::at(TVK_ERROR_LINES_ADJACENT_SIGN_AND_SENSE, line, scanner_.line()));
  if (is(c, kQuadratic) && !(c == '[' && bracket_allowed)) {
    return fail(ReadFailure::at(TVK_ERROR_LINES_ADJACENT_SIGN_AND_QUADRATIC, line, scanner_.line()));
  }
  return Step::proceed;
}

/* The number of a term. Goes on at the name that it belongs to, or, in the objective, behind a constant. */
ExpressionReader::Step ExpressionReader::read_coefficient(Term& term, bool first) {
  double number = 0;
  if (!scanner_.read_number(number)) return stop(Stop::failed);
  term.factor *= number;
  term.has_number = true;
  const bool constant_allowed = rules_.place == Place::objective;
  const bool goes_on = more();
  if (goes_on && is(scanner_.peek(), kNameStart)) return Step::proceed;
  if (messages_.failed()) return stop(Stop::failed);
  const char c = scanner_.peek();
  if (constant_allowed && (!goes_on || is(c, kSign))) {
    expression_->constant += term.factor;
    return Step::proceed;
  }
  if (!goes_on) return ended_inside();
  if (is(c, kSense) && first && rules_.number_allowed && !constant_allowed) {
    left_value_ = term.factor;
    return stop(Stop::at_number);
  }
  if (is(c, kSense) && constant_allowed) {
    return fail(ReadFailure::at(TVK_ERROR_LINE_SENSE_IN_OBJECTIVE, scanner_.line()));
  }
  if (is(c, kSense | kSign)) {
    return fail(ReadFailure::at(TVK_ERROR_LINE_EXPECTED_IDENTIFIER_FIRST, scanner_.line()));
  }
  if (is(c, kQuadratic) && rules_.place != Place::objective) {
    return fail(ReadFailure::at(TVK_ERROR_LINE_QUADRATIC_IN_CONSTRAINT, scanner_.line()));
  }
  return fail(ReadFailure::at(TVK_ERROR_LINE_EXPECTED_IDENTIFIER, scanner_.line(), c));
}

/* The name of a term, or the label of the whole expression. */
ExpressionReader::Step ExpressionReader::read_variable(const Term& term, bool first) {
  if (!is(scanner_.peek(), kNameStart)) {
    return fail(ReadFailure::at(TVK_ERROR_LINE_EXPECTED_IDENTIFIER, scanner_.line(), scanner_.peek()));
  }
  const std::string_view name = scanner_.read_name();
  const char next = scanner_.peek_on_line();
  if (looks_like_exponent(name))
    return fail(ReadFailure::at(TVK_ERROR_LINE_IDENTIFIER, scanner_.line(), name));
  const bool bare = first && !term.has_sign && !term.has_number;
  if (bare && rules_.label_allowed && !labelled_ && next == ':') {
    scanner_.step();
    label_ = name;
    label_line_ = scanner_.line();
    builder_.prefetch_row(name);
    labelled_ = true;
    return Step::proceed;
  }
  if (first && term.has_sign && !term.has_number && rules_.number_allowed && is(next, kSense) &&
      rules_.place != Place::objective && is_infinity(name)) {
    left_value_ = term.factor * kInfinity;
    return stop(Stop::at_number);
  }
  if (is(next, kQuadratic) && rules_.place != Place::objective) {
    return fail(ReadFailure::at(TVK_ERROR_LINE_QUADRATIC_IN_CONSTRAINT, scanner_.line()));
  }
  last_line_ = scanner_.line();
  pending_.push_back({builder_.prefetch_column(name), name});
  expression_->columns.push_back(NameTable::kNone);
  expression_->values.push_back(term.factor);
  return Step::proceed;
}

ExpressionReader::Step ExpressionReader::read_column(int& column) {
  if (!is(scanner_.peek(), kNameStart)) {
    return fail(ReadFailure::at(TVK_ERROR_LINE_EXPECTED_IDENTIFIER, scanner_.line(), scanner_.peek()));
  }
  const std::string_view name = scanner_.read_name();
  if (looks_like_exponent(name))
    return fail(ReadFailure::at(TVK_ERROR_LINE_IDENTIFIER, scanner_.line(), name));
  column = builder_.column(name);
  return column < 0 ? stop(Stop::failed) : Step::proceed;
}

/* A whole bracket. In the objective its terms are halved by the divisor behind it. */
ExpressionReader::Step ExpressionReader::read_quadratic(double factor) {
  scanner_.step();
  if (!look_up_names()) return stop(Stop::failed);  // columns come in the order of the file
  const std::size_t begin = expression_->quadratic.size();
  bool closed = false;
  for (bool first = true; !closed; first = false) {
    if (!more()) return ended_inside();
    if (read_quadratic_term(first, closed) == Step::stop) return Step::stop;
  }
  double scale = factor;
  if (rules_.place == Place::objective && read_divisor(scale) == Step::stop) return Step::stop;
  for (std::size_t k = begin; k < expression_->quadratic.size(); ++k)
    expression_->quadratic[k].value *= scale;
  return Step::proceed;
}

ExpressionReader::Step ExpressionReader::read_quadratic_term(bool first, bool& closed) {
  Term term;
  if (is(scanner_.peek(), kSign)) {
    if (read_sign(term, false) == Step::stop) return Step::stop;
  } else if (scanner_.peek() == ']') {
    scanner_.step();
    closed = true;
    last_line_ = scanner_.line();
    return Step::proceed;
  } else if (!first) {
    return fail(ReadFailure::at(TVK_ERROR_LINE_EXPECTED_SIGN, scanner_.line(), scanner_.peek()));
  }
  if (is(scanner_.peek(), kNumberStart)) {
    double number = 0;
    if (!scanner_.read_number(number)) return stop(Stop::failed);
    term.factor *= number;
    if (!more()) return ended_inside();
  }
  int column = -1, other = -1;
  if (read_column(column) == Step::stop) return Step::stop;
  if (!more()) return ended_inside();
  if (read_power(other, column) == Step::stop) return Step::stop;
  if (static_cast<std::int64_t>(expression_->quadratic.size()) >= kMaxEntries) {
    return fail(ReadFailure::plain(TVK_ERROR_TOO_MANY_COEFFICIENTS));
  }
  expression_->quadratic.push_back({column, other, term.factor});
  return Step::proceed;
}

/* "^ 2" or "* name" behind the first name of a quadratic term. */
ExpressionReader::Step ExpressionReader::read_power(int& other, int column) {
  const char c = scanner_.peek();
  if (c != '^' && c != '*') {
    return fail(ReadFailure::at(TVK_ERROR_LINE_EXPECTED_POWER_OR_PRODUCT, scanner_.line()));
  }
  scanner_.step();
  if (!more()) return ended_inside();
  if (c == '*') return read_column(other);
  if (!is(scanner_.peek(), kNumberStart)) {
    return fail(ReadFailure::at(TVK_ERROR_LINE_EXPECTED_EXPONENT, scanner_.line()));
  }
  double exponent = 0;
  if (!scanner_.read_number(exponent)) return stop(Stop::failed);
  if (exponent != 2) return fail(ReadFailure::at(TVK_ERROR_LINE_EXPONENT_NOT_2, scanner_.line()));
  other = column;
  return Step::proceed;
}

/* "/ 2" behind the objective's bracket. Without it the bracket counts in full. */
ExpressionReader::Step ExpressionReader::read_divisor(double& scale) {
  const int line = scanner_.line();
  if (!more() || scanner_.peek() != '/') {
    if (messages_.failed()) return stop(Stop::failed);
    messages_.log().warn("Warning, line %d: Deprecated format, expecting '] / 2'.\n", line);
    return Step::proceed;
  }
  scanner_.step();
  double divisor = 0;
  if (more() && is(scanner_.peek(), kNumberStart) && !scanner_.read_number(divisor)) {
    return stop(Stop::failed);
  }
  if (messages_.failed()) return stop(Stop::failed);
  if (divisor != 2) return fail(ReadFailure::at(TVK_ERROR_LINE_QUADRATIC_DIVISOR, scanner_.line()));
  scale /= 2;
  return Step::proceed;
}

ExpressionReader::Stop ExpressionReader::read_right_side(double& value) {
  const auto result = [this](Step step) { return step == Step::proceed ? Stop::at_sense : stop_; };
  const auto failed = [this, &result](ReadFailure failure) { return result(fail(std::move(failure))); };
  if (!more()) return messages_.failed() ? Stop::failed : Stop::ended;
  Term term;
  if (is(scanner_.peek(), kSense))
    return failed(ReadFailure::at(TVK_ERROR_LINE_EXPECTED_RHS, scanner_.line()));
  if (is(scanner_.peek(), kSign) && read_sign(term, false) == Step::stop) {
    return messages_.failed() ? Stop::failed : stop_;
  }
  const char c = scanner_.peek();
  if (is(c, kNumberStart)) {
    if (!scanner_.read_number(value)) return Stop::failed;
    value *= term.factor;
    return Stop::at_sense;
  }
  if (!is(c, kNameStart)) return failed(ReadFailure::at(TVK_ERROR_LINE_EXPECTED_NUMBER, scanner_.line(), c));
  const std::string_view word = scanner_.read_word();
  if (is_infinity(word)) {
    value = term.factor * kInfinity;
    return Stop::at_sense;
  }
  if (looks_like_exponent(word)) {
    return failed(ReadFailure::at(TVK_ERROR_LINE_EXPONENT_WITH_NUMBER, scanner_.line(), word, "started"));
  }
  return failed(ReadFailure::at(TVK_ERROR_LINE_EXPECTED_NUMBER, scanner_.line(), c));
}

}  // namespace tovik::fileio::lp_format
