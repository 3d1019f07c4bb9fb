/* What control callbacks may ask and do, what has which error, the two spaces. */
#include <climits>
#include <cmath>
#include <numeric>
#include <string>
#include <vector>

#include "support/control_callbacks.h"

namespace {

using support::Context;
using support::Control;
using support::Proposed;

using MipControlQueries = support::WithControl;

TEST_F(MipControlQueries, TheNodesProblemIsTheOneThatTheSearchSolves) {
  ProbHandle lp = knapsacks(16, 3, 6);
  Control control;
  ProbHandle stale = nullptr;
  int calls = 0;
  control.branch = [&](const Context& c, const Proposed&, int*) {
    ++calls;
    ProbHandle node = nullptr, again = nullptr;
    EXPECT_EQ(TVKgetcallbacknodelp(c.env, c.cbdata, c.wherefrom, &node), 0);
    EXPECT_EQ(TVKgetcallbacknodelp(c.env, c.cbdata, c.wherefrom, &again), 0);
    EXPECT_EQ(node, again);
    if (stale != nullptr) {
      EXPECT_EQ(TVKgetnumcols(c.env, stale), 0);
    }
    stale = node;
    double value = NAN, objective = NAN;
    EXPECT_EQ(TVKgetcallbacknodeobjval(c.env, c.cbdata, c.wherefrom, &value), 0);
    EXPECT_EQ(TVKgetobjval(c.env, node, &objective), 0);
    EXPECT_NEAR(objective, value, 1e-6);
    EXPECT_EQ(TVKgetstat(c.env, node), TVK_STATUS_OPTIMAL);
    const std::vector<double> x = c.x(16);
    std::vector<double> same(16), upper(16), node_upper(16);
    EXPECT_EQ(TVKgetx(c.env, node, same.data(), 0, 15), 0);
    EXPECT_EQ(same, x);
    EXPECT_EQ(TVKgetub(c.env, node, upper.data(), 0, 15), 0);
    EXPECT_EQ(TVKgetcallbacknodeub(c.env, c.cbdata, c.wherefrom, node_upper.data(), 0, 15), 0);
    EXPECT_EQ(upper, node_upper);
    // Optimized once more it says the same; what is done to it means nothing to the search.
    EXPECT_EQ(TVKdualopt(c.env, node), 0);
    EXPECT_EQ(TVKgetobjval(c.env, node, &objective), 0);
    EXPECT_NEAR(objective, value, 1e-6);
    const std::vector<double> zeros(16, 0.0);
    std::vector<int> all(16);
    std::iota(all.begin(), all.end(), 0);
    EXPECT_EQ(TVKchgobj(c.env, node, 16, all.data(), zeros.data()), 0);
    EXPECT_EQ(TVKfreeprob(c.env, &node), TVK_ERROR_NO_PROBLEM);
    ConstProbHandle whole = nullptr;
    EXPECT_EQ(TVKgetcallbacklp(c.env, c.cbdata, c.wherefrom, &whole), 0);
    EXPECT_EQ(TVKgetnumcols(c.env, whole), 16);
    const int column = 0;
    EXPECT_EQ(TVKchgobj(c.env, lp, 1, &column, zeros.data()), TVK_ERROR_IN_INFO_CALLBACK);
    ProbHandle own = lp;
    EXPECT_EQ(TVKfreeprob(c.env, &own), TVK_ERROR_IN_INFO_CALLBACK);
    EXPECT_EQ(TVKmipopt(c.env, lp), TVK_ERROR_IN_INFO_CALLBACK);
    EnvHandle closing = env_;
    EXPECT_EQ(TVKcloseTOVIK(&closing), TVK_ERROR_IN_INFO_CALLBACK);
    return 0;
  };
  use(control);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  use_none();
  EXPECT_EQ(objective(lp), plain_optimum(6));
  EXPECT_GT(calls, 0);
  EXPECT_EQ(TVKgetnumcols(env_, stale), 0);
}

TEST_F(MipControlQueries, QueriesAgreeWithTheModel) {
  ProbHandle lp = knapsacks(16, 3, 6);
  const int columns[] = {2, 5}, priorities[] = {9, 4}, directions[] = {1, -1};
  ASSERT_EQ(TVKcopyorder(env_, lp, 2, columns, priorities, directions), 0);
  Control control;
  control.branch = [&](const Context& c, const Proposed& p, int*) {
    std::vector<double> lower(16), upper(16), all_lower(16), all_upper(16), up(16), down(16);
    std::vector<int> priority(16), direction(16), feas(16);
    std::string types(16, '?');
    const auto get = [&](auto routine, auto... out) {
      EXPECT_EQ(routine(c.env, c.cbdata, c.wherefrom, out..., 0, 15), 0);
      EXPECT_EQ(routine(c.env, c.cbdata, c.wherefrom, out..., -1, 16), TVK_ERROR_INDEX_RANGE);
      EXPECT_EQ(routine(c.env, c.cbdata, c.wherefrom, out..., 3, 2), 0);
      EXPECT_EQ(routine(c.env, c.cbdata, 103, out..., 0, 15), TVK_ERROR_BAD_ARGUMENT);
      EXPECT_EQ(routine(c.env, nullptr, c.wherefrom, out..., 0, 15), TVK_ERROR_NOT_MIP);
      EXPECT_EQ(routine(c.env, c.cbdata, c.wherefrom, static_cast<decltype(out)>(nullptr)..., 0, 15),
                TVK_ERROR_NULL_POINTER);
    };
    get(TVKgetcallbacknodelb, lower.data());
    get(TVKgetcallbacknodeub, upper.data());
    get(TVKgetcallbackgloballb, all_lower.data());
    get(TVKgetcallbackglobalub, all_upper.data());
    get(TVKgetcallbackctype, types.data());
    get(TVKgetcallbackorder, priority.data(), direction.data());
    get(TVKgetcallbackpseudocosts, up.data(), down.data());
    get(TVKgetcallbacknodeintfeas, feas.data());
    const std::vector<double> x = c.x(16);
    EXPECT_EQ(types, std::string(16, 'B'));
    for (int j = 0; j < 16; ++j) {
      EXPECT_LE(all_lower[j], lower[j]);
      EXPECT_GE(all_upper[j], upper[j]);
      EXPECT_GE(up[j], 0);
      EXPECT_EQ(priority[j], j == 2 ? 9 : j == 5 ? 4 : 0);
      EXPECT_EQ(direction[j], j == 2 ? 1 : j == 5 ? -1 : 0);
      const bool whole = std::fabs(x[j] - std::round(x[j])) <= 1e-5;
      EXPECT_EQ(feas[j], whole ? TVK_INTEGER_FEASIBLE : TVK_INTEGER_INFEASIBLE);
    }
    EXPECT_EQ(feas[p.columns[0]], TVK_INTEGER_INFEASIBLE);
    int rows = -1, entries = -1, surplus = -1, depth = -1;
    EXPECT_EQ(TVKgetcallbackbranchconstraints(c.env, c.cbdata, c.wherefrom, &rows, &entries, nullptr, nullptr,
                                              nullptr, nullptr, nullptr, 0, &surplus),
              0);
    EXPECT_EQ(rows, 0);
    EXPECT_EQ(entries, 0);
    EXPECT_EQ(TVKgetcallbackinfo(c.env, c.cbdata, c.wherefrom, TVK_CALLBACK_INFO_CURRENT_DEPTH, &depth), 0);
    EXPECT_EQ(depth, c.node_item(TVK_CALLBACK_INFO_NODE_DEPTH));
    EXPECT_EQ(
        TVKgetcallbacknodeinfo(c.env, c.cbdata, c.wherefrom, 1000000, TVK_CALLBACK_INFO_NODE_DEPTH, &depth),
        TVK_ERROR_INDEX_RANGE);
    EXPECT_EQ(TVKgetcallbacknodeinfo(c.env, c.cbdata, c.wherefrom, 0, 5, &depth), TVK_ERROR_BAD_ARGUMENT);
    EXPECT_EQ(TVKgetcallbackseqinfo(c.env, c.cbdata, c.wherefrom, -4, TVK_CALLBACK_INFO_NODE_DEPTH, &depth),
              TVK_ERROR_INDEX_RANGE);
    return 0;
  };
  use(control);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
}

TEST_F(MipControlQueries, MisuseHasItsCodes) {
  ProbHandle lp = knapsacks(16, 3, 6);
  Control control;
  Context last{};
  int cut_calls = 0, branch_calls = 0;
  const int ind[] = {0, 1}, far[] = {0, 16}, negative[] = {-1, 1};
  const double val[] = {1, 1}, wrong[] = {1, NAN}, huge[] = {1, INFINITY};
  control.cut = [&](const Context& c, int*) {
    ++cut_calls;
    const auto add = [&](void* data, int from, int count, int sense, const int* i, const double* v) {
      const int code = TVKcutcallbackadd(c.env, data, from, count, 5, sense, i, v, 0);
      if (sense == 'L') {
        EXPECT_EQ(TVKcutcallbackaddlocal(c.env, data, from, count, 5, sense, i, v), code);
      }
      return code;
    };
    EXPECT_EQ(TVKcutcallbackadd(nullptr, c.cbdata, 106, 2, 5, 'L', ind, val, 0), TVK_ERROR_NO_ENVIRONMENT);
    errors();
    EXPECT_EQ(add(nullptr, 106, 2, 'L', ind, val), TVK_ERROR_NOT_MIP);
    EXPECT_EQ(add(&control, 106, 2, 'L', ind, val), TVK_ERROR_NO_ENVIRONMENT);
    EXPECT_EQ(add(c.cbdata, 105, 2, 'L', ind, val), TVK_ERROR_BAD_ARGUMENT);
    EXPECT_EQ(add(c.cbdata, 106, -1, 'L', ind, val), TVK_ERROR_BAD_ARGUMENT);
    EXPECT_EQ(add(c.cbdata, 106, INT_MAX, 'L', ind, val), TVK_ERROR_SIZE_LIMITS_TOO_LARGE);
    EXPECT_EQ(add(c.cbdata, 106, 2, 'L', nullptr, val), TVK_ERROR_NULL_POINTER);
    EXPECT_EQ(add(c.cbdata, 106, 2, 'L', ind, nullptr), TVK_ERROR_NULL_POINTER);
    errors();
    EXPECT_EQ(add(c.cbdata, 106, 2, 'R', ind, val), TVK_ERROR_SENSE_ENTRY);
    EXPECT_EQ(errors(), "TOVIK Error  1215: Illegal sense entry 82.\n");
    EXPECT_EQ(TVKcutcallbackadd(c.env, c.cbdata, 106, 2, 5, 'G', far, val, 0), TVK_ERROR_COLUMN_INDEX_RANGE);
    EXPECT_EQ(errors(), "TOVIK Error  1201: Column index 1 out of range.\n");
    EXPECT_EQ(add(c.cbdata, 106, 2, 'L', negative, val), TVK_ERROR_COLUMN_INDEX_RANGE);
    EXPECT_EQ(add(c.cbdata, 106, 2, 'L', ind, wrong), TVK_ERROR_NOT_A_NUMBER);
    EXPECT_EQ(add(c.cbdata, 106, 2, 'L', ind, huge), TVK_ERROR_NUMBER_TOO_BIG);
    int sequence = 4;
    const double zero = 0;
    EXPECT_EQ(
        TVKbranchcallbackbranchbds(c.env, c.cbdata, c.wherefrom, 0, 1, ind, "U", &zero, nullptr, &sequence),
        TVK_ERROR_BAD_ARGUMENT);
    EXPECT_EQ(sequence, -1);
    ProbHandle node = lp;
    EXPECT_EQ(TVKgetcallbacknodelp(c.env, c.cbdata, 103, &node), TVK_ERROR_BAD_ARGUMENT);
    EXPECT_EQ(node, nullptr);
    EXPECT_EQ(TVKgetcallbacknodelp(c.env, nullptr, c.wherefrom, &node), TVK_ERROR_NOT_MIP);
    EXPECT_EQ(TVKgetcallbacknodelp(c.env, c.cbdata, c.wherefrom, nullptr), TVK_ERROR_NULL_POINTER);
    int value = 0;
    EXPECT_EQ(TVKgetcallbackinfo(c.env, c.cbdata, 1, TVK_CALLBACK_INFO_ITERATIONS, &value),
              TVK_ERROR_CALLBACK);
    EXPECT_EQ(TVKgetcallbackinfo(c.env, nullptr, 106, TVK_CALLBACK_INFO_NODE_COUNT, &value),
              TVK_ERROR_CALLBACK);
    EXPECT_EQ(TVKgetcallbackinfo(c.env, c.cbdata, 106, 133, &value), TVK_ERROR_BAD_ARGUMENT);
    EXPECT_EQ(TVKgetcallbackinfo(nullptr, c.cbdata, 0, 101, &value), TVK_ERROR_BAD_ARGUMENT);
    // Both are valid for every point.
    const double large[] = {1, 1};
    EXPECT_EQ(TVKcutcallbackadd(c.env, c.cbdata, 106, 2, 2, 'L', ind, large, 0), 0);
    EXPECT_EQ(TVKcutcallbackadd(c.env, c.cbdata, 106, 0, 0, 'E', ind, large, 0), 0);
    return 0;
  };
  control.branch = [&](const Context& c, const Proposed&, int*) {
    ++branch_calls;
    last = c;
    int sequence = 4;
    const auto child = [&](void* data, int from, int count, const int* i, const char* lu, const double* bd) {
      sequence = 4;
      return TVKbranchcallbackbranchbds(c.env, data, from, 0, count, i, lu, bd, nullptr, &sequence);
    };
    EXPECT_EQ(child(nullptr, 102, 1, ind, "U", val), TVK_ERROR_NOT_MIP);
    EXPECT_EQ(child(c.cbdata, 106, 1, ind, "U", val), TVK_ERROR_BAD_ARGUMENT);
    EXPECT_EQ(child(c.cbdata, 102, -1, ind, "U", val), TVK_ERROR_BAD_ARGUMENT);
    EXPECT_EQ(child(c.cbdata, 102, INT_MAX, ind, "U", val), TVK_ERROR_SIZE_LIMITS_TOO_LARGE);
    EXPECT_EQ(child(c.cbdata, 102, 1, nullptr, "U", val), TVK_ERROR_NULL_POINTER);
    EXPECT_EQ(child(c.cbdata, 102, 1, ind, nullptr, val), TVK_ERROR_NULL_POINTER);
    EXPECT_EQ(child(c.cbdata, 102, 1, ind, "U", nullptr), TVK_ERROR_NULL_POINTER);
    EXPECT_EQ(child(c.cbdata, 102, 2, far, "UU", val), TVK_ERROR_COLUMN_INDEX_RANGE);
    EXPECT_EQ(child(c.cbdata, 102, 2, ind, "UX", val), TVK_ERROR_BOUND_INDICATOR);
    EXPECT_EQ(child(c.cbdata, 102, 2, ind, "UU", wrong), TVK_ERROR_NOT_A_NUMBER);
    EXPECT_EQ(sequence, -1);
    const int begin[] = {0, 5};
    EXPECT_EQ(TVKbranchcallbackbranchconstraints(c.env, c.cbdata, 102, 0, 2, 2, val, "LL", begin, ind, val,
                                                 nullptr, &sequence),
              TVK_ERROR_INDEX_RANGE);
    EXPECT_EQ(TVKbranchcallbackbranchconstraints(c.env, c.cbdata, 102, 0, 1, 2, val, "R", begin, ind, val,
                                                 nullptr, &sequence),
              TVK_ERROR_SENSE_ENTRY);
    EXPECT_EQ(TVKbranchcallbackbranchconstraints(c.env, c.cbdata, 102, 0, 1, 2, nullptr, "L", begin, ind, val,
                                                 nullptr, &sequence),
              TVK_ERROR_NULL_POINTER);
    EXPECT_EQ(child(c.cbdata, 102, 0, nullptr, nullptr, nullptr), 0);
    const int first = sequence;
    EXPECT_EQ(child(c.cbdata, 102, 0, nullptr, nullptr, nullptr), 0);
    EXPECT_GT(sequence, first);
    EXPECT_EQ(child(c.cbdata, 102, 0, nullptr, nullptr, nullptr), TVK_ERROR_CALLBACK);
    EXPECT_EQ(sequence, -1);
    EXPECT_EQ(TVKcutcallbackadd(c.env, c.cbdata, 106, 2, 2, 'L', ind, val, 0), TVK_ERROR_BAD_ARGUMENT);
    EXPECT_EQ(TVKcutcallbackadd(c.env, c.cbdata, 102, 2, 2, 'L', ind, val, 0), TVK_ERROR_BAD_ARGUMENT);
    errors();
    return 0;  // as proposed: the children above are not taken
  };
  use(control);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  use_none();
  EXPECT_EQ(objective(lp), plain_optimum(6));
  EXPECT_GT(cut_calls, 0);
  EXPECT_GT(branch_calls, 0);
  int value = 0, sequence = 4;
  EXPECT_EQ(TVKgetcallbackinfo(env_, last.cbdata, 102, TVK_CALLBACK_INFO_NODE_COUNT, &value),
            TVK_ERROR_CALLBACK);
  EXPECT_EQ(
      TVKbranchcallbackbranchbds(env_, last.cbdata, 102, 0, 0, nullptr, nullptr, nullptr, nullptr, &sequence),
      TVK_ERROR_NO_ENVIRONMENT);
}

TEST_F(MipControlQueries, DynamicSearchAndControlCallbacksExcludeEachOther) {
  ProbHandle lp = knapsacks(8, 2, 1);
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPSEARCH, 2), 0);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  Control control;
  control.cut = [](const Context&, int*) { return 0; };
  use(control);
  EXPECT_EQ(TVKmipopt(env_, lp), TVK_ERROR_SEARCH_VERSUS_CALLBACKS);
  EXPECT_EQ(errors(), "TOVIK Error  1805: MIP dynamic search interferes with control callbacks.\n");
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPSEARCH, 1), 0);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
}

