/* The primal simplex on models whose answers are checked by certificates computed here from the model alone:
 * feasibility and reduced costs for an optimum, a combination of rows for infeasibility, a ray for
 * unboundedness. */
#include "lp/simplex/primal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "support/quiet_control.h"
#include "support/scattered_lps.h"

namespace tovik::lp::simplex {
namespace {

constexpr double kTol = 1e-6;

using support::DenseLp;
using support::QuietControl;
using support::Random;

LpData random_lp(Random& random) {
  const int rows = random.pick(1, 9);
  return support::scattered_lp(random, rows, random.pick(1, 14)).data();
}

std::vector<double> point(const Core& core) {
  std::vector<double> x(core.basis.value());
  for (int p = 0; p < core.m(); ++p) x[core.basis.head(p)] = core.values.x(p);
  return x;
}

/* x within bounds, A x + s = 0; d from multipliers that make it zero on the basis; signs of d agree with
 * where x stands. */
void expect_optimal(const Core& core) {
  const std::vector<double> x = point(core);
  std::vector<double> rows(static_cast<size_t>(core.m()), 0.0);
  for (int j = 0; j < core.total(); ++j) {
    EXPECT_GE(x[j], core.model.lower(j) - kTol);
    EXPECT_LE(x[j], core.model.upper(j) + kTol);
    if (j >= core.n()) {
      rows[j - core.n()] += x[j];
    } else {
      for (int k = core.matrix().start[j]; k < core.matrix().start[j + 1]; ++k) {
        rows[core.matrix().index[k]] += core.matrix().value[k] * x[j];
      }
    }
  }
  for (double r : rows) EXPECT_NEAR(r, 0, kTol);
  std::vector<double> y(static_cast<size_t>(core.m()));  // d of a logical is -y
  for (int i = 0; i < core.m(); ++i) y[i] = -core.values.d(core.n() + i);
  for (int j = 0; j < core.total(); ++j) {
    const double d = core.model.cost(j) - core.model.column_dot(j, y);
    if (x[j] > core.model.lower(j) + kTol) {
      EXPECT_LE(d, kTol) << "column " << j;
    }
    if (x[j] < core.model.upper(j) - kTol) {
      EXPECT_GE(d, -kTol) << "column " << j;
    }
  }
  EXPECT_EQ(core.work.cost(), core.model.cost());
  EXPECT_EQ(core.work.lower(), core.model.lower());
  EXPECT_EQ(core.work.upper(), core.model.upper());
}

void expect_infeasible(const Core& core, const std::vector<double>& y) {
  double largest = 0;
  for (int j = 0; j < core.total(); ++j) {
    const double z = core.model.column_dot(j, y);
    if (std::fabs(z) < 1e-9) continue;
    largest += z * (z > 0 ? core.model.upper(j) : core.model.lower(j));
  }
  EXPECT_LT(largest, 0);
}

void expect_unbounded(const Core& core, const Primal& primal) {
  std::vector<double> ray(static_cast<size_t>(core.total()), 0.0);
  ray[primal.ray_variable()] = primal.ray_direction();
  for (int p = 0; p < core.m(); ++p)
    ray[core.basis.head(p)] = -primal.ray_direction() * primal.ray_column().array[p];
  std::vector<double> rows(static_cast<size_t>(core.m()), 0.0);
  double slope = 0;
  for (int j = 0; j < core.total(); ++j) {
    slope += core.model.cost(j) * ray[j];
    if (ray[j] > 1e-9) {
      EXPECT_EQ(core.model.upper(j), kInf);
    }
    if (ray[j] < -1e-9) {
      EXPECT_EQ(core.model.lower(j), -kInf);
    }
    if (j >= core.n()) {
      rows[j - core.n()] += ray[j];
      continue;
    }
    for (int k = core.matrix().start[j]; k < core.matrix().start[j + 1]; ++k) {
      rows[core.matrix().index[k]] += core.matrix().value[k] * ray[j];
    }
  }
  EXPECT_LT(slope, 0);
  for (double r : rows) EXPECT_NEAR(r, 0, kTol);
  EXPECT_EQ(core.primal_infeasibility().count, 0);  // a ray needs a point to start from
}

struct Answer {
  Outcome outcome;
  double objective;
};

enum class Start { slack, random };

Answer solve_and_check(const LpData& lp, const Options& options, Start start, Random& random) {
  QuietControl control;
  Core core(lp, options, control);
  if (start == Start::slack) {
    core.set_logical_basis();
  } else {
    std::vector<BasisStatus> status(static_cast<size_t>(core.total()));
    for (BasisStatus& s : status) s = static_cast<BasisStatus>(random.pick(0, 3));
    core.set_basis(status);
  }
  Primal primal(core);
  const Outcome outcome = primal.solve(100000);
  switch (outcome) {
    case Outcome::optimal:
      expect_optimal(core);
      break;
    case Outcome::infeasible:
      expect_infeasible(core, primal.infeasibility_duals());
      break;
    case Outcome::unbounded:
      expect_unbounded(core, primal);
      break;
    default:
      ADD_FAILURE() << "outcome " << static_cast<int>(outcome);
  }
  return {outcome, outcome == Outcome::optimal ? core.objective() : 0.0};
}

/* Every pricing, partial pricing, perturbation from the start, and random (often singular) starts: one
 * answer, certified. */
TEST(Primal, CertifiesRandomModelsWhateverTheOptions) {
  Random random(20240607);
  int seen[3] = {0, 0, 0};
  for (int round = 0; round < 3000; ++round) {
    TRACE_RANDOM(random, round);
    const LpData lp = random_lp(random);
    Options options;
    options.singular_limit = 100;
    const Answer first = solve_and_check(lp, options, Start::slack, random);
    ++seen[static_cast<int>(first.outcome)];
    for (int variant = 0; variant < 5; ++variant) {
      SCOPED_TRACE(variant);
      Options other = options;
      if (variant == 1) other.primal_pricing = Pricing::steepest_edge;
      if (variant == 2) other.price_candidates = 1;
      if (variant == 3) other.perturb_always = true;
      if (variant == 4) other.primal_pricing = Pricing::dantzig, other.refactor_limit = 1;
      const Answer answer = solve_and_check(lp, other, Start::random, random);
      // A model may be infeasible and dual infeasible: that is still one outcome for the primal.
      EXPECT_EQ(answer.outcome, first.outcome);
      EXPECT_NEAR(answer.objective, first.objective, 1e-6 * (1 + std::fabs(first.objective)));
    }
    if (HasFailure()) break;
  }
  for (int count : seen) EXPECT_GT(count, 100);
}

/* x -> -x turns every lower bound into an upper one and must not change the objective. */
TEST(Primal, MirroredModelsAgree) {
  Random random(7);
  for (int round = 0; round < 500; ++round) {
    const LpData lp = random_lp(random);
    LpData mirrored = lp;
    for (double& v : mirrored.matrix.value) v = -v;
    for (int j = 0; j < lp.num_columns(); ++j) {
      mirrored.cost[j] = -lp.cost[j];
      mirrored.lower[j] = -lp.upper[j];
      mirrored.upper[j] = -lp.lower[j];
    }
    const Answer a = solve_and_check(lp, {}, Start::slack, random);
    const Answer b = solve_and_check(mirrored, {}, Start::slack, random);
    ASSERT_EQ(a.outcome, b.outcome) << round;
    ASSERT_NEAR(a.objective, b.objective, 1e-6 * (1 + std::fabs(a.objective))) << round;
  }
}

LpData assignment(int size, const std::vector<double>& cost) {
  DenseLp lp(2 * size, size * size);
  for (int j = 0; j < lp.columns(); ++j) lp.a[j / size][j] = lp.a[size + j % size][j] = 1;
  lp.cost = cost;
  lp.row_lower.assign(lp.row_lower.size(), 1.0);
  lp.row_upper = lp.row_lower;
  return lp.data();
}

TEST(Primal, AssignmentMatchesEnumeration) {
  Random random(11);
  constexpr int kSize = 6;
  for (int round = 0; round < 60; ++round) {
    std::vector<double> cost(kSize * kSize);
    for (double& c : cost) c = random.pick(0, round % 3 == 0 ? 1 : 20);
    std::vector<int> order(kSize);
    std::iota(order.begin(), order.end(), 0);
    double best = kInf;
    do {
      double sum = 0;
      for (int i = 0; i < kSize; ++i) sum += cost[i * kSize + order[i]];
      best = std::min(best, sum);
    } while (std::next_permutation(order.begin(), order.end()));
    Options options;
    options.perturb_after = round % 2 == 0 ? 0 : 1;
    const Answer answer = solve_and_check(assignment(kSize, cost), options, Start::slack, random);
    ASSERT_EQ(answer.outcome, Outcome::optimal);
    ASSERT_NEAR(answer.objective, best, 1e-6);
  }
}

/* Wide, heavily degenerate, large enough for candidate list and partial pricing; the two ways must agree. */
TEST(Primal, LargeDegenerateModelsAgreeWithAndWithoutPartialPricing) {
  Random random(5);
  constexpr int kSize = 80;
  std::vector<double> cost(kSize * kSize);
  for (double& c : cost) c = random.pick(0, 9);
  const LpData lp = assignment(kSize, cost);
  Options full;
  Options partial;
  partial.price_candidates = 50;
  const Answer a = solve_and_check(lp, full, Start::slack, random);
  const Answer b = solve_and_check(lp, partial, Start::slack, random);
  EXPECT_EQ(a.outcome, Outcome::optimal);
  EXPECT_NEAR(a.objective, b.objective, 1e-6);
}

/* A second run from an optimal basis has nothing to do; after a cost change it continues from there. */
TEST(Primal, RestartsFromItsOwnBasis) {
  Random random(3);
  std::vector<double> cost(900);
  for (double& c : cost) c = random.pick(1, 30);
  QuietControl control;
  Core core(assignment(30, cost), {}, control);
  core.set_logical_basis();
  Primal primal(core);
  ASSERT_EQ(primal.solve(100000), Outcome::optimal);
  const std::int64_t first = core.counters.iterations;
  const std::int64_t built = core.counters.factorizations;
  ASSERT_EQ(primal.solve(100000), Outcome::optimal);
  EXPECT_EQ(core.counters.iterations, first);
  EXPECT_EQ(core.counters.factorizations, built);
  for (int j = 0; j < 30; ++j) core.model.set_cost(j, core.model.cost(j) + random.pick(-3, 3));
  ASSERT_EQ(primal.solve(100000), Outcome::optimal);
  expect_optimal(core);
  EXPECT_LT(core.counters.iterations - first, first / 2);
}

TEST(Primal, StopsAtItsLimitsWithConsistentState) {
  Random random(9);
  std::vector<double> cost(400);
  for (double& c : cost) c = random.pick(1, 30);
  const LpData lp = assignment(20, cost);
  const auto run = [&](const Options& options, std::int64_t polls, std::int64_t budget, Outcome expected) {
    QuietControl control;
    control.allowed = polls;
    Core core(lp, options, control);
    core.set_logical_basis();
    Primal primal(core);
    EXPECT_EQ(primal.solve(budget), expected);
    EXPECT_EQ(core.work.cost(), core.model.cost());
    EXPECT_EQ(core.work.lower(), core.model.lower());
    control.allowed = 1000000;
    core.options = {};
    EXPECT_EQ(primal.solve(100000), Outcome::optimal);
    expect_optimal(core);
  };
  Options options;
  run(options, 7, 100000, Outcome::user_abort);
  run(options, 1000000, 5, Outcome::iteration_limit);
  options.iteration_limit = 6;
  run(options, 1000000, 100000, Outcome::iteration_limit);
  options = {};
  options.objective_lower = 200;
  run(options, 1000000, 100000, Outcome::objective_limit);
}

}  // namespace
}  // namespace tovik::lp::simplex
