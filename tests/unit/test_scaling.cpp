/* Scaling loses nothing: factors are powers of two, the engine's matrix is R A C to the last bit and the
 * user's comes back from it. */
#include "lp/simplex/scaling.h"

#include <gtest/gtest.h>

#include <cmath>

#include "lp/simplex/solver.h"
#include "support/dense_lp.h"
#include "support/quiet_control.h"
#include "support/random.h"

namespace tovik::lp::simplex {
namespace {

using support::DenseLp;
using support::Random;

bool power_of_two(double v) {
  int exponent = 0;
  return v > 0 && std::frexp(v, &exponent) == 0.5;
}

/* Entries from 2^-30 to 2^30 in no pattern, some rows and columns empty. */
DenseLp wild_lp(Random& random) {
  DenseLp lp(random.pick(1, 12), random.pick(1, 15));
  for (auto& row : lp.a) {
    const bool empty = random.chance(0.1);
    for (double& a : row) {
      if (!empty && random.chance(0.4)) a = std::ldexp(random.uniform(-1, 1), random.pick(-30, 30));
    }
  }
  for (int j = 0; j < lp.columns(); ++j) {
    lp.cost[j] = random.uniform(-5, 5);
    lp.lower[j] = random.chance(0.3) ? -kInf : random.uniform(-3, 0);
    lp.upper[j] = random.chance(0.3) ? kInf : random.uniform(0, 3);
  }
  for (int i = 0; i < lp.rows(); ++i) {
    lp.row_lower[i] = random.chance(0.3) ? -kInf : random.uniform(-3, 0);
    lp.row_upper[i] = random.chance(0.3) ? kInf : random.uniform(0, 3);
  }
  return lp;
}

TEST(Scaling, FactorsArePowersOfTwoAndEvenOutTheColumns) {
  Random random(311);
  for (int round = 0; round < 500; ++round) {
    TRACE_RANDOM(random, round);
    const DenseLp lp = wild_lp(random);
    const Scaling scaling = compute_scaling(lp.data().matrix, random.pick(0, 1));
    if (!scaling.active()) continue;
    ASSERT_EQ(scaling.row.size(), lp.row_lower.size());
    ASSERT_EQ(scaling.column.size(), lp.cost.size());
    for (const double r : scaling.row) EXPECT_TRUE(power_of_two(r)) << r;
    for (int j = 0; j < lp.columns(); ++j) {
      EXPECT_TRUE(power_of_two(scaling.column[j])) << scaling.column[j];
      double largest = 0;
      for (int i = 0; i < lp.rows(); ++i)
        largest = std::max(largest, std::fabs(lp.a[i][j]) * scaling.row[i] * scaling.column[j]);
      const bool at_limit = scaling.column[j] == 0x1p20 || scaling.column[j] == 0x1p-20;
      EXPECT_TRUE(largest == 0 || at_limit || (largest > 0.7 && largest < 1.42)) << j << ": " << largest;
    }
  }
}

TEST(Scaling, WellScaledModelsStayAsTheyAre) {
  Random random(312);
  for (int round = 0; round < 50; ++round) {
    DenseLp lp(6, 8);
    for (auto& row : lp.a) {
      for (double& a : row)
        a = random.chance(0.5) ? 0 : (random.chance(0.5) ? 1 : -1) * random.uniform(0.2, 5);
    }
    EXPECT_FALSE(compute_scaling(lp.data().matrix, 0).active());
  }
  EXPECT_FALSE(compute_scaling(wild_lp(random).data().matrix, -1).active());
  EXPECT_FALSE(compute_scaling(DenseLp(3, 3).data().matrix, 0).active());
}

/* A table of ones whose rows and columns were stretched is found again but for the rounding to powers of two,
 * and is then found well scaled. */
TEST(Scaling, UndoesAnyStretchingOfAFullTable) {
  Random random(313);
  for (int round = 0; round < 200; ++round) {
    TRACE_RANDOM(random, round);
    DenseLp lp(random.pick(1, 9), random.pick(1, 9));
    std::vector<double> stretch;
    for (int j = 0; j < lp.columns(); ++j) stretch.push_back(std::ldexp(1, random.pick(-8, 8)));
    for (auto& row : lp.a) {
      const double of_row = std::ldexp(1, random.pick(-8, 8));
      for (int j = 0; j < lp.columns(); ++j) row[j] = (random.chance(0.5) ? 1 : -1) * of_row * stretch[j];
    }
    const Scaling scaling = compute_scaling(lp.data().matrix, 0);
    if (!scaling.active()) continue;
    for (int i = 0; i < lp.rows(); ++i) {
      for (int j = 0; j < lp.columns(); ++j) {
        lp.a[i][j] *= scaling.row[i] * scaling.column[j];
        const double size = std::fabs(lp.a[i][j]);
        EXPECT_TRUE(size == 0.5 || size == 1) << i << ", " << j << ": " << size;
      }
    }
    EXPECT_FALSE(compute_scaling(lp.data().matrix, 0).active());
  }
}

TEST(Scaling, AddedLinesAreBroughtNearOne) {
  Random random(314);
  for (int round = 0; round < 500; ++round) {
    const double smallest = std::ldexp(random.uniform(0.5, 1), random.pick(-15, 15));
    const double largest = smallest * std::ldexp(1, random.pick(0, 5));
    const double factor = scale_factor(smallest, largest);
    EXPECT_TRUE(power_of_two(factor));
    const double mean = factor * std::sqrt(smallest * largest);
    EXPECT_TRUE(mean > 0.7 && mean < 1.42) << smallest << ", " << largest;
  }
  EXPECT_EQ(scale_factor(kInf, 0), 1);
}

/* The engine holds R A C, bounds and costs that belong to it, and tells the user's model without a lost bit.
 */
TEST(Scaling, EngineAndUserSeeTheSameModel) {
  Random random(315);
  for (int round = 0; round < 200; ++round) {
    TRACE_RANDOM(random, round);
    const DenseLp lp = wild_lp(random);
    support::QuietControl control;
    Options options;
    options.scaling = random.pick(-1, 1);
    const Solver solver(lp.data(), options, control, nullptr);
    const Core& core = solver.core();
    std::vector<double> unit(static_cast<size_t>(core.m()), 0.0);
    for (int j = 0; j < core.n(); ++j) {
      std::vector<double> column(unit.size(), 0.0);
      solver.each_entry(j, [&](int i, double a) { column[i] = a; });
      for (int i = 0; i < core.m(); ++i) {
        EXPECT_EQ(column[i], lp.a[i][j]);
        unit[i] = 1;
        EXPECT_EQ(core.model.column_dot(j, unit), lp.a[i][j] * solver.row_scale(i) * solver.column_scale(j));
        unit[i] = 0;
      }
      EXPECT_EQ(core.model.lower(j) * solver.column_scale(j), lp.lower[j]);
      EXPECT_EQ(core.model.upper(j) * solver.column_scale(j), lp.upper[j]);
      EXPECT_EQ(core.model.cost(j) / solver.column_scale(j), lp.cost[j]);
    }
    for (int i = 0; i < core.m(); ++i) {
      EXPECT_EQ(-core.model.upper(core.n() + i) / solver.row_scale(i), lp.row_lower[i]);
      EXPECT_EQ(-core.model.lower(core.n() + i) / solver.row_scale(i), lp.row_upper[i]);
    }
  }
}

}  // namespace
}  // namespace tovik::lp::simplex
