/* Filling the solution pool against enumeration: random small problems of every kind, with and without gaps, presolve, cuts and
 * heuristics, at once or a few solutions a call. */
#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <vector>

#include "support/environment_fixture.h"
#include "support/load_mip.h"
#include "support/random_mip.h"

using support::kInf;
using tovik::mip::Problem;

namespace {

constexpr double kTolerance = 2e-5;  // what the rows' tolerance is worth in the objective

using Decision = std::vector<int>;  // values of the integer columns

/* The best objective of every decision that has a solution; unbounded: none at all. */
struct AllSolutions {
  std::map<Decision, double> best_of;
  double best = kInf;
  bool unbounded = false;
};

AllSolutions enumerate(const Problem& problem) {
  AllSolutions all;
  support::EachLeaf leaves(problem, [&](const tovik::lp::LpData& lp) {
    support::QuietControl control;
    tovik::lp::simplex::Solver solver(lp, {}, control, nullptr);
    const tovik::lp::Outcome outcome = solver.solve(tovik::lp::Method::dual);
    all.unbounded |= outcome == tovik::lp::Outcome::unbounded;
    if (outcome != tovik::lp::Outcome::optimal) return;
    Decision decision;
    for (int j = 0; j < problem.num_columns(); ++j) {
      if (problem.is_integer[j] != 0) decision.push_back(static_cast<int>(std::lround(lp.lower[j])));
    }
    const double objective = solver.answer().objective;
    const auto [it, is_new] = all.best_of.try_emplace(decision, objective);
    it->second = std::min(it->second, objective);
    all.best = std::min(all.best, objective);
  });
  leaves.run();
  return all;
}

class Populate : public support::WithEnvironment {
 protected:
  std::map<Decision, double> pool(ProbHandle lp, const Problem& problem) {
    std::map<Decision, double> members;
    const int count = TVKgetsolnpoolnumsolns(env_, lp);
    std::vector<double> x(static_cast<std::size_t>(problem.num_columns()));
    for (int k = 0; k < count; ++k) {
      EXPECT_EQ(TVKgetsolnpoolx(env_, lp, k, x.data(), 0, problem.num_columns() - 1), 0);
      double objective = NAN, violation = NAN;
      EXPECT_EQ(TVKgetsolnpoolobjval(env_, lp, k, &objective), 0);
      EXPECT_EQ(TVKgetsolnpoolquality(env_, lp, k, TVK_QUALITY_MAX_INT_INFEAS, &violation, nullptr), 0);
      EXPECT_EQ(violation, 0);
      Decision decision;
      for (int j = 0; j < problem.num_columns(); ++j) {
        if (problem.is_integer[j] != 0) decision.push_back(static_cast<int>(x[j]));
      }
      EXPECT_TRUE(members.emplace(decision, objective).second) << "twice";
    }
    return members;
  }
  void set(int parameter, int value) { ASSERT_EQ(TVKsetintparam(env_, parameter, value), 0); }
  void draw_parameters(support::Random& random) {
    set(TVK_PARAM_PREIND, random.chance(0.7) ? 1 : 0);
    set(TVK_PARAM_HEURFREQ, random.chance(0.5) ? 0 : -1);
    set(TVK_PARAM_CUTPASS, random.chance(0.5) ? 0 : -1);
    set(TVK_PARAM_NODESEL, random.pick(0, 3));
    set(TVK_PARAM_SOLNPOOLINTENSITY, random.pick(3, 4));
    set(TVK_PARAM_POPULATELIM, random.chance(0.6) ? 2100000000 : random.pick(1, 7));
    set(TVK_PARAM_SOLNPOOLCAPACITY, 2100000000);
    ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_SOLNPOOLAGAP, random.chance(0.5) ? 1e75 : random.pick(0, 8)), 0);
    ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_SOLNPOOLGAP, random.chance(0.7) ? 1e75 : random.uniform(0, 1)),
              0);
  }
  double room(double best) {
    double relative = NAN, absolute = NAN;
    EXPECT_EQ(TVKgetdblparam(env_, TVK_PARAM_SOLNPOOLGAP, &relative), 0);
    EXPECT_EQ(TVKgetdblparam(env_, TVK_PARAM_SOLNPOOLAGAP, &absolute), 0);
    return std::min(absolute, relative * (1e-10 + std::fabs(best)));
  }
};

}  // namespace

