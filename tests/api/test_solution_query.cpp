/* Solution query: order of checks, what exists when, signs, violations of a given point. */
#include <cmath>
#include <limits>
#include <vector>

#include "support/environment_fixture.h"

namespace {

/* maximize 3x + 2y,  c1: x + y <= 4,  c2: x + 3y >= 2,  c3: 1 <= x - y <= 3,  0 <= x <= 5, y >= 0.
 * Optimal at x = 3.5, y = 0.5, value 11.5, where c1 and the upper limit of c3 hold with equality. */
class SolutionQuery : public support::WithEnvironment {
 protected:
  void SetUp() override {
    WithEnvironment::SetUp();
    int status = -1;
    lp_ = TVKcreateprob(env_, &status, "query");
    const double obj[] = {3, 2}, rhs[] = {4, 2, 1}, lb[] = {0, 0}, ub[] = {5, 1e20}, rng[] = {0, 0, 2};
    const int beg[] = {0, 3}, cnt[] = {3, 3}, ind[] = {0, 1, 2, 0, 1, 2};
    const double val[] = {1, 1, 1, 1, 3, -1};
    ASSERT_EQ(TVKcopylp(env_, lp_, 2, 3, TVK_MAX, obj, rhs, "LGR", beg, cnt, ind, val, lb, ub, rng), 0);
  }
  void solve() { ASSERT_EQ(TVKlpopt(env_, lp_), 0); }

