/* Special ordered sets and indicator constraints. */
#include <algorithm>
#include <cmath>

#include "cli/check/lint_model.h"
#include "cli/text.h"

namespace tovik::cli {

namespace {

constexpr Kind kNotBinary = {"indicator-not-binary", Severity::error,
                             "indicator constraints on columns that are not binary",
                             "make the column binary"};
constexpr Kind kNeverActive = {"indicator-never-active", Severity::note,
                               "indicator constraints that are never switched on",
                               "the binary column is fixed: drop the constraint, or correct the bound"};
constexpr Kind kEmptyIndicator = {"indicator-empty", Severity::warning,
                                  "indicator constraints without columns", "did they lose their columns?"};
constexpr Kind kWeights = {"sos-weights", Severity::warning, "sets with equal weights",
                           "give each member a weight of its own: the order of the members depends on it"};
constexpr Kind kForced = {"sos-forced", Severity::error, "sets with too many members that cannot be 0",
                          "the model is infeasible: correct bounds or members"};
constexpr Kind kTrivial = {"sos-trivial", Severity::note, "sets that allow everything",
                           "they have too few members to matter"};

void indicator(const LintModel& m, const IndicatorRow& row, Findings& findings) {
  const auto at = static_cast<std::size_t>(row.column);
  const auto text = [&] { return row.name + ": " + m.column_name(row.column); };
  const double lower = m.lower(row.column), upper = m.upper(row.column);
  if (!m.integer(row.column) || lower < 0 || upper > 1)
    return findings.add(kNotBinary, 0, [&] {
      return text() + format(" is of type %c with bounds [%.10g, %.10g]", m.type[at], lower, upper);
    });
  if (row.complemented ? lower > 0 : upper < 1) findings.add(kNeverActive, 0, text);
  if (row.index.empty()) findings.add(kEmptyIndicator, 0, text);
}

void set(const LintModel& m, const OrderedSet& set, Findings& findings) {
  const auto members = [&] {
    return set.name + ": " + counted(static_cast<long>(set.index.size()), "member");
  };
  const std::size_t allowed = set.type == '1' ? 1 : 2;
  if (set.index.size() <= allowed) return findings.add(kTrivial, 0, members);
  std::vector<double> weights = set.weight;
  std::ranges::sort(weights);
  const auto twice = std::ranges::adjacent_find(weights);
  if (twice != weights.end())
    findings.add(kWeights, 0, [&] { return set.name + format(": weight %.10g twice", *twice); });
  const auto away_from_zero = [&](int j) { return m.lower(j) > 0 || m.upper(j) < 0; };
  const auto forced = static_cast<std::size_t>(std::ranges::count_if(set.index, away_from_zero));
  if (forced <= allowed) return;
  findings.add(kForced, 0, [&] {
    const auto first = std::ranges::find_if(set.index, away_from_zero);
    return set.name + ": " + m.column_name(*first) + " and " +
           counted(static_cast<long>(forced) - 1, "other");
  });
}

}  // namespace

void lint_families(const LintModel& m, Findings& findings) {
  for (const IndicatorRow& row : indicators(m.model)) indicator(m, row, findings);
  for (const OrderedSet& one : ordered_sets(m.model)) set(m, one, findings);
}

}  // namespace tovik::cli
