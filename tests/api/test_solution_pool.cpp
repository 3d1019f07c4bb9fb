/* The solution pool through the public header: what a search leaves there, queries, deletion, files, errors. */
#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/knapsack_models.h"

namespace {

class SolutionPool : public support::KnapsackModels {
 protected:
  /* Maximizes 3 a + 2 b + c with a + b + c <= 2 over binaries, from a start that is poor and one that holds too. */
  ProbHandle with_starts() {
    ProbHandle lp =
        read("Maximize obj: 3 a + 2 b + c\nSubject To\n r: a + b + c <= 2\nBinary\n a b c\nEnd\n");
    const int beg[] = {0, 3}, columns[] = {0, 1, 2, 0, 1, 2}, efforts[] = {1, 1};
    const double values[] = {0, 0, 1, 1, 0, 1};
    EXPECT_EQ(TVKaddmipstarts(env_, lp, 2, 6, beg, columns, values, efforts, nullptr), 0);
    return lp;
  }
  std::string name(ProbHandle lp, int soln) {
    char text[20];
    int surplus = -1;
    EXPECT_EQ(TVKgetsolnpoolsolnname(env_, lp, text, 20, &surplus, soln), 0) << errors();
    return text;
  }
  double pool_objective(ProbHandle lp, int soln) {
    double value = NAN;
    EXPECT_EQ(TVKgetsolnpoolobjval(env_, lp, soln, &value), 0);
    return value;
  }
  static std::string text_of(const std::string& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
  }
};

}  // namespace

TEST_F(SolutionPool, HoldsWhatTheSearchHasMet) {
  ProbHandle lp = with_starts();
  EXPECT_EQ(TVKgetsolnpoolnumsolns(env_, lp), 0);
  ASSERT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  const int count = TVKgetsolnpoolnumsolns(env_, lp);
  ASSERT_GE(count, 3);
  EXPECT_EQ(pool_objective(lp, 0), 1);  // in the order in which they came
  EXPECT_EQ(pool_objective(lp, 1), 4);
  EXPECT_EQ(pool_objective(lp, -1), 5);
  EXPECT_EQ(name(lp, 1), "p2");
  double x[3] = {-1, -1, -1}, slack = NAN, quality = NAN, mean = NAN, sum = 0;
  EXPECT_EQ(TVKgetsolnpoolx(env_, lp, 1, x, 0, 2), 0);
  EXPECT_EQ(std::vector<double>(x, x + 3), (std::vector<double>{1, 0, 1}));
  EXPECT_EQ(TVKgetsolnpoolx(env_, lp, -1, x, 1, 1), 0);
  EXPECT_EQ(x[0], 1);
  EXPECT_EQ(TVKgetsolnpoolslack(env_, lp, 0, &slack, 0, 0), 0);
  EXPECT_EQ(slack, 1);
  int where = -5;
  EXPECT_EQ(TVKgetsolnpoolquality(env_, lp, 1, TVK_QUALITY_MAX_X, &quality, &where), 0);
  EXPECT_EQ(quality, 1);
  EXPECT_EQ(where, 0);
  for (int k = 0; k < count; ++k) sum += pool_objective(lp, k);
  EXPECT_EQ(TVKgetsolnpoolmeanobjval(env_, lp, &mean), 0);
  EXPECT_NEAR(mean, sum / count, 1e-12);

  // What goes takes its name along.
  int soln = -1;
  EXPECT_EQ(TVKdelsolnpoolsolns(env_, lp, 0, 0), 0);
  EXPECT_EQ(TVKgetsolnpoolsolnindex(env_, lp, "p2", &soln), 0);
  EXPECT_EQ(soln, 0);
  EXPECT_EQ(TVKgetsolnpoolsolnindex(env_, lp, "p1", &soln), TVK_ERROR_NAME_NOT_FOUND);
  std::vector<int> marks(static_cast<std::size_t>(count - 1), 1);
  marks[0] = 0;
  EXPECT_EQ(TVKdelsetsolnpoolsolns(env_, lp, marks.data()), 0);
  EXPECT_EQ(TVKgetsolnpoolnumsolns(env_, lp), 1);
  EXPECT_EQ(marks[0], 0);
  EXPECT_EQ(marks.back(), -1);
  EXPECT_EQ(objective(lp), 5);  // the incumbent stays

  EXPECT_EQ(TVKchgcolname(env_, lp, 0, nullptr, nullptr), 0);
  EXPECT_EQ(TVKgetsolnpoolnumsolns(env_, lp), 1);
  const int first = 0;
  const double cost = 4;
  EXPECT_EQ(TVKchgobj(env_, lp, 1, &first, &cost), 0);
  EXPECT_EQ(TVKgetsolnpoolnumsolns(env_, lp), 0);
  EXPECT_EQ(TVKgetsolnpoolx(env_, lp, 0, x, 0, 2), TVK_ERROR_NO_SOLUTION_POOL);
}

