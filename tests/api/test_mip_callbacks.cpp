/* Callbacks of the mixed-integer optimizer: registration, and those that inform. */
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "support/knapsack_models.h"

namespace {

extern "C" int inform_one(ConstEnvHandle, void*, int, void*) {
  return 0;
}
extern "C" void profile_one(ConstEnvHandle, int, void*) {}
extern "C" int branch_one(ConstEnvHandle, void*, int, void*, int, int, int, int, const double*, const int*,
                          const int*, const char*, const double*, int*) {
  return 0;
}
extern "C" int cut_one(ConstEnvHandle, void*, int, void*, int*) {
  return 0;
}
extern "C" int node_one(ConstEnvHandle, void*, int, void*, int*, int*) {
  return 0;
}
extern "C" int heuristic_one(ConstEnvHandle, void*, int, void*, double*, double*, int*, int*) {
  return 0;
}
extern "C" int incumbent_one(ConstEnvHandle, void*, int, void*, double, double*, int*, int*) {
  return 0;
}
extern "C" void delete_one(ConstEnvHandle, int, void*, int, void*) {}

using MipCallbacks = support::KnapsackModels;

/* What is set comes back, a child begins with it, null takes it away. */
template <class Function, class Set, class Get>
void round_trip(EnvHandle env, Function function, Set set, Get get) {
  const auto read = [&](ConstEnvHandle from) {
    Function found = nullptr;
    void* handle = nullptr;
    get(from, &found, &handle);
    return std::pair(found, handle);
  };
  int mark = 0, status = -1;
  const std::pair<Function, void*> none{nullptr, nullptr}, some{function, &mark};
  EXPECT_EQ(read(env), none);
  EXPECT_EQ(set(env, function, &mark), 0);
  EXPECT_EQ(read(env), some);
  EnvHandle child = TVKparenv(env, &status);
  EXPECT_EQ(read(child), some);
  EXPECT_EQ(set(child, nullptr, nullptr), 0);
  EXPECT_EQ(read(env), some);
  EXPECT_EQ(TVKfreeparenv(env, &child), 0);
  EXPECT_EQ(set(env, nullptr, nullptr), 0);
  EXPECT_EQ(read(env), none);
  EXPECT_EQ(set(nullptr, function, nullptr), TVK_ERROR_NO_ENVIRONMENT);
}

TEST_F(MipCallbacks, EveryKindIsRegisteredReadBackAndInherited) {
  round_trip(env_, inform_one, TVKsetlpcallbackfunc, TVKgetlpcallbackfunc);
  round_trip(env_, inform_one, TVKsetmipcallbackfunc, TVKgetmipcallbackfunc);
  round_trip(env_, inform_one, TVKsetinfocallbackfunc, TVKgetinfocallbackfunc);
  round_trip(env_, inform_one, TVKsetnetcallbackfunc, TVKgetnetcallbackfunc);
  round_trip(env_, inform_one, TVKsettuningcallbackfunc, TVKgettuningcallbackfunc);
  round_trip(env_, branch_one, TVKsetbranchcallbackfunc, TVKgetbranchcallbackfunc);
  round_trip(env_, branch_one, TVKsetbranchnosolncallbackfunc, TVKgetbranchnosolncallbackfunc);
  round_trip(env_, cut_one, TVKsetcutcallbackfunc, TVKgetcutcallbackfunc);
  round_trip(env_, node_one, TVKsetnodecallbackfunc, TVKgetnodecallbackfunc);
  round_trip(env_, heuristic_one, TVKsetheuristiccallbackfunc, TVKgetheuristiccallbackfunc);
  round_trip(env_, incumbent_one, TVKsetincumbentcallbackfunc, TVKgetincumbentcallbackfunc);
  round_trip(env_, cut_one, TVKsetsolvecallbackfunc, TVKgetsolvecallbackfunc);
  round_trip(env_, delete_one, TVKsetdeletenodecallbackfunc, TVKgetdeletenodecallbackfunc);
}

TEST_F(MipCallbacks, TheTwoFamiliesOfGettersDiffer) {
  int mark = 0;
  void* handle = &mark;
  ASSERT_EQ(TVKsetmipcallbackfunc(env_, inform_one, &mark), 0);
  EXPECT_EQ(TVKgetmipcallbackfunc(env_, nullptr, nullptr), 0);
  int (*inform)(ConstEnvHandle, void*, int, void*) = inform_one;
  EXPECT_EQ(TVKgetmipcallbackfunc(nullptr, &inform, &handle), TVK_ERROR_NO_ENVIRONMENT);
  EXPECT_EQ(inform, inform_one);
  EXPECT_EQ(handle, &mark);
  auto* cut = cut_one;
  TVKgetcutcallbackfunc(nullptr, &cut, &handle);
  EXPECT_EQ(cut, nullptr);
  EXPECT_EQ(handle, nullptr);
  EXPECT_EQ(errors(), "");
}

/* ---- informational ---- */

struct Watch {
  std::vector<int> contexts;
  double best_integer = NAN, best_bound = NAN, last_ticks = 0;
  int nodes = 0, solutions = 0, restricted = 0, stop_after = -1;
  bool is_info = false;
  std::vector<double> incumbent;
  ProbHandle lp = nullptr;
  EnvHandle env = nullptr;
  void* stale = nullptr;
};

extern "C" int watch_search(ConstEnvHandle env, void* cbdata, int wherefrom, void* handle) {
  Watch& w = *static_cast<Watch*>(handle);
  w.contexts.push_back(wherefrom);
  double ticks = -1, gap = 0, cutoff = 0, tree = -1;
  int left = -1, feasible = -1, iterations = -1, rows = -1;
  const auto ask = [&](int item, void* to) { return TVKgetcallbackinfo(env, cbdata, wherefrom, item, to); };
  EXPECT_EQ(ask(TVK_CALLBACK_INFO_TICKS, &ticks), 0);
  EXPECT_EQ(ask(TVK_CALLBACK_INFO_BEST_INTEGER, &w.best_integer), 0);
  EXPECT_EQ(ask(TVK_CALLBACK_INFO_BEST_BOUND, &w.best_bound), 0);
  EXPECT_EQ(ask(TVK_CALLBACK_INFO_NODE_COUNT, &w.nodes), 0);
  EXPECT_EQ(ask(TVK_CALLBACK_INFO_NODES_LEFT, &left), 0);
  EXPECT_EQ(ask(TVK_CALLBACK_INFO_MIP_ITERATIONS, &iterations), 0);
  EXPECT_EQ(ask(TVK_CALLBACK_INFO_CUTOFF, &cutoff), 0);
  EXPECT_EQ(ask(TVK_CALLBACK_INFO_HAS_INCUMBENT, &feasible), 0);
  EXPECT_EQ(ask(TVK_CALLBACK_INFO_GAP, &gap), 0);
  EXPECT_EQ(ask(TVK_CALLBACK_INFO_SOLUTIONS, &w.solutions), 0);
  EXPECT_EQ(ask(TVK_CALLBACK_INFO_CUT_ROWS, &rows), 0);
  EXPECT_EQ(ask(TVK_CALLBACK_INFO_TREE_SIZE, &tree), 0);
  EXPECT_GE(ticks, w.last_ticks);
  w.last_ticks = ticks;
  EXPECT_GE(left, 0);
  EXPECT_GE(tree, 0);
  EXPECT_EQ(feasible, w.solutions > 0 ? 1 : 0);
  EXPECT_EQ(std::fabs(w.best_integer) >= 1e75, feasible == 0);
  double seconds = -1;
  const int code = ask(TVK_CALLBACK_INFO_SECONDS, &seconds);
  EXPECT_EQ(code, w.is_info ? TVK_ERROR_IN_INFO_CALLBACK : 0);
  double first = NAN;
  if (w.is_info) {
    EXPECT_EQ(TVKgetnumcols(env, w.lp), 0);
    EXPECT_EQ(TVKsetintparam(w.env, TVK_PARAM_NODELIM, 7), TVK_ERROR_IN_INFO_CALLBACK);
    EnvHandle closing = w.env;
    EXPECT_EQ(TVKcloseTOVIK(&closing), TVK_ERROR_IN_INFO_CALLBACK);
  } else {
    const int column = 0;
    EXPECT_GT(TVKgetnumcols(env, w.lp), 0);
    EXPECT_EQ(TVKchgobj(env, w.lp, 1, &column, &first), TVK_ERROR_IN_INFO_CALLBACK);
    EXPECT_EQ(TVKmipopt(env, w.lp), TVK_ERROR_IN_INFO_CALLBACK);
  }
  const int columns = 3;
  w.incumbent.assign(columns, NAN);
  const auto incumbent = [&](int begin, int end, void* data, int from) {
    return TVKgetcallbackincumbent(env, data, from, w.incumbent.data(), begin, end);
  };
  EXPECT_EQ(incumbent(0, columns - 1, cbdata, wherefrom), feasible != 0 ? 0 : TVK_ERROR_NO_SOLUTION);
  EXPECT_EQ(incumbent(0, 100000, cbdata, wherefrom), TVK_ERROR_INDEX_RANGE);
  EXPECT_EQ(incumbent(0, 1, nullptr, wherefrom), TVK_ERROR_NOT_MIP);
  EXPECT_EQ(incumbent(0, 1, &w, wherefrom), TVK_ERROR_NO_ENVIRONMENT);
  EXPECT_EQ(incumbent(0, 1, cbdata, wherefrom + 1), TVK_ERROR_BAD_ARGUMENT);
  if (w.stale != nullptr) {
    EXPECT_EQ(incumbent(0, 1, w.stale, wherefrom), TVK_ERROR_NO_ENVIRONMENT);
  }
  w.stale = cbdata;
  int value = 0;
  EXPECT_EQ(ask(TVK_CALLBACK_INFO_OBJECTIVE, &value),
            w.is_info ? TVK_ERROR_IN_INFO_CALLBACK : TVK_ERROR_BAD_ARGUMENT);
  EXPECT_EQ(ask(TVK_CALLBACK_INFO_NODE_COUNT, nullptr), TVK_ERROR_NULL_POINTER);
  return static_cast<int>(w.contexts.size()) == w.stop_after ? 1 : 0;
}

TEST_F(MipCallbacks, InformationalCallbacksSeeTheSearchAndItsEnd) {
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPCBREDLP, 0), 0);
  for (const bool is_info : {false, true}) {
    ProbHandle lp = knapsacks(20, 4, 3);
    Watch watch;
    watch.is_info = is_info;
    watch.lp = lp;
    watch.env = env_;
    const auto set = is_info ? TVKsetinfocallbackfunc : TVKsetmipcallbackfunc;
    ASSERT_EQ(set(env_, watch_search, &watch), 0);
    EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
    const auto seen = [&](int context) {
      return std::count(watch.contexts.begin(), watch.contexts.end(), context);
    };
    EXPECT_GE(seen(TVK_CALLBACK_MIP), TVKgetnodecnt(env_, lp));
    EXPECT_EQ(seen(TVK_CALLBACK_MIP_INCUMBENT), TVKgetmipsolcnt(env_, lp));
    EXPECT_GT(seen(TVK_CALLBACK_MIP_INCUMBENT), 0);
    EXPECT_EQ(watch.best_integer, objective(lp));
    const std::vector<double> found = x(lp);
    EXPECT_TRUE(std::equal(watch.incumbent.begin(), watch.incumbent.end(), found.begin()));
    EXPECT_EQ(TVKgetcallbackincumbent(env_, watch.stale, 101, watch.incumbent.data(), 0, 1),
              TVK_ERROR_NO_ENVIRONMENT);
    ASSERT_EQ(set(env_, nullptr, nullptr), 0);
    TVKfreeprob(env_, &lp);
  }
}

