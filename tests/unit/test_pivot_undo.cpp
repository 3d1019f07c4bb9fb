/* Iterations on trial are taken back without a trace: after a probe every vector of the state has the bits that it had
 * before, the factor solves with the same bits, and what comes next is what would have come without the probe. */
#include <gtest/gtest.h>

#include <cmath>

#include "lp/simplex/relaxation.h"
#include "support/scattered_lps.h"

namespace {

using namespace tovik::lp;
using namespace tovik::lp::simplex;
using support::DenseLp;

/* All that a probe may overwrite. */
struct State {
  std::vector<double> x, x_lower, x_upper, value, d, cost, lower, upper, weights, forward, backward;
  std::vector<signed char> nonbasic, move;
  std::vector<int> head;
  std::vector<std::int64_t> counts;
  double objective, next_random;
  bool shifted;

  explicit State(const Relaxation& engine)
      : x(engine.core().values.x()),
        x_lower(engine.core().values.x_lower()),
        x_upper(engine.core().values.x_upper()),
        value(engine.core().basis.value()),
        d(engine.core().values.d()),
        cost(engine.core().work.cost()),
        lower(engine.core().work.lower()),
        upper(engine.core().work.upper()),
        weights(engine.dual_norms()),
        nonbasic(engine.core().basis.nonbasic()),
        move(engine.core().basis.move()),
        head(engine.core().basis.head()),
        objective(engine.objective()),
        next_random(EngineRandom(engine.core().random).real()),
        shifted(engine.core().work.costs_shifted()) {
    const Counters& c = engine.counters();
    counts = {c.iterations,
              c.factorizations,
              c.shifts,
              engine.core().basis.free_nonbasic(),
              engine.core().rows.active_entries(),
              engine.core().factor.updates()};
    for (size_t p = 0; p < head.size(); ++p) {
      if (nonbasic[head[p]]) ADD_FAILURE() << "position " << p;
      value[head[p]] = 0;  // without meaning
    }
    SparseVector v;
    v.resize(static_cast<int>(x.size()));
    const auto fill = [&] {
      v.clear();
      for (size_t i = 0; i < x.size(); ++i) v.array[i] = 1.0 / static_cast<double>(i + 3);
      v.count = -1;
    };
    fill();
    engine.ftran(v);
    forward = v.array;
    v.clear();
    fill();
    engine.btran(v);
    backward = v.array;
  }
  bool operator==(const State&) const = default;
};

/* Feasible, with an optimum, boxed columns among others. */
DenseLp branchable(support::Random& random, int rows, int columns) {
  DenseLp lp = scattered_lp(random, rows, columns);
  const bool ties = random.chance(0.5);  // they make the dual shift costs
  for (int j = 0; j < columns; ++j) {
    lp.lower[j] = 0;
    lp.upper[j] = random.chance(0.6) ? random.pick(1, 4) : kInf;
    lp.cost[j] = -random.pick(-1, 9) + (ties ? 0 : random.uniform(0, 1));
  }
  for (int i = 0; i < rows; ++i) {
    for (double& a : lp.a[i]) a = i % 2 == 0 ? std::fabs(a) : a;
    lp.row_lower[i] = random.chance(0.3) ? -random.pick(1, 9) : -kInf;
    lp.row_upper[i] = random.pick(1, 9) + 0.5;
  }
  return lp;
}

TEST(PivotUndo, AProbeLeavesEveryBitAsItWas) {
  int probes = 0, pivots = 0, infeasible = 0, stopped = 0, flips = 0;
  for (int round = 0; round < 300; ++round) {
    support::Random random(static_cast<unsigned>(round));
    TRACE_RANDOM(random, round);
    const DenseLp lp = branchable(random, random.pick(2, 14), random.pick(3, 20));
    support::QuietControl control;
    Options options;
    if (round % 3 == 0) options.dual_pricing = Pricing::devex;
    Relaxation engine(lp.data(), options, control), untried(lp.data(), options, control);
    if (engine.resolve(control) != Outcome::optimal) continue;
    ASSERT_EQ(untried.resolve(control), Outcome::optimal);
    const std::vector<double> point(engine.primal().begin(), engine.primal().end());
    const State before(engine);
    for (int j = 0; j < lp.columns(); ++j) {
      const double x = point[static_cast<size_t>(j)];
      const bool fractional = x > lp.lower[j] + 0.01 && x < lp.upper[j] - 0.01;
      if (!fractional) continue;
      for (const Side side : {Side::down, Side::up}) {
        Limits limits;
        limits.iterations = random.chance(0.3) ? 2 : 100;
        const double bound = side == Side::down ? std::ceil(x) - 1 : std::floor(x) + 1;
        const BranchBound found = engine.probe(control, j, bound, side, limits);
        const State after(engine);
        EXPECT_TRUE(after == before) << "column " << j;
        ++probes;
        pivots += static_cast<int>(found.iterations);
        infeasible += found.outcome == Outcome::infeasible;
        stopped += found.outcome == Outcome::iteration_limit;
        if (testing::Test::HasFailure()) return;
      }
    }
    // The next re-solve, of which both engines must make the same.
    const int j = random.below(lp.columns());
    for (Relaxation* e : {&engine, &untried}) {
      e->change_bounds(j, lp.lower[j], std::min(lp.upper[j], std::floor(point[static_cast<size_t>(j)] / 2)));
    }
    EXPECT_EQ(engine.resolve(control), untried.resolve(control));
    EXPECT_EQ(engine.iterations(), untried.iterations());
    EXPECT_NEAR(engine.objective(), untried.objective(), 1e-9 * (1 + std::fabs(untried.objective())));
    flips += untried.counters().dual.bound_flips > 0;
    if (testing::Test::HasFailure()) return;
  }
  EXPECT_GT(probes, 300);
  EXPECT_GT(pivots, probes);
  EXPECT_GT(infeasible, 10);
  EXPECT_GT(stopped, 10);
  EXPECT_GT(flips, 20) << "models whose boxed columns flip";
}

/* Shifts of costs and the random stream, which few probes touch. */
TEST(PivotUndo, ShiftsAndTheRandomStreamAreTakenBack) {
  for (int round = 0; round < 50; ++round) {
    support::Random random(static_cast<unsigned>(round));
    TRACE_RANDOM(random, round);
    support::TableCore table(scattered_lp(random, random.pick(2, 8), random.pick(2, 8)));
    table.random_basis(random);
    Core& core = table.core;
    DualWeights weights;
    weights.reset(core.m());
    DualPricing pricing;
    pricing.resize(core.m());
    core.compute_primal();
    core.compute_dual();
    pricing.rebuild_listed(core);
    const bool shifted_before = random.chance(0.5);
    if (shifted_before) core.shift_cost(0, core.values.d(0) + 1);
    const std::vector<double> cost = core.work.cost(), d = core.values.d();
    const std::vector<int> shifted = core.work.shifted();
    const double next = EngineRandom(core.random).real();
    PivotUndo undo;
    undo.start(core);
    for (int k = 0; k < 10; ++k) {
      const int j = random.below(core.total());
      undo.save_dual(core, j);
      core.shift_cost(j, random.pick(-3, 3));
      core.random.real();
    }
    undo.undo(core, weights, pricing);
    EXPECT_EQ(core.work.cost(), cost);
    EXPECT_EQ(core.values.d(), d);
    EXPECT_EQ(core.work.shifted(), shifted);
    EXPECT_EQ(core.work.costs_shifted(), shifted_before);
    EXPECT_EQ(EngineRandom(core.random).real(), next);
    EXPECT_FALSE(undo.active());
  }
}

/* An optimum that keeps the user's tolerance but not the engine's, as another tolerance leaves it behind: a probe once
 * gave no bound there. */
TEST(PivotUndo, AProbeAtALooseOptimumStillBounds) {
  // minimize -x - small z,  x + z / 8 <= 2.5,  x <= 9: z stands at 0 with a reduced cost of the wrong sign.
  for (const double wrong : {5e-7, 9e-7}) {
    DenseLp lp(1, 2);
    lp.a[0] = {1, 0.125};
    lp.cost = {-1, -0.125 - wrong};
    lp.lower = {0, 0};
    lp.upper = {9, kInf};
    lp.row_lower = {-kInf};
    lp.row_upper = {2.5};
    support::QuietControl control;
    Options loose, usual;
    loose.scaling = usual.scaling = -1;
    loose.dual_tolerance = 1e-4;
    Relaxation engine(lp.data(), loose, control);
    engine.set_basis({BasisStatus::basic, BasisStatus::lower}, {BasisStatus::upper});
    ASSERT_EQ(engine.resolve(control), Outcome::optimal);
    ASSERT_EQ(engine.primal()[0], 2.5) << "the loose optimum";
    engine.set_options(usual);
    ASSERT_LT(wrong, usual.dual_tolerance);
    ASSERT_GT(wrong, usual.dual_tolerance * kInnerShare);
    const BranchBound down = engine.probe(control, 0, 2, Side::down, {});
    EXPECT_EQ(down.outcome, Outcome::optimal);
    EXPECT_NEAR(down.bound, -20 * (0.125 + wrong), 1e-9) << "z has taken all of the row";
    const BranchBound up = engine.probe(control, 0, 3, Side::up, {});
    EXPECT_EQ(up.outcome, Outcome::infeasible);
    EXPECT_EQ(up.bound, kInf);
    EXPECT_EQ(engine.primal()[0], 2.5) << "the probes left the point";
  }
}

}  // namespace
