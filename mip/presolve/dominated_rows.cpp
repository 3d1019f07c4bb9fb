#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "lp/presolve/tolerances.h"
#include "mip/presolve/rules.h"

namespace tovik::mip {
namespace {

using lp::presolve::View;
using lp::presolve::Workspace;

constexpr std::int64_t kEffort = 10;  // entries that one call may look at, relative to those of the problem
constexpr int kCompared = 100;        // rows that one row is compared with
constexpr int kLonger = 10;  // times the length of a row, and some more: longer rows add too much to it
constexpr int kScanned = 8;  // rows of a column that are passed over in the time of one entry

/* One bit of 64 for each column. */
std::uint64_t bit_of(int j) {
  return std::uint64_t{1} << ((static_cast<std::uint64_t>(j) * 0x9E3779B97F4A7C15U) >> 58U);
}

struct Range {
  double lower, upper;
};

/* What the bounds leave of a sum, with its largest term for the sake of rounding. */
struct Reach {
  double least = 0, most = 0, magnitude = 0;
};

/* Pairs of rows a, b where b has entries wherever a has. With b = factor * a + d the bounds of d's columns and the sides of
 * one row may imply the sides of the other; both rows leave d a range, which bounds its integer columns. */
class RowPairs {
 public:
  explicit RowPairs(PresolveState& state)
      : state_(state), ws_(state.ws()), last_work_(ws_.work() + kEffort * state.size()) {}

  void run() {
    const auto rows = static_cast<std::size_t>(ws_.num_rows());
    supports_.assign(rows, 0);
    scattered_.assign(static_cast<std::size_t>(ws_.num_columns()), 0.0);
    for (int i = 0; i < ws_.num_rows(); ++i) {
      if (!ws_.row_alive(i)) continue;
      const View row = ws_.row(i);
      ws_.add_work(row.length);
      for (int k = 0; k < row.length; ++k) supports_[i] |= bit_of(row.index[k]);
    }
    for (int i = 0; i < ws_.num_rows() && goes_on(); ++i) {
      if (ws_.row_alive(i) && ws_.row_length(i) > 0) compare(i);
    }
  }

 private:
  bool goes_on() { return ws_.work() < last_work_ && state_.goes_on(); }

  void compare(int a) {
    const View row = ws_.row(a);
    ws_.add_work(row.length);
    int rarest = 0;
    for (int k = 1; k < row.length; ++k) {
      if (ws_.column_length(row.index[k]) < ws_.column_length(row.index[rarest])) rarest = k;
    }
    const View column = ws_.column(row.index[rarest]);
    if (column.length < 2) return;
    const double entry = row.value[rarest];
    partners_.clear();
    for (int k = 0; k < column.length && static_cast<int>(partners_.size()) < kCompared; ++k) {
      const int b = column.index[k];
      if (b == a || (supports_[a] & ~supports_[b]) != 0 || ws_.row_length(b) < row.length ||
          ws_.row_length(b) > kLonger * (row.length + 2))
        continue;
      partners_.push_back({b, column.value[k] / entry});
    }
    ws_.add_work(column.length / kScanned);
    if (partners_.empty()) return;
    columns_.assign(row.index, row.index + row.length);
    for (int k = 0; k < row.length; ++k) scattered_[row.index[k]] = row.value[k];
    for (const Term& partner : partners_) {
      if (!ws_.row_alive(a) || !goes_on()) break;
      if (ws_.row_alive(partner.column) && subtract(partner.column, partner.value))
        judge(a, partner.column, partner.value);
    }
    for (const int j : columns_) scattered_[j] = 0;
  }

  /* d = b - factor * a, where b has all columns of a. */
  bool subtract(int b, double factor) {
    const View row = ws_.row(b);
    ws_.add_work(row.length);
    difference_.clear();
    std::size_t shared = 0;
    for (int k = 0; k < row.length; ++k) {
      const double own = scattered_[row.index[k]], other = factor * own;
      if (own != 0) ++shared;
      const double d = row.value[k] - other;
      const double size = std::max(std::fabs(row.value[k]), std::fabs(other));
      if (std::fabs(d) > lp::presolve::kSame * size) difference_.push_back({row.index[k], d});
    }
    return shared == columns_.size();
  }

