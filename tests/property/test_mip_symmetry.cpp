// Problems with planted symmetries: what symmetry says of nodes changes no optimum, whatever else works beside it, and also where the
// search is stopped again and again.
#include <gtest/gtest.h>

#include <optional>

#include "mip/domain/point.h"
#include "mip/search/presolved_search.h"
#include "tests/support/models.h"
#include "tests/support/searched_mip.h"
#include "tests/support/symmetric_mip.h"

namespace {

using namespace tovik::mip;
using support::Random;

/* Trees instead of roots that decide all: no presolve, cuts or heuristics, as chance will have it. */
Settings some_settings(Random& random) {
  Settings settings;
  settings.relative_gap = settings.absolute_gap = 0;
  settings.symmetry = random.chance(0.5) ? -1 : random.pick(1, 5);
  settings.presolve.on = random.chance(0.4);
  if (random.chance(0.3)) settings.presolve.restarts = 3;
  if (random.chance(0.7)) settings.cuts.root_rounds = settings.cuts.in_tree = -1;
  if (random.chance(0.7)) {
    settings.heuristics.interval = settings.heuristics.neighbourhood_interval = settings.heuristics.pump = -1;
    settings.heuristics.rounding = settings.heuristics.diving = settings.heuristics.improvement = false;
    settings.heuristics.jumps = settings.heuristics.fixing = false;
  }
  settings.fix_by_reduced_cost = random.chance(0.7);
  settings.propagate_objective = random.chance(0.7);
  settings.variable_rule = random.pick(-1, 4);
  settings.node_rule = static_cast<NodeRule>(random.pick(0, 3));
  settings.first_direction = random.pick(-1, 1);
  settings.node_presolve = random.chance(0.2) ? 2 : 0;
  settings.seed = settings.lp.seed = static_cast<std::uint64_t>(random.pick(0, 1000000));
  return settings;
}

/* What searches say, but for those that leave nodes undecided by the tolerances: they say so, and give no answer to compare. */
class Answers {
 public:
  ~Answers() { EXPECT_LE(1000 * undecided_, searches_); }

  std::optional<support::MipTruth> of(PresolvedSearch& search, Conclusion end) {
    ++searches_;
    fixings_ += search.statistics().symmetry.fixings;
    if (end == Conclusion::failed) {
      ++undecided_;
      return std::nullopt;
    }
    EXPECT_TRUE(end == Conclusion::optimal || end == Conclusion::within_gap || end == Conclusion::infeasible)
        << static_cast<int>(end);
    support::MipTruth truth;
    truth.feasible = end != Conclusion::infeasible;
    truth.objective = search.incumbent().objective;
    return truth;
  }
  std::optional<support::MipTruth> of(const Problem& problem, const Settings& settings) {
    support::QuietControl control;
    SilentObserver observer;
    PresolvedSearch search(problem, settings, control, observer);
    const std::optional<support::MipTruth> truth = of(search, search.run());
    if (truth && truth->feasible) {
      EXPECT_LE(measure(problem, search.incumbent().x).primal(), 1e-6);
    }
    return truth;
  }
  std::int64_t fixings() const { return fixings_; }

 private:
  int searches_ = 0, undecided_ = 0;
  std::int64_t fixings_ = 0;
};

void expect_same(const std::optional<support::MipTruth>& truth,
                 const std::optional<support::MipTruth>& said) {
  if (truth && said) support::expect_same(*truth, *said);
}

TEST(MipSymmetry, AgreesWithTheSearchWithoutAndWithEnumeration) {
  const int count = support::models(500);
  Answers answers;
  for (int k = 0; k < count && !HasFailure(); ++k) {
    support::SymmetricMip maker(support::fresh_seed() + static_cast<unsigned>(k));
    TRACE_RANDOM(maker.random(), k);
    const Problem problem = maker.draw();
    Settings without = some_settings(maker.random());
    without.symmetry = 0;
    const std::optional<support::MipTruth> truth = answers.of(problem, without);
    double points = 1;
    for (int j = 0; j < problem.num_columns(); ++j)
      points *= problem.is_integer[j] != 0 ? problem.lp.upper[j] - problem.lp.lower[j] + 1 : 1;
    if (points <= 3000) expect_same(support::Enumeration(problem).run(), truth);
    for (int tries = 0; tries < 3; ++tries)
      expect_same(truth, answers.of(problem, some_settings(maker.random())));
  }
  EXPECT_TRUE(answers.fixings() > count || count < 100) << "nothing was put to the test";
}

/* check(problem, what the search without symmetries says, other settings, random numbers). */
template <class Check>
void each_problem(int count, Answers& answers, Check check) {
  for (int k = 0; k < count && !testing::Test::HasFailure(); ++k) {
    support::SymmetricMip maker(support::fresh_seed() + static_cast<unsigned>(k));
    TRACE_RANDOM(maker.random(), k);
    const Problem problem = maker.draw();
    Settings without = some_settings(maker.random());
    without.symmetry = 0;
    const std::optional<support::MipTruth> truth = answers.of(problem, without);
    check(problem, truth, some_settings(maker.random()), maker.random());
  }
}

TEST(MipSymmetry, KeepsWhatItHasFoundWhereTheSearchIsStopped) {
  Answers answers;
  each_problem(support::models(200), answers,
               [&](const Problem& problem, const auto& truth, Settings settings, support::Random& random) {
                 support::QuietControl control;
                 SilentObserver observer;
                 PresolvedSearch search(problem, settings, control, observer);
                 Conclusion end = Conclusion::node_limit;
                 for (int runs = 1;
                      runs < 200 && (end == Conclusion::node_limit || end == Conclusion::user_abort);
                      ++runs) {
                   settings.node_limit = runs < 60 ? runs * random.pick(1, 2) : kNoLimit;
                   control.allowed = random.chance(0.3) ? control.polls + random.pick(1, 60) : INT64_MAX;
                   if (runs > 100) control.allowed = INT64_MAX;
                   // Switched off and on again in between.
                   if (random.chance(0.2)) settings.symmetry = random.pick(0, 2);
                   search.change_settings(settings);
                   end = search.run();
                 }
                 expect_same(truth, answers.of(search, end));
               });
}

TEST(MipSymmetry, AgreesWithSeveralSearchesOnOneTree) {
  Answers answers;
  each_problem(support::models(100), answers,
               [&](const Problem& problem, const auto& truth, Settings settings, support::Random&) {
                 settings.team = {2, true, 0, 1, 2000};
                 expect_same(truth, answers.of(problem, settings));
               });
}

}  // namespace
