// Branch and cut against enumeration on random small problems of every kind, and against itself on larger ones.
#include <gtest/gtest.h>

#include <string>

#include "mip/search/presolved_search.h"
#include "tests/support/equivalent_mip.h"
#include "tests/support/models.h"
#include "tests/support/planted_mip.h"
#include "tests/support/searched_mip.h"
#include "tests/support/textbook_mip.h"

namespace {

using namespace tovik::mip;

/* An optimal solution, as far as there is one. */
std::vector<double> solution_of(const Problem& problem) {
  std::vector<double> best;
  double value = tovik::lp::kInf;
  support::EachLeaf leaves(problem, [&](const tovik::lp::LpData& lp) {
    support::QuietControl control;
    tovik::lp::simplex::Solver solver(lp, {}, control, nullptr);
    if (solver.solve(tovik::lp::Method::dual) != tovik::lp::Outcome::optimal) return;
    if (solver.answer().objective >= value) return;
    value = solver.answer().objective;
    best = solver.answer().x;
  });
  leaves.run();
  return best;
}

TEST(MipSearch, NobodyCutsOffAKnownSolution) {
  const int count = support::models(300);
  for (int k = 0; k < count && !HasFailure(); ++k) {
    support::PlantedMip maker(support::fresh_seed() + static_cast<unsigned>(k));
    TRACE_RANDOM(maker.random(), k);
    const Problem problem = maker.draw();
    if (support::Enumeration(problem).run().unbounded) continue;
    Settings settings;
    settings.witness.x = solution_of(problem);
    settings.witness.complain = [](const std::string& who) { ADD_FAILURE() << who; };
    settings.presolve.on = k % 3 != 0;
    settings.presolve.restarts = k % 3 == 1 ? 3 : 0;
    settings.relative_gap = settings.absolute_gap = 0;
    support::QuietControl control;
    SilentObserver observer;
    PresolvedSearch(problem, settings, control, observer).run();
  }
}

/* The k-th of the settings that differ from `settings` by a feature that is off, or works all the time. */
void vary(Settings& settings, int k, support::Random& random) {
  switch (k % 11) {
    case 0:
      settings.propagate = false;
      break;
    case 1:
      settings.fix_by_reduced_cost = random.chance(0.5);
      settings.propagate_objective = random.chance(0.5);
      settings.learn_conflicts = random.chance(0.3);
      break;
    case 2:
      settings.variable_rule = random.pick(-1, 4);
      settings.tolerances.integrality = random.chance(0.5) ? 0 : 1e-9;
      break;
    case 3:
      settings.node_rule = static_cast<NodeRule>(random.pick(0, 3));
      break;
    case 4:
      settings.heuristics.interval = random.chance(0.5) ? -1 : 1;
      break;
    case 5:
      settings.heuristics.neighbourhood_interval = random.chance(0.5) ? -1 : 1;
      settings.heuristics.jumps = random.chance(0.5);
      settings.heuristics.fixing = random.chance(0.5);
      settings.heuristics.local_branching = random.chance(0.5);
      break;
    case 10:
      settings.polish.nodes = random.pick(0, 5);
      settings.polish.absolute_gap = random.chance(0.5) ? 5 : 0;
      settings.heuristics.interval = -1;
      break;
    case 6:
      settings.heuristics.dives = static_cast<DiveKind>(random.pick(1, 3));
      settings.heuristics.interval = 1;
      settings.heuristics.rounding = false;
      break;
    case 7:
      settings.heuristics.diving = settings.heuristics.improvement = false;
      break;
    case 8:
      settings.cuts.in_tree = 1;
      settings.cuts.root_rounds = 1;
      settings.heuristics.interval = settings.heuristics.neighbourhood_interval = -1;
      break;
    case 9:
      settings.root_presolve = true;
      settings.node_presolve = random.chance(0.7) ? 2 : -1;
      settings.node_method = static_cast<FirstMethod>(random.pick(0, 2));
      settings.cuts.fractional_rounds = 1;
      break;
    default:
      settings.first_direction = random.pick(-1, 1);
      settings.root_method = static_cast<FirstMethod>(random.pick(0, 2));
      settings.backtrack_share = random.uniform(0, 1);
      settings.heuristics.pump = random.pick(-1, 2);
  }
}

void vary_presolve(PresolveSettings& presolve, support::Random& random) {
  presolve.on = random.chance(0.5);
  presolve.rules = kAllPresolveRules & ~rule_bit(static_cast<PresolveRule>(random.below(kPresolveRules)));
  presolve.restarts = random.pick(-1, 3);
  presolve.probing = random.pick(-1, 3);
}

void vary_seeds(Settings& settings, support::Random& random) {
  settings.seed = settings.lp.seed = static_cast<std::uint64_t>(random.pick(0, 1000000));
}

TEST(MipSearch, AgreesWithEnumerationWhateverIsSwitchedOff) {
  const int count = support::models(400);
  for (int k = 0; k < count && !HasFailure(); ++k) {
    support::PlantedMip maker(support::fresh_seed() + static_cast<unsigned>(k));
    TRACE_RANDOM(maker.random(), k);
    const Problem problem = maker.draw();
    const support::MipTruth truth = support::Enumeration(problem).run();
    Settings settings;
    support::expect_same(truth, support::searched(problem, settings));
    settings.presolve.on = false;
    support::expect_same(truth, support::searched(problem, settings));
    vary_presolve(settings.presolve, maker.random());
    vary(settings, k, maker.random());
    support::expect_same(truth, support::searched(problem, settings));
  }
}

TEST(MipSearch, AgreesWithEnumerationHoweverTheProblemIsSaid) {
  const int count = support::models(400);
  for (int k = 0; k < count && !HasFailure(); ++k) {
    support::PlantedMip maker(support::fresh_seed() + static_cast<unsigned>(k));
    TRACE_RANDOM(maker.random(), k);
    const Problem problem = maker.draw();
    const support::MipTruth truth = support::Enumeration(problem).run();
    for (int said = 0; said < 2; ++said) {
      const support::EquivalentMip other(problem, maker.random());
      Settings settings;
      settings.presolve.on = said == 0;
      vary_seeds(settings, maker.random());
      support::expect_same(truth, support::searched(other.problem(), settings));
    }
  }
}

/* Two machines and a makespan, whole because the loads are, that nothing bounds from above: its reduced cost is noise of either
 * sign, and no reason for a bound. */
TEST(MipSearch, WholeColumnsWithoutAnUpperBoundAreDecided) {
  using tovik::lp::kInf;
  Problem problem;
  tovik::lp::LpData& lp = problem.lp;
  lp.cost = {1, 0, 0, 1, 1, 1, 0};
  lp.lower.assign(7, 0);
  lp.upper = {kInf, 1, 1, 1, 1, 1, 1};
  problem.is_integer = {0, 1, 1, 1, 1, 1, 1};
  lp.row_lower = {1, -kInf, -kInf, 1, 1};
  lp.row_upper = {1, 0, 0, 1, 1};
  lp.matrix.rows = 5;
  lp.matrix.columns = 7;
  lp.matrix.start = {0, 2, 4, 6, 8, 10, 12, 14};
  lp.matrix.index = {1, 2, 1, 4, 2, 3, 1, 3, 0, 1, 2, 4, 0, 2};
  lp.matrix.value = {-1, -1, 5, 1, 4, 1, 4, 1, 1, 6, 5, 1, 1, 6};
  for (std::uint64_t seed = 1; seed <= 20; ++seed) {
    Settings settings;
    settings.seed = settings.lp.seed = seed;
    const support::MipTruth truth = support::searched(problem, settings);
    EXPECT_TRUE(truth.feasible);
    EXPECT_NEAR(truth.objective, 10, 1e-5);
  }
}

/* Nothing but branching and bounding, without which no search can do. */
Settings bare() {
  Settings settings;
  settings.presolve.on = settings.propagate = settings.fix_by_reduced_cost = false;
  settings.propagate_objective = settings.learn_conflicts = false;
  settings.cuts.root_rounds = settings.cuts.in_tree = -1;
  settings.heuristics.interval = settings.heuristics.neighbourhood_interval = settings.heuristics.pump = -1;
  settings.heuristics.rounding = settings.heuristics.diving = settings.heuristics.improvement = false;
  settings.heuristics.jumps = settings.heuristics.fixing = false;
  settings.variable_rule = 1;
  return settings;
}

Settings eager(support::Random& random) {
  Settings settings;
  CutSettings& cuts = settings.cuts;
  cuts.fractional = cuts.rounding = cuts.covers = cuts.cliques = cuts.flow_covers = cuts.implied_bounds =
      cuts.zero_half = cuts.flow_paths = cuts.gub_covers = 2;
  cuts.in_tree = 1;
  cuts.rows_factor = 30;
  settings.presolve.on = random.chance(0.5);
  settings.presolve.probing = settings.presolve.restarts = 3;
  settings.heuristics.interval = settings.heuristics.neighbourhood_interval = random.pick(0, 2);
  return settings;
}

TEST(MipSearch, AgreesWithABareOneOnProblemsBeyondEnumeration) {
  const int count = support::models(60);
  for (int k = 0; k < count && !HasFailure(); ++k) {
    support::TextbookMip maker(support::fresh_seed() + static_cast<unsigned>(k));
    TRACE_RANDOM(maker.random(), k);
    support::Random& random = maker.random();
    const Problem problem = maker.draw();
    const support::MipTruth truth = support::searched(problem, bare());
    Settings settings;
    support::expect_same(truth, support::searched(problem, settings));
    support::expect_same(truth, support::searched(problem, eager(random)));
    vary_presolve(settings.presolve, random);
    vary(settings, random.pick(0, 11), random);
    support::expect_same(truth, support::searched(problem, settings));
    for (int said = 0; said < 2; ++said) {
      Settings other = said == 0 ? Settings() : eager(random);
      vary_seeds(other, random);
      support::expect_same(truth,
                           support::searched(support::EquivalentMip(problem, random).problem(), other));
    }
  }
}

}  // namespace
