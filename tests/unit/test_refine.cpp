/* What settles an LP that the simplex could not: refined optima keep many more digits, quadruple precision and the
 * forms agree with the engine on random LPs, whatever answer they begin from, and answers near the tolerances come out
 * one way. */
#include <gtest/gtest.h>

#include <cmath>

#include "lp/refine/forms.h"
#include "lp/refine/optimum.h"
#include "lp/refine/quadruple.h"
#include "lp/refine/settle.h"
#include "lp/simplex/solver.h"
#include "lp/verify/certificates.h"
#include "lp/verify/point.h"
#include "tests/support/dense_lp.h"
#include "tests/support/quiet_control.h"
#include "tests/support/random.h"

using namespace tovik::lp;
using namespace tovik::lp::refine;
using support::Random;

namespace {

constexpr std::int64_t kNoLimit = 1000000;

Answer solve(const LpData& lp) {
  support::QuietControl control;
  simplex::Solver solver(lp, simplex::Options{}, control, nullptr);
  solver.solve(Method::dual);
  return solver.answer();
}

/* Every kind of row and bound, entries in thirds so that nothing is exact; feasible or not. */
LpData random_lp(Random& random) {
  support::DenseLp lp(random.pick(1, 7), random.pick(1, 7));
  const auto third = [&] { return random.pick(-20, 20) / 3.0; };
  for (auto& row : lp.a)
    for (double& v : row) v = random.pick(0, 2) == 0 ? 0 : third();
  for (int j = 0; j < lp.columns(); ++j) {
    lp.cost[j] = third();
    lp.lower[j] = random.pick(0, 3) == 0 ? -kInf : third();
    lp.upper[j] = random.pick(0, 2) == 0 ? kInf : std::max(lp.lower[j], third()) + random.pick(0, 2);
  }
  for (int i = 0; i < lp.rows(); ++i) {
    const double side = third();
    const int kind = random.pick(0, 3);
    lp.row_lower[i] = kind == 1 ? -kInf : side;
    lp.row_upper[i] = kind == 2 ? kInf : kind == 3 ? side + 1 : side;
  }
  return lp.data();
}

bool is_conclusive(Outcome outcome) {
  return outcome == Outcome::optimal || outcome == Outcome::infeasible || outcome == Outcome::unbounded;
}

/* Infeasible LPs may be unbounded as well: engines stop at what they meet first. */
bool agree(Outcome a, Outcome b) {
  return a == b || (a != Outcome::optimal && b != Outcome::optimal);
}

TEST(Refine, ExtendedNumbersKeepWhatDoublesDrop) {
  Extended v(1e16);
  v.add(1.0 / 3);
  v.add(-1e16);
  EXPECT_EQ(v.value(), 1.0 / 3);
  v.add(1e-20);
  EXPECT_EQ(v.room_to(1.0 / 3), -1e-20);
  EXPECT_EQ(v.room_to(kInf), kInf);
}

TEST(Refine, OptimaGainDigits) {
  Random random(7);
  support::QuietControl control;
  int refined = 0;
  for (int round = 0; round < 600; ++round) {
    const LpData lp = random_lp(random);
    const Answer found = solve(lp);
    if (found.outcome != Outcome::optimal) continue;
    const EquationForm form(lp);
    Iterate at{form.point(found.x, found.activity),
               {found.y.begin(), found.y.end()},
               form.basis({found.column_status, found.row_status, {}})};
    const Refined result = refine_optimum(form.lp(), simplex::Options{}, control, {1e-24, 1e-24, false}, at);
    ASSERT_EQ(result.outcome, Outcome::optimal) << round;
    Residuals residuals;
    const Accuracy accuracy = measure(form.lp(), at, residuals);
    EXPECT_LE(accuracy.primal, 1e-24) << round;
    EXPECT_LE(accuracy.dual, 1e-24) << round;
    ++refined;
  }
  EXPECT_GT(refined, 60);
}

void expect_agreement_with_the_engine(Precision precision, int rounds, int least_of_each, double accurate) {
  Random random(11);
  support::QuietControl control;
  int of_outcome[3] = {0, 0, 0};
  for (int round = 0; round < rounds; ++round) {
    const LpData lp = random_lp(random);
    const Answer found = solve(lp);
    if (!is_conclusive(found.outcome)) continue;
    const EquationForm form(lp);
    const QuadrupleResult result = solve_quadruple(form.lp(), precision, 1e-6, kNoLimit, control);
    EXPECT_TRUE(agree(result.outcome, found.outcome)) << round;
    ++of_outcome[result.outcome == Outcome::optimal ? 0 : result.outcome == Outcome::infeasible ? 1 : 2];
    if (result.outcome != Outcome::optimal || found.outcome != Outcome::optimal) continue;
    double objective = 0;
    for (int j = 0; j < lp.num_columns(); ++j) objective += lp.cost[j] * result.iterate.x[j].value();
    EXPECT_NEAR(objective, found.objective, 1e-7 * (1 + std::fabs(objective))) << round;
    Residuals residuals;
    const Accuracy accuracy = measure(form.lp(), result.iterate, residuals);
    EXPECT_LE(std::max(accuracy.primal, accuracy.dual), accurate) << round;
  }
  for (const int count : of_outcome) EXPECT_GT(count, least_of_each);
}

TEST(Refine, QuadruplePrecisionAgreesWithTheEngine) {
  expect_agreement_with_the_engine(Precision::quadruple, 1500, 100, 1e-25);
}

TEST(Refine, OctuplePrecisionAgreesWithTheEngine) {
  expect_agreement_with_the_engine(Precision::octuple, 500, 30, 1e-25);
}

/* x0 <= 1, and pairs of columns that all but agree, each pair to make up for 2^-43 times what the one before did: the last
 * is moved so far by x0 that a step of x0 is nothing to it in quadruple precision, and the bound with it. */
TEST(Refine, ParallelColumnsUponParallelColumnsAreTold) {
  constexpr int kPairs = 3;
  support::DenseLp lp(2 * kPairs + 1, 2 * kPairs + 1);
  lp.cost[0] = -1;
  lp.a[0][0] = 1;
  lp.row_lower[0] = -kInf;
  lp.row_upper[0] = 1;
  for (int pair = 0; pair < kPairs; ++pair) {
    const int row = 2 * pair + 1, u = row, v = row + 1, before = row - 1;
    lp.lower[u] = lp.lower[v] = -kInf;
    lp.a[row][u] = lp.a[row][v] = lp.a[row + 1][u] = 1;
    lp.a[row + 1][v] = 1 + 0x1p-43;
    lp.a[row + 1][before] = -1;
  }
  support::QuietControl control;
  const EquationForm form(lp.data());
  const QuadrupleResult found = solve_quadruple(form.lp(), Precision::octuple, 1e-6, kNoLimit, control);
  ASSERT_EQ(found.outcome, Outcome::optimal);
  EXPECT_EQ(found.iterate.x[0].value(), 1);
  EXPECT_EQ(found.iterate.x[2 * kPairs].value(), 0x1p129);
}

/* From nothing, and from a basis and point that have nothing to do with the LP. */
TEST(Refine, SettlesWhateverItBeginsFrom) {
  Random random(13);
  support::QuietControl control;
  for (int round = 0; round < 600; ++round) {
    const LpData lp = random_lp(random);
    const Answer found = solve(lp);
    if (!is_conclusive(found.outcome)) continue;
    Answer answer;
    if (random.pick(0, 1) == 0) {
      answer = found;
      answer.withdraw();
      answer.has_values = true;
      for (double& v : answer.x) v += random.pick(-9, 9) * 1e3;
      for (double& v : answer.y) v += random.pick(-9, 9) * 1e3;
      for (BasisStatus& status : answer.column_status) {
        if (random.pick(0, 2) == 0) status = BasisStatus::basic;
      }
    }
    const Settled settled = settle(lp, simplex::Options{}, control, answer);
    EXPECT_TRUE(agree(settled.outcome, found.outcome)) << round << ' ' << static_cast<int>(settled.outcome);
    if (settled.outcome == Outcome::optimal && found.outcome == Outcome::optimal) {
      EXPECT_NEAR(answer.objective, found.objective, 1e-6 * (1 + std::fabs(found.objective))) << round;
    }
    EXPECT_EQ(settled.outcome == Outcome::unbounded, !answer.ray.empty()) << round;
    EXPECT_EQ(settled.outcome == Outcome::infeasible, !answer.farkas.empty()) << round;
  }
}

/* x0 + x1 <= 1 and >= 1 + miss: feasible within the tolerance, or infeasible, but settled. */
TEST(Refine, AMissWithinTheToleranceIsNone) {
  support::QuietControl control;
  for (const double miss : {1e-12, 3e-7, 9e-7, 2e-6, 1e-3}) {
    support::DenseLp lp(2, 2);
    lp.a = {{1, 1}, {1, 1}};
    lp.cost = {1, 2};
    lp.row_lower = {-kInf, 1 + miss};
    lp.row_upper = {1, kInf};
    Answer answer;
    const Settled settled = settle(lp.data(), simplex::Options{}, control, answer);
    EXPECT_EQ(settled.outcome, miss < 1e-6 ? Outcome::optimal : Outcome::infeasible) << miss;
    if (settled.outcome == Outcome::optimal) {
      EXPECT_NEAR(answer.objective, 1, 2e-6) << miss;
    }
  }
}

/* Bounds that cross by less than the tolerance are one bound; by more they are not for settle() to judge. */
TEST(Refine, CrossedBoundsWithinTheToleranceAreOne) {
  Random random(17);
  support::QuietControl control;
  int optimal = 0;
  for (int round = 0; round < 300; ++round) {
    LpData lp = random_lp(random);
    for (int j = 0; j < lp.num_columns(); ++j)
      if (lp.upper[j] < kInf && random.pick(0, 1) == 0) lp.lower[j] = lp.upper[j];
    const Answer found = solve(lp);
    if (!is_conclusive(found.outcome)) continue;
    for (int j = 0; j < lp.num_columns(); ++j)
      if (lp.lower[j] == lp.upper[j]) lp.lower[j] += random.pick(1, 9) * 1e-8;
    Answer answer;
    const Settled settled = settle(lp, simplex::Options{}, control, answer);
    EXPECT_TRUE(agree(settled.outcome, found.outcome)) << round;
    if (settled.outcome != Outcome::optimal) continue;
    EXPECT_LE(verify::measure_violation(lp, answer).primal(), 1e-6) << round;
    ++optimal;
  }
  EXPECT_GT(optimal, 30);
}

TEST(Refine, ProofsAreCleanAndOnlyOfWhatIsInfeasible) {
  Random random(19);
  support::QuietControl control;
  int proven = 0, refused = 0;
  for (int round = 0; round < 300; ++round) {
    const LpData lp = random_lp(random);
    const Answer found = solve(lp);
    if (!is_conclusive(found.outcome)) continue;
    Answer answer = found;
    const Settled settled = prove_infeasible(lp, simplex::Options{}, control, answer);
    if (settled.outcome == Outcome::infeasible) {
      EXPECT_NE(found.outcome, Outcome::optimal) << round;
      verify::FarkasProof proof;
      ASSERT_TRUE(verify::check_farkas(lp, verify::entries_of(lp.matrix), answer.farkas, proof)) << round;
      EXPECT_TRUE(proof.clean && answer.farkas_clean) << round;
      ++proven;
    } else {
      EXPECT_NE(found.outcome, Outcome::infeasible) << round;
      EXPECT_EQ(answer.outcome, found.outcome) << round;
      EXPECT_EQ(answer.x, found.x) << round;
      EXPECT_EQ(answer.ray, found.ray) << round;
      ++refused;
    }
  }
  EXPECT_GT(proven, 30);
  EXPECT_GT(refused, 30);
}

TEST(Refine, LimitsAreTold) {
  support::QuietControl control;
  simplex::Options options;
  options.iteration_limit = 0;
  support::DenseLp lp(1, 1);
  lp.a = {{1}};
  lp.cost = {1};
  lp.row_lower[0] = lp.row_upper[0] = 1;
  Answer answer;
  EXPECT_EQ(settle(lp.data(), options, control, answer).outcome, Outcome::iteration_limit);
}

}  // namespace
