/* Callbacks that steer a search: children, the order of nodes, incumbents, heuristics and solves of the caller's own. */
#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

#include "support/control_callbacks.h"

namespace {

using support::Context;
using support::Control;
using support::Proposed;

using MipControlSearch = support::WithControl;

/* The column farthest from whole; -1: none. */
int most_fractional(const std::vector<double>& x) {
  int best = -1;
  double most = 1e-5;
  for (std::size_t j = 0; j < x.size(); ++j) {
    const double f = std::fabs(x[j] - std::round(x[j]));
    if (f > most) {
      most = f;
      best = static_cast<int>(j);
    }
  }
  return best;
}

/* ---- branching ---- */

struct Ledger {
  std::map<int, const void*> open;  // sequence number to handle
  int deleted = 0, made = 0;
};

enum class By { bounds, rows, both };

/* Both children of a split of one column. */
int branch_by(By by, const Context& c, int column, double value, Ledger& ledger) {
  const double sides[2] = {std::floor(value), std::ceil(value)}, one = 1;
  const int begin = 0;
  for (int k = 0; k < 2; ++k) {
    const char* const lu = k == 0 ? "U" : "L";
    const char* const sense = k == 0 ? "L" : "G";
    int sequence = -7, code = 0;
    void* const handle = &ledger.open;
    if (by == By::bounds) {
      code = TVKbranchcallbackbranchbds(c.env, c.cbdata, c.wherefrom, 1, 1, &column, lu, &sides[k], handle,
                                        &sequence);
    } else if (by == By::rows) {
      code = TVKbranchcallbackbranchconstraints(c.env, c.cbdata, c.wherefrom, 1, 1, 1, &sides[k], sense,
                                                &begin, &column, &one, handle, &sequence);
    } else {
      code = TVKbranchcallbackbranchgeneral(c.env, c.cbdata, c.wherefrom, 1, 1, &column, lu, &sides[k], 1, 1,
                                            &sides[k], sense, &begin, &column, &one, handle, &sequence);
    }
    if (code != 0) return code;
    EXPECT_TRUE(ledger.open.emplace(sequence, handle).second) << sequence;
    ++ledger.made;
  }
  return 0;
}

void expect_deleted(Ledger& ledger, int sequence, const void* handle) {
  ++ledger.deleted;
  const auto found = ledger.open.find(sequence);
  if (handle == nullptr) {
    EXPECT_EQ(found, ledger.open.end()) << sequence;
    return;
  }
  ASSERT_NE(found, ledger.open.end()) << sequence;
  EXPECT_EQ(found->second, handle);
  ledger.open.erase(found);
}

TEST_F(MipControlSearch, BranchingOfTheCallersOwnReachesTheOptimumAndGivesBackEveryHandle) {
  for (const By by : {By::bounds, By::rows, By::both}) {
    for (const int space : {0, 1}) {
      for (unsigned seed = 1; seed <= 6; ++seed) {
        SCOPED_TRACE(seed);
        const double optimum = plain_optimum(seed);
        ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPCBREDLP, space), 0);
        ProbHandle lp = knapsacks(16, 3, seed);
        Control control;
        Ledger ledger;
        control.branch = [&](const Context& c, const Proposed& p, int* action) {
          EXPECT_EQ(p.children, 2);
          EXPECT_EQ(p.type, TVK_BRANCH_COLUMN);
          EXPECT_EQ(p.bounds, 2);
          EXPECT_EQ(p.columns[0], p.columns[1]);
          EXPECT_EQ(p.begin[1], 1);
          const std::vector<double> x = c.x(16);
          const int j = most_fractional(x);
          if (j < 0) return 0;
          *action = TVK_CALLBACK_SET;
          return branch_by(by, c, j, x[j], ledger);
        };
        control.delete_node = [&](int sequence, void* handle) { expect_deleted(ledger, sequence, handle); };
        use(control);
        EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
        EXPECT_NEAR(objective(lp), optimum, 1e-6);
        EXPECT_GT(ledger.made, 0);
        EXPECT_TRUE(ledger.open.empty()) << ledger.open.size() << " of " << ledger.made;
        EXPECT_GE(ledger.deleted, ledger.made + 1);
        use_none();
        TVKfreeprob(env_, &lp);
      }
    }
  }
}

