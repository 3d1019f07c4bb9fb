/* Cuts of the caller's own: what candidates are asked for, from the search and from starts, and cuts of one subtree. */
#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <string>
#include <vector>

#include "support/control_callbacks.h"

namespace {

using support::Context;
using support::Control;
using support::Proposed;

using MipControlCuts = support::WithControl;

class Tours : public support::WithControl {
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
  /* By the best path through each set of cities to each of its members. */
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
TEST_F(MipControlCuts, LocalCutsHoldBelowTheirNodeAlone) {
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

}  // namespace
