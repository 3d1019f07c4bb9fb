/* Values so large that the rounding of a row exceeds the feasibility tolerance: no basis may keep it, and
 * rounds with tightened tolerances once pivoted without end. The solve must end, with the optimum and an
 * honest status. */
#include "support/file_fixture.h"

namespace {

class RoundingNoise : public support::WithFiles, public testing::WithParamInterface<int> {};

TEST_P(RoundingNoise, EndsWithTheOptimum) {
  ASSERT_EQ(TVKreadcopyprob(env_, lp_, TOVIK_SOURCE_DIR "/tests/regress/models/rounding_noise.mps", nullptr),
            0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, 0), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_LPMETHOD, GetParam()), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ITLIM, 100000), 0);
  for (const char* start : {"no basis", "the last basis"}) {
    ASSERT_EQ(TVKlpopt(env_, lp_), 0) << start;
    const int status = TVKgetstat(env_, lp_);
    EXPECT_TRUE(status == 1 || status == 5) << status << " from " << start;
    double objective = 0;
    ASSERT_EQ(TVKgetobjval(env_, lp_, &objective), 0);
    EXPECT_NEAR(objective, -80571429.25, 0.1) << start;
    EXPECT_LT(TVKgetitcnt(env_, lp_), 5000) << start;
  }
}

INSTANTIATE_TEST_SUITE_P(Simplex, RoundingNoise, testing::Values(1, 2));

}  // namespace