/* Stopped at every k-th call, and with what was made but not taken. */
TEST_F(MipControlSearch, HandlesAreGivenBackWhateverEndsTheSearch) {
  const double optimum = plain_optimum(3);
  for (int k = 1; k <= 12; ++k) {
    SCOPED_TRACE(k);
    ProbHandle lp = knapsacks(16, 3, 3);
    Control control;
    Ledger ledger;
    int calls = 0;
    control.branch = [&](const Context& c, const Proposed&, int* action) {
      const std::vector<double> x = c.x(16);
      const int j = std::max(0, most_fractional(x));
      const int code = branch_by(By::bounds, c, j, x[j], ledger);
      *action = calls % 3 == 2 ? TVK_CALLBACK_DEFAULT : TVK_CALLBACK_SET;
      return ++calls == k ? 1 : code;
    };
    control.delete_node = [&](int sequence, void* handle) { expect_deleted(ledger, sequence, handle); };
    use(control);
    const int code = TVKmipopt(env_, lp);
    EXPECT_EQ(code, calls >= k ? TVK_ERROR_CALLBACK : 0);
    EXPECT_TRUE(ledger.open.empty()) << ledger.open.size();
    if (code != 0) {
      EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
    }
    EXPECT_NEAR(objective(lp), optimum, 1e-6);
    EXPECT_TRUE(ledger.open.empty()) << ledger.open.size();
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NODELIM, k), 0);
    ProbHandle limited = knapsacks(16, 3, 3);
    calls = 1000;
    EXPECT_EQ(TVKmipopt(env_, limited), 0);
    EXPECT_TRUE(ledger.open.empty()) << ledger.open.size();
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_NODELIM, 2100000000), 0);
    TVKfreeprob(env_, &limited);
    TVKfreeprob(env_, &lp);
  }
}

TEST_F(MipControlSearch, ANodeWithoutChildrenIsDone) {
  ProbHandle lp = knapsacks(16, 3, 1);
  Control control;
  control.branch = [](const Context&, const Proposed&, int* action) {
    *action = TVK_CALLBACK_SET;
    return 0;
  };
  use(control);
  EXPECT_EQ(TVKmipopt(env_, lp), 0);
  EXPECT_EQ(TVKgetnodecnt(env_, lp), 1);
  EXPECT_EQ(TVKgetnodeleftcnt(env_, lp), 0);
  TVKfreeprob(env_, &lp);
}

/* ---- incumbents, heuristics ---- */

TEST_F(MipControlSearch, WhatIsRejectedIsNoIncumbent) {
  for (unsigned seed = 1; seed <= 8; ++seed) {
    SCOPED_TRACE(seed);
    ProbHandle lp = knapsacks(10, 2, seed);
    const double best = enumerate(lp, [](double, const auto&) { return true; });
    const double second = enumerate(lp, [&](double value, const auto&) { return value < best - 0.5; });
    const double odd = enumerate(lp, [](double, const auto& x) { return x[0] + x[1] == 1; });
    for (const int space : {0, 1}) {
      ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPCBREDLP, space), 0);
      ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_HEURFREQ, space - 1), 0);
      Control control;
      int asked = 0;
      control.incumbent = [&](const Context& c, double objective, const double* x, int* feasible) {
        ++asked;
        double value = NAN;
        EXPECT_EQ(TVKgetcallbacknodeobjval(c.env, c.cbdata, c.wherefrom, &value), 0);
        EXPECT_EQ(value, objective);
        EXPECT_EQ(c.x(10), std::vector<double>(x, x + 10));
        if (objective > best - 0.5) *feasible = 0;
        return 0;
      };
      use(control);
      EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
      EXPECT_NEAR(objective(lp), second, 1e-6);
      EXPECT_GT(asked, 1);
      control.incumbent = [&](const Context&, double, const double* x, int* feasible) {
        *feasible = std::fabs(x[0] + x[1] - 1) < 0.5 ? 1 : 0;
        return 0;
      };
      EXPECT_EQ(TVKchgobjsen(env_, lp, -1), 0);  // forgets the search and its solution
      EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
      EXPECT_NEAR(objective(lp), odd, 1e-6);
      control.incumbent = [&](const Context&, double, const double*, int* feasible) {
        *feasible = 0;
        return 0;
      };
      EXPECT_EQ(TVKchgobjsen(env_, lp, -1), 0);
      EXPECT_EQ(solve(lp), TVK_STATUS_MIP_INFEASIBLE);
    }
    TVKfreeprob(env_, &lp);
  }
}

TEST_F(MipControlSearch, AHeuristicOfTheCallersOwn) {
  ProbHandle reference = knapsacks(16, 3, 4);
  EXPECT_EQ(solve(reference), TVK_STATUS_MIP_OPTIMAL);
  const std::vector<double> best = x(reference);
  for (const bool feasible : {true, false}) {
    ProbHandle lp = knapsacks(16, 3, 4);
    Control control;
    int calls = 0, solutions_after_first = -1;
    control.heuristic = [&](const Context& c, double* value, double* point, int* action) {
      double relaxation = NAN;
      EXPECT_EQ(TVKgetcallbacknodeobjval(c.env, c.cbdata, c.wherefrom, &relaxation), 0);
      EXPECT_EQ(*value, relaxation);
      EXPECT_EQ(c.x(16), std::vector<double>(point, point + 16));
      if (++calls == 2) {
        EXPECT_EQ(TVKgetcallbackinfo(c.env, c.cbdata, c.wherefrom, TVK_CALLBACK_INFO_SOLUTIONS,
                                     &solutions_after_first),
                  0);
      }
      std::copy(best.begin(), best.end(), point);
      if (!feasible) std::fill(point, point + 16, 1.0);
      *value = 1e9;
      *action = TVK_CALLBACK_SET;
      return 0;
    };
    use(control);
    EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
    EXPECT_EQ(objective(lp), objective(reference));
    EXPECT_GT(calls, 0);
    if (feasible) {
      EXPECT_EQ(TVKgetmipsolcnt(env_, lp), 1);
    } else if (solutions_after_first >= 0) {
      EXPECT_EQ(solutions_after_first, 0);
    }
    TVKfreeprob(env_, &lp);
  }
}

