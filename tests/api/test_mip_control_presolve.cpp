/* Control callbacks of searches whose problem presolve has made smaller: what they say of the model's own columns, those that
 * left included, and what they see of the problem that is searched. */
#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <vector>

#include "support/control_callbacks.h"
#include "support/read_text.h"

namespace {

using support::Context;
using support::Control;
using support::Proposed;

/* Twelve binary columns in three knapsacks, and behind them columns that presolve takes away: y = 1 - b0, f = 2, s = b1 + b2.
 * c is a continuous column that a row defines. */
class ControlAndPresolve : public support::WithControl {
 protected:
  static constexpr int kBinaries = 12, kY = 12, kF = 13, kS = 14, kColumns = 15;

  ProbHandle model(unsigned seed) {
    ProbHandle lp = knapsacks(kBinaries, 3, seed);
    const double obj[] = {1, 1, -0.5}, lower[] = {0, 2, 0}, upper[] = {1, 2, 2};
    EXPECT_EQ(TVKnewcols(env_, lp, 3, obj, lower, upper, "BIC", nullptr), 0);
    const double rhs[] = {1, 0}, values[] = {1, 1, 1, -1, -1};
    const int begin[] = {0, 2}, index[] = {0, kY, kS, 1, 2};
    EXPECT_EQ(TVKaddrows(env_, lp, 0, 2, 5, rhs, "EE", begin, index, values, nullptr, nullptr), 0);
    return lp;
  }
  /* With one more row: sum of values[j] times the columns, at most side. */
  double optimum_with(unsigned seed, const std::map<int, double>& row, double side) {
    ProbHandle lp = model(seed);
    std::vector<int> index;
    std::vector<double> value;
    for (const auto& [j, v] : row) {
      index.push_back(j);
      value.push_back(v);
    }
    const int begin = 0;
    EXPECT_EQ(TVKaddrows(env_, lp, 0, 1, static_cast<int>(index.size()), &side, "L", &begin, index.data(),
                         value.data(), nullptr, nullptr),
              0);
    const double best = solve(lp) == TVK_STATUS_MIP_OPTIMAL ? objective(lp) : NAN;
    TVKfreeprob(env_, &lp);
    return best;
  }
  /* The same where a cut callback says so at each point that violates it. */
  double optimum_with_cuts(unsigned seed, const std::map<int, double>& row, double side) {
    ProbHandle lp = model(seed);
    Control control;
    control.cut = [&](const Context& c, int* action) {
      const std::vector<double> x = c.x(kColumns);
      EXPECT_NEAR(x[kY], 1 - x[0], 1e-9);
      EXPECT_EQ(x[kF], 2);
      EXPECT_NEAR(x[kS], x[1] + x[2], 1e-9);
      double activity = 0;
      std::vector<int> index;
      std::vector<double> value;
      for (const auto& [j, v] : row) {
        activity += v * x[j];
        index.push_back(j);
        value.push_back(v);
      }
      if (activity <= side + 1e-6) return 0;
      *action = TVK_CALLBACK_SET;
      return TVKcutcallbackadd(c.env, c.cbdata, c.wherefrom, static_cast<int>(index.size()), side, 'L',
                               index.data(), value.data(), 0);
    };
    use(control);
    const int status = solve(lp);
    use_none();
    const double best = status == TVK_STATUS_MIP_OPTIMAL ? objective(lp) : NAN;
    if (status != TVK_STATUS_MIP_OPTIMAL) {
      EXPECT_EQ(status, TVK_STATUS_MIP_INFEASIBLE);
    }
    TVKfreeprob(env_, &lp);
    return best;
  }
  int searched_columns(const Context& c) {
    ConstProbHandle shown = nullptr;
    EXPECT_EQ(TVKgetcallbacklp(c.env, c.cbdata, c.wherefrom, &shown), 0);
    return TVKgetnumcols(c.env, shown);
  }
};

TEST_F(ControlAndPresolve, CutsOnColumnsThatLeftMeanWhatTheySay) {
  const std::map<int, double> rows[] = {{{kY, -1}},
                                        {{kS, 1}},
                                        {{kS, 1}, {3, 2}, {kF, 1}},
                                        {{kY, 2}, {0, 3}, {kS, 1}},
                                        {{kF, 1}, {5, 1}, {6, 1}}};
  const double sides[] = {-1, 1, 4, 2, 3};
  for (unsigned seed = 1; seed <= 4; ++seed) {
    for (int k = 0; k < 5; ++k) {
      SCOPED_TRACE(testing::Message() << "seed " << seed << ", row " << k);
      const double plain = optimum_with(seed, rows[k], sides[k]);
      EXPECT_NEAR(optimum_with_cuts(seed, rows[k], sides[k]), plain, 1e-6);
    }
  }
}

/* A row of columns that are fixed has no columns left: it holds, or nothing does. */
TEST_F(ControlAndPresolve, CutsOnFixedColumnsHoldOrForbidAll) {
  EXPECT_TRUE(std::isnan(optimum_with_cuts(1, {{kF, 1}}, 1)));
  EXPECT_NEAR(optimum_with_cuts(1, {{kF, 1}}, 2), optimum_with(1, {{kF, 1}}, 2), 1e-6);
}

TEST_F(ControlAndPresolve, AProblemThatPresolveSolvesIsAskedAboutToo) {
  for (const bool refuse : {false, true}) {
    ProbHandle lp = support::read_text(
        env_, "max\n obj: x1 + 2 x2 - x3\nst\n c1: x1 + x2 = 2\n c2: x3 - x1 = 0\nbinary\n x1 x2 x3\nend\n");
    Control control;
    int cuts = 0, incumbents = 0;
    control.cut = [&](const Context& c, int*) {
      ++cuts;
      EXPECT_EQ(c.x(3), std::vector<double>(3, 1.0));
      return 0;
    };
    control.incumbent = [&](const Context& c, double value, const double* x, int* feasible) {
      ++incumbents;
      EXPECT_EQ(c.x(3), std::vector<double>(3, 1.0));
      EXPECT_EQ(std::vector<double>(x, x + 3), std::vector<double>(3, 1.0));
      EXPECT_EQ(value, 2);
      *feasible = refuse ? 0 : 1;
      return 0;
    };
    use(control);
    EXPECT_EQ(solve(lp), refuse ? TVK_STATUS_MIP_INFEASIBLE : TVK_STATUS_MIP_OPTIMAL);
    EXPECT_EQ(cuts, 1);
    EXPECT_EQ(incumbents, 1);
    use_none();
    TVKfreeprob(env_, &lp);
  }
}

TEST_F(ControlAndPresolve, WhatIsAskedOfColumnsThatLeft) {
  ProbHandle lp = model(3);
  const int columns[] = {2, 5, kY}, priorities[] = {9, 4, 7}, directions[] = {1, -1, 1};
  ASSERT_EQ(TVKcopyorder(env_, lp, 3, columns, priorities, directions), 0);
  Control control;
  int calls = 0, with_pseudo_costs = 0;
  bool first_left = false;
  control.branch = [&](const Context& c, const Proposed& p, int*) {
    ++calls;
    EXPECT_EQ(searched_columns(c), kColumns);  // the caller's
    std::vector<double> up(kColumns, -1), down(kColumns, -1);
    std::vector<int> priority(kColumns), direction(kColumns);
    EXPECT_EQ(
        TVKgetcallbackpseudocosts(c.env, c.cbdata, c.wherefrom, up.data(), down.data(), 0, kColumns - 1), 0);
    EXPECT_EQ(
        TVKgetcallbackorder(c.env, c.cbdata, c.wherefrom, priority.data(), direction.data(), 0, kColumns - 1),
        0);
    EXPECT_EQ(up[kF], 0);
    EXPECT_EQ(up[kS], 0);
    for (int j = 0; j < kColumns; ++j) {
      with_pseudo_costs += up[j] > 0 ? 1 : 0;
      EXPECT_EQ(priority[j], j == 2 ? 9 : j == 5 ? 4 : j == kY ? 7 : 0);
      EXPECT_EQ(direction[j], j == 2 || j == kY ? 1 : j == 5 ? -1 : 0);
    }
    for (const bool upper : {false, true}) {
      EXPECT_EQ(c.bound(kF, upper), 2);
      EXPECT_EQ(c.bound(kY, upper), 1 - c.bound(0, !upper));
      EXPECT_EQ(c.bound(kS, upper), c.bound(1, upper) + c.bound(2, upper));
    }
    for (int k = 0; k < p.bounds; ++k) EXPECT_TRUE(p.columns[k] >= 0 && p.columns[k] < kColumns);
    // On what was a column of the model before presolve.
    first_left |= c.bound(0, false) < c.bound(0, true);
    return 0;
  };
  use(control);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_GT(calls, 1);
  EXPECT_GT(with_pseudo_costs, 0);
  EXPECT_TRUE(first_left);
  use_none();
}

TEST_F(ControlAndPresolve, BranchingOnColumnsThatLeft) {
  for (unsigned seed = 1; seed <= 6; ++seed) {
    const double optimum = optimum_with(seed, {{0, 0}}, 0);
    ProbHandle lp = model(seed);
    Control control;
    std::vector<void*> given, back;
    int own = 0;
    control.branch = [&](const Context& c, const Proposed&, int* action) {
      const std::vector<double> x = c.x(kColumns);
      const auto child = [&](int column, char side, double value) {
        int sequence = -1;
        given.push_back(&given);
        EXPECT_EQ(TVKbranchcallbackbranchbds(c.env, c.cbdata, c.wherefrom, 0, 1, &column, &side, &value,
                                             &given, &sequence),
                  0);
        EXPECT_GT(sequence, 0);
      };
      const int depth = c.node_item(TVK_CALLBACK_INFO_NODE_DEPTH);
      // y = 1 - b0; s = b1 + b2 is whole wherever they are, and split by a row; f is what it is.
      for (const int j : {kY, kS}) {
        if (c.bound(j, false) + 0.5 > c.bound(j, true) || (j == kS && depth != 2)) continue;
        const double down = std::min(std::floor(x[j]), c.bound(j, true) - 1);
        child(j, 'U', down);
        child(j, 'L', down + 1);
        ++own;
        *action = TVK_CALLBACK_SET;
        return 0;
      }
      if (depth != 4) return 0;
      child(kF, 'B', 2);
      child(kF, 'L', 3);  // nothing is left
      *action = TVK_CALLBACK_SET;
      return 0;
    };
    control.delete_node = [&](int, void* handle) {
      if (handle != nullptr) back.push_back(handle);
    };
    use(control);
    EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
    EXPECT_NEAR(objective(lp), optimum, 1e-6);
    EXPECT_GT(own, 0);
    EXPECT_EQ(given, back);
    use_none();
    TVKfreeprob(env_, &lp);
  }
}

/* In the problem that is searched callbacks count its columns, which may be fewer. */
TEST_F(ControlAndPresolve, TheSearchedProblemIsSmallerAndItsOwnSpace) {
  ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPCBREDLP, 1), 0);
  for (const int presolve : {0, 1}) {
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_PREIND, presolve), 0);
    ProbHandle lp = model(2);
    Control control;
    int calls = 0;
    control.heuristic = [&](const Context& c, double* value, double* x, int*) {
      ++calls;
      const int n = searched_columns(c);
      EXPECT_TRUE(presolve != 0 ? n <= kBinaries : n == kColumns) << n;
      const std::vector<double> own = c.x(n);
      EXPECT_TRUE(std::equal(own.begin(), own.end(), x));
      ConstProbHandle shown = nullptr;
      EXPECT_EQ(TVKgetcallbacklp(c.env, c.cbdata, c.wherefrom, &shown), 0);
      std::vector<double> cost(static_cast<std::size_t>(n));
      double sum = 0;
      EXPECT_EQ(TVKgetobjoffset(c.env, shown, &sum), 0);
      EXPECT_EQ(TVKgetobj(c.env, shown, cost.data(), 0, n - 1), 0);
      for (int j = 0; j < n; ++j) sum += cost[j] * own[j];
      EXPECT_NEAR(sum, *value, 1e-6);
      double beyond = 0;
      EXPECT_EQ(TVKgetcallbacknodex(c.env, c.cbdata, c.wherefrom, &beyond, n, n), TVK_ERROR_INDEX_RANGE);
      const double one = 1;
      EXPECT_EQ(TVKcutcallbackadd(c.env, c.cbdata, c.wherefrom, 1, 1, 'L', &n, &one, 0),
                TVK_ERROR_BAD_ARGUMENT);
      return 0;
    };
    control.cut = [&](const Context& c, int*) {
      const int n = searched_columns(c);
      const double one = 1;
      EXPECT_EQ(TVKcutcallbackadd(c.env, c.cbdata, c.wherefrom, 1, 1, 'L', &n, &one, 0),
                TVK_ERROR_COLUMN_INDEX_RANGE);
      errors();
      return 0;
    };
    use(control);
    EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
    EXPECT_GT(calls, 0);
    use_none();
    TVKfreeprob(env_, &lp);
  }
}

