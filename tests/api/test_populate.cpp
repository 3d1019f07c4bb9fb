/* Filling the solution pool through the public header: statuses, limits, callbacks, what goes on and what begins anew. */
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "support/control_callbacks.h"

namespace {

class Populate : public support::WithControl {
 protected:
  void SetUp() override {
    WithControl::SetUp();
    set(TVK_PARAM_SOLNPOOLINTENSITY, 4);
  }
  void set(int parameter, int value) { ASSERT_EQ(TVKsetintparam(env_, parameter, value), 0); }
  int populate(ProbHandle lp) {
    EXPECT_EQ(TVKpopulate(env_, lp), 0) << errors();
    return TVKgetstat(env_, lp);
  }
  int count(ProbHandle lp) { return TVKgetsolnpoolnumsolns(env_, lp); }
  std::vector<double> objectives(ProbHandle lp) {
    std::vector<double> all(static_cast<std::size_t>(count(lp)));
    for (std::size_t k = 0; k < all.size(); ++k)
      EXPECT_EQ(TVKgetsolnpoolobjval(env_, lp, static_cast<int>(k), &all[k]), 0);
    std::sort(all.begin(), all.end());
    return all;
  }
  /* Seven points, values 0 1 2 3 3 4 5. */
  ProbHandle seven() {
    return read("Maximize obj: 3 a + 2 b + c\nSubject To\n r: a + b + c <= 2\nBinary\n a b c\nEnd\n");
  }
};

}  // namespace

TEST_F(Populate, EndsAtItsLimitOrWithAll) {
  ProbHandle lp = seven();
  set(TVK_PARAM_POPULATELIM, 3);
  EXPECT_EQ(populate(lp), TVK_STATUS_POPULATE_SOLUTION_LIMIT);
  EXPECT_GE(count(lp), 3);
  EXPECT_LT(count(lp), 7);
  const int before = count(lp);
  EXPECT_EQ(populate(lp), TVK_STATUS_POPULATE_SOLUTION_LIMIT);
  EXPECT_EQ(count(lp), before + 3);
  int status = 0;
  for (int call = 0; call < 3; ++call) status = populate(lp);
  EXPECT_EQ(status, TVK_STATUS_ALL_SOLUTIONS_FOUND);
  EXPECT_EQ(objectives(lp), (std::vector<double>{0, 1, 2, 3, 3, 4, 5}));
  EXPECT_EQ(objective(lp), 5);
  EXPECT_EQ(x(lp), (std::vector<double>{1, 1, 0}));
  double bound = NAN;
  EXPECT_EQ(TVKgetbestobjval(env_, lp, &bound), 0);
  EXPECT_NEAR(bound, 5, 1e-6);

  // A smaller gap thins the pool out, a wider one finds again what has gone.
  ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_SOLNPOOLAGAP, 1), 0);
  EXPECT_EQ(populate(lp), TVK_STATUS_ALL_SOLUTIONS_FOUND_TOLERANCE);
  EXPECT_EQ(objectives(lp), (std::vector<double>{4, 5}));
  ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_SOLNPOOLAGAP, 1e75), 0);
  ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_SOLNPOOLGAP, 0.4), 0);  // 3 is as bad as may be
  set(TVK_PARAM_POPULATELIM, 100);
  EXPECT_EQ(populate(lp), TVK_STATUS_ALL_SOLUTIONS_FOUND_TOLERANCE);
  EXPECT_EQ(objectives(lp), (std::vector<double>{3, 3, 4, 5}));

  // A change of the model begins anew.
  const int third = 2;
  const double cost = -1;
  ASSERT_EQ(TVKchgobj(env_, lp, 1, &third, &cost), 0);
  EXPECT_EQ(count(lp), 0);
  EXPECT_EQ(populate(lp), TVK_STATUS_ALL_SOLUTIONS_FOUND_TOLERANCE);
  EXPECT_EQ(objectives(lp), (std::vector<double>{3, 5}));
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
}

TEST_F(Populate, LessIntensityFindsSolutionsToo) {
  for (const int intensity : {0, 1, 2, 3}) {
    SCOPED_TRACE(intensity);
    ProbHandle lp = seven();
    set(TVK_PARAM_SOLNPOOLINTENSITY, intensity);
    EXPECT_EQ(populate(lp), TVK_STATUS_ALL_SOLUTIONS_FOUND);
    const std::vector<double> found = objectives(lp);
    EXPECT_EQ(found.back(), 5);
    EXPECT_GE(found.size(), intensity == 3 ? 7u : 1u);
    EXPECT_LE(found.size(), 7u);
    TVKfreeprob(env_, &lp);
  }
}

TEST_F(Populate, FullPoolsKeepWhatTheirRuleSays) {
  set(TVK_PARAM_POPULATELIM, 1000);
  for (const int rule : {0, 1, 2}) {
    SCOPED_TRACE(rule);
    set(TVK_PARAM_SOLNPOOLCAPACITY, 2);
    set(TVK_PARAM_SOLNPOOLREPLACE, rule);
    ProbHandle lp = seven();
    EXPECT_EQ(populate(lp), TVK_STATUS_ALL_SOLUTIONS_FOUND);  // none comes twice, though it has left
    EXPECT_EQ(count(lp), 2);
    if (rule == 0) {
      EXPECT_EQ(TVKgetsolnpoolnumreplaced(env_, lp), 5);
    } else if (rule == 1) {
      EXPECT_EQ(objectives(lp), (std::vector<double>{4, 5}));
    }
    EXPECT_EQ(objective(lp), 5);
    TVKfreeprob(env_, &lp);
  }
}

