/* Rows that contradict each other by the bounds that they imply for their columns: what no single row shows. Bounds are
 * tightened a few rounds, as presolve does, and the first column left without a value, or row left without a point, is
 * told with the rows that moved its bounds. */
#include <cmath>

#include "cli/check/lint_model.h"
#include "cli/text.h"

namespace tovik::cli {

namespace {

constexpr int kRounds = 20;
constexpr double kFeasibility = 1e-6;
constexpr double kIntegral = 1e-6;
constexpr double kLeastGain = 1e-3;  // relative: smaller steps creep towards a limit without end
constexpr double kHuge = 1e12;       // implied bounds beyond it carry no digits

constexpr Kind kImplied = {"implied-infeasible", Severity::error,
                           "rows that leave a column no value together",
                           "the model is infeasible: correct one of the rows or bounds named"};

class Propagation {
 public:
  explicit Propagation(const LintModel& m)
      : m_(m),
        lower_(static_cast<std::size_t>(m.columns)),
        upper_(lower_.size()),
        lower_row_(lower_.size(), kOwnBound),
        upper_row_(lower_.size(), kOwnBound) {
    for (int j = 0; j < m.columns; ++j) {
      lower_[static_cast<std::size_t>(j)] = m.lower(j);
      upper_[static_cast<std::size_t>(j)] = m.upper(j);
    }
  }

  void run(Findings& findings) {
    for (int round = 0; round < kRounds && moved_; ++round) {
      moved_ = false;
      for (int i = 0; i < m_.rows; ++i) {
        const auto at = static_cast<std::size_t>(i);
        if (!side(i, 1, m_.row.upper[at], findings) || !side(i, -1, -m_.row.lower[at], findings)) return;
      }
    }
  }

 private:
  static constexpr int kOwnBound = -1;

  /* sign * row <= limit: each term is at most what the least of the others leaves. False: a contradiction was told. */
  bool side(int i, double sign, double limit, Findings& findings) {
    if (std::isinf(limit)) return true;
    const Slice entries = m_.by_row[i];
    ActivityBounds negated;  // its largest value is minus the least one of sign * row
    for (int e = 0; e < entries.size(); ++e) {
      const auto [a, j] = term(entries, e, sign);
      negated.add(-a, lower_[j], upper_[j]);
    }
    for (int e = 0; e < entries.size(); ++e) {
      const auto [a, j] = term(entries, e, sign);
      const double others = negated.largest_without(-a, lower_[j], upper_[j]);
      if (std::isinf(others)) continue;
      const double bound = (limit + others + negated.rounding()) / a;
      if (!std::isfinite(bound) || std::abs(bound) > kHuge) continue;
      if (a > 0 ? !at_most(j, bound, i, findings) : !at_least(j, bound, i, findings)) return false;
    }
    return true;
  }

  std::pair<double, std::size_t> term(const Slice& entries, int e, double sign) const {
    const auto at = static_cast<std::size_t>(e);
    return {sign * entries.value[at], static_cast<std::size_t>(entries.index[at])};
  }

  bool gains(double step, double width, double bound) const {
    return step > kLeastGain * std::max(1.0, std::isinf(width) ? std::abs(bound) : width);
  }

  bool at_most(std::size_t j, double bound, int row, Findings& findings) {
    if (m_.integer(static_cast<int>(j))) bound = std::floor(bound + kIntegral);
    if (lower_[j] - bound > kFeasibility * std::max(1.0, std::abs(bound)))
      return tell(j, lower_[j], bound, lower_row_[j], row, findings);
    if (!gains(upper_[j] - bound, upper_[j] - lower_[j], bound)) return true;
    upper_[j] = std::max(bound, lower_[j]);
    upper_row_[j] = row;
    return moved_ = true;
  }

  bool at_least(std::size_t j, double bound, int row, Findings& findings) {
    if (m_.integer(static_cast<int>(j))) bound = std::ceil(bound - kIntegral);
    if (bound - upper_[j] > kFeasibility * std::max(1.0, std::abs(bound)))
      return tell(j, bound, upper_[j], row, upper_row_[j], findings);
    if (!gains(bound - lower_[j], upper_[j] - lower_[j], bound)) return true;
    lower_[j] = std::min(bound, upper_[j]);
    lower_row_[j] = row;
    return moved_ = true;
  }

  bool tell(std::size_t j, double lower, double upper, int lower_row, int upper_row, Findings& findings) {
    const auto origin = [this](int row) {
      return row == kOwnBound ? std::string("its bound") : "row " + m_.row_name(row);
    };
    findings.add(kImplied, lower - upper, [&] {
      return m_.column_name(static_cast<int>(j)) + format(": >= %.10g by ", lower) + origin(lower_row) +
             format(", <= %.10g by ", upper) + origin(upper_row);
    });
    return false;
  }

  const LintModel& m_;
  std::vector<double> lower_, upper_;
  std::vector<int> lower_row_, upper_row_;  // that moved the bound last
  bool moved_ = true;
};

}  // namespace

void lint_propagation(const LintModel& m, Findings& findings) {
  if (findings.count(Severity::error) > 0) return;  // the plain reason is told already
  Propagation(m).run(findings);
}

}  // namespace tovik::cli
