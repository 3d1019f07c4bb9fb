/* What informational callbacks of a mixed-integer search may ask for, item by item, and where they are called from. */
#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "support/knapsack_models.h"

namespace {

struct Items {
  std::map<int, int> contexts;  // calls by context
  std::map<int, double> last;   // by item, of the last call
  std::vector<std::string> faults;
  std::map<int, int> columns_at_presolve;  // by number of the presolve

  void expect(bool holds, const std::string& what) {
    if (!holds) faults.push_back(what);
  }
};

bool is_double(int item) {
  for (const int d : {101, 102, 106, 113, 118, 119}) {
    if (item == d) return true;
  }
  return false;
}

extern "C" int read_items(ConstEnvHandle env, void* cbdata, int wherefrom, void* handle) {
  Items& items = *static_cast<Items*>(handle);
  ++items.contexts[wherefrom];
  for (int item = 1; item <= 140; ++item) {
    double real = -7;
    int whole = -7;
    const bool wants_real = is_double(item) || item == 17 || item == 19;
    void* const to = wants_real ? static_cast<void*>(&real) : &whole;
    const int code = TVKgetcallbackinfo(env, cbdata, wherefrom, item, to);
    const bool is_there = item == 17 || item == 19 || (item >= 101 && item <= 132);
    const bool of_node =
        item == TVK_CALLBACK_INFO_CURRENT_SEQUENCE || item == TVK_CALLBACK_INFO_CURRENT_DEPTH;
    const std::string name = std::to_string(wherefrom) + " " + std::to_string(item);
    if (!is_there) {
      items.expect(code == TVK_ERROR_BAD_ARGUMENT, name + " refused");
    } else if (of_node) {
      items.expect(code == 0 || code == TVK_ERROR_CALLBACK, name + " of a node");
    } else {
      items.expect(code == 0, name + " given");
      items.last[item] = wants_real ? real : whole;
    }
  }
  if (wherefrom == TVK_CALLBACK_MIP_PRESOLVE) {
    items.columns_at_presolve[items.contexts[wherefrom]] =
        static_cast<int>(items.last[TVK_CALLBACK_INFO_SEARCHED_COLUMNS]);
  }
  return 0;
}

class MipCallbackItems : public support::KnapsackModels {
 protected:
  Items watch(ProbHandle lp, int status) {
    Items items;
    EXPECT_EQ(TVKsetmipcallbackfunc(env_, read_items, &items), 0);
    EXPECT_EQ(solve(lp), status);
    EXPECT_EQ(TVKsetmipcallbackfunc(env_, nullptr, nullptr), 0);
    for (const std::string& fault : items.faults) ADD_FAILURE() << fault;
    return items;
  }
};

TEST_F(MipCallbackItems, EveryItemHasItsValueInEveryContext) {
  ProbHandle lp = knapsacks(40, 8, 3);
  const int fixed = 0, slack_row = 8;
  const double rhs = 1;
  // A row and a column that presolve removes.
  ASSERT_EQ(TVKaddrows(env_, lp, 1, 1, 1, &rhs, "L", &fixed, &fixed, &rhs, nullptr, nullptr), 0);
  // What would end the search at its root.
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_CUTPASS, 1), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_HEURFREQ, -1), 0);
  ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_EPGAP, 0), 0);
  const int threads = TVKEgetmaxthreads(env_);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_THREADS, threads), 0);
  const Items items = watch(lp, TVK_STATUS_MIP_OPTIMAL);
  const auto last = [&](int item) { return items.last.at(item); };
  for (const auto& [context, calls] : items.contexts) {
    EXPECT_TRUE(context == 101 || (context >= 107 && context <= 111)) << context;
  }
  EXPECT_GT(items.contexts.at(TVK_CALLBACK_MIP), 5);
  EXPECT_GT(items.contexts.at(TVK_CALLBACK_MIP_ROOT_CUTS), 0);
  EXPECT_GT(items.contexts.at(TVK_CALLBACK_MIP_INCUMBENT), 0);
  EXPECT_EQ(items.contexts.at(TVK_CALLBACK_MIP_PRESOLVE), last(TVK_CALLBACK_INFO_RESTARTS) + 1);
  EXPECT_EQ(last(TVK_CALLBACK_INFO_THREADS), threads);
  EXPECT_LE(last(TVK_CALLBACK_INFO_SEARCHED_ROWS), slack_row);
  EXPECT_LE(last(TVK_CALLBACK_INFO_SEARCHED_COLUMNS), 40);
  EXPECT_GT(last(TVK_CALLBACK_INFO_SEARCHED_COLUMNS), 0);
  EXPECT_LE(last(TVK_CALLBACK_INFO_OPEN_INTEGERS), last(TVK_CALLBACK_INFO_SEARCHED_COLUMNS));
  EXPECT_GT(last(TVK_CALLBACK_INFO_LARGEST_DEPTH), 1);
  // Maximized: the root's bound is above the best bound, that above the incumbent.
  EXPECT_GE(last(TVK_CALLBACK_INFO_ROOT_BOUND), last(TVK_CALLBACK_INFO_BEST_BOUND) - 1e-6);
  EXPECT_GE(last(TVK_CALLBACK_INFO_BEST_BOUND), last(TVK_CALLBACK_INFO_BEST_INTEGER));
  double cuts = 0;
  for (int item = TVK_CALLBACK_INFO_COVER_CUTS; item <= TVK_CALLBACK_INFO_USER_CUTS; ++item)
    cuts += last(item);
  EXPECT_GE(cuts, last(TVK_CALLBACK_INFO_CUT_ROWS));
  EXPECT_GT(last(TVK_CALLBACK_INFO_COVER_CUTS) + last(TVK_CALLBACK_INFO_ROUNDING_CUTS) +
                last(TVK_CALLBACK_INFO_FRACTIONAL_CUTS),
            0);
  EXPECT_EQ(last(TVK_CALLBACK_INFO_USER_CUTS), 0);
}

