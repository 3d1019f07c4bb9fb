// Polishing of the incumbent, during the search and after a limit, and local branching.
#include <gtest/gtest.h>

#include <string>

#include "support/market_split.h"
#include "support/mip_fixture.h"

namespace {

class MipPolishing : public support::MipModels {
 protected:
  void SetUp() override {
    support::MipModels::SetUp();
    set(TVK_PARAM_HEURFREQ, -1);
    set(TVK_PARAM_RINSHEUR, -1);
    set(TVK_PARAM_NODELIM, 40);
    set(TVK_PARAM_THREADS, 1);
  }
  void set(int which, int value) { ASSERT_EQ(TVKsetintparam(env_, which, value), 0); }
  void set(int which, double value) { ASSERT_EQ(TVKsetdblparam(env_, which, value), 0); }
  /* Each binary point is a solution of the model, few are good. */
  double value_within_limit() {
    ProbHandle lp = read(support::market_split({.equations = 4, .columns = 35, .seed = 99}));
    EXPECT_EQ(solve(lp), TVK_STATUS_MIP_NODE_LIMIT);
    const double value = objective(lp);
    EXPECT_LE(TVKgetnodecnt(env_, lp), 40);
    EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
    return value;
  }
};

TEST_F(MipPolishing, EveryConditionLeadsToBetterSolutions) {
  const double plain = value_within_limit();
  struct Case {
    int parameter;
    double value;
  };
  for (const Case& c : {Case{TVK_PARAM_POLISHAFTERNODE, 20}, Case{TVK_PARAM_POLISHAFTERINTSOL, 1},
                        Case{TVK_PARAM_POLISHAFTEREPAGAP, 1e6}, Case{TVK_PARAM_POLISHAFTEREPGAP, 1},
                        Case{TVK_PARAM_POLISHAFTERTIME, 0}}) {
    SCOPED_TRACE(c.parameter);
    int type = 0;
    ASSERT_EQ(TVKgetparamtype(env_, c.parameter, &type), 0);
    if (type == TVK_PARAMTYPE_INT) {
      int standard = 0;
      ASSERT_EQ(TVKinfointparam(env_, c.parameter, &standard, nullptr, nullptr), 0);
      set(c.parameter, static_cast<int>(c.value));
      EXPECT_LT(value_within_limit(), plain);
      set(c.parameter, standard);
    } else {
      double standard = 0;
      ASSERT_EQ(TVKinfodblparam(env_, c.parameter, &standard, nullptr, nullptr), 0);
      set(c.parameter, c.value);
      EXPECT_LT(value_within_limit(), plain);
      set(c.parameter, standard);
    }
  }
}

TEST_F(MipPolishing, ComesAfterALimitForItsTime) {
  const double plain = value_within_limit();
  set(TVK_PARAM_POLISHTIME, 0.3);
  EXPECT_LT(value_within_limit(), plain);
  // The time limit has passed already.
  set(TVK_PARAM_NODELIM, 2100000000);
  set(TVK_PARAM_TILIM, 0.2);
  ProbHandle lp = read(support::market_split({.equations = 4, .columns = 35, .seed = 99}));
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_TIME_LIMIT);
  EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
}

/* Where there is nothing to improve the search ends as without it. */
TEST_F(MipPolishing, LeadsToTheSameOptimum) {
  set(TVK_PARAM_NODELIM, 2100000000);
  set(TVK_PARAM_EPGAP, 0.0);
  const std::string model = support::market_split({.equations = 3, .columns = 16, .seed = 7});
  ProbHandle lp = read(model);
  ASSERT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  const double best = objective(lp);
  EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
  for (const int threads : {1, 2}) {
    set(TVK_PARAM_THREADS, threads);
    set(TVK_PARAM_POLISHAFTERINTSOL, 1);
    set(TVK_PARAM_LBHEUR, 1);
    lp = read(model);
    EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
    EXPECT_NEAR(objective(lp), best, 1e-6);
    EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
  }
}

}  // namespace
