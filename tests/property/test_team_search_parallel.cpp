// Several threads on one tree: the same answers as one thread and as enumeration, the same path in every run, a whole tree
// after a stop.
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <vector>

#include "mip/search/presolved_search.h"
#include "tests/support/models.h"
#include "tests/support/planted_mip.h"
#include "tests/support/quiet_control.h"
#include "tests/support/textbook_mip.h"

namespace {

using namespace tovik::mip;
using support::Random;

/* Trees of some size, and meetings every few nodes. */
Settings team_settings(int threads, bool deterministic) {
  Settings settings;
  settings.relative_gap = settings.absolute_gap = 0;
  settings.heuristics.interval = settings.heuristics.neighbourhood_interval = -1;
  settings.cuts.root_rounds = -1;
  settings.presolve.restarts = 0;
  settings.team = {threads, deterministic, 0, 1, 2000};
  return settings;
}

/* Knapsack rows over binary columns and a continuous one: some hundred nodes. */
Problem knapsacks(Random& random, int columns, int rows) {
  Problem problem;
  tovik::lp::LpData& lp = problem.lp;
  lp.matrix.rows = rows;
  lp.matrix.columns = columns + 1;
  lp.matrix.start.push_back(0);
  std::vector<double> weight(rows, 0.0);
  for (int j = 0; j < columns; ++j) {
    for (int i = 0; i < rows; ++i) {
      const double a = random.pick(5, 60);
      lp.matrix.index.push_back(i);
      lp.matrix.value.push_back(a);
      weight[i] += a;
    }
    lp.matrix.start.push_back(static_cast<int>(lp.matrix.index.size()));
    lp.cost.push_back(-random.pick(20, 70));
    lp.lower.push_back(0);
    lp.upper.push_back(1);
    problem.is_integer.push_back(1);
  }
  for (int i = 0; i < rows; ++i) {
    lp.matrix.index.push_back(i);
    lp.matrix.value.push_back(-1);
    lp.row_lower.push_back(-tovik::lp::kInf);
    lp.row_upper.push_back(std::floor(weight[i] / 2));
  }
  lp.matrix.start.push_back(static_cast<int>(lp.matrix.index.size()));
  lp.cost.push_back(1.5);
  lp.lower.push_back(0);
  lp.upper.push_back(10);
  problem.is_integer.push_back(0);
  return problem;
}

struct Outcome {
  Conclusion end;
  double objective;
  Progress progress;
  int threads;
};

Outcome solve(const Problem& problem, const Settings& settings) {
  support::QuietControl control;
  SilentObserver observer;
  PresolvedSearch search(problem, settings, control, observer);
  const Conclusion end = search.run();
  return {end, search.incumbent().objective, search.progress(), search.team_times().threads};
}

/* With gaps of 0 they mean the same. */
bool is_solved(Conclusion end) {
  return end == Conclusion::optimal || end == Conclusion::within_gap;
}

TEST(TeamSearch, FindsWhatEnumerationFinds) {
  const int count = support::models(150);
  int teams = 0;
  for (int k = 0; k < count && !HasFailure(); ++k) {
    support::PlantedMip maker(support::fresh_seed() + static_cast<unsigned>(k));
    TRACE_RANDOM(maker.random(), k);
    const Problem problem = maker.draw();
    const auto truth = support::Enumeration(problem).run();
    if (truth.unbounded) continue;
    Settings settings = team_settings(maker.random().pick(2, 4), k % 2 == 0);
    settings.team.nodes_each = 0;
    settings.team.ticks_together = 200;
    settings.presolve.on = maker.random().chance(0.5);
    settings.propagate = maker.random().chance(0.7);
    settings.node_rule = static_cast<NodeRule>(maker.random().pick(0, 3));
    const Outcome found = solve(problem, settings);
    teams += found.threads > 0 ? 1 : 0;
    EXPECT_EQ(is_solved(found.end), truth.feasible);
    if (!truth.feasible) {
      EXPECT_EQ(found.end, Conclusion::infeasible);
      continue;
    }
    EXPECT_NEAR(found.objective, truth.objective, 1e-6 * std::max(1.0, std::fabs(truth.objective)));
  }
  EXPECT_GT(teams, 0);
}

TEST(TeamSearch, GoesTheSameWayInEveryRun) {
  Random random(support::fresh_seed());
  TRACE_RANDOM(random, 0);
  for (int k = 0; k < 4; ++k) {
    const Problem problem = knapsacks(random, 36, 4);
    const Outcome alone = solve(problem, team_settings(1, true));
    for (int threads = 2; threads <= 3; ++threads) {
      const Outcome first = solve(problem, team_settings(threads, true));
      const Outcome second = solve(problem, team_settings(threads, true));
      EXPECT_EQ(first.threads, threads);
      EXPECT_TRUE(is_solved(first.end));
      EXPECT_EQ(first.objective, alone.objective);
      EXPECT_EQ(first.progress.nodes, second.progress.nodes);
      EXPECT_EQ(first.progress.iterations, second.progress.iterations);
      EXPECT_EQ(first.progress.left, 0);
      EXPECT_EQ(solve(problem, team_settings(threads, false)).objective, alone.objective);
    }
  }
}

TEST(TeamSearch, KeepsALimitOfNodesAndGoesOn) {
  Random random(support::fresh_seed());
  TRACE_RANDOM(random, 0);
  int limited = 0;
  for (int k = 0; k < 6; ++k) {
    const Problem problem = knapsacks(random, 36, 4);
    const double best = solve(problem, team_settings(1, true)).objective;
    support::QuietControl control;
    SilentObserver observer;
    const Settings whole = team_settings(2 + k % 2, k < 4);
    PresolvedSearch search(problem, whole, control, observer);
    for (std::int64_t limit = 40; limit < 20000; limit += random.pick(1, 60)) {
      Settings settings = whole;
      settings.node_limit = limit;
      search.change_settings(settings);
      const Conclusion end = search.run();
      if (is_solved(end)) break;
      ASSERT_EQ(end, Conclusion::node_limit);
      EXPECT_EQ(search.progress().nodes, limit);
      limited += search.team_times().threads > 0 ? 1 : 0;
    }
    EXPECT_EQ(search.incumbent().objective, best);
    EXPECT_LE(search.progress().best_bound, best + 1e-9);
  }
  EXPECT_GT(limited, 6);
}

/* Says stop once so much work is done. */
class Impatient : public support::QuietControl {
 public:
  explicit Impatient(std::uint64_t patience) : patience_(patience) {}
  void add_work(std::uint64_t ticks) override { done_ += ticks; }
  tovik::lp::Stop poll() override {
    return done_ > patience_ ? tovik::lp::Stop::user_abort : tovik::lp::Stop::none;
  }
  tovik::lp::Stop poll_clock() override { return poll(); }
  void be_patient() { patience_ = ~std::uint64_t{0}; }

 private:
  std::uint64_t patience_, done_ = 0;
};

TEST(TeamSearch, AStopLeavesAWholeTree) {
  Random random(support::fresh_seed());
  TRACE_RANDOM(random, 0);
  int stopped = 0, in_teams = 0;
  for (int k = 0; k < 12; ++k) {
    const Problem problem = knapsacks(random, 36, 4);
    const double best = solve(problem, team_settings(1, true)).objective;
    Impatient control(static_cast<std::uint64_t>(random.pick(20000, 300000)));
    SilentObserver observer;
    PresolvedSearch search(problem, team_settings(2, k % 2 == 0), control, observer);
    const Conclusion end = search.run();
    if (end == Conclusion::user_abort) {
      ++stopped;
      in_teams += search.team_times().threads > 0 ? 1 : 0;
      EXPECT_LE(search.progress().best_bound, best + 1e-9 * std::fabs(best));
      control.be_patient();
      search.change_settings(team_settings(k % 3 == 0 ? 2 : 1, true));
      EXPECT_TRUE(is_solved(search.run()));
    }
    EXPECT_EQ(search.incumbent().objective, best);
  }
  EXPECT_GT(stopped, 0);
  EXPECT_GT(in_teams, 0);
}

}  // namespace
