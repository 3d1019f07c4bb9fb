// Branch and cut against enumeration on random small problems of every kind.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "mip/domain/point.h"
#include "mip/search/presolved_search.h"
#include "tests/support/planted_mip.h"

namespace {

using namespace tovik::mip;

int models(int otherwise) {
  const char* wanted = std::getenv("TOVIK_MODELS");
  return wanted != nullptr ? std::atoi(wanted) : otherwise;
}

void check(const Problem& problem, const support::MipTruth& truth, Settings settings) {
  settings.relative_gap = settings.absolute_gap = 0;
  support::QuietControl control;
  SilentObserver observer;
  PresolvedSearch search(problem, settings, control, observer);
  const Conclusion end = search.run();
  if (truth.unbounded) {
    EXPECT_EQ(end, Conclusion::unbounded);
    return;
  }
  ASSERT_EQ(end, truth.feasible ? Conclusion::optimal : Conclusion::infeasible);
  if (!truth.feasible) return;
  const Solution& found = search.incumbent();
  EXPECT_NEAR(found.objective, truth.objective, 1e-5 * (1 + std::fabs(truth.objective)));
  const PointViolation v = measure(problem, found.x);
  EXPECT_EQ(v.integrality, 0);
  EXPECT_LE(v.primal(), 1e-6);
  EXPECT_LE(v.object, 1e-6);
}

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
  const int count = models(300);
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

TEST(MipSearch, AgreesWithEnumerationWhateverIsSwitchedOff) {
  const int count = models(400);
  for (int k = 0; k < count && !HasFailure(); ++k) {
    support::PlantedMip maker(support::fresh_seed() + static_cast<unsigned>(k));
    TRACE_RANDOM(maker.random(), k);
    const Problem problem = maker.draw();
    const support::MipTruth truth = support::Enumeration(problem).run();
    Settings settings;
    check(problem, truth, settings);
    settings.presolve.on = false;
    check(problem, truth, settings);
    settings.presolve.on = maker.random().chance(0.5);
    settings.presolve.rules =
        kAllPresolveRules & ~rule_bit(static_cast<PresolveRule>(maker.random().below(kPresolveRules)));
    settings.presolve.restarts = maker.random().pick(-1, 3);
    settings.presolve.probing = maker.random().pick(-1, 3);
    switch (k % 11) {
      case 0:
        settings.propagate = false;
        break;
      case 1:
        settings.fix_by_reduced_cost = maker.random().chance(0.5);
        settings.propagate_objective = maker.random().chance(0.5);
        break;
      case 2:
        settings.variable_rule = maker.random().pick(-1, 4);
        break;
      case 3:
        settings.node_rule = static_cast<NodeRule>(maker.random().pick(0, 3));
        break;
      case 4:
        settings.heuristics.interval = maker.random().chance(0.5) ? -1 : 1;
        break;
      case 5:
        settings.heuristics.neighbourhood_interval = maker.random().chance(0.5) ? -1 : 1;
        settings.heuristics.jumps = maker.random().chance(0.5);
        settings.heuristics.fixing = maker.random().chance(0.5);
        break;
      case 6:
        settings.heuristics.dives = static_cast<DiveKind>(maker.random().pick(1, 3));
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
        settings.node_presolve = maker.random().chance(0.7) ? 2 : -1;
        settings.node_method = static_cast<FirstMethod>(maker.random().pick(0, 2));
        settings.cuts.fractional_rounds = 1;
        break;
      default:
        settings.first_direction = maker.random().pick(-1, 1);
        settings.root_method = static_cast<FirstMethod>(maker.random().pick(0, 2));
        settings.backtrack_share = maker.random().uniform(0, 1);
        settings.heuristics.pump = maker.random().pick(-1, 2);
    }
    check(problem, truth, settings);
  }
}

}  // namespace
