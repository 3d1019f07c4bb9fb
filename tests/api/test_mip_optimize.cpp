// TVKmipopt through the public header: statuses, limits, the node log, queries, every kind of model.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "support/market_split.h"
#include "support/mip_fixture.h"

namespace {

class MipOptimize : public support::MipModels {
 protected:
  /* A search that is long. */
  static std::string long_model(int columns) { return support::market_split({.columns = columns}); }
  std::vector<std::string> lines() {
    std::vector<std::string> all;
    std::istringstream in(log_text_);
    for (std::string line; std::getline(in, line);) all.push_back(line);
    return all;
  }
};

TEST_F(MipOptimize, SolvesEveryKindOfModel) {
  struct Case {
    const char* what;
    const char* model;
    int status;
    double objective;
  };
  const Case cases[] = {
      {"knapsack",
       "max\n 5 a + 4 b + 3 c\nst\n 2 a + 3 b + c <= 5\n 4 a + b + 2 c <= 11\n 3 a + 4 b + 2 c <= 8\nbin\n a "
       "b c\nend",
       101, 9},
      {"general integers", "max\n 3 x + 2 y + 10\nst\n 2 x + 2 y <= 9\n 3 x + y <= 11\ngen\n x y\nend", 101,
       21},
      {"infeasible by parity", "min\n x\nst\n 2 x + 4 y = 7\nbounds\n x <= 5\n y <= 5\ngen\n x y\nend", 103,
       0},
      {"unbounded", "max\n x + y\nst\n x - y <= 0.5\ngen\n x y\nend", 118, 0},
      {"unbounded relaxation without a point", "max\n x\nst\n 2 x - 2 y = 1\ngen\n x y\nend", 103, 0},
      {"semi-continuous off",
       "min\n x + 10 y\nst\n x + y >= 1\nbounds\n 3 <= x <= 8\n y <= 0.25\nsemi\n x\nend", 101, 3},
      {"set of type 1",
       "max\n 2 x + 3 y + z\nst\n x + y + z <= 10\nbounds\n x <= 4\n y <= 3\n z <= 5\nsos\n s1:: x:1 y:2 "
       "z:3\nend",
       101, 9},
      {"set of type 2",
       "max\n 2 x + y + 3 z\nst\n x + y + z <= 20\nbounds\n x <= 4\n y <= 3\n z <= 5\nsos\n s2:: x:1 y:2 "
       "z:3\nend",
       101, 18},
      {"indicator", "max\n x - 3 z\nst\n c: x <= 10\n i: z = 0 -> x <= 4\nbin\n z\nend", 101, 7},
      {"lazy constraint",
       "max\n x + y\nst\n x + y <= 5.5\nlazy constraints\n l: x - y <= 0\n m: y <= 2\ngen\n x y\nend", 101,
       4},
      {"negative and free integers",
       "min\n x + y\nst\n x + 2 y >= -7.5\n x >= -4.5\nbounds\n x free\n y free\ngen\n x y\nend", 101, -5},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ProbHandle lp = read(c.model);
    EXPECT_EQ(solve(lp), c.status);
    if (c.status == 101) {
      EXPECT_NEAR(objective(lp), c.objective, 1e-6);
    } else if (c.status == 103) {
      double value = 0;
      EXPECT_EQ(TVKgetobjval(env_, lp, &value), TVK_ERROR_NO_SOLUTION);
    }
    TVKfreeprob(env_, &lp);
  }
}

TEST_F(MipOptimize, RefusesWhatIsNoMixedIntegerLinearProblem) {
  ProbHandle lp = read("min\n x\nst\n x >= 1\nend");
  EXPECT_EQ(TVKmipopt(env_, lp), TVK_ERROR_NOT_MIP);
  ASSERT_EQ(TVKchgprobtype(env_, lp, TVK_PROBTYPE_MIQP), 0);
  EXPECT_EQ(TVKmipopt(env_, lp), TVK_ERROR_NOT_FOR_QP);
  EXPECT_EQ(TVKmipopt(env_, nullptr), TVK_ERROR_NO_PROBLEM);
}

TEST_F(MipOptimize, BoundsOfIntegersAreRoundedWithOneWarning) {
  ProbHandle lp = read(
      "max\n x + y + b\nst\n c: x + y + b <= 100\nbounds\n 0.3 <= x <= 4.7\n 1.2 <= y <= 2.9\n b free\nbin\n "
      "b\ngen\n x y\nend");
  warnings();
  EXPECT_EQ(solve(lp), 101);
  EXPECT_NEAR(objective(lp), 7, 1e-9);
  EXPECT_EQ(warnings(), "Warning:  Non-integral bounds for integer variables rounded.\n");
  double bound = 0;
  ASSERT_EQ(TVKgetub(env_, lp, &bound, 0, 0), 0);
  EXPECT_EQ(bound, 4.7);
}

TEST_F(MipOptimize, LimitsKeepTheTreeAndTheSearchGoesOn) {
  ProbHandle lp = read(long_model(20));
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NODELIM, 5), 0);
  const int stopped = solve(lp);
  EXPECT_TRUE(stopped == TVK_STATUS_MIP_NODE_LIMIT || stopped == TVK_STATUS_MIP_NODE_LIMIT_NO_SOLUTION)
      << stopped;
  EXPECT_EQ(TVKgetnodecnt(env_, lp), 5);
  EXPECT_GT(TVKgetnodeleftcnt(env_, lp), 0);
  double bound = -1;
  EXPECT_EQ(TVKgetbestobjval(env_, lp, &bound), 0);

  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NODELIM, 20), 0);
  solve(lp);
  EXPECT_EQ(TVKgetnodecnt(env_, lp), 20);  // counted from the beginning: it went on
  double later = -1;
  EXPECT_EQ(TVKgetbestobjval(env_, lp, &later), 0);
  EXPECT_GE(later, bound);

  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NODELIM, 2100000000), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_INTSOLLIM, TVKgetmipsolcnt(env_, lp) + 1), 0);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_SOLUTION_LIMIT);
  EXPECT_GT(x(lp).size(), 0u);

  volatile int stop = 1;
  ASSERT_EQ(TVKsetterminate(env_, &stop), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_INTSOLLIM, 2100000000), 0);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_USER_ABORT);
  stop = 0;

  // A change of the model ends the tree; what was found is tried again.
  const double found = objective(lp);
  const int column = 4;  // x1
  const char which = 'U';
  const double value = 1;
  ASSERT_EQ(TVKchgbds(env_, lp, 1, &column, &which, &value), 0);
  EXPECT_EQ(TVKgetnodecnt(env_, lp), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NODELIM, 0), 0);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_NODE_LIMIT);
  EXPECT_LE(objective(lp), found + 1e-9);
  EXPECT_EQ(TVKsetterminate(env_, nullptr), 0);
}

