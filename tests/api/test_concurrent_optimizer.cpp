/* Several algorithms at once: the answer is right and, where it is asked for, the same in every run; what they leave
 * behind is the caller's own. */
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "support/random.h"
#include "support/solve_fixture.h"

namespace {

using support::Lp;
using support::LpMaker;

std::string contents(const char* file) {
  std::ifstream stream(file);
  return {std::istreambuf_iterator<char>(stream), {}};
}

extern "C" int note_thread(ConstEnvHandle, void*, int, void* handle) {
  static_cast<std::vector<std::thread::id>*>(handle)->push_back(std::this_thread::get_id());
  return 0;
}
extern "C" int stop_at_once(ConstEnvHandle, void*, int, void*) {
  return 1;
}

class ConcurrentOptimizer : public support::WithSolves {
 protected:
  void SetUp() override {
    WithSolves::SetUp();
    ASSERT_EQ(TVKaddfuncdest(env_, results_, &results_text_, support::keep_text), 0);
    set(TVK_PARAM_LPMETHOD, 6);
    set(TVK_PARAM_THREADS, 2);
  }
  void set(int parameter, int value) { ASSERT_EQ(TVKsetintparam(env_, parameter, value), 0); }
  std::string log() { return std::exchange(results_text_, {}); }
  bool told(const std::string& text) const { return results_text_.find(text) != std::string::npos; }

  std::string results_text_;
};

TEST_F(ConcurrentOptimizer, AnswersEveryProblemAsItsProofDemands) {
  LpMaker maker(support::fresh_seed());
  set(TVK_PARAM_SIMDISPLAY, 0);
  for (int k = 0; k < 150 && !HasFailure(); ++k) {
    const Lp lp = maker.draw(8);
    set(TVK_PARAM_PREIND, k % 2);
    set(TVK_PARAM_PARALLELMODE, k % 3 - 1);
    ProbHandle prob = load(lp);
    const support::Outcome alone = outcome_of(env_, prob, lp, TVKdualopt(env_, prob));
    std::vector<int> columns(static_cast<std::size_t>(lp.columns)),
        rows(static_cast<std::size_t>(lp.rows) + 1);
    const int had_basis = TVKgetbase(env_, prob, columns.data(), rows.data());
    set(TVK_PARAM_ADVIND, k % 5 == 0 ? 1 : 0);
    const support::Outcome found = outcome_of(env_, prob, lp, TVKlpopt(env_, prob));
    EXPECT_EQ(found.status, alone.status) << describe(lp);
    EXPECT_EQ(check_answer(env_, prob, lp, found), "") << describe(lp);
    EXPECT_EQ(TVKgetbase(env_, prob, columns.data(), rows.data()), had_basis) << describe(lp);
    EXPECT_EQ(TVKfreeprob(env_, &prob), 0);
  }
}

TEST_F(ConcurrentOptimizer, DeterministicRunsRepeatToTheLastDigit) {
  const Lp lp = support::assignment(30, TVK_MIN);
  for (const int presolve : {0, 1}) {
    set(TVK_PARAM_PREIND, presolve);
    std::vector<support::Outcome> outcomes;
    for (int round = 0; round < 4; ++round) {
      ProbHandle prob = load(lp);
      outcomes.push_back(outcome_of(env_, prob, lp, TVKlpopt(env_, prob)));
      EXPECT_EQ(TVKfreeprob(env_, &prob), 0);
    }
    for (const support::Outcome& outcome : outcomes) {
      EXPECT_EQ(outcome.status, TVK_STATUS_OPTIMAL);
      EXPECT_EQ(outcome.iterations, outcomes[0].iterations);
      EXPECT_EQ(outcome.x, outcomes[0].x);
      EXPECT_EQ(outcome.pi, outcomes[0].pi);
    }
  }
}

TEST_F(ConcurrentOptimizer, TellsWhatItDoesAndWhoHasWon) {
  const Lp lp = support::assignment(12, TVK_MIN);
  ProbHandle prob = load(lp);
  ASSERT_EQ(TVKlpopt(env_, prob), 0);
  EXPECT_TRUE(told("Parallel mode: deterministic, using up to 2 threads for concurrent optimization.\n"));
  EXPECT_TRUE(told("\nDual simplex solved model.\n\n"));  // the primal's handicap is more than all the work
  EXPECT_FALSE(told("Warning"));
  log();
  set(TVK_PARAM_ADVIND, 0);
  set(TVK_PARAM_BARCROSSALG, -1);
  set(TVK_PARAM_PARALLELMODE, -1);
  ASSERT_EQ(TVKlpopt(env_, prob), 0);
  EXPECT_EQ(
      log().find("Warning: concurrent optimization will not use barrier because\ncrossover was disabled.\n"
                 "Parallel mode: opportunistic, using up to 2 threads for concurrent optimization.\n"),
      0U);
  set(TVK_PARAM_THREADS, 1);
  ASSERT_EQ(TVKlpopt(env_, prob), 0);
  EXPECT_FALSE(told("Parallel mode"));
  EXPECT_EQ(TVKgetstat(env_, prob), TVK_STATUS_OPTIMAL);
  log();
  set(TVK_PARAM_THREADS, 2);
  set(TVK_PARAM_SIMDISPLAY, 0);
  ASSERT_EQ(TVKlpopt(env_, prob), 0);
  EXPECT_FALSE(told("Parallel mode"));
  EXPECT_FALSE(told("solved model"));
}

TEST_F(ConcurrentOptimizer, OnlySolvedModelsAreToldSolved) {
  set(TVK_PARAM_ADVIND, 0);
  for (const int presolve : {0, 1}) {
    set(TVK_PARAM_PREIND, presolve);
    ProbHandle prob = load(support::assignment(12, TVK_MIN));
    ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_OBJULIM, 0), 0);
    ASSERT_EQ(TVKlpopt(env_, prob), 0);
    EXPECT_EQ(TVKgetstat(env_, prob), TVK_STATUS_OBJECTIVE_LIMIT);
    EXPECT_FALSE(told("solved model"));
    ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_OBJULIM, 1e75), 0);
    ASSERT_EQ(TVKlpopt(env_, prob), 0);
    EXPECT_EQ(TVKgetstat(env_, prob), TVK_STATUS_OPTIMAL);
    EXPECT_TRUE(told("\nDual simplex solved model.\n\n"));
    log();
  }
}