  void judge(int a, int b, double factor) {
    const Reach d = reach();
    Range own{factor * ws_.row_lower[a], factor * ws_.row_upper[a]};
    if (factor < 0) std::swap(own.lower, own.upper);
    const Range other{ws_.row_lower[b], ws_.row_upper[b]};
    const double noise = lp::presolve::kRounding * (ws_.row_length(b) + 1) * d.magnitude;
    if (holds({own.lower + d.least, own.upper + d.most}, other, noise, 1)) return state_.remove_row(b);
    if (holds({other.lower - d.most, other.upper - d.least}, own, noise, std::fabs(factor)))
      return state_.remove_row(a);
    bound(a, b, {other.lower - own.upper, other.upper - own.lower}, d, noise);
  }

  Reach reach() const {
    Reach r;
    for (const Term& t : difference_) {
      const double low = t.value * (t.value > 0 ? ws_.lower[t.column] : ws_.upper[t.column]);
      const double high = t.value * (t.value > 0 ? ws_.upper[t.column] : ws_.lower[t.column]);
      r.least += low;
      r.most += high;
      for (const double v : {low, high}) {
        if (!std::isinf(v)) r.magnitude = std::max(r.magnitude, std::fabs(v));
      }
    }
    return r;
  }

  /* A row within `reached` never leaves its sides; all is `scale` times the row. */
  bool holds(const Range& reached, const Range& sides, double noise, double scale) const {
    const auto room = [&](double side) {
      return lp::presolve::side_tolerance(ws_, side / scale) * std::min(scale, 1.0) - noise;
    };
    const bool above = sides.upper == kInf || reached.upper <= sides.upper + room(sides.upper);
    const bool below = sides.lower == -kInf || reached.lower >= sides.lower - room(sides.lower);
    return above && below;
  }

  void bound(int a, int b, const Range& range, const Reach& d, double noise) {
    const double size = std::max({1.0, d.magnitude, std::isinf(range.lower) ? 0 : std::fabs(range.lower),
                                  std::isinf(range.upper) ? 0 : std::fabs(range.upper)});
    const double crossed = lp::presolve::infeasibility_tolerance(ws_, size) + noise;
    if (d.least > range.upper + crossed || d.most < range.lower - crossed) {
      state_.set_infeasible({PresolveFinding::Kind::rows_inconsistent, a, b, -1, 0, 0});
      return;
    }
    const double room = state_.tolerances().feasibility * size + noise;
    for (const Term& t : difference_) {
      const int j = t.column;
      if (!state_.is_integer(j)) continue;
      const double above = (range.upper - d.least + room) / std::fabs(t.value);
      const double below = (d.most - range.lower + room) / std::fabs(t.value);
      double lower = ws_.lower[j], upper = ws_.upper[j];
      if (upper - lower <= std::min(above, below) || std::isinf(upper - lower)) continue;
      if (t.value > 0) {
        upper = std::min(upper, ws_.lower[j] + std::floor(above));
        lower = std::max(lower, ws_.upper[j] - std::floor(below));
      } else {
        lower = std::max(lower, ws_.upper[j] - std::floor(above));
        upper = std::min(upper, ws_.lower[j] + std::floor(below));
      }
      if (!state_.tighten(j, lower, upper)) return;
    }
  }

  PresolveState& state_;
  Workspace& ws_;
  const std::int64_t last_work_;
  std::vector<std::uint64_t> supports_;  // by row
  std::vector<double> scattered_;        // by column: entries of one row
  std::vector<int> columns_;             // its columns
  std::vector<Term> partners_;           // row and factor
  std::vector<Term> difference_;
};

}  // namespace

void remove_dominated_rows(PresolveState& state) {
  if (state.allows(PresolveRule::dominated_rows)) RowPairs(state).run();
}

}  // namespace tovik::mip
