// What the cutoff says of bounds: every better point stays, and no bound is looser than its column alone allows.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "mip/propagate/objective.h"
#include "tests/support/random.h"

namespace {

using namespace tovik::mip;

TEST(ObjectiveCutoff, KeepsBetterPointsAndNothingThatOneColumnRulesOut) {
  for (unsigned seed = 0; seed < 2000; ++seed) {
    support::Random random(support::fresh_seed() + seed);
    TRACE_RANDOM(random, static_cast<int>(seed));
    Problem problem;
    const int columns = random.pick(1, 4);
    for (int j = 0; j < columns; ++j) {
      const double lower = random.pick(-3, 1);
      problem.lp.lower.push_back(lower);
      problem.lp.upper.push_back(lower + random.pick(0, 4));
      problem.lp.cost.push_back(random.chance(0.8) ? random.pick(-9, 9) : random.uniform(-9, 9));
      problem.is_integer.push_back(random.chance(0.8) ? 1 : 0);
      problem.lp.matrix.start.push_back(0);
    }
    problem.lp.matrix.columns = columns;
    problem.lp.matrix.start.assign(static_cast<std::size_t>(columns) + 1, 0);
    problem.lp.offset = random.pick(-5, 5);
    const double cutoff = random.pick(-30, 20);
    double least = problem.lp.offset;
    for (int j = 0; j < columns; ++j)
      least += std::min(problem.lp.cost[j] * problem.lp.lower[j], problem.lp.cost[j] * problem.lp.upper[j]);
    const Tolerances tolerances;
    Domain domain(problem, tolerances);
    ObjectivePropagator(problem).run(domain, cutoff);
    EXPECT_EQ(domain.is_infeasible(), least > cutoff + 1e-8);
    if (domain.is_infeasible()) continue;
    for (int j = 0; j < columns; ++j) {
      const double c = problem.lp.cost[j];
      if (problem.is_integer[j] == 0) continue;
      for (double v = problem.lp.lower[j]; v <= problem.lp.upper[j]; ++v) {
        const double best =
            least + std::fabs(c) * std::fabs(v - (c > 0 ? problem.lp.lower[j] : problem.lp.upper[j]));
        const bool is_left = v >= domain.lower(j) && v <= domain.upper(j);
        if (best < cutoff - 1e-6) {
          EXPECT_TRUE(is_left) << j << " " << v;
        }
        if (best > cutoff + 1e-6 && c != 0) {
          EXPECT_FALSE(is_left) << j << " " << v;
        }
      }
    }
  }
}

}  // namespace
