/* Bounds by themselves, bounds against types, and columns that no constraint mentions. */
#include <cmath>

#include "cli/check/lint_model.h"
#include "cli/text.h"

namespace tovik::cli {

namespace {

constexpr double kIntegral = 1e-9;
constexpr double kHugeInteger = 1e8;
constexpr double kNearlyInfinite = 1e10;  // from here on another check speaks

constexpr Kind kCrossed = {"crossed-bounds", Severity::error, "lower bounds above upper bounds",
                           "no value satisfies both: correct one"};
constexpr Kind kNoInteger = {"no-integer", Severity::error,
                             "integer columns without an integer between their bounds",
                             "correct the bounds, or make the column continuous"};
constexpr Kind kFractional = {"fractional-bounds", Severity::warning,
                              "integer columns with fractional bounds", "give the integers that are meant"};
constexpr Kind kBinaryBounds = {"binary-bounds", Severity::warning,
                                "binary columns with bounds other than 0 and 1",
                                "make the column a general integer, or correct the bounds"};
constexpr Kind kSemiUnbounded = {"semicontinuous-unbounded", Severity::warning,
                                 "semi-continuous columns without an upper bound",
                                 "give one: without it nothing tells the column from a continuous one"};
constexpr Kind kUnbounded = {
    "unbounded-column", Severity::warning, "columns in no constraint whose cost drives them to infinity",
    "the model is unbounded if it is feasible: add the bound or the rows that are missing"};
constexpr Kind kHugeBounds = {"huge-integer-bounds", Severity::note, "integer columns with huge bounds",
                              "tighter bounds help the search; very large integers may well be continuous"};
constexpr Kind kEmpty = {"empty-column", Severity::note, "columns in no constraint",
                         "they only shift the objective: did a row lose them?"};

std::string interval(double lower, double upper) {
  return format("[%.10g, %.10g]", lower, upper);
}

bool fractional(double bound) {
  return !std::isinf(bound) && std::abs(bound - std::round(bound)) > kIntegral;
}

void types_and_bounds(const LintModel& m, int j, Findings& findings) {
  const auto at = static_cast<std::size_t>(j);
  const double lower = m.bound.lower[at], upper = m.bound.upper[at];
  const auto text = [&] { return m.column_name(j) + ": " + interval(lower, upper); };
  const bool semi = m.type[at] == 'S' || m.type[at] == 'N';
  if (lower > upper) return findings.add(kCrossed, lower - upper, text);
  if (semi && std::isinf(upper)) findings.add(kSemiUnbounded, 0, text);
  if (!m.integer(j)) return;
  if (!semi && std::ceil(lower - kIntegral) > std::floor(upper + kIntegral))
    return findings.add(kNoInteger, 0, text);
  if (m.type[at] == 'B' && (lower < 0 || upper > 1)) return findings.add(kBinaryBounds, 0, text);
  if (fractional(lower) || fractional(upper)) return findings.add(kFractional, 0, text);
  const double size =
      std::max(std::isinf(lower) ? 0 : std::abs(lower), std::isinf(upper) ? 0 : std::abs(upper));
  if (size >= kHugeInteger && size < kNearlyInfinite) findings.add(kHugeBounds, size, text);
}

void empty_column(const LintModel& m, int j, Findings& findings) {
  const double slope = m.direction * m.cost[static_cast<std::size_t>(j)];
  const bool drives = slope < 0 ? std::isinf(m.upper(j)) : slope > 0 && std::isinf(m.lower(j));
  findings.add(drives ? kUnbounded : kEmpty, 0, [&] {
    return m.column_name(j) + format(": cost %.10g, ", m.cost[static_cast<std::size_t>(j)]) +
           interval(m.lower(j), m.upper(j));
  });
}

}  // namespace

void lint_columns(const LintModel& m, Findings& findings) {
  const std::vector<char> elsewhere = mentioned_elsewhere(m);
  for (int j = 0; j < m.columns; ++j) {
    types_and_bounds(m, j, findings);
    if (m.by_column[j].size() == 0 && elsewhere[static_cast<std::size_t>(j)] == 0)
      empty_column(m, j, findings);
  }
}

}  // namespace tovik::cli
