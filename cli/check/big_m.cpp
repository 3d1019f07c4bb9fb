/* Rows that a binary column b switches on and off by a huge coefficient:
 *
 *     a'x - M b <= r  (holds while b = 0)      a'x + M b <= r + M  (holds while b = 1)
 *
 * M need not be larger than what takes the row beyond the largest activity of a'x. A larger one lets b = 1e-6
 * switch off a row within the integrality tolerance, and weakens the relaxation. Both sides of a row are
 * looked at as rows of their own. */
#include <cmath>

#include "cli/check/lint_model.h"
#include "cli/text.h"

namespace tovik::cli {

namespace {

constexpr double kHuge = 1e5;         // times the integrality tolerance 1e-5 this is a unit
constexpr double kAmongOthers = 1e3;  // times the largest other coefficient of the row
constexpr double kMuchMore = 10;      // times what suffices

constexpr Kind kBigM = {"big-m", Severity::warning, "huge coefficients that switch rows on and off",
                        "use the smaller value, give the columns bounds, or write an indicator constraint"};

struct Switch {
  int row, column;
  double coefficient;
  double enough;  // a magnitude that would do; infinite when the bounds do not tell
};

void report(const LintModel& m, const Switch& found, Findings& findings) {
  const double size = std::abs(found.coefficient);
  findings.add(kBigM, size, [&] {
    std::string text =
        m.row_name(found.row) + ", " + m.column_name(found.column) + format(": %.10g", found.coefficient);
    if (std::isinf(found.enough)) return text + ", the other columns are not bounded";
    return text + format(", %.10g would do", found.enough);
  });
}

/* The row a'x + coefficient * b <= limit, where a'x is at most `others`. */
double enough(double coefficient, double limit, double others) {
  if (std::isinf(others)) return others;
  const double relaxed = coefficient < 0 ? limit - coefficient : limit;  // when b switches the row off
  return std::max(0.0, std::abs(coefficient) - (relaxed - others));
}

/* `sign` 1: the upper limit of the row; -1: the lower one, turned round. */
void one_side(const LintModel& m, int i, double sign, double limit, Findings& findings) {
  if (std::isinf(limit)) return;
  const Slice entries = m.by_row[i];
  ActivityBounds activity;
  double largest = 0, second = 0;
  std::size_t at = 0;
  for (std::size_t e = 0; e < entries.index.size(); ++e) {
    const double size = std::abs(entries.value[e]);
    activity.add(sign * entries.value[e], m.lower(entries.index[e]), m.upper(entries.index[e]));
    second = std::max(second, std::min(size, largest));
    if (size > largest) largest = size, at = e;
  }
  const int j = entries.index[at];
  if (largest < kHuge || largest < kAmongOthers * second || !m.binary(j) || second == 0) return;
  const double coefficient = sign * entries.value[at];
  const double needed = enough(coefficient, limit, activity.largest_without(coefficient, 0, 1));
  const bool switches = coefficient < 0 || limit >= 0.1 * coefficient;  // else b = 1 is simply ruled out
  if (!switches || (!std::isinf(needed) && largest < kMuchMore * std::max(1.0, needed))) return;
  report(m, {i, j, entries.value[at], needed}, findings);
}

}  // namespace

void lint_big_m(const LintModel& m, Findings& findings) {
  for (int i = 0; i < m.rows; ++i) {
    const double lower = m.row.lower[static_cast<std::size_t>(i)],
                 upper = m.row.upper[static_cast<std::size_t>(i)];
    if (lower == upper || m.by_row[i].size() < 2) continue;
    one_side(m, i, 1, upper, findings);
    one_side(m, i, -1, -lower, findings);
  }
}

}  // namespace tovik::cli
