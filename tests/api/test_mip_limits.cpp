// Every limit of the mixed-integer optimizer: its status with and without a solution, and that the search goes on to the same
// answer when the limit is gone.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "support/market_split.h"
#include "support/mip_fixture.h"

namespace {

constexpr int kTickLimit = 1127;

/* Three equations: the best objective is above the relaxation's. */
std::string long_model(int columns) {
  return support::market_split({.equations = 3, .columns = columns, .seed = 4711});
}

class MipLimits : public support::MipModels {
 protected:
  void set(int which, int value) { ASSERT_EQ(TVKsetintparam(env_, which, value), 0); }
  void set(int which, double value) { ASSERT_EQ(TVKsetdblparam(env_, which, value), 0); }
  void reset(int which) {
    int type = 0;
    ASSERT_EQ(TVKgetparamtype(env_, which, &type), 0);
    if (type == TVK_PARAMTYPE_INT) {
      int value = 0;
      ASSERT_EQ(TVKinfointparam(env_, which, &value, nullptr, nullptr), 0);
      set(which, value);
    } else {
      double value = 0;
      ASSERT_EQ(TVKinfodblparam(env_, which, &value, nullptr, nullptr), 0);
      set(which, value);
    }
  }
  void no_heuristics() {
    set(TVK_PARAM_HEURFREQ, -1);
    set(TVK_PARAM_RINSHEUR, -1);
  }
  void no_gaps() {
    set(TVK_PARAM_EPGAP, 0.0);
    set(TVK_PARAM_EPAGAP, 0.0);
  }
  double best_of(ProbHandle lp) {
    int status = 0;
    ProbHandle other = TVKcloneprob(env_, lp, &status);
    EXPECT_EQ(solve(other), TVK_STATUS_MIP_OPTIMAL);
    const double value = objective(other);
    EXPECT_EQ(TVKfreeprob(env_, &other), 0);
    return value;
  }
};

TEST_F(MipLimits, EachHasItsStatusAndTheSearchGoesOnToTheSameAnswer) {
  no_gaps();
  struct Case {
    const char* what;
    int parameter;
    std::function<void()> tighten;
    int status;  // with a solution; without one it is the next
  };
  volatile int stop = 0;
  const Case cases[] = {
      {"nodes", TVK_PARAM_NODELIM, [&] { set(TVK_PARAM_NODELIM, 7); }, TVK_STATUS_MIP_NODE_LIMIT},
      {"iterations", TVK_PARAM_ITLIM, [&] { set(TVK_PARAM_ITLIM, 60); }, TVK_STATUS_MIP_ITERATION_LIMIT},
      {"tree", TVK_PARAM_TRELIM, [&] { set(TVK_PARAM_TRELIM, 0.0008); }, TVK_STATUS_MIP_MEMORY_LIMIT},
      {"time", TVK_PARAM_TILIM, [&] { set(TVK_PARAM_TILIM, 0.0); }, TVK_STATUS_MIP_TIME_LIMIT},
      {"ticks", kTickLimit, [&] { set(kTickLimit, 100000.0); }, TVK_STATUS_MIP_TICK_LIMIT},
      {"terminate flag", -1, [&] { stop = 1; }, TVK_STATUS_MIP_USER_ABORT},
  };
  ASSERT_EQ(TVKsetterminate(env_, &stop), 0);
  ProbHandle reference = read(long_model(13));
  const double best = best_of(reference);
  for (const bool with_solution : {false, true}) {
    for (const Case& c : cases) {
      SCOPED_TRACE(std::string(c.what) + (with_solution ? " with a solution" : " without one"));
      int status = 0;
      ProbHandle lp = TVKcloneprob(env_, reference, &status);
      if (with_solution) {  // the model's slacks make any binary point one
        const int begin = 0, column = 6, effort = TVK_MIPSTART_SOLVEMIP;
        const double value = 1;
        ASSERT_EQ(TVKaddmipstarts(env_, lp, 1, 1, &begin, &column, &value, &effort, nullptr), 0);
        set(TVK_PARAM_INTSOLLIM, 1);
        ASSERT_EQ(solve(lp), TVK_STATUS_MIP_SOLUTION_LIMIT);
        reset(TVK_PARAM_INTSOLLIM);
      } else {
        // No solution of the kind is ever found: a cutoff that nothing meets keeps it so.
        no_heuristics();
        set(TVK_PARAM_CUTUP, best - 0.5);
      }
      c.tighten();
      const int first = solve(lp);
      EXPECT_EQ(first, c.status + (with_solution ? 0 : 1));
      double bound = 0, gap = 0;
      EXPECT_EQ(TVKgetbestobjval(env_, lp, &bound), 0);
      EXPECT_LE(bound, best + 1e-6);
      EXPECT_EQ(TVKgetmiprelgap(env_, lp, &gap), with_solution ? 0 : TVK_ERROR_NO_SOLUTION);
      const int nodes = TVKgetnodecnt(env_, lp);
      stop = 0;
      if (c.parameter >= 0) reset(c.parameter);
      const int last = solve(lp);
      EXPECT_GE(TVKgetnodecnt(env_, lp), nodes);
      if (with_solution) {
        EXPECT_EQ(last, TVK_STATUS_MIP_OPTIMAL);
        EXPECT_NEAR(objective(lp), best, 1e-6);
      } else {
        EXPECT_EQ(last, TVK_STATUS_MIP_INFEASIBLE);
        for (const int parameter : {TVK_PARAM_HEURFREQ, TVK_PARAM_RINSHEUR, TVK_PARAM_CUTUP})
          reset(parameter);
      }
      EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
    }
  }
  EXPECT_EQ(TVKsetterminate(env_, nullptr), 0);
}

TEST_F(MipLimits, EverySolutionLimitInTurnLeadsToTheOptimum) {
  no_gaps();
  ProbHandle lp = read(long_model(12));
  const double best = best_of(lp);
  double last = 1e20;
  int status = 0;
  for (int k = 1; k < 100; ++k) {
    set(TVK_PARAM_INTSOLLIM, k);
    status = solve(lp);
    if (status != TVK_STATUS_MIP_SOLUTION_LIMIT) break;
    EXPECT_EQ(TVKgetmipsolcnt(env_, lp), k);
    EXPECT_LT(objective(lp), last);
    last = objective(lp);
  }
  EXPECT_EQ(status, TVK_STATUS_MIP_OPTIMAL);
  EXPECT_NEAR(objective(lp), best, 1e-6);
}

TEST_F(MipLimits, ASmallerGapGoesOnWithTheTree) {
  ProbHandle lp = read(long_model(12));
  no_gaps();
  const double best = best_of(lp);
  ASSERT_GT(best, 0);
  set(TVK_PARAM_EPAGAP, best + 30);
  ASSERT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL_TOLERANCE);
  double bound = 0;
  ASSERT_EQ(TVKgetbestobjval(env_, lp, &bound), 0);
  EXPECT_LE(objective(lp) - bound, best + 30);
  const int nodes = TVKgetnodecnt(env_, lp);
  log_text_.clear();
  ASSERT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL_TOLERANCE);  // nothing is left to do
  EXPECT_EQ(TVKgetnodecnt(env_, lp), nodes);
  set(TVK_PARAM_EPAGAP, 0.0);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_NEAR(objective(lp), best, 1e-6);
}

