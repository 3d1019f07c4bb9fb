/* Tiny degenerate LPs: the interior point method and the simplex tell the same. */
#include "lp/barrier/barrier.h"

#include <gtest/gtest.h>

#include <cmath>

#include "lp/simplex/solver.h"
#include "support/planted_lps.h"
#include "support/quiet_control.h"

namespace {

using namespace tovik::lp;
using barrier::Ending;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kModels = 500;
#else
constexpr int kModels = 8000;
#endif

TEST(BarrierAgainstSimplex, EveryStartAlgorithmAndOrderingAgrees) {
  support::PlantedLps random(support::fresh_seed());
  support::QuietControl control;
  int of_ending[3] = {0, 0, 0}, undecided = 0;
  for (int round = 0; round < kModels && !HasFailure(); ++round) {
    TRACE_RANDOM(random, round);
    const int rows = random.pick(1, 6);
    const LpData lp =
        random
            .make(rows, random.pick(1, 9), {static_cast<support::Rule>(round % tovik::lp::presolve::kRules)})
            .data();
    bool crossed = false;
    for (int j = 0; j < lp.num_columns(); ++j) crossed = crossed || lp.lower[j] > lp.upper[j];
    for (int i = 0; i < lp.num_rows(); ++i) crossed = crossed || lp.row_lower[i] > lp.row_upper[i];
    if (crossed) continue;  // not for this door
    simplex::Solver solver(lp, {}, control, nullptr);
    const Outcome expected = solver.solve(Method::dual);
    barrier::Options options;
    options.start = static_cast<barrier::Start>(random.pick(1, 4));
    options.algorithm = static_cast<barrier::Algorithm>(random.pick(0, 3));
    options.system = static_cast<barrier::System>(random.pick(0, 2));
    options.correctors = random.pick(-1, 4);
    options.factorization.ordering = static_cast<cholesky::Ordering>(random.pick(0, 3));
    const barrier::Result result = barrier::solve(lp, options, control, nullptr);
    SCOPED_TRACE(support::describe(lp));
    switch (result.ending) {
      case Ending::optimal: {
        ASSERT_EQ(expected, Outcome::optimal);
        ++of_ending[0];
        double value = lp.offset;
        for (int j = 0; j < lp.num_columns(); ++j) value += lp.cost[j] * result.x[j];
        const double right = solver.answer().objective;
        ASSERT_NEAR(value, right, 1e-5 * (1 + std::fabs(right)));
        break;
      }
      case Ending::infeasible:
        ASSERT_TRUE(expected == Outcome::infeasible || expected == Outcome::infeasible_or_unbounded);
        ++of_ending[1];
        break;
      case Ending::unbounded:
        ASSERT_TRUE(expected == Outcome::unbounded || expected == Outcome::infeasible_or_unbounded);
        ++of_ending[2];
        break;
      default:
        ++undecided;
    }
  }
  for (const int count : of_ending) EXPECT_GT(count, 0);
  EXPECT_LE(undecided, 3 + kModels / 200) << "it is allowed to say nothing, but not as a habit";
}

}  // namespace
