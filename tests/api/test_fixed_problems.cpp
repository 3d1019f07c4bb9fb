// Fixed problems through the public header: from a solved mixed-integer problem to its continuous rest, and back.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/mip_fixture.h"

namespace {

class FixedProblems : public support::MipModels {
 protected:
  /* Of rows and columns at their bounds: b'y plus what reduced costs say must be the objective. */
  double dual_objective(ProbHandle lp) {
    const std::vector<double> pi = rows(lp, TVKgetpi), rhs = rows(lp, TVKgetrhs);
    const std::vector<double> dj = columns(lp, TVKgetdj), x = columns(lp, TVKgetx);
    double sum = 0;
    EXPECT_EQ(TVKgetobjoffset(env_, lp, &sum), 0);
    for (std::size_t i = 0; i < pi.size(); ++i) sum += pi[i] * rhs[i];
    for (std::size_t j = 0; j < dj.size(); ++j) sum += dj[j] * x[j];
    return sum;
  }
};

TEST_F(FixedProblems, EveryKindOfDecisionIsFixedAndComesBack) {
  struct Case {
    const char* what;
    const char* model;
    int rows;  // of the fixed problem
  };
  const Case cases[] = {
      {"integers and continuous columns",
       "max\n 3 x + 2 y + z\nst\n a: 2 x + 2 y + z <= 9.5\n b: 3 x + y <= 11\nbounds\n 0.5 <= x <= "
       "7.5\ngen\n "
       "x y\nend",
       2},
      {"binaries with bounds that are no bounds",
       "max\n 3 x + 2 y + z\nst\n a: 2 x + 2 y + z <= 3.5\nbounds\n x free\nbin\n x y\nend", 1},
      {"a semi-continuous column that is on, and one that is not",
       "min\n x + 10 y + 3 s\nst\n a: x + y + s >= 1\nbounds\n 3 <= x <= 8\n y <= 0.25\n 2 <= s <= "
       "4\nsemi\n x s\nend",
       1},
      {"an ordered set",
       "max\n 2 x + y + 3 z\nst\n a: x + y + z <= 6.5\nbounds\n x <= 4\n y <= 3\n z <= 5\nsos\n s2:: x:1 y:2 "
       "z:3\nend",
       1},
      {"an active indicator and one that is not",
       "max\n x - 3 z + y\nst\n c: x + y <= 10\n i: z = 0 -> x <= 4\n j: z = 1 -> y <= 1\nbounds\n y <= "
       "5\nbin\n z\nend",
       2},
      {"lazy constraints",
       "max\n x + y + w\nst\n a: x + y <= 5.5\nlazy constraints\n l: x - y + w <= 0\n m: y <= 2\nbounds\n w "
       "<= "
       "3\ngen\n x y\nend",
       3},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ProbHandle lp = read(c.model);
    const std::vector<double> lower = columns(lp, TVKgetlb), upper = columns(lp, TVKgetub);
    const int count = TVKgetnumrows(env_, lp);
    ASSERT_EQ(solve(lp), 101);
    const double best = objective(lp);
    const std::vector<double> x = columns(lp, TVKgetx);

    ASSERT_EQ(TVKchgprobtype(env_, lp, TVK_PROBTYPE_FIXED_MILP), 0) << errors();
    EXPECT_EQ(TVKgetprobtype(env_, lp), TVK_PROBTYPE_FIXED_MILP);
    EXPECT_EQ(TVKgetstat(env_, lp), 0);
    EXPECT_EQ(TVKgetnumrows(env_, lp), c.rows);
    ASSERT_EQ(TVKlpopt(env_, lp), 0) << errors();
    EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_OPTIMAL);
    EXPECT_NEAR(objective(lp), best, 1e-9);
    EXPECT_NEAR(dual_objective(lp), best, 1e-9);
    int type = 0;
    ASSERT_EQ(TVKsolninfo(env_, lp, nullptr, &type, nullptr, nullptr), 0);
    EXPECT_EQ(type, 1);
    std::vector<int> status(x.size());
    EXPECT_EQ(TVKgetbase(env_, lp, status.data(), nullptr), 0);

    const int column = 0;
    const char which = 'U';
    const double bound = 1;
    EXPECT_EQ(TVKchgbds(env_, lp, 1, &column, &which, &bound), TVK_ERROR_FIXED_PROBLEM);
    EXPECT_EQ(TVKmipopt(env_, lp), TVK_ERROR_NOT_MIP);

    ASSERT_EQ(TVKchgprobtype(env_, lp, TVK_PROBTYPE_MILP), 0);
    EXPECT_EQ(columns(lp, TVKgetlb), lower);
    EXPECT_EQ(columns(lp, TVKgetub), upper);
    EXPECT_EQ(TVKgetnumrows(env_, lp), count);
    ASSERT_EQ(solve(lp), 101);
    EXPECT_NEAR(objective(lp), best, 1e-9);
    TVKfreeprob(env_, &lp);
  }
}