/* Starts are asked about before the search begins, and a search without nodes still gives back every handle. */
TEST_F(ControlAndPresolve, StartsAndProblemsWithoutSolutions) {
  ProbHandle lp = model(5);
  std::vector<int> all;
  for (int j = 0; j < kColumns; ++j) all.push_back(j);
  std::vector<double> zero(kColumns, 0.0);
  zero[kY] = 1;
  zero[kF] = 2;
  const int begin = 0, effort = TVK_MIPSTART_CHECKFEAS;
  ASSERT_EQ(TVKaddmipstarts(env_, lp, 1, kColumns, &begin, all.data(), zero.data(), &effort, nullptr), 0);
  Control control;
  std::vector<std::vector<double>> asked;
  control.incumbent = [&](const Context&, double, const double* x, int* feasible) {
    asked.emplace_back(x, x + kColumns);
    *feasible = asked.size() > 1 ? 1 : 0;
    return 0;
  };
  control.delete_node = [](int, void*) {};
  use(control);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  ASSERT_GT(asked.size(), 1U);
  EXPECT_EQ(asked.front(), zero);
  EXPECT_EQ(asked.back(), x(lp));
  const double best = objective(lp);
  use_none();
  EXPECT_NEAR(best, optimum_with(5, {{0, 0}}, 0), 1e-6);
  TVKfreeprob(env_, &lp);

  lp = support::read_text(env_,
                          "min\n obj: x1\nst\n c1: x1 + x2 >= 1\n c2: x1 + x2 <= 0\nbinary\n x1 x2\nend\n");
  use(control);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_INFEASIBLE);
  use_none();
}

}  // namespace