TEST_F(MipLimits, WhatATreeHasDroppedIsSearchedAgainWhenItMayCount) {
  ProbHandle lp = read(long_model(12));
  no_gaps();
  const double best = best_of(lp);
  no_heuristics();
  // A cutoff below every solution, taken away in the middle.
  set(TVK_PARAM_CUTUP, best - 0.5);
  set(TVK_PARAM_NODELIM, 5);
  ASSERT_EQ(solve(lp), TVK_STATUS_MIP_NODE_LIMIT_NO_SOLUTION);
  reset(TVK_PARAM_CUTUP);
  reset(TVK_PARAM_NODELIM);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_NEAR(objective(lp), best, 1e-6);

  // The same with a wanted improvement.
  int status = 0;
  ProbHandle other = TVKcloneprob(env_, lp, &status);
  set(TVK_PARAM_OBJDIF, 5.0);
  set(TVK_PARAM_NODELIM, 50);
  ASSERT_EQ(solve(other), TVK_STATUS_MIP_NODE_LIMIT);
  reset(TVK_PARAM_OBJDIF);
  reset(TVK_PARAM_NODELIM);
  EXPECT_EQ(solve(other), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_NEAR(objective(other), best, 1e-6);
}

TEST_F(MipLimits, AnImprovementThatIsWantedEndsTheSearchEarlier) {
  ProbHandle lp = read(
      "max\n 5 a + 4 b + 3 c\nst\n 2 a + 3 b + c <= 5\n 4 a + b + 2 c <= 11\n 3 a + 4 b + 2 c <= 8\nbin\n a "
      "b "
      "c\nend");
  const int begin = 0, columns[] = {0, 1, 2};
  const double values[] = {1, 0, 1};
  ASSERT_EQ(TVKaddmipstarts(env_, lp, 1, 3, &begin, columns, values, nullptr, nullptr), 0);
  set(TVK_PARAM_ADVIND, 0);
  set(TVK_PARAM_OBJDIF, 1.5);  // 9 is not better than 8 by as much
  ASSERT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_NEAR(objective(lp), 8, 1e-9);
  set(TVK_PARAM_OBJDIF, 0.5);
  ASSERT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_NEAR(objective(lp), 9, 1e-9);
  reset(TVK_PARAM_OBJDIF);
  set(TVK_PARAM_RELOBJDIF, 0.2);
  ASSERT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_NEAR(objective(lp), 8, 1e-9);
}

}  // namespace