TEST_F(FixedProblems, NeedASolutionOfTheRightKindOfProblem) {
  ProbHandle lp = read("max\n x\nst\n a: 2 x <= 5\ngen\n x\nend");
  EXPECT_EQ(TVKchgprobtype(env_, lp, TVK_PROBTYPE_FIXED_MILP), TVK_ERROR_NOT_MILP);
  ASSERT_EQ(solve(lp), 101);
  EXPECT_EQ(TVKchgprobtype(env_, lp, TVK_PROBTYPE_FIXED_MIQP), TVK_ERROR_NOT_MIQP);
  EXPECT_EQ(TVKchgprobtype(env_, lp, TVK_PROBTYPE_FIXED_MIQCP), TVK_ERROR_NOT_MIQCP);
  EXPECT_EQ(TVKgetprobtype(env_, lp), TVK_PROBTYPE_MILP);
  const int row = 0;
  const double rhs = 7;
  ASSERT_EQ(TVKchgrhs(env_, lp, 1, &row, &rhs), 0);  // the solution is out of date
  EXPECT_EQ(TVKchgprobtype(env_, lp, TVK_PROBTYPE_FIXED_MILP), TVK_ERROR_NOT_MILP);
}

TEST_F(FixedProblems, AreMadeAnewAndCopied) {
  ProbHandle lp = read("max\n 3 x + y\nst\n a: 2 x + y <= 5.5\nlazy constraints\n l: y <= 1\ngen\n x\nend");
  const std::vector<double> upper = columns(lp, TVKgetub);
  ASSERT_EQ(solve(lp), 101);
  const double best = objective(lp);
  ASSERT_EQ(TVKchgprobtype(env_, lp, TVK_PROBTYPE_FIXED_MILP), 0);
  ASSERT_EQ(TVKlpopt(env_, lp), 0);
  ASSERT_EQ(TVKchgprobtype(env_, lp, TVK_PROBTYPE_FIXED_MILP), 0);
  EXPECT_EQ(TVKgetstat(env_, lp), 0);
  EXPECT_EQ(TVKgetnumrows(env_, lp), 2);

  int status = -1;
  ProbHandle copy = TVKcloneprob(env_, lp, &status);
  ASSERT_EQ(status, 0);
  EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
  ASSERT_EQ(TVKlpopt(env_, copy), 0);
  EXPECT_NEAR(objective(copy), best, 1e-9);
  ASSERT_EQ(TVKchgprobtype(env_, copy, TVK_PROBTYPE_MILP), 0);
  EXPECT_EQ(columns(copy, TVKgetub), upper);
  EXPECT_EQ(TVKgetnumrows(env_, copy), 1);
  EXPECT_EQ(TVKgetnumlazyconstraints(env_, copy), 1);
}

TEST_F(FixedProblems, StayFixedAsContinuousOnes) {
  ProbHandle lp = read(
      "min\n x + 3 s + y\nst\n a: x + s + 0.5 y >= 2.5\nbounds\n x <= 1\n 2 <= s <= 4\ngen\n x\nsemi\n "
      "s\nend");
  ASSERT_EQ(solve(lp), 101);
  const double best = objective(lp);
  const std::vector<double> x = columns(lp, TVKgetx);
  ASSERT_EQ(TVKchgprobtype(env_, lp, TVK_PROBTYPE_FIXED_MILP), 0);
  ASSERT_EQ(TVKchgprobtype(env_, lp, TVK_PROBTYPE_LP), 0);
  const std::vector<double> lower = columns(lp, TVKgetlb), upper = columns(lp, TVKgetub);
  EXPECT_EQ(lower[0], x[0]);
  EXPECT_EQ(upper[0], x[0]);
  ASSERT_EQ(TVKlpopt(env_, lp), 0);
  EXPECT_NEAR(objective(lp), best, 1e-9);
  const int row = 0;
  const double rhs = 0;
  EXPECT_EQ(TVKchgrhs(env_, lp, 1, &row, &rhs), 0);  // an ordinary problem
}

TEST_F(FixedProblems, AreSavedAsWhatTheyAre) {
  ProbHandle lp = read("max\n 3 x + y\nst\n a: 2 x + y <= 5.5\ngen\n x\nend");
  ASSERT_EQ(solve(lp), 101);
  const double best = objective(lp);
  ASSERT_EQ(TVKchgprobtype(env_, lp, TVK_PROBTYPE_FIXED_MILP), 0);
  const std::string file = temporary("fixed.sav"), solution = temporary("fixed.sol");
  ASSERT_EQ(TVKwriteprob(env_, lp, file.c_str(), nullptr), 0);
  int status = -1;
  ProbHandle back = TVKcreateprob(env_, &status, "back");
  ASSERT_EQ(TVKreadcopyprob(env_, back, file.c_str(), nullptr), 0) << errors();
  std::remove(file.c_str());
  EXPECT_EQ(TVKgetprobtype(env_, back), TVK_PROBTYPE_FIXED_MILP);
  ASSERT_EQ(TVKlpopt(env_, back), 0);
  EXPECT_NEAR(objective(back), best, 1e-9);
  ASSERT_EQ(TVKsolwrite(env_, back, solution.c_str()), 0);
  double pi = 0;
  EXPECT_EQ(TVKreadsolution(env_, back, solution.c_str(), 0, nullptr, nullptr, nullptr, nullptr, nullptr, &pi,
                            nullptr, nullptr, nullptr, nullptr),
            0);
  EXPECT_NEAR(pi, 1, 1e-9);
  std::remove(solution.c_str());
  ASSERT_EQ(TVKchgprobtype(env_, back, TVK_PROBTYPE_MILP), 0);
  ASSERT_EQ(solve(back), 101);
  EXPECT_NEAR(objective(back), best, 1e-9);
}

}  // namespace