/* Some work has to be done between two calls, which small models do not have in these phases. */
TEST_F(MipCallbackItems, LongPhasesAtTheRootHaveContextsOfTheirOwn) {
  ProbHandle lp = knapsacks(1000, 100, 5);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_CUTPASS, -1), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NODELIM, 1), 0);
  const Items items = watch(lp, TVK_STATUS_MIP_NODE_LIMIT);
  EXPECT_GT(items.contexts.count(TVK_CALLBACK_MIP_ROOT), 0U);
  EXPECT_GT(items.contexts.count(TVK_CALLBACK_MIP_HEURISTICS), 0U);
}

extern "C" int read_items_in_info(ConstEnvHandle env, void* cbdata, int wherefrom, void* handle) {
  Items& items = *static_cast<Items*>(handle);
  ++items.contexts[wherefrom];
  const std::set<int> open = {19,  101, 102, 103, 104, 105, 106, 109, 113, 114, 116,
                              118, 121, 123, 125, 127, 128, 129, 130, 131, 132};
  for (int item = 17; item <= 132; ++item) {
    double value = -7;
    const int code = TVKgetcallbackinfo(env, cbdata, wherefrom, item, &value);
    items.expect(code == (open.count(item) != 0 ? 0 : TVK_ERROR_IN_INFO_CALLBACK),
                 std::to_string(wherefrom) + " " + std::to_string(item));
  }
  return 0;
}

TEST_F(MipCallbackItems, TheInfoCallbackHasThoseThatAreOpenToIt) {
  ProbHandle lp = knapsacks(25, 4, 2);
  Items items;
  EXPECT_EQ(TVKsetinfocallbackfunc(env_, read_items_in_info, &items), 0);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_EQ(TVKsetinfocallbackfunc(env_, nullptr, nullptr), 0);
  for (const std::string& fault : items.faults) ADD_FAILURE() << fault;
  EXPECT_GE(items.contexts.at(TVK_CALLBACK_MIP_PRESOLVE), 1);
}

/* The callback that presolve ends with may stop the search, which then has not begun; the next call goes on. */
extern "C" int stop_after_presolve(ConstEnvHandle, void*, int wherefrom, void* handle) {
  ++*static_cast<int*>(handle);
  return wherefrom == TVK_CALLBACK_MIP_PRESOLVE ? 1 : 0;
}

TEST_F(MipCallbackItems, ASearchIsStoppedAfterPresolve) {
  ProbHandle lp = knapsacks(20, 3, 4);
  int calls = 0;
  EXPECT_EQ(TVKsetmipcallbackfunc(env_, stop_after_presolve, &calls), 0);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_USER_ABORT_NO_SOLUTION);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(TVKsetmipcallbackfunc(env_, nullptr, nullptr), 0);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
}

/* ---- parameters whose effect callbacks and counts tell ---- */

