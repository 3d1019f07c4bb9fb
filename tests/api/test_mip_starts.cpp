// MIP starts through the public header: what each effort level makes of a start, several starts, starts between two runs.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/mip_fixture.h"

namespace {

/* Three binaries and a continuous column; best 11 at (1, 1, 0) with w 2. */
constexpr const char* kModel =
    "max\n 5 a + 4 b + 3 c + w\nst\n 2 a + 3 b + c <= 5\n 4 a + b + 2 c <= 11\n 3 a + 4 b + 2 c <= 8\n w - "
    "1.5 a "
    "- 0.5 b <= 0\nbounds\n w <= 2\nbin\n a b c\nend";

class MipStarts : public support::MipModels {
 protected:
  void SetUp() override {
    MipModels::SetUp();
    lp_ = read(kModel);
    // Nothing but starts may find a solution.
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, 0), 0);
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NODELIM, 0), 0);
  }
  void add(const std::vector<int>& columns, const std::vector<double>& values, int effort) {
    const int begin = 0;
    ASSERT_EQ(TVKaddmipstarts(env_, lp_, 1, static_cast<int>(columns.size()), &begin, columns.data(),
                              values.data(), &effort, nullptr),
              0);
  }
  /* Of the only start, nothing when it leads to no solution. */
  double with_start(const std::vector<int>& columns, const std::vector<double>& values, int effort) {
    if (TVKgetnummipstarts(env_, lp_) > 0) {
      EXPECT_EQ(TVKdelmipstarts(env_, lp_, 0, TVKgetnummipstarts(env_, lp_) - 1), 0);
    }
    EXPECT_EQ(TVKsetintparam(env_, TVK_PARAM_ADVIND, 0), 0);  // not what the last run found
    add(columns, values, effort);
    log_text_.clear();
    return solve(lp_) == TVK_STATUS_MIP_NODE_LIMIT ? objective(lp_) : -1;
  }

  const std::vector<int> all_{0, 1, 2, 3};
  ProbHandle lp_ = nullptr;
};

TEST_F(MipStarts, EachEffortLevelDoesWhatItSays) {
  constexpr double kNone = -1;
  struct Case {
    const char* what;
    std::vector<int> columns;
    std::vector<double> values;
    double check, fixed, mip, repair, automatic;
  };
  const Case cases[] = {
      {"a whole point", {0, 1, 2, 3}, {0, 1, 1, 0.25}, 7.25, 7.5, 7.5, 7.5, 7.25},
      {"integers only", {0, 1, 2}, {0, 1, 1}, kNone, 7.5, 7.5, 7.5, 7.5},
      {"an integer is missing", {1, 2}, {0, 1}, kNone, kNone, 9.5, 9.5, 9.5},
      {"an integer that is none", {0, 1, 2, 3}, {0.5, 0, 1, 0}, kNone, kNone, 9.5, 9.5, 9.5},
      {"a continuous value that violates a row", {0, 1, 2, 3}, {0, 1, 1, 1}, kNone, 7.5, 7.5, 7.5, 7.5},
      {"integers that violate a row", {0, 1, 2}, {1, 1, 1}, kNone, kNone, kNone, 11, kNone},
      {"a value outside its bounds", {0, 1}, {2, 0}, kNone, kNone, kNone, 9.5, kNone},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_NEAR(with_start(c.columns, c.values, TVK_MIPSTART_CHECKFEAS), c.check, 1e-9);
    EXPECT_NEAR(with_start(c.columns, c.values, TVK_MIPSTART_SOLVEFIXED), c.fixed, 1e-9);
    EXPECT_NEAR(with_start(c.columns, c.values, TVK_MIPSTART_SOLVEMIP), c.mip, 1e-9);
    EXPECT_NEAR(with_start(c.columns, c.values, TVK_MIPSTART_REPAIR), c.repair, 1e-9);
    EXPECT_NEAR(with_start(c.columns, c.values, TVK_MIPSTART_AUTO), c.automatic, 1e-9);
    const bool says_no = log_text_.find("MIP start 'm1' gives no solution.\n") != std::string::npos;
    EXPECT_EQ(says_no, c.automatic == kNone);
  }
}

TEST_F(MipStarts, RepairIsDoneAsOftenAsTheParameterSays) {
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_REPAIRTRIES, -1), 0);
  EXPECT_EQ(with_start({0, 1, 2}, {1, 1, 1}, TVK_MIPSTART_REPAIR), -1);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_REPAIRTRIES, 5), 0);
  EXPECT_GT(with_start({0, 1, 2}, {1, 1, 1}, TVK_MIPSTART_AUTO), 0);
}

TEST_F(MipStarts, OfSeveralTheBestCountsAndTheOthersAreToldOf) {
  add(all_, {0, 1, 1, 0}, TVK_MIPSTART_CHECKFEAS);
  add(all_, {1, 0, 1, 0}, TVK_MIPSTART_CHECKFEAS);
  add(all_, {0, 0, 1, 0}, TVK_MIPSTART_CHECKFEAS);
  add(all_, {1, 1, 1, 0}, TVK_MIPSTART_CHECKFEAS);
  EXPECT_EQ(solve(lp_), TVK_STATUS_MIP_NODE_LIMIT);
  EXPECT_NEAR(objective(lp_), 8, 1e-9);
  EXPECT_EQ(TVKgetmipsolcnt(env_, lp_), 2);
  EXPECT_NE(log_text_.find("MIP start 'm3' gives no better solution.\n"), std::string::npos) << log_text_;
  EXPECT_NE(log_text_.find("MIP start 'm4' gives no solution.\n"), std::string::npos);
}

