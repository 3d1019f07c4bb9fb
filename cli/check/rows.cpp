/* Rows against what the bounds of their columns allow them to be. */
#include <cmath>

#include "cli/check/lint_model.h"
#include "cli/text.h"

namespace tovik::cli {

namespace {

constexpr double kFeasibility = 1e-6;

constexpr Kind kInfeasible = {"infeasible-row", Severity::error,
                              "rows that no values within the bounds satisfy",
                              "the model is infeasible: correct the row or the bounds"};
constexpr Kind kEmptyInfeasible = {"empty-infeasible-row", Severity::error,
                                   "rows without columns that cannot hold",
                                   "the model is infeasible: did the row lose its columns?"};
constexpr Kind kForcing = {"forcing-row", Severity::note, "rows that leave their columns a single value",
                           "they hold only with every column at a bound: is the right-hand side meant?"};
constexpr Kind kRedundant = {"redundant-row", Severity::note, "rows that the bounds of their columns imply",
                             "presolve removes them: is the right-hand side meant?"};
constexpr Kind kFree = {"free-row", Severity::note, "rows without a limit", "they only report a value"};
constexpr Kind kEmpty = {"empty-row", Severity::note, "rows without columns", "did they lose their columns?"};

void examine(const LintModel& m, int i, Findings& findings) {
  const double lower = m.row.lower[static_cast<std::size_t>(i)],
               upper = m.row.upper[static_cast<std::size_t>(i)];
  const Slice entries = m.by_row[i];
  ActivityBounds activity;
  for (std::size_t e = 0; e < entries.index.size(); ++e)
    activity.add(entries.value[e], m.lower(entries.index[e]), m.upper(entries.index[e]));
  const double least = activity.least(), largest = activity.largest(), rounding = activity.rounding();
  const auto text = [&] {
    return m.row_name(i) + format(": activity in [%.10g, %.10g], ", least, largest) +
           limits_text(lower, upper);
  };
  const auto above = [&](double a, double b) {
    return a - b > kFeasibility * std::max(1.0, std::abs(b)) + rounding;
  };
  const bool impossible = above(least, upper) || above(lower, largest);
  if (entries.size() == 0)
    return findings.add(impossible ? kEmptyInfeasible : kEmpty, 0,
                        [&] { return m.row_name(i) + ": 0 " + limits_text(lower, upper); });
  if (impossible) return findings.add(kInfeasible, std::max(least - upper, lower - largest), text);
  if (std::isinf(lower) && std::isinf(upper)) return findings.add(kFree, 0, [&] { return m.row_name(i); });
  if (least == largest) return;  // all columns are fixed
  if (least >= upper - rounding || largest <= lower + rounding) return findings.add(kForcing, 0, text);
  if (least >= lower && largest <= upper) findings.add(kRedundant, 0, text);
}

}  // namespace

void lint_rows(const LintModel& m, Findings& findings) {
  for (int i = 0; i < m.rows; ++i) examine(m, i, findings);
}

}  // namespace tovik::cli
