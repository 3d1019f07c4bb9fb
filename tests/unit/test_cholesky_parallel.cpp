/* One thread and several give the same digits, whoever finishes first; a stop ends all of them. */
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "lp/cholesky/cholesky.h"
#include "lp/cholesky/elimination.h"
#include "lp/cholesky/numeric.h"
#include "lp/cholesky/ordering.h"
#include "support/quiet_control.h"
#include "support/random.h"

namespace tovik::lp::cholesky {
namespace {

using support::QuietControl;
using support::Random;

struct System {
  Pattern pattern;
  std::vector<double> values;
};

/* A cube of side n with random couplings, every row dominated by its diagonal. */
System cube(int n, Random& random) {
  System system;
  system.pattern.size = n * n * n;
  system.pattern.start.push_back(0);
  auto put = [&](int row, double value) {
    system.pattern.index.push_back(row);
    system.values.push_back(value);
  };
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j)
      for (int k = 0; k < n; ++k) {
        const int number = (i * n + j) * n + k;
        put(number, random.uniform(6.1, 8));
        if (k + 1 < n) put(number + 1, random.uniform(-1, 1));
        if (j + 1 < n) put(number + n, random.uniform(-1, 1));
        if (i + 1 < n) put(number + n * n, random.uniform(-1, 1));
        system.pattern.start.push_back(static_cast<std::int64_t>(system.pattern.index.size()));
      }
  return system;
}

class Counting : public QuietControl {
 public:
  void add_work(std::uint64_t count) override { ticks += count; }
  std::uint64_t ticks = 0;
};

struct Outcome {
  std::vector<double> x;
  Report report;
  std::uint64_t ticks;
};

Outcome solve_with(const System& system, int threads) {
  Options options;
  options.threads = threads;
  Counting control;
  Cholesky factor;
  EXPECT_EQ(factor.analyze(system.pattern, options, control), State::done);
  Outcome outcome;
  EXPECT_EQ(factor.factorize(system.values.data(), nullptr, {}, control, &outcome.report), State::done);
  outcome.x.assign(system.pattern.size, 1.0);
  factor.solve(outcome.x.data());
  outcome.ticks = control.ticks;
  return outcome;
}

TEST(CholeskyParallel, DigitsDoNotDependOnThreads) {
  Random random(815);
  for (const int side : {9, 16, 22}) {
    SCOPED_TRACE(side);
    const System system = cube(side, random);
    const Outcome one = solve_with(system, 1);
    for (const int threads : {2, 2, 3, 8}) {
      const Outcome several = solve_with(system, threads);
      EXPECT_EQ(one.x, several.x);
      EXPECT_EQ(one.ticks, several.ticks);
      EXPECT_EQ(one.report.smallest_pivot, several.report.smallest_pivot);
      EXPECT_EQ(one.report.largest_pivot, several.report.largest_pivot);
    }
  }
}

/* Every supernode is eliminated once: in a task or above all of them. */
TEST(CholeskyParallel, PlansCoverTheTree) {
  Random random(816);
  const System system = cube(20, random);
  const Graph graph = graph_of(system.pattern);
  QuietControl control;
  const Symbolic symbolic = make_symbolic(
      system.pattern, find_supernodes(eliminate(graph, minimum_degree_order(graph, control)), true));
  for (const int threads : {1, 2, 4}) {
    SCOPED_TRACE(threads);
    const Plan plan = make_plan(symbolic, threads);
    std::vector<int> seen(symbolic.supernodes(), 0);
    for (const Plan::Task& task : plan.tasks)
      for (int k = task.first; k <= task.last; ++k)
        for (int s = symbolic.first_below[plan.roots[k]]; s <= plan.roots[k]; ++s) ++seen[s];
    for (const int s : plan.top) ++seen[s];
    EXPECT_EQ(seen, std::vector<int>(symbolic.supernodes(), 1));
    EXPECT_EQ(plan.tasks.empty(), threads == 1);
  }
}

/* Full matrices, so that nearly all the time is spent in products, which share nothing but what BLAS keeps for itself. */
TEST(CholeskyParallel, FactorizationsSideBySideDoNotDisturbEachOther) {
  const auto repeat = [](unsigned seed, int* different) {
    Random random(seed);
    constexpr int kSize = 130, kRounds = 1500;
    System system;
    system.pattern.size = kSize;
    system.pattern.start.push_back(0);
    for (int j = 0; j < kSize; ++j) {
      for (int i = j; i < kSize; ++i) {
        system.pattern.index.push_back(i);
        system.values.push_back(i == j ? kSize : random.uniform(-1, 1));
      }
      system.pattern.start.push_back(static_cast<std::int64_t>(system.pattern.index.size()));
    }
    QuietControl control;
    Cholesky factor;
    EXPECT_EQ(factor.analyze(system.pattern, {}, control), State::done);
    std::vector<double> first;
    for (int round = 0; round < kRounds; ++round) {
      EXPECT_EQ(factor.factorize(system.values.data(), nullptr, {}, control, nullptr), State::done);
      std::vector<double> x(kSize, 1.0);
      factor.solve(x.data());
      if (round == 0) first = x;
      *different += x != first;
    }
  };
  int here = 0, there = 0;
  std::thread other(repeat, 818, &there);
  repeat(819, &here);
  other.join();
  EXPECT_EQ(here + there, 0);
}

/* Stops at the n-th look at the clock. */
class Impatient : public QuietControl {
 public:
  explicit Impatient(int looks) : looks_(looks) {}
  Stop poll_clock() override { return looks_-- > 0 ? Stop::none : Stop::user_abort; }

 private:
  int looks_;
};

TEST(CholeskyParallel, StopsInTheMiddle) {
  Random random(817);
  const System system = cube(26, random);
  for (const int threads : {1, 2, 4}) {
    Options options;
    options.threads = threads;
    options.ordering = Ordering::minimum_degree;
    QuietControl patient;
    Cholesky factor;
    ASSERT_EQ(factor.analyze(system.pattern, options, patient), State::done);
    for (const int looks : {0, 1, 3}) {
      Impatient impatient(looks);
      EXPECT_EQ(factor.factorize(system.values.data(), nullptr, {}, impatient, nullptr), State::stopped);
    }
    EXPECT_EQ(factor.factorize(system.values.data(), nullptr, {}, patient, nullptr), State::done);
  }
}

}  // namespace
}  // namespace tovik::lp::cholesky
