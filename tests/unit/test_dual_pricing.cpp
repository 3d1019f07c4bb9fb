/* The leaving row of the dual: of the largest infeasibility^2 / weight among rows that are not banned,
 * whether all rows are looked at or a list of the best. */
#include "lp/simplex/dual_pricing.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/scattered_lps.h"

namespace tovik::lp::simplex {
namespace {

using support::Random;
using support::TableCore;

constexpr double kListedShare = 0.99;  // of the best score that a choice from the list must reach

class Rows {
 public:
  Rows(Random& random, int rows) : random_(random), table_(support::DenseLp(rows, 1)) {
    for (int p = 0; p < rows; ++p) core().values.set_bounds(p, 0.0, 10.0);
    for (int p = 0; p < rows; ++p) core().values.set_x(p, value());
    for (int p = 0; p < rows; ++p) weight_.push_back(random.uniform(0.5, 50));
    banned_.resize(static_cast<size_t>(rows));
    pricing_.resize(rows);
    rebuild(false);
  }
  Core& core() { return table_.core; }
  std::int64_t choices() const { return choices_; }

  void rebuild(bool keep_banned) {
    if (!keep_banned) std::fill(banned_.begin(), banned_.end(), 0);
    pricing_.rebuild(core(), weight_, keep_banned);
  }
  /* As an iteration does it: values and weights of some rows move, and pricing is told row by row. */
  void move_some() {
    for (int k = random_.pick(1, 30); k > 0; --k) {
      const int p = random_.below(core().m());
      core().values.set_x(p, value());
      weight_[p] = random_.uniform(0.5, 50);
      pricing_.set(p, squared(p), weight_[p]);
    }
  }
  void move_all() {
    for (int p = 0; p < core().m(); ++p) {
      if (random_.chance(0.2)) core().values.set_x(p, value());
    }
    pricing_.set_all(core(), weight_);
  }
  void repair(int p) {
    core().values.set_x(p, 5);
    pricing_.set(p, squared(p), weight_[p]);
  }
  void ban(int p) {
    banned_[p] = 1;
    pricing_.ban(p);
    EXPECT_EQ(pricing_.banned_count(), std::count(banned_.begin(), banned_.end(), 1));
  }

  /* -1 and all is well, or a row whose score is as good as the best. */
  int choose(double share) {
    ++choices_;
    double best = 0;
    for (int p = 0; p < core().m(); ++p) best = std::max(best, score(p));
    const int chosen = pricing_.choose(core(), weight_);
    EXPECT_EQ(chosen >= 0, best > 0);
    EXPECT_TRUE(chosen < 0 || score(chosen) >= share * best * (1 - 1e-14)) << score(chosen) << " of " << best;
    return chosen;
  }

 private:
  double value() { return random_.chance(0.4) ? random_.uniform(0, 10) : random_.uniform(-20, 30); }
  double squared(int p) {
    const double miss = std::max(-core().values.x(p), core().values.x(p) - 10);
    return miss > core().primal_tolerance() ? miss * miss : 0;
  }
  double score(int p) { return banned_[p] ? 0 : squared(p) / weight_[p]; }

  Random& random_;
  TableCore table_;
  DualPricing pricing_;
  std::vector<double> weight_;
  std::vector<char> banned_;
  std::int64_t choices_ = 0;
};

/* Through long runs with bans and rebuilds, to the end where no row is left. */
void run(Random& random, Rows& rows, int steps, double share) {
  for (int step = 0; step < steps; ++step) {
    const int p = rows.choose(share);
    if (p >= 0) random.chance(0.1) ? rows.ban(p) : rows.repair(p);
    if (random.chance(0.3)) rows.move_some();
    if (random.chance(0.02)) rows.move_all();
    if (random.chance(0.02)) rows.rebuild(random.chance(0.5));
  }
  int left = rows.core().m() + 1;
  for (int p = rows.choose(share); p >= 0 && left > 0; p = rows.choose(share), --left)
    random.chance(0.5) ? rows.ban(p) : rows.repair(p);
  EXPECT_GT(left, 0);
}

TEST(DualPricing, DenseChoiceIsTheBestRow) {
  Random random(331);
  for (int round = 0; round < 50; ++round) {
    TRACE_RANDOM(random, round);
    Rows rows(random, random.pick(1, 80));
    run(random, rows, 60, 1.0);
  }
}

TEST(DualPricing, ListedChoiceIsAsGoodAsTheBestRow) {
  Random random(332);
  for (int round = 0; round < 4; ++round) {
    TRACE_RANDOM(random, round);
    Rows rows(random, random.pick(900, 2500));
    run(random, rows, 600, kListedShare);
    EXPECT_LT(rows.core().counters.rows_scanned, rows.choices() * rows.core().m() / 2);
  }
}

/* Violations within the tolerance are none. */
TEST(DualPricing, ToleranceDecidesWhatIsInfeasible) {
  EXPECT_EQ(DualPricing::violation2(1.0, 0, 2, 1e-6), 0);
  EXPECT_EQ(DualPricing::violation2(-1e-7, 0, 2, 1e-6), 0);
  EXPECT_EQ(DualPricing::violation2(-3, 0, 2, 1e-6), 9);
  EXPECT_EQ(DualPricing::violation2(4, -kInf, 2, 1e-6), 4);
  EXPECT_EQ(DualPricing::violation2(1e300, 0, kInf, 1e-6), 0);
}

}  // namespace
}  // namespace tovik::lp::simplex
