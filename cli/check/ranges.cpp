/* Widths of numbers. What a model states to 15 digits and a solver keeps to some 6 behind the point stops to
 * mean anything when numbers of one row are too far apart. */
#include <cmath>

#include "cli/check/lint_model.h"
#include "cli/text.h"

namespace tovik::cli {

namespace {

constexpr double kTiny = 1e-10;       // coefficients below are rounding errors more often than data
constexpr double kWideVector = 1e9;   // largest by smallest entry of a row or column
constexpr double kWideMatrix = 1e12;  // ... of all entries
constexpr double kWideRim = 1e10;     // ... of costs, right-hand sides, bounds
constexpr double kNearlyInfinite = 1e10;
constexpr double kManyNines = 999999;

constexpr Kind kTinyCoefficient = {"tiny-coefficient", Severity::warning, "tiny coefficients",
                                   "leave out what is a rounding error, or choose other units"};
constexpr Kind kMatrixRange = {"matrix-range", Severity::warning, "wide range of coefficients",
                               "choose units that bring the numbers of the model together"};
constexpr Kind kRowRange = {"row-range", Severity::warning, "rows with a wide range of coefficients",
                            "choose other units for their columns, or split the rows"};
constexpr Kind kColumnRange = {"column-range", Severity::warning, "columns with a wide range of coefficients",
                               "choose other units for their rows"};
constexpr Kind kRimRange = {"rim-range", Severity::warning, "wide range of costs, right-hand sides or bounds",
                            "choose other units; take out terms that do not matter"};
constexpr Kind kLooksInfinite = {"looks-infinite", Severity::warning, "huge numbers that look like infinity",
                                 "leave the bound out (infinity is 1e20) or give the limit that is meant"};
constexpr Kind kNines = {"nines", Severity::note, "numbers of nines that look like infinity",
                         "leave the bound out (infinity is 1e20) or give the limit that is meant"};

/* The smallest and largest magnitude of numbers other than zero (tiny ones are reported by themselves) and
 * infinity, and where they are. */
struct Spread {
  double smallest = 0, largest = 0;
  int smallest_at = -1, largest_at = -1;
  void update(double value, int where) {
    const double size = std::abs(value);
    if (size < kTiny || std::isinf(size)) return;
    if (smallest_at < 0 || size < smallest) smallest = size, smallest_at = where;
    if (largest_at < 0 || size > largest) largest = size, largest_at = where;
  }
  double ratio() const { return smallest_at < 0 ? 1 : largest / smallest; }
};

std::string from_to(const Spread& spread, const std::string& smallest, const std::string& largest) {
  return format("%.2g (", spread.smallest) + smallest + format(") to %.2g (", spread.largest) + largest + ")";
}

using NameOf = std::string (LintModel::*)(int) const;

/* Each vector of the matrix by itself; `name` names vectors, `other` what their entries belong to. */
void vectors(const LintModel& m, const Vectors& all, const Kind& kind, NameOf name, NameOf other,
             Findings& findings) {
  for (int k = 0; k < all.count(); ++k) {
    const Slice entries = all[k];
    Spread spread;
    for (std::size_t e = 0; e < entries.index.size(); ++e) spread.update(entries.value[e], entries.index[e]);
    if (spread.ratio() < kWideVector) continue;
    findings.add(kind, spread.ratio(), [&] {
      return (m.*name)(k) + ": " +
             from_to(spread, (m.*other)(spread.smallest_at), (m.*other)(spread.largest_at));
    });
  }
}

void whole_matrix(const LintModel& m, Findings& findings) {
  Spread spread;  // by position in the copy by rows
  for (int i = 0; i < m.rows; ++i) {
    const Slice entries = m.by_row[i];
    const int first = m.by_row.begin[static_cast<std::size_t>(i)];
    for (int e = 0; e < entries.size(); ++e) {
      const double value = entries.value[static_cast<std::size_t>(e)];
      spread.update(value, first + e);
      if (std::abs(value) >= kTiny || value == 0) continue;
      findings.add(kTinyCoefficient, 1 / std::abs(value), [&] {
        return m.row_name(i) + ", " + m.column_name(entries.index[static_cast<std::size_t>(e)]) +
               format(": %.2g", value);
      });
    }
  }
  if (spread.ratio() < kWideMatrix) return;
  const auto place = [&](int position) {
    const auto row = std::upper_bound(m.by_row.begin.begin(), m.by_row.begin.end(), position);
    return m.row_name(static_cast<int>(row - m.by_row.begin.begin()) - 1) + ", " +
           m.column_name(m.by_row.index[static_cast<std::size_t>(position)]);
  };
  findings.add(kMatrixRange, spread.ratio(),
               [&] { return from_to(spread, place(spread.smallest_at), place(spread.largest_at)); });
}

void rim(const char* what, const std::vector<double>& first, const std::vector<double>& second,
         const LintModel& m, NameOf name, Findings& findings) {
  Spread spread;
  for (const auto* values : {&first, &second}) {
    for (std::size_t k = 0; k < values->size(); ++k) {
      const double value = (*values)[k];
      if (std::abs(value) < kNearlyInfinite) spread.update(value, static_cast<int>(k));
    }
  }
  if (spread.ratio() < kWideRim) return;
  findings.add(kRimRange, spread.ratio(), [&] {
    return what + (": " + from_to(spread, (m.*name)(spread.smallest_at), (m.*name)(spread.largest_at)));
  });
}

/* 999999, 9999999 ... */
bool all_nines(double size) {
  if (size < kManyNines || size >= kNearlyInfinite) return false;
  const double next = std::pow(10, std::ceil(std::log10(size)));
  return size == next - 1;
}

void infinite_looking(double value, const char* what, const std::string& name, Findings& findings) {
  const double size = std::abs(value);
  if (std::isinf(value) || (size < kNearlyInfinite && !all_nines(size))) return;
  findings.add(size >= kNearlyInfinite ? kLooksInfinite : kNines, size,
               [&] { return name + ": " + what + format(" %.10g", value); });
}

void huge_numbers(const LintModel& m, Findings& findings) {
  const auto suspicious = [](double value) { return std::abs(value) >= kManyNines && !std::isinf(value); };
  for (int j = 0; j < m.columns; ++j) {
    const double lower = m.bound.lower[static_cast<std::size_t>(j)];
    const double upper = m.bound.upper[static_cast<std::size_t>(j)];
    if (suspicious(lower)) infinite_looking(lower, "lower bound", m.column_name(j), findings);
    if (suspicious(upper) && upper != lower)
      infinite_looking(upper, "upper bound", m.column_name(j), findings);
  }
  for (int i = 0; i < m.rows; ++i) {
    const double lower = m.row.lower[static_cast<std::size_t>(i)];
    const double upper = m.row.upper[static_cast<std::size_t>(i)];
    if (suspicious(lower)) infinite_looking(lower, "right-hand side", m.row_name(i), findings);
    if (suspicious(upper) && upper != lower)
      infinite_looking(upper, "right-hand side", m.row_name(i), findings);
  }
}

}  // namespace

void lint_ranges(const LintModel& m, Findings& findings) {
  whole_matrix(m, findings);
  vectors(m, m.by_row, kRowRange, &LintModel::row_name, &LintModel::column_name, findings);
  vectors(m, m.by_column, kColumnRange, &LintModel::column_name, &LintModel::row_name, findings);
  rim("costs", m.cost, {}, m, &LintModel::column_name, findings);
  rim("right-hand sides", m.row.lower, m.row.upper, m, &LintModel::row_name, findings);
  rim("bounds", m.bound.lower, m.bound.upper, m, &LintModel::column_name, findings);
  huge_numbers(m, findings);
}

}  // namespace tovik::cli