TEST_F(ConcurrentOptimizer, ClonesLogToFilesOfTheirOwn) {
  const std::filesystem::path before = std::filesystem::current_path();
  const std::filesystem::path place =
      std::filesystem::temp_directory_path() / ("tovik-clones-" + std::to_string(support::fresh_seed()));
  std::filesystem::create_directory(place);
  std::filesystem::current_path(place);
  FILE* const file = std::fopen("own.log", "w");
  ASSERT_EQ(TVKsetlogfile(env_, file), 0);
  set(TVK_PARAM_PARALLELMODE, 1);
  ProbHandle prob = load(support::assignment(12, TVK_MIN));
  EXPECT_EQ(TVKlpopt(env_, prob), 0);
  EXPECT_EQ(TVKsetlogfile(env_, nullptr), 0);
  std::fclose(file);
  const std::string clone = contents("clone1.log"), own = contents("own.log");
  EXPECT_EQ(clone.find("\nLog for 'model' Clone_1 (V" + std::string(TVKversion(env_)) + ") "), 0U);
  EXPECT_NE(clone.find("\nDual simplex solved model.\n\n"), std::string::npos);
  EXPECT_NE(own.find("\nDual simplex solved model.\n\n"), std::string::npos);
  EXPECT_EQ(own.find("Clone_"), std::string::npos);
  std::filesystem::current_path(before);
  std::filesystem::remove_all(place);
}

TEST_F(ConcurrentOptimizer, CallbacksAndLimitsAreTheCallers) {
  set(TVK_PARAM_PREIND, 0);
  const Lp lp = support::assignment(40, TVK_MIN);
  std::vector<std::thread::id> threads;
  ProbHandle prob = load(lp);
  ASSERT_EQ(TVKsetlpcallbackfunc(env_, note_thread, &threads), 0);
  ASSERT_EQ(TVKlpopt(env_, prob), 0);
  EXPECT_FALSE(threads.empty());
  for (const std::thread::id id : threads) EXPECT_EQ(id, std::this_thread::get_id());
  set(TVK_PARAM_ADVIND, 0);
  ASSERT_EQ(TVKsetlpcallbackfunc(env_, stop_at_once, nullptr), 0);
  ASSERT_EQ(TVKlpopt(env_, prob), 0);
  EXPECT_EQ(TVKgetstat(env_, prob), TVK_STATUS_USER_ABORT);
  ASSERT_EQ(TVKsetlpcallbackfunc(env_, nullptr, nullptr), 0);
  volatile int flag = 1;
  ASSERT_EQ(TVKsetterminate(env_, &flag), 0);
  ASSERT_EQ(TVKlpopt(env_, prob), 0);
  EXPECT_EQ(TVKgetstat(env_, prob), TVK_STATUS_USER_ABORT);
  ASSERT_EQ(TVKsetterminate(env_, nullptr), 0);
  set(TVK_PARAM_ITLIM, 3);
  set(TVK_PARAM_BARITLIM, 3);
  ASSERT_EQ(TVKlpopt(env_, prob), 0);
  EXPECT_EQ(TVKgetstat(env_, prob), TVK_STATUS_ITERATION_LIMIT);
  set(TVK_PARAM_ITLIM, 2100000000);
  ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_TILIM, 0), 0);
  ASSERT_EQ(TVKlpopt(env_, prob), 0);
  EXPECT_EQ(TVKgetstat(env_, prob), TVK_STATUS_TIME_LIMIT);
}

TEST_F(ConcurrentOptimizer, CrossedBoundsAreThePrimalsAlone) {
  set(TVK_PARAM_PREIND, 0);
  Lp lp = support::assignment(3, TVK_MIN);
  lp.lb[2] = 4;
  lp.ub[2] = 3;
  ProbHandle prob = load(lp);
  ASSERT_EQ(TVKlpopt(env_, prob), 0);
  EXPECT_EQ(TVKgetstat(env_, prob), TVK_STATUS_INFEASIBLE);
  EXPECT_EQ(TVKgetmethod(env_, prob), 1);
  EXPECT_FALSE(told("solved model"));
}

}  // namespace
