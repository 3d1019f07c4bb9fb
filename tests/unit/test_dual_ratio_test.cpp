/* The dual ratio test on rows and duals made for it: what a step leaves dual feasible, how far the slope of
 * the dual objective lets it go, and what free columns allow. */
#include "lp/simplex/dual_ratio_test.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/scattered_lps.h"

namespace tovik::lp::simplex {
namespace {

using support::Random;
using support::TableCore;

constexpr double kRounding = 1e-9;
constexpr double kSmallestPivot = 0.5, kLargestPivot = 4;  // in boxed rows

/* A core with random statuses, duals that are feasible within the tolerance, and a row of its table. */
class Row {
 public:
  enum class Bounds { any, boxed };
  Row(Random& random, Bounds bounds) : random_(random), table_(model(random, bounds)) {
    std::vector<BasisStatus> status(static_cast<size_t>(core().total()));
    for (BasisStatus& s : status) s = static_cast<BasisStatus>(random.pick(0, 3));
    core().set_basis(status);
    alpha_.resize(static_cast<size_t>(core().total()));
    rho_.resize(core().m());
    row_.resize(core().n());
    for (int j = 0; j < core().total(); ++j) {
      core().values.set_dual(j, core().basis.nonbasic(j) ? feasible_dual(j) : 0);
      if (random.chance(0.6)) continue;
      const double a = (random.chance(0.5) ? 1 : -1) *
                       (random.chance(0.1)
                            ? 1e-12
                            : random.uniform(bounds == Bounds::boxed ? kSmallestPivot : 0.01, kLargestPivot));
      if (j >= core().n()) {
        rho_.array[j - core().n()] = a;
        rho_.index[rho_.count++] = j - core().n();
      } else if (core().basis.nonbasic(j) && !core().is_fixed(j)) {
        row_.array[j] = a;
        row_.index[row_.count++] = j;
      }
    }
    for (int j = 0; j < core().total(); ++j) {
      const double a = j < core().n() ? row_.array[j] : rho_.array[j - core().n()];
      if (movable(j)) alpha_[j] = a;
    }
    if (random.chance(0.2)) row_.count = -1;
    if (random.chance(0.2)) rho_.count = -1;
    delta_ = (random.chance(0.5) ? 1 : -1) * std::ldexp(random.uniform(0.5, 1), random.pick(-5, 8));
    before_ = core().values.d();
  }

  Core& core() { return table_.core; }
  bool movable(int j) { return core().basis.nonbasic(j) && !core().is_fixed(j); }
  double range(int j) { return core().work.upper(j) - core().work.lower(j); }
  double alpha(int j) const { return alpha_[j]; }
  double delta() const { return delta_; }
  double dual_before(int j) const { return before_[j]; }

  DualRatioTest::Pick choose() {
    core().basis.count_free(core().work);
    test_.prepare(core());
    test_.load(core(), rho_, row_, delta_);
    return test_.choose(core(), delta_);
  }
  const std::vector<int>& flips() const { return test_.flips(); }
  bool flipped(int j) const { return std::find(flips().begin(), flips().end(), j) != flips().end(); }
  std::span<const int> row_index() const { return test_.row_index(); }
  std::span<const double> row_alpha() const { return test_.row_alpha(); }

  /* Whether a step in the direction of delta meets the dual constraint of j. */
  bool is_candidate(int j) {
    if (!movable(j)) return false;
    const double a = delta_ < 0 ? -alpha_[j] : alpha_[j];
    return core().model.is_free(j) ? std::fabs(a) > 1e-9 : a * core().basis.move(j) > 1e-9;
  }
  /* Growth of the dual objective by a step: delta a unit of it, less what columns lose that stand at the
   * worse of their two bounds. */
  double gain(double theta) {
    double sum = theta * delta_;
    for (int j = 0; j < core().total(); ++j) {
      if (!movable(j)) continue;
      const double d = before_[j] - theta * alpha_[j];
      sum += std::min(0.0, core().basis.move(j) * d) * range(j);
    }
    return sum;
  }
  /* Break points of one group lie within the tolerance over the smallest pivot; there the slope may be that
   * of all columns together. */
  double gain_tolerance() {
    double ranges = 0;
    for (int j = 0; j < core().total(); ++j) ranges += core().basis.nonbasic(j) ? range(j) : 0;
    return core().dual_tolerance() * (1 + ranges * 2 * kLargestPivot / kSmallestPivot) + kRounding;
  }
  /* By how much the dual of j is infeasible after the step. */
  double violation_after(int j, double theta) {
    const double d = before_[j] - theta * alpha_[j];
    if (core().model.is_free(j)) return std::fabs(d);
    return -d * (flipped(j) ? -core().basis.move(j) : core().basis.move(j));
  }