/* Columns that only the search has are not there in the caller's space. */
TEST_F(MipControlQueries, SetsAndIndicatorsInBothSpaces) {
  int status = -1;
  const int begin = 0, members[] = {0, 1, 2};
  const double weights[] = {3, 1, 2}, obj[] = {3, 2, 4, -1}, upper[] = {4, 4, 2, 1}, fours[] = {4, 4, 4},
               rhs = 9;
  for (const int space : {0, 1}) {
    ProbHandle lp = TVKcreateprob(env_, &status, "objects");
    ASSERT_EQ(TVKnewcols(env_, lp, 4, obj, nullptr, upper, "CCCB", nullptr), 0);
    ASSERT_EQ(TVKaddrows(env_, lp, 0, 1, 3, &rhs, "L", &begin, members, fours, nullptr, nullptr), 0);
    ASSERT_EQ(TVKaddsos(env_, lp, 1, 3, "1", &begin, members, weights, nullptr), 0);
    ASSERT_EQ(TVKEaddindconstr(env_, lp, 3, 1, 3, 1, 'L', members, fours, nullptr), 0);
    ASSERT_EQ(TVKchgobjsen(env_, lp, -1), 0);
    EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
    const double optimum = objective(lp);
    ASSERT_EQ(TVKchgobjsen(env_, lp, -1), 0);
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPCBREDLP, space), 0);
    Control control;
    int set_branches = 0;
    control.branch = [&](const Context& c, const Proposed& p, int*) {
      const auto of_set = [&](int set, int member, int item) {
        int value = -7;
        const int code = TVKgetcallbacksosinfo(c.env, c.cbdata, c.wherefrom, set, member, item, &value);
        return code == 0 ? value : -code;
      };
      const auto of_indicator = [&](int k, int item) {
        int value = -7;
        const int code = TVKgetcallbackindicatorinfo(c.env, c.cbdata, c.wherefrom, k, item, &value);
        return code == 0 ? value : -code;
      };
      EXPECT_EQ(of_set(0, 0, TVK_CALLBACK_INFO_SOS_COUNT), 1);
      EXPECT_EQ(of_set(0, 0, TVK_CALLBACK_INFO_SOS_TYPE), 1);
      EXPECT_EQ(of_set(0, 0, TVK_CALLBACK_INFO_SOS_SIZE), 3);
      EXPECT_EQ(of_set(0, 0, TVK_CALLBACK_INFO_SOS_MEMBER), 1);
      EXPECT_EQ(of_set(0, 2, TVK_CALLBACK_INFO_SOS_MEMBER), 0);
      EXPECT_EQ(of_set(0, 3, TVK_CALLBACK_INFO_SOS_MEMBER), -TVK_ERROR_INDEX_RANGE);
      EXPECT_EQ(of_set(1, 0, TVK_CALLBACK_INFO_SOS_SIZE), -TVK_ERROR_INDEX_RANGE);
      EXPECT_EQ(of_set(0, 0, 99), -TVK_ERROR_BAD_ARGUMENT);
      EXPECT_EQ(of_indicator(0, TVK_CALLBACK_INFO_INDICATOR_COUNT), 1);
      EXPECT_EQ(of_indicator(0, TVK_CALLBACK_INFO_INDICATOR_COLUMN), 3);
      EXPECT_EQ(of_indicator(0, TVK_CALLBACK_INFO_INDICATOR_COMPLEMENTED), 1);
      EXPECT_EQ(of_indicator(1, TVK_CALLBACK_INFO_INDICATOR_COLUMN), -TVK_ERROR_INDEX_RANGE);
      if (p.set == 0) {
        ++set_branches;
        EXPECT_EQ(p.type, TVK_BRANCH_SOS1);
        EXPECT_EQ(of_set(0, 0, TVK_CALLBACK_INFO_SOS_IS_FEASIBLE), 0);
      }
      const int columns = space == 0 ? 4 : 5;
      for (int k = 0; k < p.bounds; ++k) EXPECT_LT(p.columns[k], columns);
      double lower[5];
      EXPECT_EQ(TVKgetcallbacknodelb(c.env, c.cbdata, c.wherefrom, lower, 0, columns - 1), 0);
      EXPECT_EQ(TVKgetcallbacknodelb(c.env, c.cbdata, c.wherefrom, lower, 0, columns), TVK_ERROR_INDEX_RANGE);
      ConstProbHandle whole = nullptr;
      EXPECT_EQ(TVKgetcallbacklp(c.env, c.cbdata, c.wherefrom, &whole), 0);
      EXPECT_EQ(TVKgetnumcols(c.env, whole), columns);
      char type = '?';
      EXPECT_EQ(TVKgetctype(c.env, whole, &type, 3, 3), 0);
      EXPECT_EQ(type, 'B');
      return 0;
    };
    control.incumbent = [&](const Context&, double value, const double* x, int*) {
      EXPECT_NEAR(value, 3 * x[0] + 2 * x[1] + 4 * x[2] - x[3], 1e-9);
      return 0;
    };
    use(control);
    EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
    EXPECT_NEAR(objective(lp), optimum, 1e-6);
    EXPECT_GT(set_branches, 0);
    use_none();
    TVKfreeprob(env_, &lp);
  }
}

/* Another problem may be optimized from inside, with callbacks of its own. */
TEST_F(MipControlQueries, OtherProblemsMayBeOptimizedFromInside) {
  ProbHandle inner = knapsacks(10, 2, 9), lp = knapsacks(16, 3, 2);
  const double optimum = plain_optimum(2),
               inner_optimum = enumerate(inner, [](double, const auto&) { return true; });
  Control control;
  int depth = 0, nested = 0;
  control.cut = [&](const Context& c, int*) {
    if (depth > 0) {
      ++nested;
      return 0;
    }
    ++depth;
    EXPECT_EQ(TVKchgobjsen(c.env, inner, -1), 0);
    EXPECT_EQ(TVKmipopt(c.env, inner), 0);
    EXPECT_NEAR(objective(inner), inner_optimum, 1e-6);
    --depth;
    c.x(16);
    return 0;
  };
  use(control);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_NEAR(objective(lp), optimum, 1e-6);
  EXPECT_GT(nested, 0);
  use_none();
}

}  // namespace