TEST_F(MipCallbackItems, ProbingHasNoTimeWhereItsLimitIsZero) {
  const auto columns = [&] {
    // Where x0 is 1, x1 to x10 are 0, and rows are short of them. No pair of rows has nested entries: only probing finds it.
    ProbHandle lp = knapsacks(12, 1, 1);
    std::vector<int> index;
    std::vector<double> value;
    std::vector<int> begin;
    std::vector<double> rhs;
    std::string sense;
    for (int j = 1; j < 6; ++j) {
      begin.push_back(static_cast<int>(index.size()));
      index.insert(index.end(), {0, j, j + 5});
      value.insert(value.end(), {1, 1, 0.5});
      rhs.push_back(1);
      sense += 'L';
      begin.push_back(static_cast<int>(index.size()));
      index.insert(index.end(), {0, j, j % 5 + 6});
      value.insert(value.end(), {-1, 1, 0.5});
      rhs.push_back(0);
      sense += 'G';
    }
    EXPECT_EQ(
        TVKaddrows(env_, lp, 0, static_cast<int>(rhs.size()), static_cast<int>(index.size()), rhs.data(),
                   sense.c_str(), begin.data(), index.data(), value.data(), nullptr, nullptr),
        0);
    const Items items = watch(lp, TVK_STATUS_MIP_OPTIMAL);
    TVKfreeprob(env_, &lp);
    return items.columns_at_presolve.at(1);
  };
  const int with = columns();
  ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_PROBETIME, 0), 0);
  const int without_time = columns();
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PROBE, -1), 0);
  EXPECT_EQ(columns(), without_time);
  EXPECT_LT(with, without_time);
}

TEST_F(MipCallbackItems, RoundsOfFractionalCutsAreLimited) {
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIRCUTS, -1), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_COVERS, -1), 0);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_ZEROHALFCUTS, -1), 0);
  double cuts[2] = {0, 0};
  for (const int rounds : {0, 1}) {
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_FRACPASS, rounds), 0);
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NODELIM, 1), 0);
    ProbHandle lp = knapsacks(40, 8, 3);
    cuts[rounds] = watch(lp, TVK_STATUS_MIP_NODE_LIMIT).last.at(TVK_CALLBACK_INFO_FRACTIONAL_CUTS);
    TVKfreeprob(env_, &lp);
  }
  EXPECT_GT(cuts[1], 0);
  EXPECT_LT(cuts[1], cuts[0]);
}

/* The answer stays, the path changes. */
TEST_F(MipCallbackItems, PresolveAtNodesAndMethodsSteerTheSearch) {
  struct Way {
    int parameter, value;
  };
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_HEURFREQ, -1), 0);
  for (const Way way : {Way{TVK_PARAM_PRESLVND, -1}, Way{TVK_PARAM_PRESLVND, 2}, Way{TVK_PARAM_SUBALG, 1},
                        Way{TVK_PARAM_SUBALG, 5}, Way{TVK_PARAM_RELAXPREIND, 1}}) {
    SCOPED_TRACE(testing::Message() << way.parameter << " " << way.value);
    int default_value = 0;
    ASSERT_EQ(TVKgetintparam(env_, way.parameter, &default_value), 0);
    // Probing finds nothing in knapsacks, and presolve for LPs what the other one leaves: nothing.
    const bool may_be_the_same = way.parameter == TVK_PARAM_RELAXPREIND || way.value == 2;
    bool differs = may_be_the_same;
    for (unsigned seed = 1; seed <= 5; ++seed) {
      long long paths[2] = {0, 0};
      double values[2] = {0, 0};
      for (const int k : {0, 1}) {
        ASSERT_EQ(TVKsetintparam(env_, way.parameter, k == 0 ? default_value : way.value), 0);
        ProbHandle lp = knapsacks(24, 6, seed);
        EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
        values[k] = objective(lp);
        paths[k] = 1000000LL * TVKgetnodecnt(env_, lp) + TVKgetitcnt(env_, lp);
        TVKfreeprob(env_, &lp);
      }
      EXPECT_NEAR(values[0], values[1], 1e-6);
      differs |= paths[0] != paths[1];
    }
    EXPECT_TRUE(differs);
    ASSERT_EQ(TVKsetintparam(env_, way.parameter, default_value), 0);
  }
}

TEST_F(MipCallbackItems, IterationsOfStartsCount) {
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NODELIM, 0), 0);
  ProbHandle lp = knapsacks(30, 6, 2);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_NODE_LIMIT_NO_SOLUTION);
  EXPECT_EQ(TVKgetitcnt(env_, lp), 0);
  const int begin = 0, column = 3, effort = TVK_MIPSTART_SOLVEMIP;
  const double one = 1;
  ASSERT_EQ(TVKaddmipstarts(env_, lp, 1, 1, &begin, &column, &one, &effort, nullptr), 0);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_NODE_LIMIT);
  EXPECT_GT(TVKgetitcnt(env_, lp), 0);
}

}  // namespace
