#include "bench/nodes/rounding_cuts.h"

#include <algorithm>
#include <cmath>

namespace bench {

namespace {

using tovik::lp::kInf;

constexpr double kDepth = 1e-3;       // least violation over the norm
constexpr double kFraction = 0.02;    // least fraction of a right-hand side that is rounded
constexpr double kSmallest = 1e-6;    // least coefficient of a cut, relative to its largest
constexpr std::size_t kDivisors = 8;  // tried a row
constexpr int kLongest = 1000;        // entries of a row that is looked at

/* a'x <= right, sparse. */
struct Inequality {
  std::vector<int> index;
  std::vector<double> value;
  double right = 0;
};

struct Cut {
  Inequality row;
  double depth = 0;
};

/* A column as distance y >= 0 from one of its bounds: x = bound + sign y. */
struct Shift {
  double bound, sign, y;
};

class Separator {
 public:
  Separator(const Model& model, std::span<const double> x) : model_(model), x_(x), dense_(x.size()) {}

  /* The deepest cut of row i, its sides and its aggregates. */
  Cut deepest(int i) {
    Cut best;
    for (const double sign : {1.0, -1.0}) {
      Inequality row;
      if (!side(i, sign, row)) continue;
      try_rounding(row, best);
      Inequality sum;
      if (aggregate(i, row, sum)) try_rounding(sum, best);
    }
    return best;
  }

 private:
  /* sign times row i as an inequality; false when that side is free or the row is long. */
  bool side(int i, double sign, Inequality& row) const {
    const tovik::lp::Matrix& a = model_.by_rows;
    const double right = sign > 0 ? model_.lp.row_upper[i] : -model_.lp.row_lower[i];
    if (right == kInf || a.start[i + 1] - a.start[i] > kLongest) return false;
    row.right = right;
    for (int k = a.start[i]; k < a.start[i + 1]; ++k) {
      row.index.push_back(a.index[k]);
      row.value.push_back(sign * a.value[k]);
    }
    return true;
  }

  /* The row plus a multiple of another that removes its continuous column farthest from both bounds. */
  bool aggregate(int i, const Inequality& row, Inequality& sum) {
    int column = -1;
    double farthest = kIntegral, coefficient = 0;
    for (std::size_t k = 0; k < row.index.size(); ++k) {
      const int j = row.index[k];
      const double room = std::min(x_[j] - model_.lp.lower[j], model_.lp.upper[j] - x_[j]);
      if (model_.integer[j] || room <= farthest) continue;
      farthest = room;
      column = j;
      coefficient = row.value[k];
    }
    if (column < 0) return false;
    const tovik::lp::Matrix& a = model_.lp.matrix;
    for (int k = a.start[column]; k < a.start[column + 1]; ++k) {
      const double factor = -coefficient / a.value[k];
      Inequality other;
      if (a.index[k] == i || !side(a.index[k], factor > 0 ? 1 : -1, other)) continue;
      sum = add(row, other, std::fabs(factor), column);
      return true;
    }
    return false;
  }

  Inequality add(const Inequality& row, const Inequality& other, double factor, int removed) {
    Inequality sum;
    sum.right = row.right + factor * other.right;
    const auto scatter = [&](const Inequality& from, double times) {
      for (std::size_t k = 0; k < from.index.size(); ++k) {
        if (dense_[from.index[k]] == 0) sum.index.push_back(from.index[k]);
        dense_[from.index[k]] += times * from.value[k];
        if (dense_[from.index[k]] == 0) dense_[from.index[k]] = 1e-300;  // listed once
      }
    };
    scatter(row, 1);
    scatter(other, factor);
    std::erase(sum.index, removed);
    dense_[removed] = 0;
    for (const int j : sum.index) {
      sum.value.push_back(std::fabs(dense_[j]) < 1e-12 ? 0 : dense_[j]);
      dense_[j] = 0;
    }
    return sum;
  }

