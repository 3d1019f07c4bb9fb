/* Rows that are multiples of other rows, and columns likewise: hashed by the places of their entries, then
 * sorted by their values relative to the first one. */
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "cli/check/lint_model.h"
#include "cli/text.h"

namespace tovik::cli {

namespace {

constexpr double kFeasibility = 1e-6;
constexpr double kNearly = 1e-6;  // relative difference of rows that were meant to be parallel

constexpr Kind kContradiction = {"contradictory-rows", Severity::error,
                                 "parallel rows that contradict each other",
                                 "the model is infeasible: correct a right-hand side"};
constexpr Kind kNearlyParallel = {"nearly-parallel-rows", Severity::warning,
                                  "rows that are nearly multiples of others",
                                  "compute their coefficients with more digits, or drop one"};
constexpr Kind kRows = {"parallel-rows", Severity::note, "rows that are multiples of others",
                        "one row with the tighter sides says the same"};
constexpr Kind kColumns = {"duplicate-columns", Severity::note, "columns that repeat others, cost included",
                           "one column with the sum of the bounds says the same"};

/* A ratio without its last digits, so that equal ones stay equal after rounding errors. */
double trimmed(double ratio) {
  int exponent = 0;
  const double mantissa = std::frexp(ratio, &exponent);
  return std::ldexp(std::round(std::ldexp(mantissa, 40)), exponent - 40);
}

class Classes {
 public:
  explicit Classes(const Vectors& vectors, int shortest) : vectors_(vectors) {
    for (int k = 0; k < vectors.count(); ++k) {
      if (vectors[k].size() >= shortest) order_.push_back({hash(k), k});
    }
    std::ranges::sort(order_);
  }

  /* same(first, other) for each vector that is a multiple of an earlier one of its class, near(a, b) for
   * neighbours in value that almost are. */
  template <class Same, class Near>
  void visit(Same same, Near near) {
    for (std::size_t begin = 0, end = 0; begin < order_.size(); begin = end) {
      for (end = begin + 1; end < order_.size() && order_[end].first == order_[begin].first;) ++end;
      if (end == begin + 1) continue;
      const auto bucket = std::span(order_).subspan(begin, end - begin);
      std::ranges::sort(bucket, [this](const Entry& a, const Entry& b) {
        const int difference = compare(a.second, b.second);
        return difference != 0 ? difference < 0 : a.second < b.second;
      });
      int first = bucket[0].second;
      for (std::size_t k = 1; k < bucket.size(); ++k) {
        const int other = bucket[k].second, before = bucket[k - 1].second;
        if (compare(first, other) == 0) {
          same(first, other);
        } else {
          first = other;
          if (nearly(before, other)) near(before, other);
        }
      }
    }
  }

 private:
  using Entry = std::pair<std::uint64_t, int>;

  std::uint64_t hash(int k) const {
    std::uint64_t h = 0x9E3779B97F4A7C15u;
    for (const int index : vectors_[k].index)
      h = (h ^ static_cast<std::uint64_t>(index)) * 0xBF58476D1CE4E5B9u + (h >> 29);
    return h;
  }

  int compare(int a, int b) const {
    const Slice first = vectors_[a], other = vectors_[b];
    if (first.size() != other.size()) return first.size() < other.size() ? -1 : 1;
    for (std::size_t e = 0; e < first.index.size(); ++e) {
      if (first.index[e] != other.index[e]) return first.index[e] < other.index[e] ? -1 : 1;
      const double x = trimmed(first.value[e] / first.value[0]), y = trimmed(other.value[e] / other.value[0]);
      if (x != y) return x < y ? -1 : 1;
    }
    return 0;
  }

  bool nearly(int a, int b) const {
    const Slice first = vectors_[a], other = vectors_[b];
    if (!std::ranges::equal(first.index, other.index)) return false;
    for (std::size_t e = 0; e < first.index.size(); ++e) {
      const double x = first.value[e] / first.value[0], y = other.value[e] / other.value[0];
      if (std::abs(x - y) > kNearly * std::abs(x)) return false;
    }
    return true;
  }

  const Vectors& vectors_;
  std::vector<Entry> order_;
};

void parallel_rows(const LintModel& m, Findings& findings) {
  const auto same = [&](int first, int other) {
    const double factor = m.by_row[other].value[0] / m.by_row[first].value[0];
    const auto at = static_cast<std::size_t>(first), to = static_cast<std::size_t>(other);
    double lower = m.row.lower[to] / factor, upper = m.row.upper[to] / factor;
    if (factor < 0) std::swap(lower, upper);
    lower = std::max(lower, m.row.lower[at]);
    upper = std::min(upper, m.row.upper[at]);
    const double gap = lower - upper;
    const bool crossed = gap > kFeasibility * std::max(1.0, std::abs(upper));
    findings.add(crossed ? kContradiction : kRows, crossed ? gap : 0, [&] {
      const std::string text = m.row_name(other) + format(" = %.10g * ", factor) + m.row_name(first);
      return crossed ? text + ": " + m.row_name(other) + " " + limits_text(m.row.lower[to], m.row.upper[to]) +
                           ", " + m.row_name(first) + " " + limits_text(m.row.lower[at], m.row.upper[at])
                     : text;
    });
  };
  const auto near = [&](int first, int other) {
    findings.add(kNearlyParallel, 0, [&] { return m.row_name(other) + " and " + m.row_name(first); });
  };
  Classes(m.by_row, 1).visit(same, near);
}

void duplicate_columns(const LintModel& m, Findings& findings) {
  const std::vector<char> elsewhere = mentioned_elsewhere(m);  // they differ in more than the matrix
  const auto same = [&](int first, int other) {
    const double factor = m.by_column[other].value[0] / m.by_column[first].value[0];
    const auto at = static_cast<std::size_t>(first), to = static_cast<std::size_t>(other);
    if (elsewhere[at] != 0 || elsewhere[to] != 0) return;
    if (factor != 1 || m.cost[at] != m.cost[to] || m.type[at] != m.type[to]) return;
    findings.add(kColumns, 0, [&] { return m.column_name(other) + " and " + m.column_name(first); });
  };
  Classes(m.by_column, 1).visit(same, [](int, int) {});
}

}  // namespace

void lint_parallel(const LintModel& m, Findings& findings) {
  parallel_rows(m, findings);
  duplicate_columns(m, findings);
}

}  // namespace tovik::cli
