// Heuristics one by one: what they find, and that they leave their worker as it was.
#include <gtest/gtest.h>

#include <memory>

#include "mip/domain/point.h"
#include "mip/heuristics/diving_rules.h"
#include "mip/heuristics/feasibility_jump.h"
#include "mip/heuristics/feasibility_pump.h"
#include "mip/heuristics/fix_and_propagate.h"
#include "mip/heuristics/heuristics.h"
#include "mip/heuristics/neighbourhood.h"
#include "mip/heuristics/one_opt.h"
#include "mip/heuristics/reduced_problem.h"
#include "mip/heuristics/rounding.h"
#include "mip/search/heuristic_schedule.h"
#include "mip/search/sub_search.h"
#include "tests/support/random_mip.h"

namespace {

using namespace tovik::mip;
using tovik::lp::Outcome;

/* Columns of a problem, one after another. */
class ProblemMaker {
 public:
  explicit ProblemMaker(std::vector<double> row_lower, std::vector<double> row_upper) {
    problem_.lp.row_lower = std::move(row_lower);
    problem_.lp.row_upper = std::move(row_upper);
    problem_.lp.matrix.rows = static_cast<int>(problem_.lp.row_lower.size());
    problem_.lp.matrix.start.assign(1, 0);
  }
  ProblemMaker& integer(double cost, double upper, const std::vector<double>& entries) {
    problem_.lp.cost.push_back(cost);
    problem_.lp.lower.push_back(0);
    problem_.lp.upper.push_back(upper);
    problem_.is_integer.push_back(1);
    tovik::lp::Matrix& m = problem_.lp.matrix;
    for (int i = 0; i < m.rows; ++i) {
      if (entries[i] == 0) continue;
      m.index.push_back(i);
      m.value.push_back(entries[i]);
    }
    m.start.push_back(static_cast<int>(m.index.size()));
    ++m.columns;
    return *this;
  }
  const Problem& problem() const { return problem_; }

 private:
  Problem problem_;
};

/* A worker at the root of a problem. */
struct Root {
  explicit Root(const Problem& problem, const Settings& settings = {})
      : global(problem, settings),
        worker(global, std::make_unique<tovik::lp::simplex::Relaxation>(problem.lp, settings.lp, control),
               control) {
    worker.sub_search = &sub_search;
  }
  bool solve() { return worker.propagator.run_all(worker.domain) && worker.solve({}) == Outcome::optimal; }

