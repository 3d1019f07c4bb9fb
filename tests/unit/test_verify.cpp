/* The judge of points and claims: what it says of single values, that it finds the worst entry, and that it
 * takes true proofs and no false ones. */
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "lp/verify/certificates.h"
#include "lp/verify/point.h"
#include "support/dense_lp.h"
#include "support/random.h"

namespace tovik::lp::verify {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

using support::Random;

TEST(Verify, ValueMissesItsBoundsBySoMuch) {
  struct Case {
    double value, low, high, miss;
  };
  for (const Case& c : {Case{1, 0, 2, 0}, Case{-1, 0, 2, 1}, Case{5, 0, 2, 3}, Case{0, 0, 0, 0},
                        Case{-1e300, -kInf, 0, 0}, Case{1e300, 0, kInf, 0}, Case{3, -kInf, kInf, 0},
                        Case{1, 3, 2, 2}, Case{kInf, 0, kInf, kInf}, Case{-kInf, -kInf, 0, kInf},
                        Case{kInf, 0, 1, kInf}, Case{kNaN, 0, 1, kInf}, Case{kNaN, -kInf, kInf, kInf}}) {
    EXPECT_EQ(outside(c.value, c.low, c.high), c.miss) << c.value << " in " << c.low << ", " << c.high;
  }
}

TEST(Verify, DualSignDependsOnWhereItsVariableStands) {
  using enum BasisStatus;
  struct Case {
    double d;
    BasisStatus status;
    bool fixed;
    double wrong;
  };
  for (const Case& c :
       {Case{2, lower, false, 0}, Case{-2, lower, false, 2}, Case{2, upper, false, 2},
        Case{-2, upper, false, 0}, Case{-2, free, false, 2}, Case{2, basic, false, 2},
        Case{-2, basic, true, 2}, Case{-2, lower, true, 0}, Case{2, upper, true, 0}, Case{-2, free, true, 0},
        Case{kNaN, lower, false, kInf}, Case{kNaN, basic, false, kInf}}) {
    EXPECT_EQ(wrong_sign(c.d, c.status, c.fixed), c.wrong) << c.d << " at " << static_cast<int>(c.status);
  }
}

TEST(Verify, RowsAllowWhatTheirSenseSays) {
  struct Case {
    char sense;
    double rhs, range, lower, upper;
  };
  for (const Case& c : {Case{'L', 3, 9, -kInf, 3}, Case{'G', 3, 9, 3, kInf}, Case{'E', 3, 9, 3, 3},
                        Case{'R', 3, 9, 3, 12}, Case{'R', 3, -9, -6, 3}, Case{'R', 3, 0, 3, 3},
                        Case{'L', 1e30, 0, -kInf, 1e30}, Case{'E', -1e30, 0, -1e30, -1e30}}) {
    const Limits limits = row_limits(c.sense, c.rhs, c.range);
    EXPECT_EQ(limits.lower, c.lower) << c.sense << c.range;
    EXPECT_EQ(limits.upper, c.upper) << c.sense << c.range;
  }
}

/* Integers of moderate size: dense sums in the plain order are exact. */
support::DenseLp random_lp(Random& random) {
  support::DenseLp lp(random.pick(1, 6), random.pick(1, 8));
  for (auto& row : lp.a) {
    for (double& a : row) a = random.pick(0, 2) == 0 ? random.pick(-5, 5) : 0;
  }
  const auto bound = [&](double& low, double& high) {
    low = random.pick(0, 2) == 0 ? -kInf : random.pick(-4, 4);
    high = random.pick(0, 2) == 0 ? kInf : std::max(low, -4.0) + random.pick(0, 4);
  };
  for (int j = 0; j < lp.columns(); ++j) {
    bound(lp.lower[j], lp.upper[j]);
    lp.cost[j] = random.pick(-5, 5);
  }
  for (int i = 0; i < lp.rows(); ++i) bound(lp.row_lower[i], lp.row_upper[i]);
  lp.offset = random.pick(-5, 5);
  return lp;
}

struct Vectors {
  std::vector<double> x, activity, d, y;
  std::vector<BasisStatus> column_status, row_status;
  Point point() const { return {x, activity, d, y, column_status, row_status}; }
};

Vectors random_point(const support::DenseLp& dense, Random& random) {
  Vectors v;
  for (int j = 0; j < dense.columns(); ++j) {
    v.x.push_back(random.pick(-9, 9));
    v.column_status.push_back(static_cast<BasisStatus>(random.pick(0, 3)));
  }
  for (int i = 0; i < dense.rows(); ++i) {
    v.y.push_back(random.pick(-3, 3));
    v.row_status.push_back(static_cast<BasisStatus>(random.pick(0, 3)));
  }
  const LpData lp = dense.data();
  v.activity = activities(lp.num_rows(), entries_of(lp.matrix), v.x);
  for (int j = 0; j < dense.columns(); ++j)
    v.d.push_back(reduced_cost(lp.cost[j], j, entries_of(lp.matrix), v.y).value());
  return v;
}

TEST(Verify, SumsOfAPointAreThoseOfTheDenseTable) {
  Random random(101);
  for (int round = 0; round < 300; ++round) {
    const support::DenseLp dense = random_lp(random);
    const Vectors v = random_point(dense, random);
    double value = dense.offset;
    for (int j = 0; j < dense.columns(); ++j) {
      double d = dense.cost[j];
      for (int i = 0; i < dense.rows(); ++i) d -= dense.a[i][j] * v.y[i];
      EXPECT_EQ(v.d[j], d) << "round " << round;
      value += dense.cost[j] * v.x[j];
    }
    for (int i = 0; i < dense.rows(); ++i) {
      double activity = 0;
      for (int j = 0; j < dense.columns(); ++j) activity += dense.a[i][j] * v.x[j];
      EXPECT_EQ(v.activity[i], activity) << "round " << round;
    }
    EXPECT_EQ(objective(dense.data(), v.x), value) << "round " << round;
  }
}

/* No entry violates by more, and the named one by exactly that. */
TEST(Verify, WorstViolationIsNamed) {
  Random random(102);
  for (int round = 0; round < 500; ++round) {
    TRACE_RANDOM(random, round);
    const support::DenseLp dense = random_lp(random);
    const LpData lp = dense.data();
    const Vectors v = random_point(dense, random);
    const Violation found = measure_violation(lp, v.point());
    std::vector<double> columns, rows, duals;
    for (int j = 0; j < lp.num_columns(); ++j) {
      columns.push_back(outside(v.x[j], lp.lower[j], lp.upper[j]));
      duals.push_back(wrong_sign(v.d[j], v.column_status[j], lp.lower[j] == lp.upper[j]));
    }
    for (int i = 0; i < lp.num_rows(); ++i) {
      rows.push_back(outside(v.activity[i], lp.row_lower[i], lp.row_upper[i]));
      duals.push_back(wrong_sign(v.y[i], v.row_status[i], lp.row_lower[i] == lp.row_upper[i]));
    }
    const auto agrees = [](double largest, int worst, const std::vector<double>& all) {
      EXPECT_EQ(largest, *std::max_element(all.begin(), all.end()));
      if (largest > 0) {
        EXPECT_EQ(all[static_cast<size_t>(worst)], largest);
      } else {
        EXPECT_EQ(worst, -1);
      }
    };
    agrees(found.column, found.worst_column, columns);
    agrees(found.row, found.worst_row, rows);
    agrees(found.dual, found.worst_dual, duals);
    EXPECT_EQ(found.primal(), std::max(found.row, found.column));
  }
}

/* Points of methods without a basis, and integer solutions without duals. */
TEST(Verify, StatusesAndDualsMayBeMissing) {
  Random random(103);
  for (int round = 0; round < 300; ++round) {
    TRACE_RANDOM(random, round);
    const support::DenseLp dense = random_lp(random);
    const LpData lp = dense.data();
    Vectors v = random_point(dense, random);
    for (int j = 0; j < lp.num_columns(); ++j)
      v.column_status[j] = status_at(v.x[j], lp.lower[j], lp.upper[j], 0.5);
    for (int i = 0; i < lp.num_rows(); ++i)
      v.row_status[i] = status_at(v.activity[i], lp.row_lower[i], lp.row_upper[i], 0.5);
    const Violation told = measure_violation(lp, v.point());
    const Violation guessed = measure_violation(lp, Point{v.x, v.activity, v.d, v.y, {}, {}}, 0.5);
    EXPECT_EQ(told.dual, guessed.dual);
    EXPECT_EQ(told.worst_dual, guessed.worst_dual);
    const Violation primal = measure_violation(lp, Point{v.x, v.activity, {}, {}, {}, {}});
    EXPECT_EQ(primal.primal(), told.primal());
    EXPECT_EQ(primal.dual, 0);
  }
  EXPECT_EQ(status_at(2, 1, 2, 0), BasisStatus::upper);
  EXPECT_EQ(status_at(1 + 1e-7, 1, 1 + 1e-7, 1e-6), BasisStatus::upper);  // both within reach: the nearer
  EXPECT_EQ(status_at(1e6 + 0.5, 1e6, kInf, 1e-6), BasisStatus::lower);
  EXPECT_EQ(status_at(1.5, 1, 2, 1e-6), BasisStatus::basic);
}

/* Bounds that cross, as far as a tolerance lets them, leave no choice: any dual will do, and one of them is missed. */
TEST(Verify, CrossedBoundsAreFixed) {
  support::DenseLp dense(1, 1);
  dense.a[0] = {1};
  dense.lower[0] = 1 + 1e-7, dense.upper[0] = 1;
  dense.row_lower[0] = 2 + 1e-7, dense.row_upper[0] = 2;
  const LpData lp = dense.data();
  const std::vector<double> x{1}, activity{2}, dual{-3};
  for (const BasisStatus at : {BasisStatus::lower, BasisStatus::upper}) {
    const std::vector<BasisStatus> status{at};
    const Violation found = measure_violation(lp, Point{x, activity, dual, dual, status, status});
    EXPECT_EQ(found.dual, 0);
    EXPECT_NEAR(found.primal(), 1e-7, 1e-15);
  }
}

TEST(Verify, WhatIsNoNumberViolatesEverything) {
  support::DenseLp dense(1, 2);
  dense.a[0] = {1, 1};
  dense.lower = {-kInf, -kInf};
  dense.row_lower[0] = -kInf, dense.row_upper[0] = kInf;
  const LpData lp = dense.data();
  const std::vector<double> x{0, kNaN};
  const std::vector<double> activity = activities(1, entries_of(lp.matrix), x);
  const Violation found = measure_violation(lp, Point{x, activity, {}, {}, {}, {}});
  EXPECT_EQ(found.column, kInf);
  EXPECT_EQ(found.worst_column, 1);
  EXPECT_EQ(found.row, kInf);
}

bool proves(const support::DenseLp& dense, const std::vector<double>& y, FarkasProof& proof) {
  const LpData lp = dense.data();
  return check_farkas(lp, entries_of(lp.matrix), y, proof);
}

/* 2 <= x0 + x1 and x0 - x1 <= 5, both columns in [0, 1/2]: the first row times 1 proves it. */
support::DenseLp infeasible_lp() {
  support::DenseLp lp(2, 2);
  lp.a = {{1, 1}, {1, -1}};
  lp.upper = {0.5, 0.5};
  lp.row_lower = {2, -kInf};
  lp.row_upper = {kInf, 5};
  return lp;
}

TEST(Verify, FarkasProofsOfEitherSignAndSize) {
  FarkasProof proof;
  for (const double size : {1.0, -1.0, 1e-12, -1e12}) {
    ASSERT_TRUE(proves(infeasible_lp(), {size, 0}, proof)) << size;
    EXPECT_EQ(proof.multipliers, (std::vector<double>{1, 0}));
    EXPECT_EQ(proof.gap, 1);
  }
  // A row beside that adds to what the box allows, up to where nothing is left.
  EXPECT_TRUE(proves(infeasible_lp(), {1, -0.1}, proof));
  EXPECT_FALSE(proves(infeasible_lp(), {1, -0.25}, proof));
}

TEST(Verify, MultipliersOfRoundingSizeNeedNoBound) {
  FarkasProof proof;
  EXPECT_FALSE(proves(infeasible_lp(), {1, 1e-3}, proof));  // the second row has no lower side
  EXPECT_FALSE(proves(infeasible_lp(), {1, 2e-9}, proof));
  ASSERT_TRUE(proves(infeasible_lp(), {1, 5e-10}, proof));
  EXPECT_EQ(proof.multipliers[1], 0);
  // A combination that cancels but for rounding asks nothing of a free column.
  support::DenseLp lp = infeasible_lp();
  lp.a = {{1, 0.1 * 3}, {0, -0.3}};
  lp.lower[1] = -kInf, lp.upper[1] = kInf;
  lp.row_upper[1] = 1;
  ASSERT_NE(0.1 * 3, 0.3);
  EXPECT_FALSE(proves(lp, {1, 0}, proof));
  lp.row_lower[1] = 1;
  EXPECT_TRUE(proves(lp, {1, 1}, proof));
}

TEST(Verify, GapsAreJudgedByTheirOwnRounding) {
  FarkasProof proof;
  support::DenseLp lp(1, 1);
  lp.a = {{1}};
  lp.upper[0] = 1e10;
  lp.row_upper[0] = kInf;
  lp.row_lower[0] = 1e10 + 1;
  EXPECT_TRUE(proves(lp, {1}, proof));
  EXPECT_EQ(proof.gap, 1);
  EXPECT_EQ(proof.margin, 0.5);  // side and bound may give way by that much each
  lp.row_lower[0] = 1e10;
  EXPECT_FALSE(proves(lp, {1}, proof));
}

/* A column without bounds whose entry of the combination is rounding noise may yet close a small gap. */
TEST(Verify, NoiseAtValuesOfTheModelsSizeClosesSmallGaps) {
  FarkasProof proof;
  support::DenseLp lp(2, 2);
  lp.a = {{1, 1}, {0, -1 + 1e-10}};
  lp.lower = {0, -kInf};
  lp.upper = {1e10, kInf};
  lp.row_lower = {1e10 + 1, 0};
  lp.row_upper = {kInf, 0};
  EXPECT_FALSE(proves(lp, {1, 1}, proof));
  lp.row_lower[0] = 1e10 + 100;
  EXPECT_TRUE(proves(lp, {1, 1}, proof));
}

/* Small multipliers that should cancel, and leave more than the rounding of their own terms. */
TEST(Verify, NoiseOfSmallMultipliersIsTold) {
  FarkasProof proof;
  support::DenseLp lp(3, 2);
  lp.a = {{1, 0}, {0, 1}, {0, -1}};
  lp.upper[0] = 0.5;
  lp.lower[1] = -kInf;
  lp.row_lower[0] = 2, lp.row_upper[0] = kInf;
  ASSERT_TRUE(proves(lp, {1, 1e-12, 1e-12}, proof));
  EXPECT_TRUE(proof.clean);
  ASSERT_TRUE(proves(lp, {1, 1e-12, 0.95e-12}, proof));
  EXPECT_FALSE(proof.clean);
  EXPECT_FALSE(proves(lp, {1, 1e-12, 0.5e-12}, proof));
}

/* A direction whose slope, or whose one entry, is within the error of its digits is none. */
TEST(Verify, RaysMustStandOutOfTheirError) {
  support::DenseLp lp(1, 2);
  lp.a = {{1, -1}};
  lp.cost = {-1, 1 - 1e-12};
  lp.lower = {0, 0};
  lp.upper = {kInf, kInf};
  lp.row_lower = {-kInf};
  lp.row_upper = {0};
  const LpData data = lp.data();
  const auto is_ray = [&](Multipliers ray) { return check_ray(data, entries_of(data.matrix), ray); };
  EXPECT_FALSE(is_ray({{1, 1}, {}, 0}));
  EXPECT_TRUE(is_ray({{1, 1}, {0, 0}, 0}));
  EXPECT_TRUE(is_ray({{1, 1}, {0, 0}, 1e-15}));
  EXPECT_FALSE(is_ray({{1, 1}, {0, 0}, 1e-11}));
  EXPECT_FALSE(is_ray({{1e-20, 1e-20}, {0, 0}, 1e-15}));
}

TEST(Verify, NoProofFromNothing) {
  FarkasProof proof;
  for (const auto& y : {std::vector<double>{0, 0}, {kNaN, 0}, {1, kNaN}, {kInf, 0}, {kInf, -kInf}})
    EXPECT_FALSE(proves(infeasible_lp(), y, proof)) << y[0] << ' ' << y[1];
}

std::vector<double> random_multipliers(Random& random, int size) {
  std::vector<double> y(static_cast<size_t>(size));
  for (double& v : y) {
    v = random.pick(0, 2) == 0 ? 0 : random.pick(-8, 8) / 4.0;
    if (random.pick(0, 5) == 0) v = std::ldexp(v, -random.pick(20, 50));
  }
  return y;
}

/* Rows and bounds that a planted point meets: nothing proves them infeasible. */
TEST(Verify, FeasibleModelsAreNeverProvenInfeasible) {
  Random random(104);
  for (int round = 0; round < 2000; ++round) {
    support::DenseLp dense = random_lp(random);
    std::vector<double> x;
    for (int j = 0; j < dense.columns(); ++j) {
      const double low = std::isinf(dense.lower[j]) ? std::min(dense.upper[j], 0.0) : dense.lower[j];
      x.push_back(random.pick(0, 1) || std::isinf(dense.upper[j]) ? low : dense.upper[j]);
    }
    const LpData lp = dense.data();
    const std::vector<double> activity = activities(dense.rows(), entries_of(lp.matrix), x);
    for (int i = 0; i < dense.rows(); ++i) {
      dense.row_lower[i] = std::min(dense.row_lower[i], activity[i]);
      dense.row_upper[i] = std::max(dense.row_upper[i], activity[i]);
    }
    FarkasProof proof;
    const std::vector<double> y = random_multipliers(random, dense.rows());
    ASSERT_FALSE(proves(dense, y, proof)) << "round " << round << '\n' << support::describe(dense.data());
  }
}

/* The row sides are moved beyond what the box allows for planted multipliers: these prove it, by the gap. */
TEST(Verify, PlantedProofsHoldByTheirGap) {
  Random random(105);
  for (int round = 0; round < 1000; ++round) {
    TRACE_RANDOM(random, round);
    support::DenseLp dense = random_lp(random);
    for (int j = 0; j < dense.columns(); ++j) {
      dense.lower[j] = std::max(dense.lower[j], -9.0);
      dense.upper[j] = std::min(dense.upper[j], 9.0);
    }
    std::vector<double> y(static_cast<size_t>(dense.rows()), 0.0);
    for (double& v : y) v = random.pick(0, 3) == 0 ? 0 : random.pick(-4, 4) / 4.0;
    y[0] = 1;
    double reach = 0;  // the most that y'Ax can be within the box
    for (int j = 0; j < dense.columns(); ++j) {
      double z = 0;
      for (int i = 0; i < dense.rows(); ++i) z += y[i] * dense.a[i][j];
      reach += z > 0 ? z * dense.upper[j] : z * dense.lower[j];
    }
    double demand = 0;  // the least that the rows ask of it, but for the first
    for (int i = 1; i < dense.rows(); ++i) {
      double& side = y[i] > 0 ? dense.row_lower[i] : dense.row_upper[i];
      side = random.pick(-6, 6);
      demand += y[i] * side;
    }
    const double gap = random.pick(1, 8) / 4.0;
    dense.row_lower[0] = reach - demand + gap;
    dense.row_upper[0] = kInf;
    FarkasProof proof;
    const double size = std::ldexp(random.pick(0, 1) ? 1.0 : -1.0, random.pick(-30, 30));
    std::vector<double> scaled = y;
    for (double& v : scaled) v *= size;
    ASSERT_TRUE(proves(dense, scaled, proof)) << support::describe(dense.data());
    EXPECT_EQ(proof.multipliers, y);
    EXPECT_EQ(proof.gap, gap);
  }
}

bool is_ray(const support::DenseLp& dense, std::vector<double>& ray) {
  const LpData lp = dense.data();
  return check_ray(lp, entries_of(lp.matrix), ray);
}

TEST(Verify, RaysOfSingleColumns) {
  struct Case {
    const char* what;
    double cost, lower, upper, row_lower, row_upper, entry;
    bool holds;
  };
  for (const Case& c :
       {Case{"improves", -1, 0, kInf, 0, kInf, 4, true}, Case{"downward", 1, -kInf, 0, -kInf, 0, -4, true},
        Case{"upper bound", -1, 0, 9, 0, kInf, 4, false}, Case{"lower bound", 1, -9, 0, -kInf, 0, -4, false},
        Case{"row above", -1, 0, kInf, -kInf, 7, 4, false},
        Case{"row below", 1, -kInf, 0, 7, kInf, -4, false}, Case{"costs", 1, 0, kInf, 0, kInf, 4, false},
        Case{"costs nothing", 0, 0, kInf, 0, kInf, 4, false}, Case{"zero", -1, 0, kInf, 0, kInf, 0, false},
        Case{"no number", -1, 0, kInf, 0, kInf, kNaN, false},
        Case{"infinite", -1, 0, kInf, 0, kInf, kInf, false}}) {
    support::DenseLp lp(1, 1);
    lp.a = {{2}};
    lp.cost = {c.cost}, lp.lower = {c.lower}, lp.upper = {c.upper};
    lp.row_lower = {c.row_lower}, lp.row_upper = {c.row_upper};
    std::vector<double> ray{c.entry};
    EXPECT_EQ(is_ray(lp, ray), c.holds) << c.what;
    EXPECT_TRUE(!c.holds || std::fabs(ray[0]) == 1) << c.what;
  }
}

TEST(Verify, EntriesOfRoundingSizeMayNotLeaveABound) {
  support::DenseLp lp(1, 2);
  lp.a = {{1, 1}};
  lp.cost = {-1, 0};
  lp.upper = {kInf, 3};
  lp.row_upper = {kInf};
  std::vector<double> ray{2, 1e-9};
  ASSERT_TRUE(is_ray(lp, ray));
  EXPECT_EQ(ray, (std::vector<double>{1, 0}));
  ray = {2, 1e-8};
  EXPECT_FALSE(is_ray(lp, ray));
  // An equation is kept but for rounding of its terms.
  lp.upper = {kInf, kInf};
  lp.row_upper = {0};
  lp.a = {{0.3, -0.1 * 3}};
  ray = {1, 1};
  EXPECT_TRUE(is_ray(lp, ray));
  lp.a = {{0.3, -0.300001}};
  EXPECT_FALSE(is_ray(lp, ray));
}

/* Bounds and sides are opened where a planted direction goes: it is a ray, at any length. With one of them
 * closed, or the costs turned round, it is none. */
TEST(Verify, PlantedRaysHoldUntilSomethingStopsThem) {
  Random random(106);
  for (int round = 0; round < 1000; ++round) {
    TRACE_RANDOM(random, round);
    support::DenseLp dense = random_lp(random);
    std::vector<double> ray;
    double slope = 0;
    for (int j = 0; j < dense.columns(); ++j) {
      ray.push_back(random.pick(-2, 2));
      if (ray[j] > 0) dense.upper[j] = kInf;
      if (ray[j] < 0) dense.lower[j] = -kInf;
      slope += dense.cost[j] * ray[j];
    }
    if (slope == 0) continue;
    if (slope > 0) {
      for (double& c : dense.cost) c = -c;
    }
    const LpData lp = dense.data();
    const std::vector<double> move = activities(dense.rows(), entries_of(lp.matrix), ray);
    for (int i = 0; i < dense.rows(); ++i) {
      if (move[i] > 0) dense.row_upper[i] = kInf;
      if (move[i] < 0) dense.row_lower[i] = -kInf;
    }
    const double length = std::ldexp(1.0, random.pick(-30, 30));
    for (double& v : ray) v *= length;
    const std::vector<double> planted = ray;
    ASSERT_TRUE(is_ray(dense, ray)) << support::describe(dense.data());
    std::vector<double> again = ray;
    EXPECT_TRUE(is_ray(dense, again));
    EXPECT_EQ(again, ray);

    support::DenseLp stopped = dense;
    const int i = random.pick(0, dense.rows() - 1);
    const int j = random.pick(0, dense.columns() - 1);
    if (move[i] != 0) {
      (move[i] > 0 ? stopped.row_upper : stopped.row_lower)[i] = 1e6;
    } else if (ray[j] != 0) {
      (ray[j] > 0 ? stopped.upper : stopped.lower)[j] = 1e6;
    } else {
      for (double& c : stopped.cost) c = -c;
    }
    std::vector<double> tried = planted;
    EXPECT_FALSE(is_ray(stopped, tried));
  }
}

}  // namespace
}  // namespace tovik::lp::verify
