/* Control callbacks of the mixed-integer optimizer: what they answer is what the search does. */
#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numeric>
#include <string>
#include <vector>

#include "support/control_callbacks.h"

namespace {

using support::Context;
using support::Control;
using support::Proposed;

class MipControl : public support::WithControl {
 protected:
  void SetUp() override {
    WithControl::SetUp();
    // What the search finds by itself would leave callbacks little to do.
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_CUTPASS, -1), 0);
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_HEURFREQ, -1), 0);
    ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_RINSHEUR, -1), 0);
  }
  double plain_optimum(unsigned seed, int columns = 16, int rows = 3) {
    ProbHandle lp = knapsacks(columns, rows, seed);
    EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
    const double value = objective(lp);
    TVKfreeprob(env_, &lp);
    return value;
  }
};

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

/* ---- cuts ---- */

class Tours : public MipControl {
 protected:
  static constexpr int kCities = 9;
  static int edge(int a, int b) {
    if (a > b) std::swap(a, b);
    return a * kCities - a * (a + 1) / 2 + b - a - 1;
  }
  static constexpr int kEdges = kCities * (kCities - 1) / 2;

  void place(unsigned seed) {
    unsigned state = seed;
    const auto next = [&] { return (state = state * 1103515245u + 12345u) / 65536u % 100u; };
    for (int a = 0; a < kCities; ++a) {
      for (int b = a + 1; b < kCities; ++b) length_[edge(a, b)] = 1 + next();
    }
  }
  /* Two edges at each city; tours and collections of subtours. */
  ProbHandle degrees() {
    int status = -1;
    ProbHandle lp = TVKcreateprob(env_, &status, "tour");
    const std::vector<double> upper(kEdges, 1.0), rhs(kCities, 2.0);
    const std::string types(kEdges, 'B'), senses(kCities, 'E');
    EXPECT_EQ(TVKnewcols(env_, lp, kEdges, length_.data(), nullptr, upper.data(), types.c_str(), nullptr), 0);
    std::vector<int> begin, index;
    for (int a = 0; a < kCities; ++a) {
      begin.push_back(static_cast<int>(index.size()));
      for (int b = 0; b < kCities; ++b) {
        if (b != a) index.push_back(edge(a, b));
      }
    }
    const std::vector<double> ones(index.size(), 1.0);
    EXPECT_EQ(TVKaddrows(env_, lp, 0, kCities, static_cast<int>(index.size()), rhs.data(), senses.c_str(),
                         begin.data(), index.data(), ones.data(), nullptr, nullptr),
              0);
    return lp;
  }
  /* Held and Karp. */
  double shortest_tour() const {
    const int sets = 1 << (kCities - 1);
    std::vector<std::vector<double>> best(sets, std::vector<double>(kCities, INFINITY));
    for (int b = 1; b < kCities; ++b) best[1 << (b - 1)][b] = length_[edge(0, b)];
    for (int s = 1; s < sets; ++s) {
      for (int b = 1; b < kCities; ++b) {
        for (int c = 1; c < kCities && (s >> (b - 1) & 1) != 0; ++c) {
          if ((s >> (c - 1) & 1) != 0) continue;
          double& to = best[s | 1 << (c - 1)][c];
          to = std::min(to, best[s][b] + length_[edge(b, c)]);
        }
      }
    }
    double shortest = INFINITY;
    for (int b = 1; b < kCities; ++b) shortest = std::min(shortest, best[sets - 1][b] + length_[edge(0, b)]);
    return shortest;
  }
  /* The cities that city 0 reaches along edges of more than a half. */
  static std::vector<int> reached(const std::vector<double>& x) {
    std::vector<int> set{0};
    std::vector<char> in(kCities);
    in[0] = 1;
    for (std::size_t k = 0; k < set.size(); ++k) {
      for (int b = 0; b < kCities; ++b) {
        if (in[b] != 0 || x[edge(set[k], b)] < 0.5) continue;
        in[b] = 1;
        set.push_back(b);
      }
    }
    return set;
  }
  /* Forbids the subtour through city 0; sense: L or, negated, G. */
  int forbid(const Context& c, char sense, int cutclass) {
    const std::vector<double> x = c.x(kEdges);
    const std::vector<int> set = reached(x);
    if (static_cast<int>(set.size()) == kCities || set.size() < 3) return 0;
    std::vector<int> index;
    for (std::size_t i = 0; i < set.size(); ++i) {
      for (std::size_t j = i + 1; j < set.size(); ++j) index.push_back(edge(set[i], set[j]));
    }
    const double sign = sense == 'L' ? 1 : -1;
    const std::vector<double> value(index.size(), sign);
    ++cuts_;
    return TVKcutcallbackadd(c.env, c.cbdata, c.wherefrom, static_cast<int>(index.size()),
                             sign * (static_cast<double>(set.size()) - 1), sense, index.data(), value.data(),
                             cutclass);
  }
  std::array<double, kEdges> length_{};
  int cuts_ = 0;
};

