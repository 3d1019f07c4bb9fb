// Every cut that a separator finds at the root of a random small problem holds at every point of that problem: by
// enumeration of the integers and of the objects' decisions, and an LP that maximizes the cut over the rest.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "mip/cuts/separators.h"
#include "mip/search/separation.h"
#include "tests/support/models.h"
#include "tests/support/random_mip.h"
#include "tests/support/structured_mip.h"

namespace {

using namespace tovik::mip;

constexpr int kRounds = 6;

CutSettings no_cuts() {
  CutSettings cuts;
  cuts.fractional = cuts.rounding = cuts.covers = cuts.cliques = -1;
  cuts.flow_covers = cuts.flow_paths = cuts.implied_bounds = cuts.zero_half = cuts.gub_covers = -1;
  cuts.rows_factor = 100;
  return cuts;
}

/* What some rounds at the root find by the families that the settings leave, whether it becomes a row or not. */
std::vector<Cut> cuts_of(const Problem& problem, const CutSettings& cuts) {
  Settings settings;
  settings.cuts = cuts;
  support::QuietControl control;
  const Global global(problem, settings);
  Worker worker(global, std::make_unique<tovik::lp::simplex::Relaxation>(problem.lp, settings.lp, control),
                control);
  if (!worker.propagator.run_all(worker.domain)) return {};
  worker.domain.commit();
  worker.propagator.went_back(worker.domain);
  const std::vector<tovik::mip::SeparatorEntry> separators = make_separators(global);
  Separation separation(global);
  std::vector<Cut> all;
  for (int round = 0; round < kRounds; ++round) {
    if (worker.solve({}) != tovik::lp::Outcome::optimal) break;
    const std::span<const double> optimum = worker.relaxation->primal();
    const std::vector<double> x(optimum.begin(), optimum.end());
    Moment moment;
    moment.root = true;
    moment.round = round;
    moment.budget = 1000000;
    for (const auto& separator : separators) separator.plugin->call(worker, moment);
    all.insert(all.end(), worker.out.cuts.begin(), worker.out.cuts.end());
    worker.out.cuts.clear();
    if (separation.round(worker, x, moment) == 0) break;
  }
  return all;
}

/* The largest left side over the box; kInf where there is none. */
double largest_over_box(const Cut& cut, const tovik::lp::LpData& lp) {
  double sum = 0;
  for (std::size_t k = 0; k < cut.columns.size(); ++k) {
    const int j = cut.columns[k];
    sum += cut.values[k] * (cut.values[k] > 0 ? lp.upper[j] : lp.lower[j]);
  }
  return sum;
}

class Cuts : public ::testing::Test {
 protected:
  /* By how much any point of the leaf is beyond the cut. */
  static void check_leaf(const tovik::lp::LpData& leaf, const std::vector<Cut>& cuts) {
    for (const Cut& cut : cuts) {
      const double allowed = cut.side + 1e-6 * std::max(1.0, std::fabs(cut.side));
      if (largest_over_box(cut, leaf) <= allowed) continue;
      tovik::lp::LpData lp = leaf;
      lp.cost.assign(lp.cost.size(), 0);
      lp.offset = 0;
      for (std::size_t k = 0; k < cut.columns.size(); ++k) lp.cost[cut.columns[k]] = -cut.values[k];
      support::QuietControl control;
      tovik::lp::simplex::Solver solver(lp, {}, control, nullptr);
      const tovik::lp::Outcome outcome = solver.solve(tovik::lp::Method::dual);
      if (outcome == tovik::lp::Outcome::infeasible) return;  // so is the leaf, for every cut
      EXPECT_NE(outcome, tovik::lp::Outcome::unbounded);
      if (outcome != tovik::lp::Outcome::optimal) continue;
      EXPECT_LE(-solver.answer().objective, allowed) << describe(cut);
    }
  }
  static std::string describe(const Cut& cut) {
    std::string text = "class " + std::to_string(static_cast<int>(cut.kind)) + ":";
    for (std::size_t k = 0; k < cut.columns.size(); ++k) {
      text += " " + std::to_string(cut.values[k]) + " x" + std::to_string(cut.columns[k]);
    }
    return text + " <= " + std::to_string(cut.side);
  }
  /* The family must find something, or nothing was tested: some find little in 400 models. */
  static void run(const std::function<void(CutSettings&)>& choose) {
    CutSettings cuts = no_cuts();
    choose(cuts);
    const int count = support::models(400);
    std::size_t found = 0;
    for (int k = 0; (k < count || (found == 0 && k < 50 * count)) && !HasFailure(); ++k) {
      const unsigned seed = support::fresh_seed() + static_cast<unsigned>(k);
      support::StructuredMip structured(seed);
      support::RandomMip any(seed);
      TRACE_RANDOM(any.random(), k);
      const Problem problem = k % 4 == 3 ? any.draw() : structured.draw();
      found += check(problem, cuts);
    }
    EXPECT_GT(found, 0u);
  }
  /* The number of cuts. */
  static std::size_t check(const Problem& problem, const CutSettings& cuts) {
    const std::vector<Cut> all = cuts_of(problem, cuts);
    if (all.empty()) return 0;
    support::EachLeaf leaves(problem, [&all](const tovik::lp::LpData& leaf) { check_leaf(leaf, all); });
    leaves.run();
    return all.size();
  }
};

TEST_F(Cuts, RoundingHoldsEverywhere) {
  run([](CutSettings& cuts) { cuts.rounding = 0; });
}

/* A side of 6 - 9e-16 divided by 20 leaves 6/20 a share of 8e-17, which was scaled up to a bound. */
TEST_F(Cuts, RoundingMakesNoCutOfNoise) {
  CutSettings cuts = no_cuts();
  cuts.rounding = 0;
  EXPECT_GT(check(support::StructuredMip(80804854).draw(), cuts), 0u);
}

TEST_F(Cuts, GomoryHoldsEverywhere) {
  run([](CutSettings& cuts) { cuts.fractional = 0; });
}

TEST_F(Cuts, FlowCoversHoldEverywhere) {
  run([](CutSettings& cuts) { cuts.flow_covers = 0; });
}

TEST_F(Cuts, FlowPathsHoldEverywhere) {
  run([](CutSettings& cuts) { cuts.flow_paths = 0; });
}

TEST_F(Cuts, CoversHoldEverywhere) {
  run([](CutSettings& cuts) { cuts.covers = 0; });
}

TEST_F(Cuts, GubCoversHoldEverywhere) {
  run([](CutSettings& cuts) { cuts.gub_covers = 1; });
}

TEST_F(Cuts, CliquesHoldEverywhere) {
  run([](CutSettings& cuts) { cuts.cliques = 0; });
}

TEST_F(Cuts, ImpliedBoundsHoldEverywhere) {
  run([](CutSettings& cuts) { cuts.implied_bounds = 0; });
}

TEST_F(Cuts, ZeroHalvesHoldEverywhere) {
  run([](CutSettings& cuts) { cuts.zero_half = 0; });
}

TEST_F(Cuts, AllTogetherHoldEverywhere) {
  run([](CutSettings& cuts) { cuts = CutSettings{}; });
}

}  // namespace
