// Presolve of mixed-integer problems alone: random small models of every kind, with structure planted, enumerated in both
// spaces.
#include <gtest/gtest.h>

#include <vector>

#include "mip/domain/point.h"
#include "mip/presolve/presolve.h"
#include "tests/support/models.h"
#include "tests/support/planted_mip.h"

namespace {

using namespace tovik::mip;
using tovik::lp::kInf;

struct Best {
  support::MipTruth truth;
  std::vector<double> x;
};

Best enumerate(const Problem& problem) {
  Best best;
  support::EachLeaf leaves(problem, [&best](const tovik::lp::LpData& lp) {
    support::QuietControl control;
    tovik::lp::simplex::Solver solver(lp, {}, control, nullptr);
    const tovik::lp::Outcome outcome = solver.solve(tovik::lp::Method::dual);
    if (outcome == tovik::lp::Outcome::unbounded) best.truth.feasible = best.truth.unbounded = true;
    if (outcome != tovik::lp::Outcome::optimal) return;
    best.truth.feasible = true;
    if (solver.answer().objective >= best.truth.objective) return;
    best.truth.objective = solver.answer().objective;
    best.x = solver.answer().x;
  });
  leaves.run();
  return best;
}

/* Columns that presolve has found to be whole may have no bounds. */
bool can_be_enumerated(const Problem& problem) {
  for (int j = 0; j < problem.num_columns(); ++j) {
    if (problem.is_integer[j] != 0 && problem.lp.upper[j] - problem.lp.lower[j] > 30) return false;
  }
  return true;
}

double value(const LinearForm& form, const std::vector<double>& x) {
  double sum = form.constant;
  for (std::size_t k = 0; k < form.columns.size(); ++k) sum += form.values[k] * x[form.columns[k]];
  return sum;
}

/* Of some columns. */
LinearForm any_form(const Problem& problem, support::Random& random) {
  LinearForm form;
  form.constant = random.pick(-2, 2);
  for (int j = 0; j < problem.num_columns(); ++j) {
    if (!random.chance(0.5)) continue;
    form.columns.push_back(j);
    form.values.push_back(random.pick(-4, 4));
  }
  return form;
}

void check_ways(const Problem& original, const Presolved& reduced, const std::vector<double>& y,
                support::Random& random) {
  const std::vector<double> x = reduced.postsolve.expand(y);
  const PointViolation v = measure(original, x);
  EXPECT_LE(v.integrality, 1e-5);
  EXPECT_LE(v.primal(), 1e-4);
  EXPECT_LE(v.object, 1e-5);
  EXPECT_NEAR(objective(original, x), objective(reduced.problem, y),
              1e-5 * (1 + std::fabs(objective(original, x))));
  const std::vector<double> back = reduced.postsolve.crush(x);
  ASSERT_EQ(back.size(), y.size());
  for (std::size_t j = 0; j < y.size(); ++j) EXPECT_NEAR(back[j], y[j], 1e-6 * (1 + std::fabs(y[j])));
  const LinearForm form = any_form(original, random);
  if (const auto crushed = reduced.postsolve.crush(form)) {
    EXPECT_NEAR(value(*crushed, y), value(form, x), 1e-5 * (1 + std::fabs(value(form, x))));
  }
}

void check(const Problem& problem, const Best& truth, const PresolveSettings& settings,
           support::Random& random) {
  support::QuietControl control;
  const Presolved reduced = presolve(problem, settings, {}, control);
  if (reduced.infeasible) {
    EXPECT_FALSE(truth.truth.feasible);
    return;
  }
  if (!can_be_enumerated(reduced.problem)) return;
  const Best best = enumerate(reduced.problem);
  ASSERT_EQ(best.truth.feasible, truth.truth.feasible);
  ASSERT_EQ(best.truth.unbounded, truth.truth.unbounded);
  if (!best.truth.feasible || best.truth.unbounded) return;
  EXPECT_NEAR(best.truth.objective, truth.truth.objective, 1e-5 * (1 + std::fabs(truth.truth.objective)));
  check_ways(problem, reduced, best.x, random);
}

/* The problem with one more row and another objective, both given in its columns. */
Problem with(Problem problem, const LinearForm& objective, const LinearForm& row, double side) {
  tovik::lp::LpData& lp = problem.lp;
  lp.cost.assign(lp.cost.size(), 0.0);
  for (std::size_t k = 0; k < objective.columns.size(); ++k)
    lp.cost[objective.columns[k]] += objective.values[k];
  lp.offset = objective.constant;
  std::vector<double> dense(lp.cost.size());
  for (std::size_t k = 0; k < row.columns.size(); ++k) dense[row.columns[k]] += row.values[k];
  const tovik::lp::Matrix old = lp.matrix;
  tovik::lp::Matrix& m = lp.matrix;
  m.index.clear();
  m.value.clear();
  m.start.assign(1, 0);
  for (int j = 0; j < old.columns; ++j) {
    for (int k = old.start[j]; k < old.start[j + 1]; ++k) {
      m.index.push_back(old.index[k]);
      m.value.push_back(old.value[k]);
    }
    if (dense[j] != 0) {
      m.index.push_back(old.rows);
      m.value.push_back(dense[j]);
    }
    m.start.push_back(static_cast<int>(m.index.size()));
  }
  ++m.rows;
  lp.row_lower.push_back(-kInf);
  lp.row_upper.push_back(side - row.constant);
  return problem;
}

/* Whatever is asked for and demanded in addition, in columns of the original, has one answer in both spaces. */
TEST(MipPresolve, KeepsEveryPointAndCrushesEveryFormWhereItIsToldTo) {
  const int count = support::models(600);
  int reduced_models = 0;
  for (int k = 0; k < count && !HasFailure(); ++k) {
    support::PlantedMip maker(support::fresh_seed() + static_cast<unsigned>(k));
    support::Random& random = maker.random();
    TRACE_RANDOM(random, k);
    const Problem problem = maker.draw();
    PresolveSettings settings;
    settings.keep_all_points();
    support::QuietControl control;
    const Presolved reduced = presolve(problem, settings, {}, control);
    if (reduced.infeasible) {
      EXPECT_FALSE(enumerate(problem).truth.feasible);
      continue;
    }
    if (!can_be_enumerated(reduced.problem)) continue;
    reduced_models += reduced.problem.num_columns() < problem.num_columns() ? 1 : 0;
    const LinearForm objective = any_form(problem, random), row = any_form(problem, random);
    const double side = random.pick(-6, 6);
    const std::optional<LinearForm> there = reduced.postsolve.crush(objective),
                                    limit = reduced.postsolve.crush(row);
    ASSERT_TRUE(there && limit);
    const support::MipTruth own = enumerate(with(problem, objective, row, side)).truth,
                            other = enumerate(with(reduced.problem, *there, *limit, side)).truth;
    ASSERT_EQ(own.feasible, other.feasible);
    ASSERT_EQ(own.unbounded, other.unbounded);
    if (!own.feasible || own.unbounded) continue;
    EXPECT_NEAR(own.objective, other.objective, 1e-5 * (1 + std::fabs(own.objective)));
  }
  EXPECT_GT(reduced_models, 0);
}

TEST(MipPresolve, KeepsTheOptimumAndFindsTheWayBackWhateverIsSwitchedOff) {
  const int count = support::models(1500);
  for (int k = 0; k < count && !HasFailure(); ++k) {
    support::PlantedMip maker(support::fresh_seed() + static_cast<unsigned>(k));
    TRACE_RANDOM(maker.random(), k);
    const Problem problem = maker.draw();
    const Best truth = enumerate(problem);
    PresolveSettings settings;
    check(problem, truth, settings, maker.random());
    const auto off =
        rule_bit(static_cast<PresolveRule>(maker.random().pick(0, static_cast<int>(kPresolveRules) - 1)));
    settings.rules = maker.random().chance(0.5) ? kAllPresolveRules & ~off : off;
    settings.coefficients = maker.random().pick(0, 2);
    settings.dual = maker.random().chance(0.7);
    check(problem, truth, settings, maker.random());
  }
}

/* Rules that few models give occasion to, each alone with what it needs: the models must make it fire. */
TEST(MipPresolve, KeepsTheOptimumByEachRareRuleAlone) {
  struct Rare {
    PresolveRule rule;
    std::uint32_t with;
  };
  const Rare rules[] = {{PresolveRule::dominated_columns, 0},
                        {PresolveRule::dominated_rows, 0},
                        {PresolveRule::cliques, 0},
                        {PresolveRule::tight_rows,
                         rule_bit(PresolveRule::slack_columns) | rule_bit(PresolveRule::free_columns)}};
  const int count = support::models(1500);
  for (const Rare& rare : rules) {
    int fired = 0;
    for (int k = 0; k < count && !HasFailure(); ++k) {
      support::PlantedMip maker(support::fresh_seed() + static_cast<unsigned>(k));
      TRACE_RANDOM(maker.random(), k);
      const Problem problem = maker.draw();
      const auto counts_with = [&](std::uint32_t bits) {
        PresolveSettings settings;
        settings.rules = bits;
        support::QuietControl control;
        const PresolveCounts counts = presolve(problem, settings, {}, control).counts;
        return counts.rows_eliminated + counts.columns_eliminated + counts.coefficients_modified +
               counts.bounds_improved;
      };
      if (counts_with(rare.with | rule_bit(rare.rule)) == counts_with(rare.with)) continue;
      ++fired;
      PresolveSettings settings;
      settings.rules = rare.with | rule_bit(rare.rule);
      check(problem, enumerate(problem), settings, maker.random());
    }
    EXPECT_GT(fired, count / 50) << static_cast<int>(rare.rule);
  }
}

}  // namespace