  support::QuietControl control;
  Global global;
  TreeSubSearch sub_search;
  Worker worker;
};

Moment generous() {
  Moment moment;
  moment.root = moment.first = true;
  moment.iterations = 10000;
  return moment;
}

bool is_solution(const Problem& problem, std::span<const double> x) {
  const PointViolation v = measure(problem, x);
  return v.integrality <= 1e-5 && v.primal() <= 1e-6 && v.object <= 1e-6;
}

/* A bound that is missed by less than the relaxation's tolerance gives no branch: none would move it. */
TEST(MipBranching, FractionsLieBetweenTheBounds) {
  int looked_at = 0;
  for (unsigned seed = 1; seed <= 50; ++seed) {
    const Problem problem = support::RandomMip(seed).draw();
    Root root(problem);
    if (!root.solve()) continue;
    root.global.settings.tolerances.integrality = 0;
    const Worker& worker = root.worker;
    for (const int j : root.global.integer_columns) {
      std::vector<double> x(worker.relaxation->primal().begin(), worker.relaxation->primal().end());
      for (const int k : root.global.integer_columns) x[k] = std::round(x[k]);
      const double lower = worker.domain.lower(j), upper = worker.domain.upper(j);
      if (std::isinf(lower) || std::isinf(upper) || lower == upper) continue;
      ++looked_at;
      for (const double beyond : {lower - 1e-7, upper + 1e-7}) {
        x[j] = beyond;
        EXPECT_TRUE(find_shortfall(worker, x).fractions.empty());
      }
      x[j] = lower + 1e-7;
      const Shortfall shortfall = find_shortfall(worker, x);
      ASSERT_EQ(shortfall.fractions.size(), 1U);
      EXPECT_EQ(shortfall.fractions[0].value, x[j]);
    }
  }
  EXPECT_GT(looked_at, 20);
}

TEST(MipHeuristics, LeaveTheWorkerAsItWas) {
  int called = 0;
  for (unsigned seed = 1; seed <= 1500 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    const Problem problem = support::RandomMip(seed).draw();
    Root root(problem);
    if (!root.solve()) continue;
    Worker& worker = root.worker;
    std::vector<double> x(worker.relaxation->primal().begin(), worker.relaxation->primal().end());
    if (find_shortfall(worker, x).fractions.empty()) continue;
    const double objective = worker.relaxation->objective();
    const int position = worker.domain.position();
    const std::vector<double> lower(worker.domain.lower().begin(), worker.domain.lower().end());
    const std::vector<double> upper(worker.domain.upper().begin(), worker.domain.upper().end());
    std::vector<Heuristic> table = make_heuristics(root.global);
    table.push_back({std::make_unique<ProbingDive>(), Heuristic::Kind::dive, 1});
    for (const Heuristic& h : table) {
      SCOPED_TRACE(h.plugin->name());
      // To aim at, whatever it is worth; some work without only.
      if (h.kind != Heuristic::Kind::rescue) root.global.incumbent.assign(x.size(), 0.0);
      h.plugin->call(worker, generous());
      root.global.incumbent.clear();
      ++called;
      EXPECT_EQ(worker.domain.position(), position);
      EXPECT_FALSE(worker.domain.is_infeasible());
      EXPECT_TRUE(std::equal(lower.begin(), lower.end(), worker.domain.lower().begin()));
      EXPECT_TRUE(std::equal(upper.begin(), upper.end(), worker.domain.upper().begin()));
      ASSERT_EQ(worker.solve({}), Outcome::optimal);
      EXPECT_NEAR(worker.relaxation->objective(), objective, 1e-7 * (1 + std::fabs(objective)));
      EXPECT_TRUE(std::equal(x.begin(), x.end(), worker.relaxation->primal().begin(),
                             [](double a, double b) { return std::fabs(a - b) < 1e-6; }));
    }
  }
  EXPECT_GT(called, 300);
}

/* Points of heuristics that claim to satisfy all rows do; of those that leave continuous columns to others, too. */
TEST(MipHeuristics, WhatIsFoundIsASolution) {
  std::vector<std::unique_ptr<Plugin>> plugins;
  plugins.push_back(std::make_unique<FeasibilityJump>());
  plugins.push_back(std::make_unique<Shifting>());
  plugins.push_back(std::make_unique<FixAndPropagate>());
  plugins.push_back(std::make_unique<Rens>());
  plugins.push_back(std::make_unique<ReducedCostNeighbourhood>());
  std::vector<int> found(plugins.size());
  for (unsigned seed = 1; seed <= 3000 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    const Problem problem = support::RandomMip(seed).draw();
    if (problem.has_objects()) continue;
    Root root(problem);
    if (!root.solve()) continue;
    for (std::size_t k = 0; k < plugins.size(); ++k) {
      SCOPED_TRACE(plugins[k]->name());
      root.worker.out.candidates.clear();
      const Verdict verdict = plugins[k]->call(root.worker, generous());
      ASSERT_EQ(verdict == Verdict::found, !root.worker.out.candidates.empty());
      for (const Candidate& c : root.worker.out.candidates) {
        EXPECT_TRUE(is_solution(problem, c.x));
        ++found[k];
      }
    }
  }
  for (std::size_t k = 0; k < plugins.size(); ++k) EXPECT_GT(found[k], 50) << plugins[k]->name();
}

/* Neighbourhoods of an incumbent give points that are better than it, where they give any. */
TEST(MipHeuristics, SearchesAroundAnIncumbentImproveIt) {
  std::vector<int> found(5);
  for (unsigned seed = 1; seed <= 4000 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    const Problem problem = support::RandomMip(seed).draw();
    Root root(problem);
    if (problem.has_objects() || !root.solve()) continue;
    if (FeasibilityJump().call(root.worker, generous()) != Verdict::found) continue;
    root.global.incumbent = root.worker.out.candidates.back().x;
    root.global.earlier_incumbents.assign(1, root.global.incumbent);
    root.global.incumbent_value = objective(problem, root.global.incumbent);
    root.global.cutoff = root.global.incumbent_value - 1e-6;
    std::vector<std::unique_ptr<Plugin>> plugins;
    plugins.push_back(std::make_unique<Rins>());
    plugins.push_back(std::make_unique<Crossover>());
    plugins.push_back(std::make_unique<Region>());
    plugins.push_back(std::make_unique<Mutation>());
    plugins.push_back(std::make_unique<LocalBranching>(1));
    for (std::size_t k = 0; k < plugins.size(); ++k) {
      SCOPED_TRACE(plugins[k]->name());
      root.worker.out.candidates.clear();
      plugins[k]->call(root.worker, generous());
      for (const Candidate& c : root.worker.out.candidates) {
        EXPECT_TRUE(is_solution(problem, c.x));
        EXPECT_LT(objective(problem, c.x), root.global.incumbent_value);
        ++found[k];
      }
    }
  }
  for (const int count : found) EXPECT_GT(count, 10);
}

/* Two of three columns, as equations say: what is left when two are fixed is nothing, and a solution. */
TEST(MipHeuristics, ANeighbourhoodMayLeaveNoColumn) {
  ProblemMaker maker({1, 2}, {1, 2});
  maker.integer(1, 1, {1, 1}).integer(2, 1, {0, 1}).integer(0, 1, {1, 0});
  Root root(maker.problem());
  ASSERT_TRUE(root.solve());
  ASSERT_EQ(Rens().call(root.worker, generous()), Verdict::found);
  EXPECT_EQ(root.worker.out.candidates.back().x, (std::vector<double>{1, 1, 0}));
}

TEST(MipHeuristics, JumpsSolveRowsOfGeneralIntegersAndContinuousColumns) {
  // 3 x + 5 y = 37 and x - z = 2.5, x and y whole, z continuous.
  ProblemMaker maker({37, 2.5}, {37, 2.5});
  maker.integer(1, 30, {3, 1}).integer(1, 30, {5, 0}).integer(0, 100, {0, -1});
  Problem problem = maker.problem();
  problem.is_integer[2] = 0;
  Root root(problem);
  ASSERT_EQ(FeasibilityJump().call(root.worker, generous()), Verdict::found);
  EXPECT_TRUE(is_solution(problem, root.worker.out.candidates.back().x));
  root.worker.out.candidates.clear();
  ASSERT_TRUE(root.solve());
  ASSERT_EQ(Shifting().call(root.worker, generous()), Verdict::found);
  EXPECT_TRUE(is_solution(problem, root.worker.out.candidates.back().x));
}

/* Each row is covered by exactly one column of three, as a partition that greedy choices miss. */
TEST(MipHeuristics, FixAndPropagateFindsAPartition) {
  ProblemMaker maker({1, 1, 1, 1, 1, 1}, {1, 1, 1, 1, 1, 1});
  maker.integer(1, 1, {1, 1, 0, 0, 0, 0}).integer(1, 1, {0, 0, 1, 1, 0, 0}).integer(9, 1, {0, 0, 0, 0, 1, 1});
  maker.integer(1, 1, {0, 1, 1, 0, 0, 0}).integer(1, 1, {1, 0, 0, 0, 1, 0}).integer(1, 1, {0, 0, 0, 1, 0, 1});
  maker.integer(1, 1, {1, 0, 1, 0, 0, 0}).integer(1, 1, {0, 1, 0, 0, 0, 1});
  Root root(maker.problem());
  ASSERT_TRUE(root.solve());
  ASSERT_EQ(FixAndPropagate().call(root.worker, generous()), Verdict::found);
  EXPECT_TRUE(is_solution(maker.problem(), root.worker.out.candidates.back().x));
}

void add_row(Problem& problem, const std::vector<int>& columns, const std::vector<double>& values,
             double lower, double upper) {
  tovik::lp::Matrix rows = tovik::lp::transpose(problem.lp.matrix);
  rows.index.insert(rows.index.end(), columns.begin(), columns.end());
  rows.value.insert(rows.value.end(), values.begin(), values.end());
  rows.start.push_back(static_cast<int>(rows.index.size()));
  ++rows.columns;
  problem.lp.matrix = tovik::lp::transpose(rows);
  problem.lp.row_lower.push_back(lower);
  problem.lp.row_upper.push_back(upper);
}

/* What is left has the optimum that the whole has within the same bounds. */
TEST(MipHeuristics, AReducedProblemHasTheOptimumOfTheWholeWithinItsBounds) {
  int compared = 0;
  for (unsigned seed = 1; seed <= 300 && !HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    support::RandomMip maker(seed);
    Problem whole = maker.draw();
    Domain domain(whole, {});
    for (int j = 0; j < whole.num_columns(); ++j) {
      const double at = std::isinf(whole.lp.lower[j]) ? 0 : whole.lp.lower[j];
      if (maker.random().chance(0.4)) domain.fix(j, at, {Reason::Kind::branching, j});
    }
    if (domain.is_infeasible()) continue;
    ReducedProblem reduced(domain);
    const int rows = whole.num_rows();
    if (seed % 2 == 0 && whole.num_columns() > 1) {
      add_row(whole, {0, 1}, {1, -1}, -2, kInf);
      const std::vector<int> columns{0, 1};
      const std::vector<double> values{1, -1};
      reduced.add_row(columns, values, -2, kInf);
    }
    for (int j = 0; j < whole.num_columns(); ++j) {
      if (!domain.is_fixed(j)) continue;
      whole.lp.lower[j] = whole.lp.upper[j] = domain.lower(j);
    }
    // Rows without any column left are not looked at.
    bool empty_rows_hold = true;
    for (int i = 0; i < rows; ++i) {
      if (domain.least(i).is_finite() && domain.largest(i).is_finite()) {
        empty_rows_hold &= domain.least(i).finite_part() <= whole.lp.row_upper[i] + 1e-9 &&
                           domain.largest(i).finite_part() >= whole.lp.row_lower[i] - 1e-9;
      }
    }
    if (!empty_rows_hold) continue;
    const support::MipTruth expected = support::Enumeration(whole).run();
    const support::MipTruth found = support::Enumeration(reduced.problem()).run();
    ASSERT_EQ(found.feasible, expected.feasible);
    ASSERT_EQ(found.unbounded, expected.unbounded);
    if (!expected.feasible || expected.unbounded) continue;
    EXPECT_NEAR(found.objective, expected.objective, 1e-6 * (1 + std::fabs(expected.objective)));
    ++compared;
  }
  EXPECT_GT(compared, 50);
}

TEST(MipHeuristics, RoundingByLocksGoesWhereNoRowMinds) {
  // 2 x + 2 y <= 3, maximize x + y: down is safe.
  const ProblemMaker packing = ProblemMaker({-kInf}, {3}).integer(-1, 1, {2}).integer(-1, 1, {2});
  Root root(packing.problem());
  ASSERT_TRUE(root.solve());
  const std::vector<double> x{1, 0.5};
  const auto rounded = round_by_locks(root.worker, x);
  ASSERT_TRUE(rounded.has_value());
  EXPECT_EQ(*rounded, (std::vector<double>{1, 0}));
  root.global.cutoff = -1;  // already known
  EXPECT_FALSE(round_by_locks(root.worker, x).has_value());
  // An equation minds both.
  const ProblemMaker equation = ProblemMaker({3}, {3}).integer(-1, 1, {2}).integer(-1, 1, {2});
  Root locked(equation.problem());
  EXPECT_FALSE(round_by_locks(locked.worker, x).has_value());
}

TEST(MipHeuristics, PropagatedRoundingKeepsEquations) {
  // Two of four, and not the first two together: fractions that rounding alone would break.
  ProblemMaker maker({2, -kInf}, {2, 1});
  maker.integer(-3, 1, {1, 1}).integer(-3, 1, {1, 1}).integer(-1, 1, {1, 0}).integer(-1, 1, {1, 0});
  Root root(maker.problem());
  ASSERT_TRUE(root.solve());
  for (int k = 0; k < 5; ++k) {
    ASSERT_EQ(PropagatedRounding().call(root.worker, generous()), Verdict::found);
    EXPECT_TRUE(is_solution(maker.problem(), root.worker.out.candidates.back().x));
  }
}

TEST(MipHeuristics, OneOptTakesAllTheSlackThereIs) {
  // 2 x + 3 y <= 12 with x, y <= 5, maximize 2 x + 5 y, from the origin: y as far as it goes.
  const ProblemMaker maker = ProblemMaker({-kInf}, {12}).integer(-2, 5, {2}).integer(-5, 5, {3});
  Root root(maker.problem());
  ASSERT_EQ(OneOpt().call(root.worker, generous()), Verdict::nothing);
  root.global.incumbent = {1, 0};
  ASSERT_EQ(OneOpt().call(root.worker, generous()), Verdict::found);
  EXPECT_EQ(root.worker.out.candidates.back().x, (std::vector<double>{1, 3}));
  root.global.incumbent = {0, 4};
  EXPECT_EQ(OneOpt().call(root.worker, generous()), Verdict::nothing);
}

TEST(MipHeuristics, DivesFindSolutionsOfAKnapsackWithAnEquation) {
  ProblemMaker maker({7, -kInf}, {7, 20});
  for (int j = 0; j < 12; ++j) maker.integer(-3 - j % 5, 2, {1, 2.0 + j % 4});
  Root root(maker.problem());
  ASSERT_TRUE(root.solve());
  std::vector<std::unique_ptr<Plugin>> dives;
  dives.push_back(std::make_unique<FractionalDive>());
  dives.push_back(std::make_unique<LockDive>());
  dives.push_back(std::make_unique<PseudoCostDive>());
  dives.push_back(std::make_unique<ProbingDive>());
  dives.push_back(std::make_unique<FeasibilityPump>());
  for (const auto& dive : dives) {
    SCOPED_TRACE(dive->name());
    ASSERT_EQ(dive->call(root.worker, generous()), Verdict::found);
    EXPECT_TRUE(is_solution(maker.problem(), root.worker.out.candidates.back().x));
  }
  EXPECT_EQ(GuidedDive().call(root.worker, generous()), Verdict::nothing);  // nothing to aim at
}

TEST(MipHeuristics, SettingsSwitchFamiliesOff) {
  const ProblemMaker maker = ProblemMaker({-kInf}, {12}).integer(-2, 5, {2});
  const auto kinds = [&](const HeuristicSettings& heuristics) {
    Settings settings;
    settings.heuristics = heuristics;
    const Global global(maker.problem(), settings);
    std::vector<int> count(7);
    for (const Heuristic& h : make_heuristics(global)) ++count[static_cast<std::size_t>(h.kind)];
    return count;
  };
  HeuristicSettings settings;
  EXPECT_EQ(kinds(settings), (std::vector<int>{1, 4, 4, 1, 5, 0, 1}));
  settings.jumps = false;
  EXPECT_EQ(kinds(settings), (std::vector<int>{0, 3, 4, 1, 5, 0, 1}));
  settings.fixing = false;
  EXPECT_EQ(kinds(settings), (std::vector<int>{0, 2, 4, 1, 5, 0, 1}));
  settings.dives = DiveKind::probing;
  EXPECT_EQ(kinds(settings), (std::vector<int>{0, 2, 1, 0, 5, 0, 1}));
  settings.interval = -1;
  EXPECT_EQ(kinds(settings), (std::vector<int>{0, 0, 0, 0, 5, 0, 0}));
  settings.neighbourhood_interval = -1;
  EXPECT_EQ(kinds(settings), (std::vector<int>{0, 0, 0, 0, 0, 0, 0}));
  settings.local_branching = true;
  EXPECT_EQ(kinds(settings), (std::vector<int>{0, 0, 0, 0, 0, 1, 0}));
}

}  // namespace
