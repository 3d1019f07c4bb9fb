#include "fileio/lp_format/constraints.h"

#include <algorithm>

#include "include/tovik.h"

namespace tovik::fileio::lp_format {
namespace {

using Stop = ExpressionReader::Stop;

Sense reversed(Sense sense) {
  if (sense == Sense::equal) return sense;
  return sense == Sense::less ? Sense::greater : Sense::less;
}

char letter(Sense sense) {
  if (sense == Sense::equal) return 'E';
  return sense == Sense::less ? 'L' : 'G';
}

}  // namespace

bool ConstraintReader::read_section(Section section) {
  section_ = section;
  while (scanner_.more()) {
    if (!read_statement()) return false;
  }
  return !messages_.failed();
}

bool ConstraintReader::read_statement() {
  const Place place = section_ == Section::constraints ? Place::constraint : Place::linear;
  switch (read_row(row_, true, place)) {
    case Outcome::failed:
      return false;
    case Outcome::unfinished:
      return discard();
    case Outcome::complete:
      break;
  }
  Arrow arrow = Arrow::none;
  if (!find_arrow(arrow)) return false;
  return arrow == Arrow::none ? add() : read_indicator(arrow);
}

ConstraintReader::Outcome ConstraintReader::outcome(Stop stop) const {
  return stop == Stop::failed ? Outcome::failed : Outcome::unfinished;
}

/* Reads up to the right-hand side. Keeps the label when one may stand here. */
ConstraintReader::Outcome ConstraintReader::read_row(Row& row, bool label_allowed, Place place) {
  row.expression.clear();
  row.left.reset();
  ExpressionReader::Rules rules;
  rules.place = place;
  rules.label_allowed = label_allowed;
  Stop stop = expressions_.read(rules, row.expression);
  if (label_allowed) {
    label_ = expressions_.label();
    label_line_ = expressions_.label_line();
  }
  if (stop == Stop::at_number) {
    const double value = expressions_.left_value();
    row.left = LeftSide{scanner_.read_sense(), value};
    rules.label_allowed = rules.number_allowed = false;
    rules.may_end_at_line = true;
    stop = expressions_.read(rules, row.expression);
    const bool whole = !row.expression.columns.empty() && !expressions_.is_dangling();
    if (whole && (stop == Stop::ended || stop == Stop::at_new_line)) {
      row.sense = reversed(row.left->sense);
      row.rhs = row.left->value;
      row.left.reset();
      row.line = expressions_.last_line();  // the reader stands behind it
      return Outcome::complete;
    }
  }
  if (stop != Stop::at_sense) return outcome(stop);
  row.sense = scanner_.read_sense();
  stop = expressions_.read_right_side(row.rhs);
  row.line = scanner_.line();
  return stop == Stop::at_sense ? Outcome::complete : outcome(stop);
}

bool ConstraintReader::discard() {
  messages_.log().warn_dropped("Warning, line %d: Unfinished constraint is discarded.\n", scanner_.line());
  return true;
}

/* The arrow behind a right-hand side, on its line or at the beginning of the next one. Whatever else stands
 * on the line is ignored with a warning. */
bool ConstraintReader::find_arrow(Arrow& arrow) {
  if (scanner_.at_line_begin()) return true;  // the row ended by what begins here
  if (!is(scanner_.peek_on_line(), kLineEnd)) {
    arrow = scanner_.read_arrow();
    return arrow != Arrow::none || ignore_rest_of_line();
  }
  if (!rows_end_with_line_ && scanner_.more()) arrow = scanner_.read_arrow();
  return !messages_.failed();
}

bool ConstraintReader::ignore_rest_of_line() {
  messages_.log().warn_dropped("Warning, line %d: Characters after RHS value are ignored.\n",
                               scanner_.line());
  scanner_.take_line();
  return true;
}

bool ConstraintReader::read_indicator(Arrow arrow) {
  if (section_ != Section::constraints) return fail(TVK_ERROR_LINE_LAZY_OR_CUT, scanner_.line());
  if (arrow == Arrow::both) return fail(TVK_ERROR_LINE_INDICATOR, scanner_.line());
  switch (read_row(other_, false, Place::linear)) {
    case Outcome::failed:
      return false;
    case Outcome::unfinished:
      return discard();
    case Outcome::complete:
      break;
  }
  if (!scanner_.at_line_begin() && !is(scanner_.peek_on_line(), kLineEnd)) ignore_rest_of_line();
  const Row& condition = arrow == Arrow::forward ? row_ : other_;
  const Row& consequence = arrow == Arrow::forward ? other_ : row_;
  const Expression& test = condition.expression;
  const bool single = test.columns.size() == 1 && test.values[0] == 1 && test.quadratic.empty();
  if (!single || condition.left || condition.sense != Sense::equal ||
      (condition.rhs != 0 && condition.rhs != 1) || consequence.left ||
      !consequence.expression.quadratic.empty()) {
    return fail(TVK_ERROR_LINE_INDICATOR, other_.line);
  }
  const RowLimits limits{letter(consequence.sense), consequence.rhs, 0};
  return builder_.add_indicator(label_, consequence.expression, limits, test.columns[0], condition.rhs == 1,
                                label_line_);
}

/* Sense, right-hand side and range of a row; a left side makes it ranged when both ends are finite. */
bool ConstraintReader::limits_of(const Row& row, RowLimits& limits) {
  limits = {letter(row.sense), row.rhs, 0};
  if (!row.left) return true;
  if (row.left->sense != row.sense) return fail(TVK_ERROR_LINE_BOUND_SENSE, row.line);
  double low = row.left->value, high = row.rhs;
  if (row.sense == Sense::greater) std::swap(low, high);
  if (low > high || (row.sense == Sense::equal && low != high))
    return fail(TVK_ERROR_LINE_BOUND_SENSE, row.line);
  if (low <= -kInfinity || high >= kInfinity) {
    limits = low <= -kInfinity ? RowLimits{'L', high, 0} : RowLimits{'G', low, 0};
  } else {
    limits = low == high ? RowLimits{'E', low, 0} : RowLimits{'R', low, high - low};
  }
  return true;
}

bool ConstraintReader::add() {
  RowLimits limits{};
  if (!limits_of(row_, limits)) return false;
  if (section_ != Section::constraints) {
    if (row_.left) return fail(TVK_ERROR_LINE_LAZY_OR_CUT, row_.line);
    return section_ == Section::user_cuts
               ? builder_.add_user_cut(label_, row_.expression, limits, label_line_)
               : builder_.add_lazy_constraint(label_, row_.expression, limits, label_line_);
  }
  if (row_.expression.quadratic.empty())
    return builder_.add_row(label_, row_.expression, limits, label_line_);
  if (row_.left || limits.sense == 'E') return fail(TVK_ERROR_LINE_QUADRATIC_SENSE, row_.line);
  return builder_.add_quadratic_row(label_, row_.expression, limits, label_line_);
}

}  // namespace tovik::fileio::lp_format
