/* What changes discard, which parts of a planted solution can be queried, and nested limits. */
#include <gtest/gtest.h>

#include "env/handles.h"
#include "env/limits.h"

namespace tovik {
namespace {

class Changes : public testing::Test {
 protected:
  void SetUp() override {
    int status = -1;
    env_ = TVKopenTOVIK(&status);
    ASSERT_EQ(status, 0);
    lp_ = TVKcreateprob(env_, &status, "planted");
    const double lb = 0, ub = 1;
    ASSERT_EQ(TVKnewcols(env_, lp_, 1, nullptr, &lb, &ub, nullptr, nullptr), 0);
    ASSERT_EQ(TVKnewrows(env_, lp_, 1, nullptr, "L", nullptr, nullptr), 0);
    fill(*from_handle(lp_));
  }
  void TearDown() override { EXPECT_EQ(TVKcloseTOVIK(&env_), 0); }

  static void fill(Problem& problem) {
    problem.status = 1;
    problem.solution = std::make_unique<Solution>();
    problem.solution->x = problem.solution->slack = problem.solution->pi = problem.solution->dj = {0.5};
    problem.solution->method = 2;
    problem.solution->has_basis = true;
    problem.start = Start{};
    problem.start.column_status = {1};
    problem.start.row_status = {0};
    problem.norms.dual = {1.0};
    problem.simplex = std::make_unique<Derived>();
    problem.presolve = std::make_unique<Derived>();
    problem.mip = std::make_unique<Derived>();
    problem.working = std::make_unique<Problem>(*problem.env);
    problem.derived = std::make_unique<Problem>(*problem.env);
  }

