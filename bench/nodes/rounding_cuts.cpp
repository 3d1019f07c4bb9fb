#include "bench/nodes/rounding_cuts.h"

#include <algorithm>
#include <cmath>

#include "bench/nodes/rounding.h"
#include "lp/factor/factor.h"

namespace bench {

namespace {

using tovik::lp::SparseVector;
using tovik::lp::factor::Factor;

constexpr double kTight = 1e-6;       // relative
constexpr double kMultiplier = 1e-9;  // a smaller one is zero
constexpr double kDensity = 0.1;      // expected of a row of the inverse

class Separator {
 public:
  Separator(const Model& model, std::span<const double> x)
      : model_(model), x_(x), rounding_(model, x), combination_(model.lp.num_columns()) {}

  /* The deepest cut of row i, its sides and its aggregates. */
  Cut of_row(int i) {
    Cut best;
    for (const double sign : {1.0, -1.0}) {
      Inequality row;
      if (!row_side(model_, i, sign, row)) continue;
      rounding_.deepen(row, {}, best);
      if (aggregate(i, row)) rounding_.deepen(combination_.take(), {}, best);
    }
    return best;
  }

  /* Of the row of the tableau that these multipliers of the rows make. */
  Cut of_tableau(const SparseVector& multipliers) {
    Cut best;
    std::vector<LooseSlack> slacks;
    bool usable = true;
    for (int i = 0; i < model_.lp.num_rows() && usable; ++i) {
      const double y = multipliers.array[i];
      if (std::fabs(y) > kMultiplier) usable = add_tight(i, y, slacks);
    }
    const Inequality row = combination_.take();
    if (usable) rounding_.deepen(row, slacks, best);
    return best;
  }

 private:
  /* The row plus a multiple of another that removes its continuous column farthest from both bounds. */
  bool aggregate(int i, const Inequality& row) {
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
      if (a.index[k] == i || !row_side(model_, a.index[k], factor > 0 ? 1 : -1, other)) continue;
      combination_.add(row, 1);
      combination_.add(other, std::fabs(factor));
      combination_.remove(column);
      return true;
    }
    return false;
  }

  /* Adds y times row i at the side where it is tight; the slack is loose where y has the other sign. */
  bool add_tight(int i, double y, std::vector<LooseSlack>& slacks) {
    Inequality upper, lower;
    const bool above = row_side(model_, i, 1, upper), below = row_side(model_, i, -1, lower);
    const bool at_upper = above && tight(upper), at_lower = below && tight(lower);
    if (!at_upper && !at_lower) return false;
    const bool exact = model_.lp.row_lower[i] == model_.lp.row_upper[i];
    if (at_upper) combination_.add(upper, y);
    if (!at_upper) combination_.add(lower, -y);
    if (!exact && at_upper && y < 0) slacks.push_back({i, 1, -y});
    if (!exact && !at_upper && y > 0) slacks.push_back({i, -1, y});
    return true;
  }

  bool tight(const Inequality& row) const {
    double activity = 0;
    for (std::size_t k = 0; k < row.index.size(); ++k) activity += row.value[k] * x_[row.index[k]];
    return std::fabs(activity - row.right) <= kTight * (1 + std::fabs(row.right));
  }

  const Model& model_;
  std::span<const double> x_;
  Rounding rounding_;
  Combination combination_;
};

/* Cuts of the tableau's rows with a fractional integer column, at most `limit`. */
void cut_tableau(const Model& model, std::span<const double> x, std::vector<int> head, std::size_t limit,
                 std::vector<Cut>& cuts) {
  const int m = model.lp.num_rows(), n = model.lp.num_columns();
  Factor factor(model.lp.matrix);
  if (static_cast<int>(head.size()) != m || factor.build(head) > 0) return;
  Separator separator(model, x);
  SparseVector row;
  row.resize(m);
  for (int i = 0; i < m && limit > 0; ++i) {
    if (head[i] >= n || !model.integer[head[i]] || fraction(x[head[i]]) <= kIntegral) continue;
    row.clear();
    row.set_unit(i);
    factor.btran(row, kDensity);
    Cut cut = separator.of_tableau(row);
    if (cut.depth > 0) cuts.push_back(std::move(cut));
    --limit;
  }
}

Rows as_rows(std::span<const Cut> cuts) {
  Rows rows;
  for (const Cut& cut : cuts) {
    rows.index.insert(rows.index.end(), cut.row.index.begin(), cut.row.index.end());
    rows.value.insert(rows.value.end(), cut.row.value.begin(), cut.row.value.end());
    rows.start.push_back(static_cast<int>(rows.index.size()));
    rows.upper.push_back(cut.row.right);
  }
  return rows;
}

}  // namespace

Rows rounding_cuts(const Model& model, std::span<const double> x, std::vector<int> basic_variables,
                   std::size_t limit) {
  std::vector<Cut> cuts;
  Separator separator(model, x);
  for (int i = 0; i < model.lp.num_rows(); ++i) {
    Cut cut = separator.of_row(i);
    if (cut.depth > 0) cuts.push_back(std::move(cut));
  }
  cut_tableau(model, x, std::move(basic_variables), limit, cuts);
  std::stable_sort(cuts.begin(), cuts.end(), [](const Cut& a, const Cut& b) { return a.depth > b.depth; });
  if (cuts.size() > limit) cuts.resize(limit);
  return as_rows(cuts);
}

}  // namespace bench