TEST_F(Populate, WithoutEndWhereColumnsHaveNoBounds) {
  ProbHandle lp = read(
      "Minimize obj: x + y\nSubject To\n r: x - y >= -3\nBounds\n x <= 1e30\n y <= 1e30\n"
      "General\n x y\nEnd\n");
  set(TVK_PARAM_POPULATELIM, 40);
  EXPECT_EQ(populate(lp), TVK_STATUS_POPULATE_SOLUTION_LIMIT);
  EXPECT_GE(count(lp), 40);
  EXPECT_EQ(objective(lp), 0);
  for (int k = 0; k < count(lp); ++k) {
    double point[2] = {-1, -1};
    ASSERT_EQ(TVKgetsolnpoolx(env_, lp, k, point, 0, 1), 0);
    EXPECT_GE(point[0] - point[1], -3);
    EXPECT_EQ(point[0], std::round(point[0]));
  }
}

TEST_F(Populate, OfProblemsWithoutSolutionsOrIntegers) {
  EXPECT_EQ(populate(read("Minimize obj: a\nSubject To\n r: a + b >= 3\nBinary\n a b\nEnd\n")),
            TVK_STATUS_MIP_INFEASIBLE);
  const int unbounded = populate(read("Maximize obj: x + a\nSubject To\n r: a <= 1\nBinary\n a\nEnd\n"));
  EXPECT_TRUE(unbounded == TVK_STATUS_MIP_UNBOUNDED || unbounded == TVK_STATUS_MIP_INFEASIBLE_OR_UNBOUNDED);
  EXPECT_EQ(TVKpopulate(env_, read("Minimize obj: x\nSubject To\n r: x >= 3\nEnd\n")), TVK_ERROR_NOT_MIP);
  ProbHandle empty = read("Minimize obj: x\nSubject To\n r: x >= 3\nEnd\n");
  ASSERT_EQ(TVKchgprobtype(env_, empty, TVK_PROBTYPE_MILP), 0);
  EXPECT_EQ(populate(empty), TVK_STATUS_ALL_SOLUTIONS_FOUND);
  EXPECT_EQ(count(empty), 1);
}

TEST_F(Populate, LimitsAreMetAndGoneOnFrom) {
  ProbHandle lp = knapsacks(24, 2, 5);
  ASSERT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  const double best = objective(lp);
  const int nodes = TVKgetnodecnt(env_, lp);
  set(TVK_PARAM_POPULATELIM, 1000000);
  set(TVK_PARAM_NODELIM, nodes + 100);
  EXPECT_EQ(populate(lp), TVK_STATUS_MIP_NODE_LIMIT);
  EXPECT_EQ(TVKgetnodecnt(env_, lp), nodes + 100);
  const int first = count(lp);
  set(TVK_PARAM_NODELIM, 2100000000);
  ASSERT_EQ(TVKsetdblparam(env_, 1127, 1e5), 0);
  EXPECT_EQ(populate(lp), TVK_STATUS_MIP_TICK_LIMIT);
  EXPECT_GT(count(lp), first);
  ASSERT_EQ(TVKsetdblparam(env_, 1127, 1e75), 0);
  ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_TILIM, 0.05), 0);
  EXPECT_EQ(populate(lp), TVK_STATUS_MIP_TIME_LIMIT);
  ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_TILIM, 1e75), 0);
  int stop = 1;
  ASSERT_EQ(TVKsetterminate(env_, &stop), 0);
  EXPECT_EQ(populate(lp), TVK_STATUS_MIP_USER_ABORT);
  ASSERT_EQ(TVKsetterminate(env_, nullptr), 0);
  EXPECT_EQ(objective(lp), best);
  ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_SOLNPOOLAGAP, 10), 0);
  EXPECT_EQ(populate(lp), TVK_STATUS_ALL_SOLUTIONS_FOUND_TOLERANCE);
  const std::vector<double> found = objectives(lp);
  EXPECT_GE(found.front(), best - 10);

  // The same in one go.
  ProbHandle fresh = knapsacks(24, 2, 5);
  EXPECT_EQ(populate(fresh), TVK_STATUS_ALL_SOLUTIONS_FOUND_TOLERANCE);
  EXPECT_EQ(objectives(fresh), found);
}

TEST_F(Populate, CallbacksJudgeWhatThePoolGets) {
  ProbHandle lp = seven();
  support::Control control;
  int asked = 0;
  control.incumbent = [&](const support::Context&, double, const double* point, int* feasible) {
    ++asked;
    *feasible = point[0] < 0.5 ? 1 : 0;
    return 0;
  };
  use(control);
  EXPECT_EQ(populate(lp), TVK_STATUS_ALL_SOLUTIONS_FOUND);
  EXPECT_EQ(objectives(lp), (std::vector<double>{0, 1, 2, 3}));
  EXPECT_GE(asked, 4);
  EXPECT_EQ(objective(lp), 3);
  ProbHandle stopped = seven();
  control.incumbent = [&](const support::Context&, double, const double*, int*) { return 1; };
  use(control);
  EXPECT_EQ(TVKpopulate(env_, stopped), TVK_ERROR_CALLBACK);
  use_none();
}
