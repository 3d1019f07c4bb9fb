/* TVKhybnetopt and method 3: right answers whatever the network in the problem is, arguments, and the report. */
#include <gtest/gtest.h>

#include <string>

#include "support/random.h"
#include "support/solve_fixture.h"
#include "support/statistics.h"

namespace {

using support::Lp;
using support::LpMaker;

class NetworkStart : public support::WithSolves {
 protected:
  void SetUp() override {
    WithSolves::SetUp();
    ASSERT_EQ(TVKaddfuncdest(env_, results_, &text_, support::keep_text), 0);
  }
  void set(int parameter, int value) { ASSERT_EQ(TVKsetintparam(env_, parameter, value), 0); }
  std::string text_;
};

TEST_F(NetworkStart, RandomModelsHaveTheSimplexAnswer) {
  LpMaker maker(support::fresh_seed());
  set(TVK_PARAM_SIMDISPLAY, 0);
  set(TVK_PARAM_NETDISPLAY, 0);
  for (int k = 0; k < 400 && !HasFailure(); ++k) {
    const Lp model = k % 10 == 0 ? support::assignment(5, k % 20 == 0 ? TVK_MIN : TVK_MAX) : maker.draw(8);
    ProbHandle lp = load(model), other = load(model);
    set(TVK_PARAM_PREIND, k % 2);
    set(TVK_PARAM_NETFIND, 1 + k % 3);
    set(TVK_PARAM_LPMETHOD, k % 5 == 0 ? 3 : 0);
    const support::Outcome right = outcome_of(env_, other, model, TVKdualopt(env_, other));
    const int code = k % 5 == 0 ? TVKlpopt(env_, lp) : TVKhybnetopt(env_, lp, "pd"[k / 2 % 2]);
    const support::Outcome found = outcome_of(env_, lp, model, code);
    EXPECT_EQ(found.status, right.status) << describe(model);
    EXPECT_EQ(check_answer(env_, lp, model, found), "") << describe(model);
    EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
    EXPECT_EQ(TVKfreeprob(env_, &other), 0);
  }
}

TEST_F(NetworkStart, ReportsTheNetworkAndLeavesTheSimplexNothingToDo) {
  const Lp model = support::assignment(12, TVK_MIN);
  ProbHandle lp = load(model);
  set(TVK_PARAM_PREIND, 0);
  ASSERT_EQ(TVKhybnetopt(env_, lp, 'd'), 0);
  EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_OPTIMAL);
  EXPECT_EQ(TVKgetitcnt(env_, lp), 0);
  std::size_t at = 0;
  for (const char* line : {"Extraction time = ", "Iteration log . . .\n",
                           "Network - Optimal:  Objective = ", "Network time = ", " sec.  Iterations = "}) {
    const std::size_t found = text_.find(line, at);
    ASSERT_NE(found, std::string::npos) << line << "in\n" << text_;
    at = found;
  }
  text_.clear();
  set(TVK_PARAM_NETDISPLAY, 0);
  ASSERT_EQ(TVKhybnetopt(env_, lp, 'p'), 0);
  EXPECT_EQ(text_.find("Network"), std::string::npos) << text_;
  Lp free_of_cost = support::assignment(3, TVK_MAX);
  free_of_cost.obj.assign(free_of_cost.obj.size(), 0.0);
  set(TVK_PARAM_NETDISPLAY, 2);
  ASSERT_EQ(TVKhybnetopt(env_, load(free_of_cost), 'p'), 0);
  EXPECT_NE(text_.find("Network - Optimal:  Objective =    0.0000000000e+00\n"), std::string::npos) << text_;
}

