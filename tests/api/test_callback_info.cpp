/* What the LP callback may ask for while it runs: numbers that agree with what the optimization says when it ends. */
#include <algorithm>
#include <vector>

#include "support/solve_fixture.h"

namespace {

using support::assignment;
using support::Lp;

struct Seen {
  int wherefrom = 0, phase = 0, method = 0, iterations = 0;
  double objective = 0, primal = 0, dual = 0, seconds = 0, ticks = 0;
  int rows_removed = 0, columns_removed = 0;
};

struct Watch {
  std::vector<Seen> seen;
  void* cbdata = nullptr;
  ProbHandle inner = nullptr;  // to be optimized from within the first call
};

extern "C" int look(ConstEnvHandle env, void* cbdata, int wherefrom, void* handle) {
  Watch& watch = *static_cast<Watch*>(handle);
  watch.cbdata = cbdata;
  Seen seen;
  seen.wherefrom = wherefrom;
  const auto ask = [&](int item, void* to) {
    EXPECT_EQ(TVKgetcallbackinfo(env, cbdata, wherefrom, item, to), 0) << wherefrom << ' ' << item;
  };
  const auto refused = [&](int item) {
    double value = -7;
    EXPECT_EQ(TVKgetcallbackinfo(env, cbdata, wherefrom, item, &value), TVK_ERROR_BAD_ARGUMENT) << item;
    EXPECT_EQ(value, -7);
  };
  ask(TVK_CALLBACK_INFO_SECONDS, &seen.seconds);
  ask(TVK_CALLBACK_INFO_TICKS, &seen.ticks);
  if (wherefrom == 1) {
    ask(TVK_CALLBACK_INFO_OBJECTIVE, &seen.objective);
    ask(TVK_CALLBACK_INFO_PRIMAL_INFEAS, &seen.primal);
    ask(TVK_CALLBACK_INFO_DUAL_INFEAS, &seen.dual);
    ask(TVK_CALLBACK_INFO_PHASE, &seen.phase);
    ask(TVK_CALLBACK_INFO_METHOD, &seen.method);
    ask(TVK_CALLBACK_INFO_ITERATIONS, &seen.iterations);
    refused(TVK_CALLBACK_INFO_ROWS_REMOVED);
  } else {
    ask(TVK_CALLBACK_INFO_ROWS_REMOVED, &seen.rows_removed);
    ask(TVK_CALLBACK_INFO_COLUMNS_REMOVED, &seen.columns_removed);
    refused(TVK_CALLBACK_INFO_PHASE);
  }
  refused(18);
  watch.seen.push_back(seen);
  if (watch.seen.size() > 1) return 0;
  int value = 0;
  EXPECT_EQ(TVKgetcallbackinfo(env, cbdata, wherefrom, TVK_CALLBACK_INFO_SECONDS, nullptr),
            TVK_ERROR_NULL_POINTER);
  EXPECT_EQ(TVKgetcallbackinfo(env, nullptr, wherefrom, TVK_CALLBACK_INFO_PHASE, &value), TVK_ERROR_CALLBACK);
  EXPECT_EQ(TVKgetcallbackinfo(env, &value, wherefrom, TVK_CALLBACK_INFO_PHASE, &value), TVK_ERROR_CALLBACK);
  EXPECT_EQ(TVKgetcallbackinfo(env, cbdata, 101, 101, &value), TVK_ERROR_CALLBACK);
  for (const int context : {0, 114})
    EXPECT_EQ(TVKgetcallbackinfo(env, cbdata, context, TVK_CALLBACK_INFO_PHASE, &value),
              TVK_ERROR_BAD_ARGUMENT);
  return 0;
}

extern "C" int optimize_another(ConstEnvHandle env, void* cbdata, int wherefrom, void* handle) {
  Watch& watch = *static_cast<Watch*>(handle);
  if (ProbHandle inner = std::exchange(watch.inner, nullptr); inner != nullptr) {
    watch.cbdata = cbdata;
    EXPECT_EQ(TVKprimopt(env, inner), 0);
  }
  int iterations = -1;
  EXPECT_EQ(TVKgetcallbackinfo(env, cbdata, wherefrom, TVK_CALLBACK_INFO_ITERATIONS, &iterations), 0);
  if (cbdata == watch.cbdata) watch.seen.push_back({.iterations = iterations});
  return 0;
}

class CallbackInfo : public support::WithSolves {
 protected:
  Watch watch(const Lp& model, int method) {
    Watch watch;
    ProbHandle lp = load(model);
    EXPECT_EQ(TVKsetlpcallbackfunc(env_, look, &watch), 0);
    EXPECT_EQ(run(lp, method), 0);
    EXPECT_EQ(TVKsetlpcallbackfunc(env_, nullptr, nullptr), 0);
    EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_OPTIMAL);
    optimum_ = objective(lp);
    iterations_ = TVKgetitcnt(env_, lp);
    EXPECT_EQ(TVKfreeprob(env_, &lp), 0);
    return watch;
  }
  double optimum_ = 0;
  int iterations_ = 0;
};