TEST_F(Populate, FindsWhatEnumerationFinds) {
  const unsigned seed = support::fresh_seed();
  int compared = 0, calls = 0;
  std::size_t solutions = 0;
  for (unsigned k = 0; k < 2000; ++k) {
    SCOPED_TRACE(testing::Message() << "TOVIK_TEST_SEED=" << seed << " model " << k);
    support::RandomMip random(seed + 7919 * k);
    Problem problem = random.draw();
    if (!problem.indicators.empty()) continue;
    const int integers =
        static_cast<int>(std::count(problem.is_integer.begin(), problem.is_integer.end(), 1));
    if (integers == 0) continue;
    const AllSolutions truth = enumerate(problem);
    if (truth.unbounded) continue;
    draw_parameters(random.random());
    ProbHandle lp = support::load_mip(env_, problem);
    int status = 0;
    for (int call = 0; call < 2000; ++call) {
      const int before = TVKgetsolnpoolnumsolns(env_, lp);
      ASSERT_EQ(TVKpopulate(env_, lp), 0) << errors();
      ++calls;
      status = TVKgetstat(env_, lp);
      if (status != TVK_STATUS_POPULATE_SOLUTION_LIMIT) break;
      EXPECT_GE(TVKgetsolnpoolnumsolns(env_, lp), before);
    }
    if (truth.best_of.empty()) {
      EXPECT_EQ(status, TVK_STATUS_MIP_INFEASIBLE);
      TVKfreeprob(env_, &lp);
      continue;
    }
    const double most = truth.best + room(truth.best);
    EXPECT_EQ(status,
              most < 1e50 ? TVK_STATUS_ALL_SOLUTIONS_FOUND_TOLERANCE : TVK_STATUS_ALL_SOLUTIONS_FOUND);
    const std::map<Decision, double> found = pool(lp, problem);
    for (const auto& [decision, objective] : found) {
      const auto known = truth.best_of.find(decision);
      ASSERT_NE(known, truth.best_of.end());
      EXPECT_NEAR(known->second, objective, kTolerance);
      EXPECT_LE(objective, most + kTolerance);
    }
    for (const auto& [decision, objective] : truth.best_of) {
      if (objective < most - kTolerance) {
        EXPECT_TRUE(found.contains(decision)) << objective;
      }
    }
    double incumbent = NAN;
    EXPECT_EQ(TVKgetobjval(env_, lp, &incumbent), 0);
    EXPECT_NEAR(incumbent, truth.best, kTolerance);
    solutions += found.size();
    ++compared;
    TVKfreeprob(env_, &lp);
  }
  EXPECT_GT(compared, 400);
  EXPECT_GT(solutions, 2000u);
  printf("compared %d problems, %zu solutions, %d calls\n", compared, solutions, calls);
}

/* With room for a few only the pool holds the best of all; with less intensity, solutions, though not all of them. */
TEST_F(Populate, KeepsTheBestAndNothingThatIsNoSolution) {
  const unsigned seed = support::fresh_seed();
  int full = 0, few = 0;
  for (unsigned k = 0; k < 1500; ++k) {
    SCOPED_TRACE(testing::Message() << "TOVIK_TEST_SEED=" << seed << " model " << k);
    support::RandomMip random(seed + 104729 * k);
    const Problem problem = random.draw();
    if (!problem.indicators.empty() ||
        std::count(problem.is_integer.begin(), problem.is_integer.end(), 1) == 0)
      continue;
    const AllSolutions truth = enumerate(problem);
    if (truth.unbounded || truth.best_of.empty()) continue;
    const bool has_capacity = random.random().chance(0.5);
    const int capacity = random.random().pick(1, 4);
    set(TVK_PARAM_POPULATELIM, 2100000000);
    set(TVK_PARAM_SOLNPOOLINTENSITY, has_capacity ? 4 : random.random().pick(0, 2));
    set(TVK_PARAM_SOLNPOOLCAPACITY, has_capacity ? capacity : 2100000000);
    set(TVK_PARAM_SOLNPOOLREPLACE, 1);
    ProbHandle lp = support::load_mip(env_, problem);
    ASSERT_EQ(TVKpopulate(env_, lp), 0) << errors();
    EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_ALL_SOLUTIONS_FOUND);
    std::vector<double> expected, got;
    for (const auto& [decision, objective] : truth.best_of) expected.push_back(objective);
    for (const auto& [decision, objective] : pool(lp, problem)) {
      got.push_back(objective);
      const auto known = truth.best_of.find(decision);
      ASSERT_NE(known, truth.best_of.end());
      EXPECT_GE(objective, known->second - kTolerance);
    }
    std::sort(expected.begin(), expected.end());
    std::sort(got.begin(), got.end());
    ASSERT_FALSE(got.empty());
    EXPECT_NEAR(got.front(), truth.best, kTolerance);
    if (has_capacity) {
      expected.resize(std::min(expected.size(), static_cast<std::size_t>(capacity)));
      ASSERT_EQ(got.size(), expected.size());
      for (std::size_t i = 0; i < got.size(); ++i) EXPECT_NEAR(got[i], expected[i], kTolerance);
      ++full;
    } else {
      ++few;
    }
    TVKfreeprob(env_, &lp);
  }
  EXPECT_GT(full, 100);
  EXPECT_GT(few, 100);
}
