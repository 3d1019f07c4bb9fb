// What a mixed-integer solution answers, and its files: codes of the queries, quality, solutions and starts written and read.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/mip_fixture.h"

namespace {

class MipSolution : public support::MipModels {
 protected:
  void SetUp() override {
    MipModels::SetUp();
    // x is off, though its interval begins at 3; b has bounds that are none.
    lp_ = read(
        "min\n x + 10 y + 2 b + 3 n\nst\n c: x + y + b + n >= 1.2\n d: y - n <= 0.25\nbounds\n 3 <= x <= 8\n "
        "y <= "
        "0.25\n b free\n n <= 7\nbin\n b\ngen\n n\nsemi\n x\nend");
  }
  static std::string content(const std::string& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
  }
  double quality(int what) {
    double value = -1;
    EXPECT_EQ(TVKgetquality(env_, lp_, what, &value, nullptr), 0) << what;
    return value;
  }

  ProbHandle lp_ = nullptr;
};

TEST_F(MipSolution, DualValuesAreRefusedAndOutdatedOnesToo) {
  double value = 0;
  EXPECT_EQ(TVKgetpi(env_, lp_, &value, 0, 0), TVK_ERROR_NOT_FOR_MIP);
  EXPECT_EQ(TVKgetdj(env_, lp_, &value, 0, 0), TVK_ERROR_NOT_FOR_MIP);
  EXPECT_EQ(TVKgetx(env_, lp_, &value, 0, 0), TVK_ERROR_NO_SOLUTION);
  ASSERT_EQ(solve(lp_), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_EQ(TVKgetpi(env_, lp_, &value, 0, 0), TVK_ERROR_NOT_FOR_MIP);
  EXPECT_EQ(TVKsolution(env_, lp_, nullptr, &value, nullptr, &value, nullptr, nullptr),
            TVK_ERROR_NOT_FOR_MIP);
  EXPECT_EQ(TVKsolution(env_, lp_, nullptr, &value, nullptr, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(TVKgetmethod(env_, lp_), 12);
  const int column = 1;
  const double cost = 9;
  ASSERT_EQ(TVKchgobj(env_, lp_, 1, &column, &cost), 0);
  EXPECT_EQ(TVKgetx(env_, lp_, &value, 0, 0), TVK_ERROR_NO_SOLUTION);
  EXPECT_EQ(TVKgetbestobjval(env_, lp_, &value), TVK_ERROR_NO_SOLUTION);
  EXPECT_EQ(TVKgetmiprelgap(env_, lp_, &value), TVK_ERROR_NO_SOLUTION);
}

TEST_F(MipSolution, QualityKnowsTypes) {
  double value = 0;
  EXPECT_EQ(TVKgetquality(env_, lp_, TVK_QUALITY_MAX_INT_INFEAS, &value, nullptr), TVK_ERROR_NO_SOLUTION);
  ASSERT_EQ(solve(lp_), TVK_STATUS_MIP_OPTIMAL);
  ASSERT_EQ(columns(lp_, TVKgetx)[0], 3);  // 3 is cheaper than what else reaches 1.2
  EXPECT_EQ(quality(TVK_QUALITY_MAX_INT_INFEAS), 0);
  EXPECT_EQ(quality(TVK_QUALITY_SUM_INT_INFEAS), 0);
  EXPECT_EQ(quality(TVK_QUALITY_MAX_PRIMAL_INFEAS), 0);
  const int column = 0;
  const double cost = 7;
  ASSERT_EQ(TVKchgobj(env_, lp_, 1, &column, &cost), 0);
  ASSERT_EQ(solve(lp_), TVK_STATUS_MIP_OPTIMAL);
  ASSERT_EQ(columns(lp_, TVKgetx)[0], 0);
  EXPECT_EQ(quality(TVK_QUALITY_MAX_PRIMAL_INFEAS), 0);  // 0 is no violation of [3, 8]
  EXPECT_EQ(TVKgetquality(env_, lp_, TVK_QUALITY_MAX_DUAL_INFEAS, &value, nullptr), TVK_ERROR_NOT_FOR_MIP);
  EXPECT_EQ(TVKgetquality(env_, lp_, TVK_QUALITY_MAX_PI, &value, nullptr), TVK_ERROR_NOT_FOR_MIP);

  // Of a fixed problem's LP solution integers are measured as well; of the relaxation's they are not.
  ASSERT_EQ(TVKchgprobtype(env_, lp_, TVK_PROBTYPE_FIXED_MILP), 0);
  ASSERT_EQ(TVKlpopt(env_, lp_), 0);
  EXPECT_EQ(quality(TVK_QUALITY_MAX_INT_INFEAS), 0);
  ASSERT_EQ(TVKchgprobtype(env_, lp_, TVK_PROBTYPE_MILP), 0);
  ASSERT_EQ(TVKchgprobtype(env_, lp_, TVK_PROBTYPE_LP), 0);
  ASSERT_EQ(TVKlpopt(env_, lp_), 0);
  EXPECT_EQ(quality(TVK_QUALITY_MAX_INT_INFEAS), 0);
}

TEST_F(MipSolution, ItsFileTellsOfTheSearchAndComesBackAsAStart) {
  ASSERT_EQ(solve(lp_), TVK_STATUS_MIP_OPTIMAL);
  const double best = objective(lp_);
  const std::string file = temporary("solution.sol");
  ASSERT_EQ(TVKsolwrite(env_, lp_, file.c_str()), 0);
  const std::string text = content(file);
  for (const char* part :
       {"solutionTypeValue=\"3\"", "solutionTypeString=\"primal\"", "solutionStatusValue=\"101\"",
        "solutionMethodString=\"mip\"", "MIPNodes=\"", "MIPIterations=\"", "epInt=\"1e-05\"",
        "maxIntInfeas=\"0\"", "maxPrimalInfeas=\"0\""}) {
    EXPECT_NE(text.find(part), std::string::npos) << part << "\n" << text;
  }
  for (const char* part : {"simplexIterations", "reducedCost", " dual=", "epOpt", "maxDualInfeas", "kappa"}) {
    EXPECT_EQ(text.find(part), std::string::npos) << part << "\n" << text;
  }
  EXPECT_LT(text.find("MIPNodes"), text.find("MIPIterations"));
  EXPECT_LT(text.find("epInt"), text.find("epRHS"));

  int status = 0;
  ProbHandle other = TVKcloneprob(env_, lp_, &status);
  ASSERT_EQ(TVKreadcopysol(env_, other, file.c_str()), 0);
  std::remove(file.c_str());
  ASSERT_EQ(TVKgetnummipstarts(env_, other), 1);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NODELIM, 0), 0);
  EXPECT_EQ(solve(other), TVK_STATUS_MIP_NODE_LIMIT);
  EXPECT_NEAR(objective(other), best, 1e-9);
}

TEST_F(MipSolution, StartsGoThroughFilesWithNamesAndEfforts) {
  const int begin[] = {0, 2}, indices[] = {0, 2, 1, 3}, efforts[] = {-1, TVK_MIPSTART_REPAIR};
  const double values[] = {0, 1, 0.125, 2};
  const char* const names[] = {"first <one>", "second"};
  ASSERT_EQ(TVKaddmipstarts(env_, lp_, 2, 4, begin, indices, values, efforts, names), 0);
  const std::string file = temporary("starts.mst");
  ASSERT_EQ(TVKwritemipstarts(env_, lp_, file.c_str(), 0, 1), 0);
  ASSERT_EQ(TVKdelmipstarts(env_, lp_, 0, 1), 0);
  ASSERT_EQ(TVKreadcopymipstarts(env_, lp_, file.c_str()), 0);
  std::remove(file.c_str());
  ASSERT_EQ(TVKgetnummipstarts(env_, lp_), 2);
  int count = 0, starts[2], columns[4], levels[2], surplus = 0, index = -1;
  double found[4];
  ASSERT_EQ(TVKgetmipstarts(env_, lp_, &count, starts, columns, found, levels, 4, &surplus, 0, 1), 0);
  EXPECT_EQ(count, 4);
  EXPECT_EQ(levels[0], TVK_MIPSTART_AUTO);
  EXPECT_EQ(levels[1], TVK_MIPSTART_REPAIR);
  for (int k = 0; k < 4; ++k) {
    EXPECT_EQ(columns[k], indices[k]);
    EXPECT_EQ(found[k], values[k]);
  }
  EXPECT_EQ(TVKgetmipstartindex(env_, lp_, "first <one>", &index), 0);
  EXPECT_EQ(index, 0);
}

TEST_F(MipSolution, TheSameAnswerByEveryWayToIt) {
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ADVIND, 0), 0);
  ASSERT_EQ(solve(lp_), TVK_STATUS_MIP_OPTIMAL);
  const double best = objective(lp_);
  for (const int method : {1, 2, 5}) {
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_STARTALG, method), 0);
    EXPECT_EQ(solve(lp_), TVK_STATUS_MIP_OPTIMAL);
    EXPECT_NEAR(objective(lp_), best, 1e-9);
  }
  for (const int emphasis : {1, 2, 3, 4}) {
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPEMPHASIS, emphasis), 0);
    EXPECT_EQ(solve(lp_), TVK_STATUS_MIP_OPTIMAL);
    EXPECT_NEAR(objective(lp_), best, 1e-9);
  }
}

}  // namespace