TEST_F(SolutionPool, ObeysItsParameters) {
  ProbHandle lp = with_starts();
  ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_SOLNPOOLAGAP, 1), 0);
  ASSERT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  for (int k = 0; k < TVKgetsolnpoolnumsolns(env_, lp); ++k) EXPECT_GE(pool_objective(lp, k), 4);
  EXPECT_GE(TVKgetsolnpoolnumsolns(env_, lp), 2);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_SOLNPOOLCAPACITY, 1), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_SOLNPOOLREPLACE, 1), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ADVIND, 0), 0);
  ASSERT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_EQ(TVKgetsolnpoolnumsolns(env_, lp), 1);
  EXPECT_EQ(pool_objective(lp, 0), 5);
  EXPECT_EQ(name(lp, 0).substr(0, 1), "p");
}

TEST_F(SolutionPool, Errors) {
  ProbHandle lp = with_starts();
  double value = NAN, x[3];
  int index = 0;
  const std::string file = temporary("none.sol");
  EXPECT_EQ(TVKgetsolnpoolobjval(env_, lp, 0, &value), TVK_ERROR_NO_SOLUTION_POOL);
  EXPECT_EQ(TVKgetsolnpoolmeanobjval(env_, lp, &value), TVK_ERROR_NO_SOLUTION_POOL);
  EXPECT_EQ(TVKgetsolnpoolsolnindex(env_, lp, "p1", &index), TVK_ERROR_NO_SOLUTION_POOL);
  EXPECT_EQ(TVKdelsolnpoolsolns(env_, lp, 0, 0), TVK_ERROR_NO_SOLUTION_POOL);
  EXPECT_EQ(TVKsolwritesolnpool(env_, lp, 0, file.c_str()), TVK_ERROR_NO_SOLUTION_POOL);
  EXPECT_EQ(TVKsolwritesolnpoolall(env_, lp, file.c_str()), TVK_ERROR_NO_SOLUTION_POOL);
  EXPECT_EQ(TVKmstwritesolnpoolall(env_, lp, file.c_str()), TVK_ERROR_NO_SOLUTION_POOL);
  EXPECT_NE(errors().find("TOVIK Error  3024: No solution pool exists.\n"), std::string::npos);
  ASSERT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  const int count = TVKgetsolnpoolnumsolns(env_, lp);
  EXPECT_EQ(TVKgetsolnpoolobjval(env_, lp, count, &value), TVK_ERROR_INDEX_RANGE);
  EXPECT_EQ(TVKgetsolnpoolx(env_, lp, -2, x, 0, 2), TVK_ERROR_INDEX_RANGE);
  EXPECT_EQ(TVKgetsolnpoolx(env_, lp, 0, nullptr, 0, 2), TVK_ERROR_NULL_POINTER);
  EXPECT_EQ(TVKgetsolnpoolx(env_, lp, 0, x, 0, 3), TVK_ERROR_INDEX_RANGE);
  EXPECT_NE(errors().find("TVKgetsolnpoolx: 'end' value 3 is greater than 2"), std::string::npos);
  EXPECT_EQ(TVKgetsolnpoolquality(env_, lp, 0, TVK_QUALITY_MAX_PI, &value, nullptr), TVK_ERROR_NOT_FOR_MIP);
  EXPECT_EQ(TVKgetsolnpoolquality(env_, lp, 0, 999, &value, nullptr), TVK_ERROR_BAD_ARGUMENT);
  EXPECT_EQ(TVKsolwritesolnpool(env_, lp, 0, "/nowhere/a.sol"), TVK_ERROR_OPEN_FOR_WRITING);
  EXPECT_EQ(TVKsolwritesolnpool(env_, lp, 0, nullptr), TVK_ERROR_NO_FILE_NAME);
  EXPECT_EQ(TVKdelsolnpoolsolns(env_, lp, 0, count - 1), 0);
  EXPECT_EQ(TVKsolwritesolnpoolall(env_, lp, file.c_str()), TVK_ERROR_NO_SOLUTION);
  EXPECT_EQ(pool_objective(lp, -1), 5);
  ProbHandle infeasible = read("Minimize obj: a\nSubject To\n r: a >= 2\nBinary\n a\nEnd\n");
  EXPECT_EQ(solve(infeasible), TVK_STATUS_MIP_INFEASIBLE);
  EXPECT_EQ(TVKgetsolnpoolnumsolns(env_, infeasible), 0);
  EXPECT_EQ(TVKgetsolnpoolobjval(env_, infeasible, -1, &value), TVK_ERROR_NO_SOLUTION);
}

