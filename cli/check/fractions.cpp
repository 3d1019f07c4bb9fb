/* Equations among integer columns whose coefficients are rounded fractions, such as 0.3333: no integer values
 * may satisfy them although the fractions that were meant do. */
#include <cmath>

#include "cli/check/lint_model.h"
#include "cli/text.h"

namespace tovik::cli {

namespace {

/* With fewer digits too many true decimals would look like a fraction. */
struct Denominator {
  int value, fewest_digits;
};
constexpr Denominator kDenominators[] = {{3, 3}, {6, 4}, {7, 5}, {9, 5}, {11, 5}, {12, 5}};
constexpr int kMostDigits = 12;

constexpr Kind kRounded = {"rounded-fraction", Severity::warning, "integer equations with rounded fractions",
                           "multiply the equation by the denominator"};

struct Fraction {
  long numerator = 0;
  int denominator = 0;
};

/* The fraction whose decimals `value` cuts off or rounds behind few digits; denominator 0 when there is
 * none. */
Fraction rounded(double value) {
  const double size = std::abs(value);
  for (int digits = 1; digits <= kMostDigits; ++digits) {
    const double unit = std::pow(10.0, digits);
    if (size * unit > 1e15) return {};
    if (std::abs(size * unit - std::round(size * unit)) > 1e-9 * size * unit) continue;  // has more digits
    for (const auto& [q, fewest] : kDenominators) {
      const double p = std::round(size * q);
      const double error = std::abs(size - p / q);
      if (digits >= fewest && p > 0 && p < 1e6 && std::fmod(p, q) != 0 && error > 1e-14 * size &&
          error < 1 / unit)
        return {static_cast<long>(p), q};
    }
    return {};
  }
  return {};
}

}  // namespace

void lint_fractions(const LintModel& m, Findings& findings) {
  for (int i = 0; i < m.rows; ++i) {
    if (m.row.lower[static_cast<std::size_t>(i)] != m.row.upper[static_cast<std::size_t>(i)]) continue;
    const Slice entries = m.by_row[i];
    bool integers = true;
    for (const int j : entries.index) integers = integers && m.integer(j);
    if (!integers) continue;
    for (std::size_t e = 0; e < entries.index.size(); ++e) {
      const double value = entries.value[e];
      const Fraction fraction = rounded(value);
      if (fraction.denominator == 0) continue;
      findings.add(kRounded, 0, [&] {
        return m.row_name(i) + ", " + m.column_name(entries.index[e]) +
               format(": %.12g, is %s%ld/%d meant?", value, value < 0 ? "-" : "", fraction.numerator,
                      fraction.denominator);
      });
      break;  // one of a row tells
    }
  }
}

}  // namespace tovik::cli