TEST_F(MipOptimize, ASearchWithoutSolutionTellsWhatItHasDone) {
  ProbHandle lp = read(
      "min\n x + y\nst\n c: 6 x + 10 y + 15 z = 29.5\nbounds\n x <= 50\n y <= 50\n z <= 50\ngen\n x y "
      "z\nend");
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_INFEASIBLE);
  EXPECT_NE(log_text_.find("Integer infeasible equality row 'c'.\n"), std::string::npos) << log_text_;
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, 0), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NODELIM, 1), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_CUTPASS, -1), 0);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_NODE_LIMIT_NO_SOLUTION);
  double ticks = 0, value = 0;
  EXPECT_EQ(TVKgetticks(env_, lp, &ticks), 0);
  EXPECT_GT(ticks, 0);
  EXPECT_GT(TVKgetitcnt(env_, lp), 0);
  EXPECT_EQ(TVKgetbestobjval(env_, lp, &value), 0);
  EXPECT_EQ(TVKgetmiprelgap(env_, lp, &value), TVK_ERROR_NO_SOLUTION);
  EXPECT_EQ(TVKgetx(env_, lp, &value, 0, 0), TVK_ERROR_NO_SOLUTION);
}

TEST_F(MipOptimize, CutoffsLeaveNothingWorse) {
  ProbHandle lp = read(
      "max\n 5 a + 4 b + 3 c\nst\n 2 a + 3 b + c <= 5\n 4 a + b + 2 c <= 11\n 3 a + 4 b + 2 c <= 8\nbin\n a "
      "b c\nend");
  ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_CUTLO, 9.5), 0);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_INFEASIBLE);
  ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_CUTLO, 8.5), 0);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_NEAR(objective(lp), 9, 1e-9);
}