TEST_F(CallbackInfo, SimplexTellsPhaseObjectiveAndInfeasibilities) {
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, 0), 0);
  for (const int sense : {1, -1}) {
    for (const int method : {1, 2}) {
      SCOPED_TRACE(testing::Message() << "sense " << sense << " method " << method);
      const Watch found = watch(assignment(15, sense), method);
      ASSERT_GT(found.seen.size(), 10U);
      int iterations = 0;
      double ticks = 0;
      bool second = false;
      for (const Seen& seen : found.seen) {
        EXPECT_EQ(seen.method, method);
        EXPECT_GE(seen.iterations, iterations);
        EXPECT_GE(seen.ticks, ticks);
        EXPECT_GE(seen.seconds, 0);
        iterations = seen.iterations;
        ticks = seen.ticks;
        second = second || seen.phase == 2;
        if (seen.phase == 1) {
          EXPECT_EQ(method == 1 ? seen.dual : seen.primal, 1e20);
          EXPECT_GT(method == 1 ? seen.primal : seen.dual, 0);
        } else {
          // The primal comes to the optimum from the worse side, the dual from the better one; both are perturbed.
          const double ahead = sense * (seen.objective - optimum_) * (method == 1 ? 1 : -1);
          EXPECT_GE(ahead, -1e-2 * std::abs(optimum_)) << seen.objective;
          EXPECT_LE(method == 1 ? seen.primal : seen.dual, 1.0);
        }
      }
      EXPECT_TRUE(second);
      EXPECT_LE(iterations_ - iterations, 1);
      EXPECT_LT(found.seen.back().primal, 1e-2);
      const auto any = [&](auto member) {
        return std::ranges::any_of(found.seen,
                                   [&](const Seen& s) { return s.*member > 0.5 && s.*member < 1e20; });
      };
      EXPECT_TRUE(any(method == 1 ? &Seen::dual : &Seen::primal)) << "it has something to remove";
    }
  }
}

TEST_F(CallbackInfo, PresolveTellsWhatIsGone) {
  Lp model = assignment(10, 1);
  for (std::size_t j = 0; j < 5; ++j) model.ub[j] = 0;  // fixed columns, for presolve to take
  const Watch found = watch(model, 2);
  int most = 0;
  for (const Seen& seen : found.seen) {
    if (seen.wherefrom == 7) most = std::max(most, seen.columns_removed);
  }
  EXPECT_GE(most, 5);
}

TEST_F(CallbackInfo, EachCallbackHasItsOwnAndNoneBehindIt) {
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, 0), 0);
  Watch watch;
  watch.inner = load(assignment(6, 1));
  ProbHandle outer = load(assignment(12, 1));
  ASSERT_EQ(TVKsetlpcallbackfunc(env_, optimize_another, &watch), 0);
  ASSERT_EQ(run(outer, 2), 0);
  EXPECT_EQ(watch.seen.front().iterations, 0) << "of the outer one, which stands before its first step";
  EXPECT_GE(static_cast<int>(watch.seen.size()), TVKgetitcnt(env_, outer));
  int value = -7;
  EXPECT_EQ(TVKgetcallbackinfo(env_, watch.cbdata, 1, TVK_CALLBACK_INFO_PHASE, &value), TVK_ERROR_CALLBACK);
  EXPECT_EQ(value, -7);
}

}  // namespace