  EnvHandle env_ = nullptr;
  ProbHandle lp_ = nullptr;
};

TEST_F(Changes, EachKindDropsItsOwn) {
  struct Kept {
    Change change;
    bool status, nested, presolve, simplex, solution, norms, mip, start;
    int level;
  };
  const Kept table[] = {
      {Change::names, true, false, true, true, true, true, true, true, 0},
      {Change::objective, false, false, false, true, true, true, true, true, 2},
      {Change::rhs, false, false, false, true, true, true, true, true, 1},
      {Change::matrix, false, false, false, false, true, true, true, false, 1},
      {Change::add_columns, false, false, false, true, true, true, true, true, 3},
      {Change::branching_order, true, false, true, true, true, true, false, true, 0},
      {Change::starts, true, false, true, true, true, true, true, true, 0},
      {Change::rows, false, false, false, false, true, false, false, true, 1},
      {Change::problem_type, false, false, false, false, false, false, false, false, 1},
      {Change::norms, true, true, true, true, true, false, true, true, 0},
      {Change::unscaling, true, true, true, true, true, false, true, true, 0},
  };
  for (const Kept& kept : table) {
    SCOPED_TRACE(static_cast<int>(kept.change));
    Problem& p = *from_handle(lp_);
    fill(p);
    invalidate(p, kept.change);
    EXPECT_EQ(p.status != 0, kept.status);
    EXPECT_EQ(p.working != nullptr && p.derived != nullptr, kept.nested);
    EXPECT_EQ(p.presolve != nullptr, kept.presolve);
    EXPECT_EQ(p.simplex != nullptr, kept.simplex);
    EXPECT_EQ(p.solution != nullptr, kept.solution);
    EXPECT_EQ(!p.norms.dual.empty(), kept.norms);
    EXPECT_EQ(p.mip != nullptr, kept.mip);
    EXPECT_EQ(p.start.has_basis(), kept.start);
    EXPECT_EQ(p.start.change_level, kept.level);
  }
}

TEST_F(Changes, TheLargestLevelStays) {
  Problem& p = *from_handle(lp_);
  for (Change change : {Change::add_columns, Change::rhs, Change::objective, Change::matrix})
    invalidate(p, change);
  EXPECT_EQ(p.start.change_level, 3);
}

TEST_F(Changes, AWorkingProblemsSolutionIsCarriedBack) {
  Problem& p = *from_handle(lp_);
  p.status = 0;
  p.working->status = 3;
  p.working->solution = std::move(p.solution);
  const ProbHandle working = to_handle(p.working.get());
  EXPECT_EQ(TVKgetprobtype(env_, working), 0);
  EXPECT_EQ(TVKgetstat(env_, lp_), 3);
  invalidate(p, Change::names);
  EXPECT_EQ(TVKgetstat(env_, lp_), 3);
  EXPECT_EQ(TVKgetprobtype(env_, working), -1);
  ProbHandle nested = to_handle(p.presolve ? p.env->problems.front().get() : nullptr);
  EXPECT_EQ(nested, lp_);
}

TEST_F(Changes, ANestedProblemIsFreedWithItsOwnerOnly) {
  ProbHandle nested = to_handle(from_handle(lp_)->working.get());
  const ProbHandle copy = nested;
  EXPECT_EQ(TVKfreeprob(env_, &nested), 1009);
  EXPECT_EQ(TVKfreeprob(env_, &lp_), 0);
  EXPECT_EQ(TVKgetprobtype(env_, copy), -1);
}

TEST_F(Changes, QueriesReadWhatThePlantedSolutionHolds) {
  Problem& p = *from_handle(lp_);
  double value[1];
  int method = 0, type = 0;
  const auto solution_type = [&] {
    EXPECT_EQ(TVKsolninfo(env_, lp_, &method, &type, nullptr, nullptr), 0);
    return type;
  };
  EXPECT_EQ(solution_type(), 1);
  p.solution->has_basis = false;
  EXPECT_EQ(solution_type(), 2);
  p.solution->pi.clear();
  EXPECT_EQ(solution_type(), 3);
  EXPECT_EQ(TVKgetdj(env_, lp_, value, 0, 0), 1232);
  EXPECT_EQ(TVKsolution(env_, lp_, nullptr, nullptr, nullptr, value, nullptr, nullptr), 1232);
  EXPECT_EQ(TVKgetx(env_, lp_, value, 0, 0), 0);

  p.type = 1;
  p.solution->pi = {0.5};
  p.solution->method = 12;
  EXPECT_EQ(TVKgetpi(env_, lp_, value, 0, 0), 1017);
  EXPECT_EQ(solution_type(), 3);
  EXPECT_EQ(TVKgetmethod(env_, lp_), 12);
  p.solution->x.clear();
  EXPECT_EQ(TVKgetslack(env_, lp_, value, 0, 0), 3023);
  EXPECT_EQ(TVKgetcolinfeas(env_, lp_, nullptr, value, 0, 0), 3023);
  EXPECT_EQ(TVKsolution(env_, lp_, &type, value, nullptr, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(TVKsolution(env_, lp_, &type, value, value, nullptr, nullptr, nullptr), 3023);

  p.type = 3;
  EXPECT_EQ(TVKcleanup(env_, lp_, 1e-9), 1023);
  EXPECT_EQ(p.status, 1);
}

TEST_F(Changes, InsideTheInfoCallbackOnlyHarmlessRoutinesWork) {
  Environment& env = *from_handle(ConstEnvHandle(env_));
  env.in_callback = 1;
  EnvHandle handle = env_;
  double x[1];
  EXPECT_EQ(TVKcloseTOVIK(&handle), 1804);
  EXPECT_EQ(TVKgetx(env_, lp_, x, 0, 0), 1804);
  EXPECT_EQ(TVKgetprobtype(env_, nullptr), -1);
  EXPECT_STREQ(TVKversion(env_), "12.2.0.0");
  EXPECT_EQ(TVKgettime(env_, x), 0);
  env.in_callback = 0;
  const Entrance optimizer(env);  // as every routine does
  EXPECT_EQ(TVKcloseTOVIK(&handle), 1804);
}

TEST(Limits, InnerFramesNeverOutliveOuterOnes) {
  LimitFrames frames;
  frames.push(10, 1e75, 5, 1e75);
  EXPECT_EQ(frames.top()->deadline, 1e75);
  EXPECT_EQ(frames.top()->tick_deadline, ~std::uint64_t{0});
  frames.push(10, 100, 5, 1000);
  frames.push(20, 200, 50, 10);
  EXPECT_EQ(frames.top()->deadline, 110);
  EXPECT_EQ(frames.top()->tick_deadline, 60u);
  frames.pop();
  EXPECT_EQ(frames.top()->tick_deadline, 1005u);
}

}  // namespace
}  // namespace tovik