TEST_F(MipCallbacks, AnInformationalCallbackStopsAtEveryPlaceAndTheSearchGoesOn) {
  ProbHandle whole = knapsacks(20, 4, 5);
  Watch watch;
  watch.env = env_;
  watch.lp = whole;
  ASSERT_EQ(TVKsetmipcallbackfunc(env_, watch_search, &watch), 0);
  EXPECT_EQ(solve(whole), TVK_STATUS_MIP_OPTIMAL);
  const auto calls = static_cast<int>(watch.contexts.size());
  for (int k = 1; k < calls; k += 1 + calls / 12) {
    ProbHandle lp = knapsacks(20, 4, 5);
    Watch stopping;
    stopping.env = env_;
    stopping.lp = lp;
    stopping.stop_after = k;
    ASSERT_EQ(TVKsetmipcallbackfunc(env_, watch_search, &stopping), 0);
    const int status = solve(lp);
    const bool found = TVKgetmipsolcnt(env_, lp) > 0;
    EXPECT_EQ(status, found ? TVK_STATUS_MIP_USER_ABORT : TVK_STATUS_MIP_USER_ABORT_NO_SOLUTION) << k;
    EXPECT_LE(static_cast<int>(stopping.contexts.size()), k + 1);
    stopping.last_ticks = 0;
    EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
    EXPECT_EQ(objective(lp), objective(whole));
    TVKfreeprob(env_, &lp);
  }
}

/* A time limit of the caller's own. */
int asked = 0;
extern "C" int stop_at_once(void) {
  return ++asked > 3;
}

TEST_F(MipCallbacks, AFunctionThatTellsToTerminateIsHeard) {
  asked = 0;
  TVKEsetterminatefunc(nullptr, stop_at_once);
  ProbHandle lp = knapsacks(40, 8, 5);
  TVKEsetterminatefunc(env_, stop_at_once);
  const int status = solve(lp);
  EXPECT_TRUE(status == TVK_STATUS_MIP_USER_ABORT || status == TVK_STATUS_MIP_USER_ABORT_NO_SOLUTION)
      << status;
  TVKEsetterminatefunc(env_, nullptr);
}

extern "C" void note_profile(ConstEnvHandle, int code, void* handle) {
  static_cast<std::vector<int>*>(handle)->push_back(code);
}

TEST_F(MipCallbacks, TheProfilingFunctionIsCalledAroundTheSearch) {
  std::vector<int> codes;
  ASSERT_EQ(TVKsetprofcallbackfunc(env_, note_profile, &codes), 0);
  ProbHandle lp = knapsacks(10, 2, 7);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_EQ(codes, (std::vector<int>{0, 1}));
}

}  // namespace
