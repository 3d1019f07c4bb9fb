// Solutions of mixed-integer problems that hold within the tolerance and no better.
#include <gtest/gtest.h>

#include "support/mip_fixture.h"

namespace {

constexpr int kRandomSeed = 1124;

using MipAtTheTolerance = support::MipModels;

/* The set's column has its bound from the row, moved by the tolerance: a relaxation that ends there leaves nothing to the other
 * columns, and the point was refused once z was put back to 0. What nobody could decide was called infeasible then, for a
 * node that is unbounded has no bound of its own. */
TEST_F(MipAtTheTolerance, AnUnboundedProblemIsNotCalledInfeasible) {
  ProbHandle lp = read(
      "min\n 5 x + 0.65023568463672365 y + 4 z\nst\n a: 2.5 y - 3.9847534372317952 z <= 0.9847534372317952\n"
      " b: -12.877920028262899 x + 20 z >= -20\nbounds\n x <= 4\n -inf <= y <= 4\n -inf <= z <= 0\nsos\n"
      " s: S2:: x:1\nend");
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, 0), 0);
  for (int seed = 0; seed < 12; ++seed) {
    ASSERT_EQ(TVKsetintparam(env_, kRandomSeed, seed), 0);
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ADVIND, 0), 0);
    EXPECT_EQ(solve(lp), TVK_STATUS_MIP_UNBOUNDED) << seed;
  }
}

/* Without gaps: the last relaxation is better than its solution by the tolerance, and nothing is left to branch on. */
TEST_F(MipAtTheTolerance, ANodeThatToleranceMakesBetterIsDecided) {
  ProbHandle lp = read(
      "min\n 4 x + 20 y + 0 z\nst\n a: 18 x >= -1\n a2: 18 x <= 0\n b: 6 x >= 0\n b2: 6 x <= 0\n"
      " c: 7.7349501588135254 x + 12 z + 20 y = 0\nbounds\n 1 <= x <= 2\n -inf <= y <= 0\n -0.25 <= z <= "
      "0.25\n"
      "semi\n x\nsos\n s: S1:: x:1 y:2 z:3\nend");
  for (const int parameter : {TVK_PARAM_EPGAP, TVK_PARAM_EPAGAP})
    ASSERT_EQ(TVKsetdblparam(env_, parameter, 0), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, 0), 0);
  for (int seed = 0; seed < 12; ++seed) {
    ASSERT_EQ(TVKsetintparam(env_, kRandomSeed, seed), 0);
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ADVIND, 0), 0);
    EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL) << seed;
    EXPECT_NEAR(objective(lp), 0, 1e-5);
  }
}

}  // namespace