  /* From the nearer bound; false when there is none, or one that rounding cannot use. */
  bool shift(int j, Shift& s) const {
    const double below = x_[j] - model_.lp.lower[j], above = model_.lp.upper[j] - x_[j];
    if (below == kInf && above == kInf) return false;
    s = below <= above ? Shift{model_.lp.lower[j], 1, std::max(below, 0.0)}
                       : Shift{model_.lp.upper[j], -1, std::max(above, 0.0)};
    return !model_.integer[j] || s.bound == std::floor(s.bound);
  }

  void try_rounding(const Inequality& row, Cut& best) {
    shifts_.resize(row.index.size());
    double right = row.right;
    std::vector<double> divisors;
    for (std::size_t k = 0; k < row.index.size(); ++k) {
      if (!shift(row.index[k], shifts_[k])) return;
      right -= row.value[k] * shifts_[k].bound;
      const double size = std::fabs(row.value[k]);
      const bool new_size = std::find(divisors.begin(), divisors.end(), size) == divisors.end();
      if (model_.integer[row.index[k]] && shifts_[k].y > kIntegral && size > 0 && new_size)
        divisors.push_back(size);
    }
    if (divisors.size() > kDivisors) divisors.resize(kDivisors);
    for (const double divisor : divisors) round(row, right, divisor, best);
  }

  /* Rounds the shifted row over the divisor and keeps the cut when it is deeper than the best. */
  void round(const Inequality& row, double right, double divisor, Cut& best) {
    const double whole = std::floor(right / divisor), rest = right / divisor - whole;
    if (rest < kFraction || rest > 1 - kFraction) return;
    Cut cut;
    cut.row.right = whole;
    double activity = 0, norm2 = 0, largest = 0;
    for (std::size_t k = 0; k < row.index.size(); ++k) {
      const Shift& s = shifts_[k];
      const double a = s.sign * row.value[k] / divisor;
      const double part = a - std::floor(a);
      const double c = model_.integer[row.index[k]] ? std::floor(a) + std::max(0.0, part - rest) / (1 - rest)
                                                    : std::min(a, 0.0) / (1 - rest);
      if (c == 0) continue;
      activity += c * s.y;
      norm2 += c * c;
      largest = std::max(largest, std::fabs(c));
      cut.row.index.push_back(row.index[k]);
      cut.row.value.push_back(c * s.sign);
      cut.row.right += c * s.sign * s.bound;
    }
    cut.depth = norm2 > 0 ? (activity - whole) / std::sqrt(norm2) : 0;
    if (cut.depth < std::max(kDepth, best.depth)) return;
    const auto tiny = [&](double c) { return std::fabs(c) < kSmallest * largest; };
    if (std::none_of(cut.row.value.begin(), cut.row.value.end(), tiny)) best = std::move(cut);
  }

  const Model& model_;
  std::span<const double> x_;
  std::vector<double> dense_;  // zero between calls
  std::vector<Shift> shifts_;  // by entry of the row at work
};

}  // namespace

Rows rounding_cuts(const Model& model, std::span<const double> x, std::size_t limit) {
  Separator separator(model, x);
  std::vector<Cut> cuts;
  for (int i = 0; i < model.lp.num_rows(); ++i) {
    Cut cut = separator.deepest(i);
    if (cut.depth > 0) cuts.push_back(std::move(cut));
  }
  std::stable_sort(cuts.begin(), cuts.end(), [](const Cut& a, const Cut& b) { return a.depth > b.depth; });
  if (cuts.size() > limit) cuts.resize(limit);
  Rows rows;
  for (const Cut& cut : cuts) {
    rows.index.insert(rows.index.end(), cut.row.index.begin(), cut.row.index.end());
    rows.value.insert(rows.value.end(), cut.row.value.begin(), cut.row.value.end());
    rows.start.push_back(static_cast<int>(rows.index.size()));
    rows.upper.push_back(cut.row.right);
  }
  return rows;
}

}  // namespace bench