TEST_F(Tours, SubtoursThatAreForbiddenWhereTheyShowLeaveTheShortestTour) {
  for (unsigned seed = 1; seed <= 12; ++seed) {
    SCOPED_TRACE(seed);
    place(seed);
    for (const int space : {0, 1}) {
      for (const bool own_ideas : {false, true}) {
        ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_MIPCBREDLP, space), 0);
        ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_CUTPASS, own_ideas ? 0 : -1), 0);
        ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_HEURFREQ, own_ideas ? 0 : -1), 0);
        ASSERT_EQ(TVKsetintparam(env_, TVK_PARAM_RINSHEUR, own_ideas ? 0 : -1), 0);
        ProbHandle lp = degrees();
        Control control;
        const bool only_candidates = seed % 2 == 0;
        control.cut = [&](const Context& c, int* action) {
          EXPECT_EQ(c.wherefrom, TVK_CALLBACK_MIP_CUT);
          *action = TVK_CALLBACK_SET;
          if (only_candidates && c.is_relaxation()) return 0;
          return forbid(c, seed % 3 == 0 ? 'G' : 'L', static_cast<int>(seed % 4));
        };
        use(control);
        EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
        EXPECT_NEAR(objective(lp), shortest_tour(), 1e-6);
        EXPECT_EQ(static_cast<int>(reached(x(lp)).size()), kCities);
        TVKfreeprob(env_, &lp);
      }
    }
  }
  EXPECT_GT(cuts_, 10);
}

/* A start and a solution of before are points like any other. */
TEST_F(Tours, StartsAreAskedAboutToo) {
  place(2);
  ProbHandle lp = degrees();
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  const double relaxed = objective(lp);
  ASSERT_LT(reached(x(lp)).size(), static_cast<std::size_t>(kCities)) << "the seed must make subtours";
  Control control;
  control.cut = [&](const Context& c, int*) { return forbid(c, 'L', 0); };
  use(control);
  EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
  EXPECT_NEAR(objective(lp), shortest_tour(), 1e-6);
  EXPECT_GT(objective(lp), relaxed);
  TVKfreeprob(env_, &lp);
}

TEST_F(Tours, ACallbackThatFailsStopsAtAnyCallAndTheSearchGoesOn) {
  place(5);
  const double shortest = shortest_tour();
  for (int k = 1; k <= 10; ++k) {
    ProbHandle lp = degrees();
    Control control;
    int calls = 0;
    control.cut = [&](const Context& c, int* action) {
      if (++calls == k) {
        if (k % 2 == 0) return 77;
        *action = TVK_CALLBACK_FAIL;
        return 0;
      }
      return forbid(c, 'L', 1);
    };
    use(control);
    const int code = TVKmipopt(env_, lp);
    if (calls >= k) {
      EXPECT_EQ(code, TVK_ERROR_CALLBACK);
      EXPECT_EQ(calls, k) << "none is called after the one that failed";
      const int status = TVKgetstat(env_, lp);
      EXPECT_TRUE(status == TVK_STATUS_MIP_USER_ABORT || status == TVK_STATUS_MIP_USER_ABORT_NO_SOLUTION);
      EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
    }
    EXPECT_NEAR(objective(lp), shortest, 1e-6);
    TVKfreeprob(env_, &lp);
  }
}

