/* Changes of bounds and costs that the state of a relaxation follows without pivots: whether one at a time or many at
 * once, values and multipliers are then those of the basis, for the model as it has become. */
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "lp/simplex/relaxation.h"
#include "support/scattered_lps.h"

namespace {

using namespace tovik::lp;
using namespace tovik::lp::simplex;
using support::DenseLp;

constexpr double kTolerance = 1e-8;  // relative: rounding of a few solves
constexpr double kSign = 1e-6;       // reduced costs below may have either sign

bool near(double a, double b, double size) {
  return std::fabs(a - b) <= kTolerance * (1 + size);
}

/* The identities that determine the point of a basis, on the table. */
void expect_point_of_basis(const DenseLp& lp, Relaxation& engine) {
  const bool claims_feasible = engine.is_primal_feasible();  // follows the changes
  const Basis basis = engine.basis();
  const std::span<const double> x = engine.primal(), y = engine.duals(), d = engine.reduced_costs();
  const auto at = [](BasisStatus status, double low, double high) {
    return status == BasisStatus::lower ? low : status == BasisStatus::upper ? high : 0.0;
  };
  double objective = lp.offset, size = std::fabs(lp.offset), outside = 0;
  for (int j = 0; j < lp.columns(); ++j) {
    double sum = lp.cost[j], terms = std::fabs(sum);
    for (int i = 0; i < lp.rows(); ++i) {
      sum -= lp.a[i][j] * y[i];
      terms += std::fabs(lp.a[i][j] * y[i]);
    }
    EXPECT_TRUE(near(d[j], sum, terms)) << "column " << j << ": " << d[j] << " is not c - A'y " << sum;
    if (basis.columns[j] == BasisStatus::basic) {
      EXPECT_TRUE(near(d[j], 0, terms)) << "basic column " << j;
    } else {
      EXPECT_TRUE(near(x[j], at(basis.columns[j], lp.lower[j], lp.upper[j]), std::fabs(x[j])))
          << "column " << j;
      // A boxed column stands where its reduced cost wants it.
      if (lp.lower[j] > -kInf && lp.upper[j] < kInf && lp.lower[j] < lp.upper[j] && std::fabs(d[j]) > kSign) {
        EXPECT_EQ(basis.columns[j], d[j] > 0 ? BasisStatus::lower : BasisStatus::upper) << "column " << j;
      }
    }
    objective += lp.cost[j] * x[j];
    size += std::fabs(lp.cost[j] * x[j]);
    outside = std::max({outside, lp.lower[j] - x[j], x[j] - lp.upper[j]});
  }
  for (int i = 0; i < lp.rows(); ++i) {
    double activity = 0, terms = 0;
    for (int j = 0; j < lp.columns(); ++j) {
      activity += lp.a[i][j] * x[j];
      terms += std::fabs(lp.a[i][j] * x[j]);
    }
    if (basis.rows[i] == BasisStatus::basic) {
      EXPECT_EQ(y[i], 0) << "basic row " << i;
    } else {
      EXPECT_TRUE(near(activity, at(basis.rows[i], lp.row_lower[i], lp.row_upper[i]), terms)) << "row " << i;
    }
    outside = std::max({outside, lp.row_lower[i] - activity, activity - lp.row_upper[i]});
  }
  EXPECT_TRUE(near(engine.objective(), objective, size)) << engine.objective() << " is not " << objective;
  if (outside > 1e-6 || outside < 1e-8) {
    EXPECT_EQ(claims_feasible, outside < 1e-8);
  }
}

struct Change {
  enum class Kind { bounds, sides, cost } kind;
  int index;
  double low, high;  // of a cost: low
  void apply(DenseLp& lp) const {
    if (kind == Kind::cost) lp.cost[index] = low;
    if (kind == Kind::bounds) lp.lower[index] = low, lp.upper[index] = high;
    if (kind == Kind::sides) lp.row_lower[index] = low, lp.row_upper[index] = high;
  }
  void apply(Relaxation& engine) const {
    if (kind == Kind::cost) engine.change_cost(index, low);
    if (kind == Kind::bounds) engine.change_bounds(index, low, high);
    if (kind == Kind::sides) engine.change_row_bounds(index, low, high);
  }
};

Change random_change(support::Random& random, const DenseLp& lp) {
  Change change{static_cast<Change::Kind>(random.pick(0, 2)), 0, random.pick(-6, 6) / 2.0, 0};
  change.index = random.below(change.kind == Change::Kind::sides ? lp.rows() : lp.columns());
  if (change.kind != Change::Kind::cost) support::random_bounds(random, change.low, change.high);
  return change;
}

TEST(PendingChanges, OneByOneOrAllAtOnceThePointIsThatOfTheBasis) {
  int followed = 0;
  for (int round = 0; round < 1000; ++round) {
    support::Random random(static_cast<unsigned>(round));
    TRACE_RANDOM(random, round);
    DenseLp lp = scattered_lp(random, random.pick(1, 8), random.pick(1, 10));
    lp.offset = random.pick(-3, 3);
    support::QuietControl control;
    Relaxation engine(lp.data(), Options{}, control);
    if (engine.resolve(control) != Outcome::optimal) continue;
    expect_point_of_basis(lp, engine);
    for (int step = 0; step < 6; ++step) {
      // The second engine follows each change by itself.
      const std::unique_ptr<Relaxation> stepwise = engine.fork();
      for (int k = random.pick(1, 8); k > 0; --k) {
        const Change change = random_change(random, lp);
        change.apply(lp);
        change.apply(engine);
        change.apply(*stepwise);
        expect_point_of_basis(lp, *stepwise);
      }
      const std::int64_t before = engine.counters().iterations;
      expect_point_of_basis(lp, engine);
      EXPECT_EQ(engine.counters().iterations, before) << "to follow takes no pivots";
      ++followed;
      if (testing::Test::HasFailure()) return;
      const Outcome outcome = engine.resolve(control);
      EXPECT_EQ(stepwise->resolve(control), outcome);
      if (outcome != Outcome::optimal) break;
      EXPECT_NEAR(stepwise->objective(), engine.objective(), 1e-6 * (1 + std::fabs(engine.objective())));
      expect_point_of_basis(lp, engine);
    }
  }
  EXPECT_GT(followed, 200);
}

/* A change and its opposite leave nothing behind. */
TEST(PendingChanges, ThereAndBackIsWhereItBegan) {
  int rounds = 0;
  for (int round = 0; round < 800; ++round) {
    support::Random random(static_cast<unsigned>(round));
    TRACE_RANDOM(random, round);
    const DenseLp lp = scattered_lp(random, random.pick(2, 8), random.pick(2, 10));
    support::QuietControl control;
    Relaxation engine(lp.data(), Options{}, control);
    if (engine.resolve(control) != Outcome::optimal) continue;
    const double objective = engine.objective();
    std::vector<Change> back;
    for (int k = random.pick(1, 6); k > 0; --k) {
      const Change change = random_change(random, lp);
      const int at = change.index;
      back.push_back(change);
      Change& old = back.back();
      if (change.kind == Change::Kind::cost) old.low = lp.cost[at];
      if (change.kind == Change::Kind::bounds) old.low = lp.lower[at], old.high = lp.upper[at];
      if (change.kind == Change::Kind::sides) old.low = lp.row_lower[at], old.high = lp.row_upper[at];
      change.apply(engine);
    }
    if (random.chance(0.5)) engine.is_primal_feasible();  // on the way, or not at all
    for (const Change& old : back) old.apply(engine);
    expect_point_of_basis(lp, engine);
    EXPECT_EQ(engine.resolve(control), Outcome::optimal);
    EXPECT_NEAR(engine.objective(), objective, 1e-7 * (1 + std::fabs(objective)));
    ++rounds;
    if (testing::Test::HasFailure()) return;
  }
  EXPECT_GT(rounds, 100);
}

}  // namespace