TEST_F(MipStarts, NewOnesAreTriedWhenTheSearchGoesOn) {
  EXPECT_EQ(solve(lp_), TVK_STATUS_MIP_NODE_LIMIT_NO_SOLUTION);
  add(all_, {0, 1, 1, 0}, TVK_MIPSTART_CHECKFEAS);
  EXPECT_EQ(solve(lp_), TVK_STATUS_MIP_NODE_LIMIT);
  EXPECT_NEAR(objective(lp_), 7, 1e-9);
  log_text_.clear();
  EXPECT_EQ(solve(lp_), TVK_STATUS_MIP_NODE_LIMIT);  // the same start again: nothing is tried
  EXPECT_EQ(log_text_.find("MIP start"), std::string::npos) << log_text_;
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NODELIM, 1000), 0);
  EXPECT_EQ(solve(lp_), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_NEAR(objective(lp_), 11, 1e-9);
}

TEST_F(MipStarts, TheLastSolutionSurvivesEditsAsFarAsItHolds) {
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NODELIM, 1000), 0);
  ASSERT_EQ(solve(lp_), TVK_STATUS_MIP_OPTIMAL);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NODELIM, 0), 0);

  // Another right-hand side moves the continuous column only.
  const int row = 3;
  const double rhs = -1;
  ASSERT_EQ(TVKchgrhs(env_, lp_, 1, &row, &rhs), 0);
  ASSERT_EQ(solve(lp_), TVK_STATUS_MIP_NODE_LIMIT);
  EXPECT_NEAR(objective(lp_), 10, 1e-9);

  // A new column is not given and gets its best value.
  const double cost = 2, lower = 0, upper = 3;
  const char type = 'I';
  ASSERT_EQ(TVKnewcols(env_, lp_, 1, &cost, &lower, &upper, &type, nullptr), 0);
  ASSERT_EQ(solve(lp_), TVK_STATUS_MIP_NODE_LIMIT);
  EXPECT_NEAR(objective(lp_), 16, 1e-9);

  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ADVIND, 0), 0);
  EXPECT_EQ(solve(lp_), TVK_STATUS_MIP_NODE_LIMIT_NO_SOLUTION);
}

TEST_F(MipStarts, DecisionsOfObjectsAreTakenToo) {
  TVKfreeprob(env_, &lp_);
  lp_ = read(
      "max\n x + 2 y - z - 0.5 s\nst\n c: x + y + s <= 10\n d: s + y >= 1.5\n i: z = 0 -> x <= 4\nbounds\n x "
      "<= "
      "8\n y <= 3\n 2 <= s <= 3\nbin\n z\nsemi\n s\nsos\n s1:: y:1 s:2\nend");
  const int x = 0, y = 1, z = 2, s = 3;
  EXPECT_NEAR(with_start({x, y, z, s}, {4, 3, 0, 0}, TVK_MIPSTART_CHECKFEAS), 10, 1e-9);
  EXPECT_EQ(with_start({x, y, z, s}, {5, 3, 0, 0}, TVK_MIPSTART_CHECKFEAS), -1);
  EXPECT_NEAR(with_start({x, y, z, s}, {5, 3, 1, 0}, TVK_MIPSTART_CHECKFEAS), 10, 1e-9);
  EXPECT_EQ(with_start({x, y, z, s}, {4, 0, 0, 1.5}, TVK_MIPSTART_CHECKFEAS), -1);
  EXPECT_NEAR(with_start({y, s}, {0, 2.5}, TVK_MIPSTART_SOLVEMIP), 6, 1e-9);
  EXPECT_NEAR(with_start({z, y, s}, {1, 2, 0}, TVK_MIPSTART_SOLVEFIXED), 12, 1e-9);
}

/* Presolve leaves objective values of 1 less multiples of 5 only; the start's is none of them. */
TEST_F(MipStarts, AStartBesideTheStepsOfThePresolvedObjectiveIsImproved) {
  ProbHandle lp = read(
      "min\n -5 a + c + d\nst\n -3 a + b <= 0\n -3 a >= -3\n 2 c + 2 d >= 2\n"
      "bounds\n 2 <= a <= 4\n c <= 1\n d <= 1\ngeneral\n a c d\nsemi-continuous\n a\nend\n");
  std::vector<int> column(4);
  const char* const names[] = {"a", "b", "d", "c"};
  for (int k = 0; k < 4; ++k) ASSERT_EQ(TVKgetcolindex(env_, lp, names[k], &column[k]), 0);
  ASSERT_EQ(TVKcopyprotected(env_, lp, 3, column.data()), 0);
  const int begin = 0, effort = TVK_MIPSTART_AUTO;
  const double value[] = {0, 0, 1, 1};
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NODELIM, 2100000000), 0);
  ASSERT_EQ(TVKaddmipstarts(env_, lp, 1, 4, &begin, column.data(), value, &effort, nullptr), 0);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_NEAR(objective(lp), 1, 1e-9);
  EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
}

}  // namespace