/* ---- nodes and solves ---- */

TEST_F(MipControlSearch, AnyOrderOfNodesLeadsToTheOptimum) {
  for (unsigned seed = 1; seed <= 5; ++seed) {
    const double optimum = plain_optimum(seed);
    ProbHandle lp = knapsacks(16, 3, seed);
    Control control;
    int calls = 0, deepest = 0;
    control.node = [&](const Context& c, int* index, int* action) {
      EXPECT_EQ(c.wherefrom, TVK_CALLBACK_MIP_NODE);
      int left = 0;
      EXPECT_EQ(TVKgetcallbackinfo(c.env, c.cbdata, c.wherefrom, TVK_CALLBACK_INFO_NODES_LEFT, &left), 0);
      EXPECT_LT(*index, left);
      int last = -1;
      double best_bound = -INFINITY, incumbent = NAN;
      EXPECT_EQ(TVKgetcallbackinfo(c.env, c.cbdata, c.wherefrom, TVK_CALLBACK_INFO_BEST_INTEGER, &incumbent),
                0);
      for (int k = 0; k < left; ++k) {
        int sequence = -1, depth = -1, same = -1;
        double bound = NAN, estimate = NAN, sum = -1;
        const auto ask = [&](int item, void* to) {
          EXPECT_EQ(TVKgetcallbacknodeinfo(c.env, c.cbdata, c.wherefrom, k, item, to), 0);
        };
        ask(TVK_CALLBACK_INFO_NODE_SEQUENCE, &sequence);
        ask(TVK_CALLBACK_INFO_NODE_DEPTH, &depth);
        ask(TVK_CALLBACK_INFO_NODE_BOUND, &bound);
        ask(TVK_CALLBACK_INFO_NODE_ESTIMATE, &estimate);
        ask(TVK_CALLBACK_INFO_NODE_INFEASIBILITY_SUM, &sum);
        EXPECT_EQ(TVKgetcallbackseqinfo(c.env, c.cbdata, c.wherefrom, sequence, TVK_CALLBACK_INFO_NODE_DEPTH,
                                        &same),
                  0);
        EXPECT_EQ(same, depth);
        EXPECT_GT(sequence, last);
        best_bound = std::max(best_bound, bound);
        if (depth > 0) {
          EXPECT_GT(sum, 0);
        }
        last = sequence;
        deepest = std::max(deepest, depth);
      }
      EXPECT_GE(std::max(best_bound, incumbent), optimum - 1e-6);
      *index = calls++ * 7 % left;
      if (calls % 5 == 0) *index = left + 3;
      *action = calls % 4 == 0 ? TVK_CALLBACK_DEFAULT : TVK_CALLBACK_SET;
      return 0;
    };
    use(control);
    EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
    EXPECT_NEAR(objective(lp), optimum, 1e-6);
    EXPECT_GE(calls, TVKgetnodecnt(env_, lp));
    EXPECT_GT(deepest, 0);
    use_none();
    TVKfreeprob(env_, &lp);
  }
}

TEST_F(MipControlSearch, SolvesOfTheCallersOwn) {
  const double optimum = plain_optimum(2);
  enum class Way { primal, dual, presolved, not_at_all };
  for (const Way way : {Way::primal, Way::dual, Way::presolved, Way::not_at_all}) {
    ProbHandle lp = knapsacks(16, 3, 2);
    Control control;
    int calls = 0, without = 0;
    control.solve = [&](const Context& c, int* action) {
      ++calls;
      ProbHandle node = nullptr;
      EXPECT_EQ(TVKgetcallbacknodelp(c.env, c.cbdata, c.wherefrom, &node), 0);
      EXPECT_EQ(TVKgetnumcols(c.env, node), 16);
      *action = TVK_CALLBACK_SET;
      if (way == Way::not_at_all && calls % 5 == 2) return 0;
      if (way == Way::presolved) return TVKlpopt(c.env, node);
      return way == Way::primal ? TVKprimopt(c.env, node) : TVKdualopt(c.env, node);
    };
    control.branch_without_solution = [&](const Context& c, const Proposed& p, int*) {
      EXPECT_EQ(c.wherefrom, TVK_CALLBACK_MIP_BRANCH_NO_SOLUTION);
      EXPECT_EQ(p.children, 2);
      double value = 0;
      EXPECT_EQ(TVKgetcallbacknodex(c.env, c.cbdata, c.wherefrom, &value, 0, 0), TVK_ERROR_NO_SOLUTION);
      ++without;
      return 0;
    };
    use(control);
    EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL) << static_cast<int>(way);
    EXPECT_NEAR(objective(lp), optimum, 1e-6);
    EXPECT_GT(calls, 1);
    EXPECT_EQ(without > 0, way == Way::not_at_all);
    use_none();
    TVKfreeprob(env_, &lp);
  }
}

}  // namespace