 private:
  static support::DenseLp model(Random& random, Bounds bounds) {
    support::DenseLp lp = support::scattered_lp(random, random.pick(1, 15), random.pick(1, 60));
    const auto close = [&](double& low, double& high) {
      low = random.pick(-4, 4);
      high = low + random.uniform(0, 3);
    };
    for (int j = 0; bounds == Bounds::boxed && j < lp.columns(); ++j) close(lp.lower[j], lp.upper[j]);
    for (int i = 0; bounds == Bounds::boxed && i < lp.rows(); ++i) close(lp.row_lower[i], lp.row_upper[i]);
    return lp;
  }
  /* Zero, within the tolerance on the wrong side, or of any size; of free columns zero or nearly. */
  double feasible_dual(int j) {
    const double noise = random_.uniform(-1, 1) * core().dual_tolerance();
    if (core().model.is_free(j)) return random_.chance(0.5) ? 0 : noise;
    if (core().is_fixed(j)) return random_.uniform(-5, 5);
    if (random_.chance(0.2)) return 0;
    if (random_.chance(0.2)) return noise;
    return core().basis.move(j) * random_.uniform(0, 5);
  }

  Random& random_;
  TableCore table_;
  DualRatioTest test_;
  SparseVector rho_, row_;
  std::vector<double> alpha_, before_;
  double delta_ = 0;
};

TEST(DualRatioTest, StepsLeaveTheDualsFeasible) {
  Random random(341);
  int picks = 0, with_flips = 0, free_columns = 0;
  for (int round = 0; round < 4000; ++round) {
    TRACE_RANDOM(random, round);
    Row row(random, random.chance(0.5) ? Row::Bounds::any : Row::Bounds::boxed);
    const int total = row.core().total();
    const DualRatioTest::Pick pick = row.choose();
    bool any = false;
    for (int j = 0; j < total; ++j) any = any || row.is_candidate(j);
    ASSERT_EQ(pick.variable >= 0, any);
    if (!any) continue;
    ++picks;
    with_flips += !row.flips().empty();
    free_columns += row.core().model.is_free(pick.variable);
    EXPECT_TRUE(row.is_candidate(pick.variable));
    EXPECT_EQ(pick.alpha, row.alpha(pick.variable));
    EXPECT_GE(pick.theta * row.delta(), 0) << "the dual objective falls";
    const double tolerance = row.core().dual_tolerance();
    // The pick's own dual becomes 0; one that was infeasible within the tolerance is shifted there.
    const double rest = row.dual_before(pick.variable) - pick.theta * pick.alpha;
    EXPECT_LE(std::fabs(rest), pick.theta == 0 ? tolerance : kRounding);
    for (int j = 0; j < total; ++j) {
      if (!row.movable(j) || j == pick.variable) continue;
      EXPECT_LE(row.violation_after(j, pick.theta), tolerance + kRounding) << "variable " << j;
    }
    if (HasFailure()) break;
  }
  EXPECT_GT(picks, 2000);
  EXPECT_GT(with_flips, 300);
  EXPECT_GT(free_columns, 100);
}

/* No step reaches a dual that is no number, and the search for one ended never. */
TEST(DualRatioTest, EndsWhereDualsAreNoNumbers) {
  Random random(343);
  for (int round = 0; round < 200; ++round) {
    TRACE_RANDOM(random, round);
    Row row(random, Row::Bounds::any);
    for (int j = 0; j < row.core().total(); ++j) {
      if (row.is_candidate(j) && random.chance(0.7)) row.core().values.set_dual(j, std::nan(""));
    }
    const DualRatioTest::Pick pick = row.choose();
    if (pick.variable >= 0) {
      EXPECT_TRUE(row.is_candidate(pick.variable));
    }
  }
}

/* What flips uses up the slope of the dual objective and not more, and no other break point is worth more.
 * All pivots are good ones here: a small one may end the step before. */
TEST(DualRatioTest, FlipsEndWhereTheSlopeDoes) {
  Random random(342);
  for (int round = 0; round < 3000; ++round) {
    TRACE_RANDOM(random, round);
    Row row(random, Row::Bounds::boxed);
    const DualRatioTest::Pick pick = row.choose();
    if (pick.variable < 0) continue;
    double slope = std::fabs(row.delta());
    for (const int j : row.flips()) {
      EXPECT_TRUE(row.is_candidate(j));
      EXPECT_NE(j, pick.variable);
      slope -= std::fabs(row.alpha(j)) * row.range(j);
    }
    EXPECT_GE(slope, -kRounding * std::fabs(row.delta()));
    const double reached = row.gain(pick.theta);
    for (int j = 0; j < row.core().total(); ++j) {
      if (!row.is_candidate(j)) continue;
      const double other = row.dual_before(j) / row.alpha(j);
      EXPECT_GE(reached, row.gain(other) - row.gain_tolerance()) << "the break point of variable " << j;
    }
    if (HasFailure()) break;
  }
}

}  // namespace
}  // namespace tovik::lp::simplex
