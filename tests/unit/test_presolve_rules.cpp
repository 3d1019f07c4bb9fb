/* Rules of presolve on small cases that once went wrong. */
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/dense_lp.h"
#include "support/presolve_pipeline.h"
#include "support/presolve_proof.h"

namespace support {
namespace {

Settings only(std::initializer_list<Rule> rules) {
  Settings settings;
  settings.rules = 0;
  for (const Rule rule : rules) settings.rules |= tovik::lp::presolve::rule_bit(rule);
  return settings;
}

std::string fault(const DenseLp& lp, const Settings& settings) {
  return PresolveProof().fault(lp.data(), settings);
}

DenseLp free_lp(int rows, int columns) {
  DenseLp lp(rows, columns);
  lp.lower.assign(lp.lower.size(), -kInf);
  lp.row_lower.assign(lp.row_lower.size(), -kInf);
  lp.row_upper.assign(lp.row_upper.size(), kInf);
  return lp;
}

TEST(PresolveRules, AColumnWithoutLowerBoundIsNotFixedThere) {
  EXPECT_EQ(fault(free_lp(0, 1), only({Rule::fixed_column})), "");
}

TEST(PresolveRules, ARowWithoutSidesIsNotLeftBehind) {
  DenseLp lp = free_lp(1, 2);
  lp.a = {{1, 1}};
  lp.lower[1] = lp.upper[1] = 1;
  EXPECT_EQ(fault(lp, only({Rule::fixed_column})), "");
}

TEST(PresolveRules, BoundsThatCancelAreZero) {
  DenseLp lp = free_lp(3, 4);  // the last column ends with the lower bound zero, or nearly
  lp.a = {{0, -1, -3, 0}, {-6, 0, 2, 0}, {1, -1, 1, 1}};
  lp.row_lower = lp.row_upper = {4, 2, -5};
  lp.upper[2] = -2;
  EXPECT_EQ(fault(lp, only({Rule::doubleton_equation})), "");
}

TEST(PresolveRules, BoundsThatMeetButForRoundingAreOne) {
  DenseLp lp = free_lp(3, 3);  // column 2 has the upper bound 2 and gets the lower bound 2 - 4e-16
  lp.a = {{0, 0, 1}, {1, 1, 0}, {3, 0, -1}};
  lp.row_lower = {-kInf, 2, -2};
  lp.row_upper = {kInf, 2, -2};
  lp.upper = {kInf, 2, 2};
  lp.cost[2] = 1;
  EXPECT_EQ(fault(lp, only({Rule::doubleton_equation})), "");
}

/* Columns that stand at a bound of a singleton row change sides when a forcing row takes its dual. */
TEST(PresolveRules, ProofsOfInfeasibilityPassForcingRows) {
  DenseLp lp = free_lp(3, 2);
  lp.a = {{1, -1}, {0, -1}, {-1, 2}};
  lp.row_lower = {0, -kInf, 5};
  lp.row_upper = {kInf, 0, kInf};
  lp.lower[0] = -1;
  lp.upper[1] = 2;
  EXPECT_EQ(fault(lp, only({Rule::singleton_row, Rule::forcing_row})), "");
}

/* Duals that cancel must be exactly zero: a free column allows nothing else. */
TEST(PresolveRules, ProofsOfInfeasibilityPassSubstitutions) {
  DenseLp lp = free_lp(5, 4);
  lp.a = {{0, 1, 0, 0}, {-12, 0, 0, 1}, {-71.0 / 7, 1, 0, 0}, {1, 1, 0, 0}, {0, 0, 1, 1}};
  lp.row_lower = {0, -99, -711.0 / 14, -kInf, 0};
  lp.row_upper = {kInf, -99, -711.0 / 14, 0, 0};
  EXPECT_EQ(fault(lp, only({Rule::singleton_row, Rule::doubleton_equation})), "");

  lp = free_lp(5, 4);
  lp.a = {{0, 0, 1, 0}, {0, -2, 0, -1}, {0, -5, 0, 0}, {-23.0 / 7, -1, 0, 1}, {1, 0, 1, 0}};
  lp.row_lower = {-kInf, 4.5, -kInf, -169.0 / 7, 21};
  lp.row_upper = {kInf, 4.5, 0, -169.0 / 7, 21};
  lp.lower[3] = 0;
  EXPECT_EQ(fault(lp, only({Rule::doubleton_equation})), "");
}

/* A half is a difference, however large the side. */
TEST(PresolveRules, LargeSidesAreComparedInFeasibilityTolerances) {
  const auto expect_objective = [](const DenseLp& lp, double objective) {
    const LpData data = lp.data();
    const Pipeline pipeline(data, {Outcome::optimal, objective}, {}, Method::dual);
    EXPECT_EQ(pipeline.result().fault + pipeline.result().doubt, "") << describe(data);
    QuietControl control;
    const Reduction r = tovik::lp::presolve::presolve(data, {}, control, {}, false);
    Solver solver(r.lp, {}, control, nullptr);
    ASSERT_EQ(solver.solve(Method::dual), Outcome::optimal);
    EXPECT_NEAR(solver.answer().objective, objective, 1e-3) << describe(data);
  };
  DenseLp forcing = free_lp(1, 2);  // no forcing row
  forcing.a = {{-90, -0.1}};
  forcing.row_upper = {-900000000.125};
  forcing.upper = {1e7, 8};
  forcing.cost = {0, 1};
  expect_objective(forcing, 1.25);

  DenseLp redundant(1, 2);
  redundant.a = {{1, 1}};
  redundant.row_lower = {-kInf};
  redundant.row_upper = {1e9 - 0.5};
  redundant.upper = {5e8, 5e8};
  redundant.cost = {-1, -2};
  expect_objective(redundant, -1.5e9 + 0.5);

  DenseLp singleton(1, 1);
  singleton.a = {{1}};
  singleton.row_lower = {-kInf};
  singleton.row_upper = {1e9 - 0.5};
  singleton.upper = {1e9};
  singleton.cost = {-1};
  expect_objective(singleton, -1e9 + 0.5);

  DenseLp parallel(2, 2);
  parallel.a = {{1, 1}, {2, 2}};
  parallel.row_lower = {-kInf, -kInf};
  parallel.row_upper = {1e9, 2e9 - 1};
  parallel.cost = {-1, -2};
  expect_objective(parallel, -2e9 + 1);

  DenseLp doubleton(1, 2);
  doubleton.a = {{1, -1}};
  doubleton.upper = {1e9, 1e9 - 0.5};
  doubleton.cost = {-1, -1};
  expect_objective(doubleton, -2e9 + 1);
}

}  // namespace
}  // namespace support