TEST_F(NetworkStart, TakesItsLettersOnlyAndStopsInTime) {
  const Lp model = support::assignment(30, TVK_MIN);
  ProbHandle lp = load(model);
  for (const int wrong : {0, 3, -1, static_cast<int>('n'), static_cast<int>('b')})
    EXPECT_EQ(TVKhybnetopt(env_, lp, wrong), 1292) << wrong;
  for (const char good : {'o', 'O', 'p', 'P', 'd', 'D', 't', 'T', '\1', '\2'})
    EXPECT_EQ(TVKhybnetopt(env_, lp, good), 0) << good;
  volatile int stop = 1;
  ASSERT_EQ(TVKsetterminate(env_, &stop), 0);
  for (const int presolve : {0, 1}) {
    set(TVK_PARAM_PREIND, presolve);
    EXPECT_EQ(TVKhybnetopt(env_, lp, 'd'), 0);
    EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_USER_ABORT);
  }
  ASSERT_EQ(TVKsetterminate(env_, nullptr), 0);
}

TEST_F(NetworkStart, EachEndingOfTheNetworkIsReported) {
  const Lp model = support::assignment(30, TVK_MIN);
  set(TVK_PARAM_PREIND, 0);
  const auto said = [&](ProbHandle lp) {
    text_.clear();
    EXPECT_EQ(TVKhybnetopt(env_, lp, 'd'), 0);
    return text_;
  };
  ProbHandle lp = load(model);
  set(TVK_PARAM_NETITLIM, 7);
  EXPECT_NE(said(lp).find("Network - Iteration limit exceeded:  "), std::string::npos) << text_;
  EXPECT_NE(text_.find("Iterations = 7 ("), std::string::npos) << text_;
  EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_OPTIMAL) << "the simplex goes on from there";
  EXPECT_GT(TVKgetitcnt(env_, lp), 0);
  set(TVK_PARAM_NETITLIM, 2100000000);

  constexpr int kTickLimit = 1127;
  ASSERT_EQ(TVKsetdblparam(env_, kTickLimit, 1.0), 0);
  EXPECT_NE(said(lp).find("Network - Deterministic time limit exceeded:  "), std::string::npos) << text_;
  EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_TICK_LIMIT);
  ASSERT_EQ(TVKsetdblparam(env_, kTickLimit, 1e75), 0);
  ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_TILIM, 0.0), 0);
  EXPECT_NE(said(lp).find("Network - Time limit exceeded:  "), std::string::npos) << text_;
  EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_TIME_LIMIT);
  ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_TILIM, 1e75), 0);

  int calls = 0;
  const auto stop_third = [](ConstEnvHandle, void*, int, void* handle) {
    return ++*static_cast<int*>(handle) == 3 ? 1 : 0;
  };
  ASSERT_EQ(TVKsetlpcallbackfunc(env_, stop_third, &calls), 0);
  EXPECT_NE(said(lp).find("Network - Aborted:  "), std::string::npos) << text_;
  EXPECT_EQ(calls, 3) << "the simplex asks no more";
  EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_USER_ABORT);
  ASSERT_EQ(TVKsetlpcallbackfunc(env_, nullptr, nullptr), 0);

  const int row = 0;
  const double more = 50, rhs = model.rhs[0];
  ASSERT_EQ(TVKchgrhs(env_, lp, 1, &row, &more), 0);
  EXPECT_NE(said(lp).find("Network - Infeasible:  Infeasibility = "), std::string::npos) << text_;
  EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_INFEASIBLE);
  EXPECT_GT(support::statistics(env_, lp)["network"]["arcs"], 0);
  ASSERT_EQ(TVKchgrhs(env_, lp, 1, &row, &rhs), 0);
  // To and fro between two rows, at a gain.
  const double cost[] = {-1000, 0}, value[] = {1, -1, -1, 1};
  const int begin[] = {0, 2}, rows[] = {0, 1, 0, 1};
  ASSERT_EQ(TVKaddcols(env_, lp, 2, 4, cost, begin, rows, value, nullptr, nullptr, nullptr), 0);
  EXPECT_NE(said(lp).find("Network - Unbounded:  "), std::string::npos) << text_;
  EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_UNBOUNDED);
}

}  // namespace
