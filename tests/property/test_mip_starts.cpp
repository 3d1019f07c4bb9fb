// Starts that are completed or repaired, against enumeration of random small problems with what the start decides fixed.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "mip/domain/point.h"
#include "mip/heuristics/start_completion.h"
#include "mip/search/sub_search.h"
#include "tests/support/models.h"
#include "tests/support/random_mip.h"

namespace {

using namespace tovik::mip;

constexpr double kNotGiven = std::numeric_limits<double>::quiet_NaN();

struct Draw {
  Problem problem;
  std::vector<double> start;
};

/* Values near the bounds, of some columns; no values of slacks. */
Draw draw(support::RandomMip& maker, double given) {
  Draw d;
  d.problem = maker.draw();
  support::Random& random = maker.random();
  const tovik::lp::LpData& lp = d.problem.lp;
  for (int j = 0; j < d.problem.num_columns(); ++j) {
    const double low = std::isinf(lp.lower[j]) ? std::min(-1.0, lp.upper[j] - 4) : lp.lower[j];
    const double high = std::isinf(lp.upper[j]) ? low + 4 : lp.upper[j];
    const double v = random.chance(0.3) ? 0 : random.pick(static_cast<int>(low), static_cast<int>(high));
    d.start.push_back(random.chance(given) ? v : kNotGiven);
  }
  for (const Indicator& i : d.problem.indicators) d.start[i.slack] = kNotGiven;
  return d;
}

/* The problem with everything fixed that the start decides. */
Problem restricted(const Draw& d) {
  Problem p = d.problem;
  const auto fix = [&](int j, double v) {
    if (v < p.lp.lower[j] || v > p.lp.upper[j]) {  // crossing bounds: no point
      p.lp.lower[j] = 1;
      p.lp.upper[j] = 0;
    } else {
      p.lp.lower[j] = p.lp.upper[j] = v;
    }
  };
  for (int j = 0; j < p.num_columns(); ++j) {
    if (p.is_integer[j] != 0 && !std::isnan(d.start[j])) fix(j, d.start[j]);
  }
  for (const SemiColumn& s : d.problem.semi_columns) {
    const double v = d.start[s.column];
    if (std::isnan(v) || p.is_integer[s.column] != 0) continue;
    if (std::fabs(v) > std::fabs(s.lower > 0 ? s.lower : s.upper) / 2) {
      p.lp.lower[s.column] = s.lower;
      p.lp.upper[s.column] = s.upper;
    } else {
      fix(s.column, 0);
    }
  }
  const auto is_semi = [&](int j) {
    for (const SemiColumn& s : d.problem.semi_columns) {
      if (s.column == j) return true;
    }
    return false;
  };
  for (const OrderedSet& s : d.problem.sets) {
    for (const int j : s.columns) {
      if (d.start[j] == 0 && p.is_integer[j] == 0 && !is_semi(j)) fix(j, 0);
    }
  }
  return p;
}

void expect_solution(const Problem& problem, const std::vector<double>& x) {
  const PointViolation v = measure(problem, x);
  EXPECT_LE(v.integrality, 1e-6);
  EXPECT_LE(v.primal(), 2e-6);  // judged on what was left of the problem
  EXPECT_LE(v.object, 1e-6);
}

TEST(MipStarts, PartsAreCompletedWheneverTheyCanBe) {
  const int count = support::models(400);
  for (int k = 0; k < count && !HasFailure(); ++k) {
    support::RandomMip maker(support::fresh_seed() + static_cast<unsigned>(k));
    TRACE_RANDOM(maker.random(), k);
    const Draw d = draw(maker, maker.random().uniform(0, 1));
    const support::MipTruth truth = support::Enumeration(restricted(d)).run();
    support::QuietControl control;
    TreeSubSearch sub_search;
    Settings settings;
    settings.heuristics.repair_tries = -1;
    StartCompletion completion(d.problem, settings, sub_search, control);
    const std::vector<double> x = completion.run(d.start, StartEffort::solve_mip, kInf);
    if (truth.unbounded) {
      if (!x.empty()) expect_solution(d.problem, x);
      continue;
    }
    ASSERT_EQ(!x.empty(), truth.feasible);
    if (x.empty()) continue;
    expect_solution(d.problem, x);
    const double value = objective(d.problem, x);
    EXPECT_LE(value, truth.objective + 1.1e-3 * (1 + std::fabs(value)));
    EXPECT_GE(value, truth.objective - 1e-5 * (1 + std::fabs(value)));
    // A cutoff below what the start allows leaves nothing.
    EXPECT_TRUE(
        completion.run(d.start, StartEffort::solve_mip, truth.objective - 0.01 * (1 + std::fabs(value)))
            .empty());
  }
}

TEST(MipStarts, WholePointsAreCheckedAndFixedOnesSolved) {
  const int count = support::models(400);
  int held = 0;
  for (int k = 0; k < count && !HasFailure(); ++k) {
    support::RandomMip maker(support::fresh_seed() + static_cast<unsigned>(k));
    TRACE_RANDOM(maker.random(), k);
    Draw d = draw(maker, 1);
    support::QuietControl control;
    TreeSubSearch sub_search;
    const Settings settings;
    StartCompletion completion(d.problem, settings, sub_search, control);
    const std::vector<double> checked = completion.run(d.start, StartEffort::check, kInf);
    const std::vector<double> solved = completion.run(d.start, StartEffort::solve_fixed, kInf);
    const support::MipTruth truth = support::Enumeration(restricted(d)).run();
    if (!checked.empty()) {
      ++held;
      expect_solution(d.problem, checked);
      for (int j = 0; j < d.problem.num_columns(); ++j) {
        if (!std::isnan(d.start[j])) {
          EXPECT_EQ(checked[j], d.start[j]);
        }
      }
    }
    if (truth.unbounded) continue;
    ASSERT_EQ(!solved.empty(), truth.feasible);
    if (!solved.empty()) {
      expect_solution(d.problem, solved);
      EXPECT_NEAR(objective(d.problem, solved), truth.objective, 1.1e-3 * (1 + std::fabs(truth.objective)));
    }
    if (!checked.empty()) {
      EXPECT_TRUE(truth.feasible);
    }
    // What lacks a value is not checked, and not fixed where it is a decision.
    const int j = maker.random().below(d.problem.num_columns());
    if (std::isnan(d.start[j])) continue;
    d.start[j] = kNotGiven;
    EXPECT_TRUE(completion.run(d.start, StartEffort::check, kInf).empty());
    if (d.problem.is_integer[j] != 0) {
      EXPECT_TRUE(completion.run(d.start, StartEffort::solve_fixed, kInf).empty());
    }
  }
  if (count >= 100) {
    EXPECT_GT(held, 0);
  }
}

TEST(MipStarts, RepairEndsAtASolutionOfTheProblem) {
  const int count = support::models(400);
  int wrong = 0, repaired = 0;
  for (int k = 0; k < count && !HasFailure(); ++k) {
    support::RandomMip maker(support::fresh_seed() + static_cast<unsigned>(k));
    TRACE_RANDOM(maker.random(), k);
    const Draw d = draw(maker, 0.9);
    const support::MipTruth truth = support::Enumeration(d.problem).run();
    const support::MipTruth as_given = support::Enumeration(restricted(d)).run();
    support::QuietControl control;
    TreeSubSearch sub_search;
    Settings settings;
    settings.heuristics.repair_tries = 10;
    StartCompletion completion(d.problem, settings, sub_search, control);
    const std::vector<double> x = completion.run(d.start, StartEffort::repair, kInf);
    if (!x.empty()) expect_solution(d.problem, x);
    if (!truth.feasible) {
      EXPECT_TRUE(x.empty());
    }
    if (!truth.feasible || truth.unbounded || as_given.feasible) continue;
    ++wrong;
    if (!x.empty()) ++repaired;
    // Automatic does it only where it is asked to.
    settings.heuristics.repair_tries = 0;
    StartCompletion lazy(d.problem, settings, sub_search, control);
    EXPECT_TRUE(lazy.run(d.start, StartEffort::automatic, kInf).empty());
  }
  RecordProperty("repaired", repaired);
  EXPECT_GE(repaired, 0.9 * wrong) << "of " << wrong;
}

}  // namespace