  ProbHandle lp_ = nullptr;
  double x_[2] = {-7, -7}, rows_[3] = {-7, -7, -7};
};

TEST_F(SolutionQuery, WithoutSolutionNullArrayThenRangeThenSolution) {
  EXPECT_EQ(TVKgetx(env_, lp_, nullptr, -1, 9), 1004);
  errors();
  EXPECT_EQ(TVKgetx(env_, lp_, x_, 0, 2), 1200);
  EXPECT_EQ(errors(),
            "TOVIK Error  1206: TVKgetx: 'end' value 2 is greater than 1.\n"
            "TOVIK Error  1200: Index is outside range of valid values.\n");
  EXPECT_EQ(TVKgetx(env_, lp_, x_, 0, 1), 1217);
  EXPECT_EQ(TVKgetpi(env_, lp_, rows_, 0, 2), 1217);
  EXPECT_EQ(TVKgetax(env_, lp_, rows_, 0, 2), 1217);
  EXPECT_EQ(TVKgetrowinfeas(env_, lp_, nullptr, rows_, 0, 2), 1217);
  EXPECT_EQ(TVKsolution(env_, lp_, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), 1217);
  EXPECT_EQ(TVKgetobjval(env_, lp_, nullptr), 1004);
  double value = 0;
  EXPECT_EQ(TVKgetobjval(env_, lp_, &value), 1217);
  EXPECT_EQ(TVKgetmethod(env_, lp_), 0);
  EXPECT_EQ(TVKgetitcnt(env_, lp_), 0);
  errors();
  int method = 0, type = -1, primal = -1, dual = -1;
  EXPECT_EQ(TVKsolninfo(env_, lp_, &method, &type, &primal, &dual), 0);
  EXPECT_EQ(TVKsolninfo(env_, lp_, nullptr, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(std::vector<int>({method, type, primal, dual}), std::vector<int>({-1, 0, 0, 0}));
  EXPECT_EQ(errors(), "");
}

TEST_F(SolutionQuery, DualValuesOfAMixedIntegerProblemAreRefusedFirst) {
  ASSERT_EQ(TVKcopyctype(env_, lp_, "IC"), 0);
  EXPECT_EQ(TVKgetpi(env_, lp_, rows_, 0, 3), 1200);
  EXPECT_EQ(TVKgetpi(env_, lp_, rows_, 0, 2), 1017);
  EXPECT_EQ(TVKgetdj(env_, lp_, x_, 0, 1), 1017);
  EXPECT_EQ(TVKsolution(env_, lp_, nullptr, nullptr, x_, nullptr, nullptr, x_), 1017);
  EXPECT_EQ(TVKgetx(env_, lp_, x_, 0, 1), 1217);
}

TEST_F(SolutionQuery, AnOptimalSolutionInTheCallersSigns) {
  solve();
  int status = 0, type = 0, method = 0, primal = 0, dual = 0;
  double value = 0, pi[3], slack[3], dj[2];
  ASSERT_EQ(TVKsolution(env_, lp_, &status, &value, x_, pi, slack, dj), 0);
  EXPECT_EQ(status, TVK_STATUS_OPTIMAL);
  EXPECT_EQ(TVKgetstat(env_, lp_), TVK_STATUS_OPTIMAL);
  EXPECT_NEAR(value, 11.5, 1e-9);
  EXPECT_NEAR(x_[0], 3.5, 1e-9);
  EXPECT_NEAR(x_[1], 0.5, 1e-9);
  EXPECT_NEAR(slack[0], 0, 1e-9);
  EXPECT_NEAR(slack[1], 2 - 5, 1e-9);
  EXPECT_NEAR(slack[2], 1 - 3, 1e-9);  // rhs - activity, although the upper limit is the one that binds
  EXPECT_NEAR(pi[0], 2.5, 1e-9);
  EXPECT_NEAR(pi[1], 0, 1e-9);
  EXPECT_NEAR(pi[2], 0.5, 1e-9);
  EXPECT_NEAR(dj[0], 0, 1e-9);
  ASSERT_EQ(TVKgetax(env_, lp_, rows_, 1, 2), 0);
  EXPECT_NEAR(rows_[0], 5, 1e-9);
  EXPECT_NEAR(rows_[1], 3, 1e-9);
  EXPECT_EQ(rows_[2], -7);
  ASSERT_EQ(TVKgetx(env_, lp_, x_, 1, 1), 0);
  EXPECT_NEAR(x_[0], 0.5, 1e-9);
  ASSERT_EQ(TVKsolninfo(env_, lp_, &method, &type, &primal, &dual), 0);
  EXPECT_EQ(type, 1);
  EXPECT_EQ(primal, 1);
  EXPECT_EQ(dual, 1);
  EXPECT_EQ(TVKgetmethod(env_, lp_), method);
  EXPECT_TRUE(method == 1 || method == 2);
}

TEST_F(SolutionQuery, ChangesTakeTheSolutionAwayAndNamesDoNot) {
  solve();
  EXPECT_EQ(TVKchgname(env_, lp_, 'c', 0, "renamed"), 0);
  EXPECT_EQ(TVKunscaleprob(env_, lp_), 0);
  EXPECT_EQ(TVKchgprobtype(env_, lp_, 0), 0);
  EXPECT_EQ(TVKgetstat(env_, lp_), TVK_STATUS_OPTIMAL);
  const int column = 0;
  const double cost = 4;
  ASSERT_EQ(TVKchgobj(env_, lp_, 1, &column, &cost), 0);
  EXPECT_EQ(TVKgetstat(env_, lp_), 0);
  EXPECT_EQ(TVKgetx(env_, lp_, x_, 0, 1), 1217);
  solve();
  ASSERT_EQ(TVKcleanup(env_, lp_, 0), 0);
  EXPECT_EQ(TVKgetslack(env_, lp_, rows_, 0, 2), 1217);
}

TEST_F(SolutionQuery, ViolationsOfAGivenPoint) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inside[] = {3, 1}, outside[] = {6, -1}, below[] = {0, 0.5}, bad[] = {nan, 0};
  double columns[2];
  ASSERT_EQ(TVKgetrowinfeas(env_, lp_, inside, rows_, 0, 2), 0);
  EXPECT_EQ(std::vector<double>(rows_, rows_ + 3), std::vector<double>({0, 0, 0}));
  ASSERT_EQ(TVKgetrowinfeas(env_, lp_, outside, rows_, 0, 2), 0);
  EXPECT_EQ(std::vector<double>(rows_, rows_ + 3), std::vector<double>({1, 0, 4}));
  ASSERT_EQ(TVKgetrowinfeas(env_, lp_, below, rows_, 1, 2), 0);
  EXPECT_EQ(std::vector<double>(rows_, rows_ + 2), std::vector<double>({-0.5, -1.5}));
  ASSERT_EQ(TVKgetcolinfeas(env_, lp_, outside, columns, 0, 1), 0);
  EXPECT_EQ(std::vector<double>(columns, columns + 2), std::vector<double>({1, -1}));
  ASSERT_EQ(TVKgetrowinfeas(env_, lp_, bad, rows_, 0, 0), 0);
  EXPECT_TRUE(std::isnan(rows_[0]));
  EXPECT_EQ(TVKgetcolinfeas(env_, lp_, outside, columns, 0, 2), 1200);
  EXPECT_EQ(TVKgetcolinfeas(env_, lp_, outside, nullptr, 0, 1), 1004);
  EXPECT_EQ(TVKgetcolinfeas(env_, lp_, nullptr, columns, 0, 1), 1217);
}

TEST_F(SolutionQuery, SemiContinuousColumnsMayBeZero) {
  const int column = 0;
  const double two = 2, points[] = {0, 0.5, 1.5, 3, 6}, expected[] = {0, 0.5, -0.5, 0, 1};
  ASSERT_EQ(TVKcopyctype(env_, lp_, "SC"), 0);
  ASSERT_EQ(TVKchgbds(env_, lp_, 1, &column, "L", &two), 0);
  for (int k = 0; k < 5; ++k) {
    const double x[] = {points[k], 0};
    double violation = -7;
    ASSERT_EQ(TVKgetcolinfeas(env_, lp_, x, &violation, 0, 0), 0);
    EXPECT_EQ(violation, expected[k]) << points[k];
  }
}

}  // namespace