TEST_F(SolutionPool, FilesReadBack) {
  ProbHandle lp = with_starts();
  ASSERT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  const int count = TVKgetsolnpoolnumsolns(env_, lp);
  const std::string one = temporary("one.sol"), all = temporary("all.sol"), starts = temporary("all.mst.gz");
  ASSERT_EQ(TVKsolwritesolnpool(env_, lp, 1, one.c_str()), 0);
  const std::string text = text_of(one);
  EXPECT_NE(text.find("   solutionName=\"p2\"\n   solutionIndex=\"1\"\n   objectiveValue=\"4\""),
            std::string::npos)
      << text;
  EXPECT_NE(text.find(" <quality\n   epInt="), std::string::npos);
  ASSERT_EQ(TVKsolwritesolnpool(env_, lp, -1, one.c_str()), 0);
  EXPECT_NE(text_of(one).find("solutionName=\"incumbent\"\n   solutionIndex=\"-1\""), std::string::npos);

  ASSERT_EQ(TVKsolwritesolnpoolall(env_, lp, all.c_str()), 0);
  EXPECT_NE(text_of(all).find("<TOVIKSolutions>\n <TOVIKSolution version=\"1.2\">\n  <header\n"),
            std::string::npos);
  for (int k = 0; k < count; ++k) {
    double x[3], own[3], value = NAN;
    int found = 0;
    ASSERT_EQ(TVKreadsolution(env_, lp, all.c_str(), k, &found, nullptr, nullptr, &value, x, nullptr, nullptr,
                              nullptr, nullptr, nullptr),
              0);
    EXPECT_EQ(found, count);
    EXPECT_EQ(value, pool_objective(lp, k));
    ASSERT_EQ(TVKgetsolnpoolx(env_, lp, k, own, 0, 2), 0);
    EXPECT_EQ(std::vector<double>(x, x + 3), std::vector<double>(own, own + 3));
  }

  ASSERT_EQ(TVKmstwritesolnpoolall(env_, lp, starts.c_str()), 0);
  ASSERT_EQ(TVKdelmipstarts(env_, lp, 0, 1), 0);
  ASSERT_EQ(TVKreadcopymipstarts(env_, lp, starts.c_str()), 0);
  EXPECT_EQ(TVKgetnummipstarts(env_, lp), count);
  int start = -1;
  EXPECT_EQ(TVKgetmipstartindex(env_, lp, "p2", &start), 0);
  EXPECT_EQ(start, 1);
}