/* A cut that holds in one subtree forbids nothing elsewhere. */
TEST_F(MipControl, LocalCutsHoldBelowTheirNodeAlone) {
  for (unsigned seed = 1; seed <= 10; ++seed) {
    SCOPED_TRACE(seed);
    ProbHandle lp = knapsacks(12, 3, seed);
    Control control;
    int made = 0, cut = 0;
    control.branch = [&](const Context& c, const Proposed&, int* action) {
      if (c.node_item(TVK_CALLBACK_INFO_NODE_DEPTH) != 0) return 0;
      const int column = 0;
      const double one = 1, zero = 0;
      int sequence = -1;
      EXPECT_EQ(TVKbranchcallbackbranchbds(c.env, c.cbdata, c.wherefrom, 0, 1, &column, "U", &zero, nullptr,
                                           &sequence),
                0);
      EXPECT_EQ(TVKbranchcallbackbranchbds(c.env, c.cbdata, c.wherefrom, 0, 1, &column, "L", &one, nullptr,
                                           &sequence),
                0);
      made += 2;
      *action = TVK_CALLBACK_SET;
      return 0;
    };
    // Where the first column is 0 at most two others may be 1.
    std::vector<int> index;
    for (int j = 1; j < 12; ++j) index.push_back(j);
    const std::vector<double> ones(index.size(), 1.0);
    control.cut = [&](const Context& c, int*) {
      if (c.bound(0, true) > 0.5 || c.node_item(TVK_CALLBACK_INFO_NODE_DEPTH) == 0) return 0;
      ++cut;
      return TVKcutcallbackaddlocal(c.env, c.cbdata, c.wherefrom, static_cast<int>(index.size()), 2, 'L',
                                    index.data(), ones.data());
    };
    use(control);
    EXPECT_EQ(solve(lp), TVK_STATUS_MIP_OPTIMAL);
    const double with_first = enumerate(lp, [](double, const auto& x) { return x[0] == 1; });
    const double all = enumerate(lp, [](double, const auto& x) {
      return x[0] == 1 || std::accumulate(x.begin() + 1, x.end(), 0.0) <= 2;
    });
    if (made > 0) {
      EXPECT_NEAR(objective(lp), all, 1e-6);
      EXPECT_GE(all, with_first);
    }
    TVKfreeprob(env_, &lp);
  }
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

TEST_F(MipControl, BranchingOfTheCallersOwnReachesTheOptimumAndGivesBackEveryHandle) {
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
TEST_F(MipControl, HandlesAreGivenBackWhateverEndsTheSearch) {
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

TEST_F(MipControl, ANodeWithoutChildrenIsDone) {
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

TEST_F(MipControl, WhatIsRejectedIsNoIncumbent) {
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

TEST_F(MipControl, AHeuristicOfTheCallersOwn) {
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

TEST_F(MipControl, AnyOrderOfNodesLeadsToTheOptimum) {
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

TEST_F(MipControl, SolvesOfTheCallersOwn) {
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

/* ---- what may be asked, and what may not ---- */

TEST_F(MipControl, TheNodesProblemIsTheOneThatTheSearchSolves) {
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

TEST_F(MipControl, QueriesAgreeWithTheModel) {
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

TEST_F(MipControl, MisuseHasItsCodes) {
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

TEST_F(MipControl, DynamicSearchAndControlCallbacksExcludeEachOther) {
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
TEST_F(MipControl, SetsAndIndicatorsInBothSpaces) {
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
TEST_F(MipControl, OtherProblemsMayBeOptimizedFromInside) {
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