TEST_F(MipOptimize, StartsAreTriedAndSolutionsAreJudged) {
  ProbHandle lp = read(
      "max\n 5 a + 4 b + 3 c\nst\n 2 a + 3 b + c <= 5\n 4 a + b + 2 c <= 11\n 3 a + 4 b + 2 c <= 8\nbin\n a "
      "b c\nend");
  const int beg[] = {0, 3}, columns[] = {0, 1, 2, 0, 1, 2};
  const double values[] = {1, 1, 1, 0, 1, 1};  // the first one is infeasible
  ASSERT_EQ(TVKaddmipstarts(env_, lp, 2, 6, beg, columns, values, nullptr, nullptr), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NODELIM, 0), 0);
  log_text_.clear();
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_NODE_LIMIT);
  EXPECT_NEAR(objective(lp), 7, 1e-9);
  EXPECT_NE(log_text_.find("Found feasible solution after 0.0"), std::string::npos) << log_text_;
  EXPECT_NE(log_text_.find(" sec.  Objective = 7.0000\n"), std::string::npos);
}

TEST_F(MipOptimize, QueriesOfAMixedIntegerSolution) {
  ProbHandle lp = read("max\n 3 x + 2 y\nst\n c: 2 x + 2 y <= 9\n d: 3 x + y <= 11\ngen\n x y\nend");
  ASSERT_EQ(solve(lp), 101);
  int method = 0, type = 0, primal = 0, dual = 7;
  ASSERT_EQ(TVKsolninfo(env_, lp, &method, &type, &primal, &dual), 0);
  EXPECT_EQ(method, 12);
  EXPECT_EQ(type, 3);
  EXPECT_EQ(primal, 1);
  EXPECT_EQ(dual, 0);
  double slack[2];
  ASSERT_EQ(TVKgetslack(env_, lp, slack, 0, 1), 0);
  const std::vector<double> point = x(lp);
  EXPECT_NEAR(slack[0], 9 - 2 * point[0] - 2 * point[1], 1e-12);
  double gap = -1, bound = 0, ticks = 0;
  EXPECT_EQ(TVKgetmiprelgap(env_, lp, &gap), 0);
  EXPECT_EQ(gap, 0);
  EXPECT_EQ(TVKgetbestobjval(env_, lp, &bound), 0);
  EXPECT_EQ(bound, objective(lp));
  EXPECT_EQ(TVKgetticks(env_, lp, &ticks), 0);
  EXPECT_GT(ticks, 0);
  EXPECT_EQ(TVKgetpi(env_, lp, slack, 0, 1), TVK_ERROR_NOT_FOR_MIP);
}

TEST_F(MipOptimize, NodeLogHasItsForm) {
  ProbHandle lp = read(long_model(14));
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPINTERVAL, 1), 0);
  log_text_.clear();
  EXPECT_EQ(solve(lp), 101);
  const std::vector<std::string> log = lines();
  const auto header =
      std::find(log.begin(), log.end(), "        Nodes                                         Cuts/");
  ASSERT_NE(header, log.end());
  EXPECT_EQ(*(header + 1), "   Node  Left     Objective  IInf  Best Integer     Best Node    ItCnt     Gap");
  const std::regex row("[* ][ 0-9]{6}[+ ][ 0-9]{5} .{19} .{13} .{13} [ 0-9]{8} .{8}");
  const std::regex elapsed(
      "Elapsed real time = +[0-9.]+ sec\\. \\(tree size = +[0-9.]+ MB, solutions = [0-9]+\\)");
  int rows = 0, times = 0;
  for (auto line = header + 3; line != log.end(); ++line) {
    if (line->empty()) continue;
    if (std::regex_match(*line, elapsed)) {
      EXPECT_EQ(rows % 10, 1) << *line;
      ++times;
    } else {
      EXPECT_TRUE(std::regex_match(*line, row)) << "'" << *line << "'";
      ++rows;
    }
  }
  EXPECT_GE(rows, TVKgetnodecnt(env_, lp));  // the root may have rows before and after its cuts
  EXPECT_LE(rows, TVKgetnodecnt(env_, lp) + 2 + TVKgetmipsolcnt(env_, lp));
  EXPECT_EQ(times, (rows + 9) / 10);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPDISPLAY, 1), 0);
  ProbHandle again = read(long_model(14));
  log_text_.clear();
  EXPECT_EQ(solve(again), 101);
  EXPECT_EQ(log_text_.find("\nNode log . . .\nBest integer = "), log_text_.find("\nNode log"));
}

TEST_F(MipOptimize, TwoRunsPrintTheSameLog) {
  std::string logs[2];
  for (std::string& text : logs) {
    ProbHandle lp = read(long_model(16));
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPINTERVAL, 3), 0);
    log_text_.clear();
    solve(lp);
    text = std::regex_replace(log_text_, std::regex("Elapsed[^(]*"), "");
  }
  EXPECT_EQ(logs[0], logs[1]);
}

}  // namespace
