/* Strong branching once kept a state of the engine that had not followed the changes since: its bounds belonged to
 * the problem before. They lie between the optimum of the problem as it is and that of the branch. */
#include <cmath>
#include <vector>

#include "support/file_fixture.h"

namespace {

class StrongBranchAfterChanges : public support::WithFiles {
 protected:
  double optimum(ProbHandle lp) {
    EXPECT_EQ(TVKlpopt(env_, lp), 0);
    double value = 0;
    return TVKgetstat(env_, lp) == TVK_STATUS_OPTIMAL && TVKgetobjval(env_, lp, &value) == 0 ? value : 1e75;
  }
  double branch_optimum(int j, char side, double bound) {
    int code = 0;
    ProbHandle branch = TVKcloneprob(env_, lp_, &code);
    EXPECT_EQ(TVKchgbds(env_, branch, 1, &j, &side, &bound), 0);
    const double value = optimum(branch);
    TVKfreeprob(env_, &branch);
    return value;
  }
  void check_branches(double value) {
    const double tolerance = 1e-6 * (1 + std::fabs(value));
    for (int j = 0; j < TVKgetnumcols(env_, lp_); ++j) {
      double x = 0, down = 0, up = 0;
      ASSERT_EQ(TVKgetx(env_, lp_, &x, j, j), 0);
      ASSERT_EQ(TVKstrongbranch(env_, lp_, &j, 1, &down, &up, 1000), 0);
      EXPECT_GE(down, value - tolerance) << j;
      EXPECT_GE(up, value - tolerance) << j;
      EXPECT_LE(down, branch_optimum(j, 'U', std::floor(x)) + tolerance) << j;
      EXPECT_LE(up, branch_optimum(j, 'L', std::ceil(x)) + tolerance) << j;
    }
  }
};

TEST_F(StrongBranchAfterChanges, BoundsAreThoseOfTheProblemAsItIs) {
  ASSERT_EQ(TVKreadcopyprob(env_, lp_, TOVIK_SOURCE_DIR "/examples/blending.lp", nullptr), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ADVIND, 2), 0);  // presolve for every optimization
  check_branches(optimum(lp_));
  for (int round = 0; round < 3; ++round) {
    for (int j = 0; j < TVKgetnumcols(env_, lp_); ++j) {
      double cost = 0;
      ASSERT_EQ(TVKgetobj(env_, lp_, &cost, j, j), 0);
      cost = 3 * cost + (j + round) % 4;
      ASSERT_EQ(TVKchgobj(env_, lp_, 1, &j, &cost), 0);
    }
    check_branches(optimum(lp_));
  }
}

}  // namespace
