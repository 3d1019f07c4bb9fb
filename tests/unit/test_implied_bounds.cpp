/* Bounds that the rows imply: no feasible point reaches one, which the optimum of the column itself over the model
 * proves, and the model's own bounds stay. */
#include <gtest/gtest.h>

#include <cmath>

#include "lp/simplex/implied_bounds.h"
#include "lp/simplex/solver.h"
#include "support/scattered_lps.h"

namespace {

using namespace tovik::lp;
using namespace tovik::lp::simplex;
using support::DenseLp;

DenseLp open_lp(support::Random& random, int rows, int columns) {
  DenseLp lp = scattered_lp(random, rows, columns);
  for (int j = 0; j < columns; ++j) {
    switch (random.pick(0, 3)) {
      case 0:
        lp.lower[j] = -kInf, lp.upper[j] = random.pick(-2, 4);
        break;
      case 1:
        lp.lower[j] = -kInf, lp.upper[j] = kInf;
        break;
      default:
        lp.lower[j] = random.pick(-3, 2), lp.upper[j] = random.chance(0.3) ? lp.lower[j] + 4 : kInf;
    }
  }
  return lp;
}

/* The largest value of sign * x_j, kInf without one; -kInf without a feasible point. */
double extreme(DenseLp lp, int j, double sign) {
  lp.cost.assign(lp.cost.size(), 0.0);
  lp.cost[j] = -sign;
  support::QuietControl control;
  Solver solver(lp.data(), Options{}, control, nullptr);
  switch (solver.solve(Method::primal)) {
    case Outcome::optimal:
      return sign * solver.answer().x[j];
    case Outcome::infeasible:
      return -kInf;
    default:
      return kInf;
  }
}

TEST(ImpliedBounds, NoFeasiblePointReachesOne) {
  int found = 0, with_a_point = 0;
  for (int round = 0; round < 400; ++round) {
    support::Random random(static_cast<unsigned>(round));
    TRACE_RANDOM(random, round);
    const support::TableCore table(open_lp(random, random.pick(1, 12), random.pick(1, 10)));
    const DenseLp& lp = table.lp;
    const ImpliedBounds implied = imply_bounds(table.core);
    int made = 0;
    for (int j = 0; j < lp.columns(); ++j) {
      for (const double sign : {-1.0, 1.0}) {
        const double own = sign < 0 ? lp.lower[j] : lp.upper[j];
        const double bound = sign < 0 ? implied.lower[j] : implied.upper[j];
        if (bound == own) continue;
        ++made;
        EXPECT_TRUE(std::isinf(own)) << "a bound of the model was moved, column " << j;
        const double reached = extreme(lp, j, sign);
        EXPECT_LT(reached, sign * bound) << "column " << j << ", sign " << sign;
        with_a_point += reached > -kInf;
      }
    }
    for (int i = 0; i < lp.rows(); ++i) {
      EXPECT_EQ(implied.lower[lp.columns() + i], -lp.row_upper[i]);
      EXPECT_EQ(implied.upper[lp.columns() + i], -lp.row_lower[i]);
    }
    EXPECT_EQ(implied.found, made);
    found += made;
    if (testing::Test::HasFailure()) return;
  }
  EXPECT_GT(found, 300);
  EXPECT_GT(with_a_point, 150);
}

/* What a bound leads to next, through another row. */
TEST(ImpliedBounds, OneLeadsToAnother) {
  DenseLp lp(2, 3);
  lp.a = {{1, 1, 0}, {0, -2, 1}};
  lp.row_lower = {-kInf, -kInf};
  lp.row_upper = {4, 0};  // x + y <= 4, z <= 2 y
  const support::TableCore table(lp);
  const ImpliedBounds implied = imply_bounds(table.core);
  EXPECT_EQ(implied.found, 3);
  const double exact[] = {4, 4, 8};
  for (int j = 0; j < 3; ++j) {
    EXPECT_GT(implied.upper[j], exact[j]);
    EXPECT_LT(implied.upper[j], 1.1 * exact[j]) << "loosened more than a little";
  }
}

/* A bound that a later sweep tightens is passed on: v <= 10 is found after y <= 100, and x <= 100 with it. */
TEST(ImpliedBounds, AnImprovedOneIsPassedOn) {
  DenseLp lp(4, 4);
  lp.a = {{1, -1, 0, 0}, {0, 1, 0, 1}, {0, 1, -1, 0}, {0, 0, 1, 0}};  // x, y, v, w
  for (double& side : lp.row_lower) side = -kInf;
  lp.row_upper = {0, 100, 0, 10};  // x <= y, y + w <= 100, y <= v, v <= 10
  const support::TableCore table(lp);
  const ImpliedBounds implied = imply_bounds(table.core);
  for (int j = 0; j < 3; ++j) {
    EXPECT_GT(implied.upper[j], 10) << j;
    EXPECT_LT(implied.upper[j], 11) << j;
  }
  EXPECT_GT(implied.upper[3], 100);
  EXPECT_LT(implied.upper[3], 110);
}

/* Two infinite contributions in a row imply nothing, nor does a row without the side that would. */
TEST(ImpliedBounds, NothingFromWhatIsOpen) {
  DenseLp lp(2, 2);
  lp.a = {{1, -1}, {1, 1}};
  lp.row_lower = {-kInf, 1};
  lp.row_upper = {3, kInf};  // x - y <= 3, x + y >= 1
  const support::TableCore table(lp);
  const ImpliedBounds implied = imply_bounds(table.core);
  EXPECT_EQ(implied.found, 0);
  EXPECT_EQ(implied.upper[0], kInf);
  EXPECT_EQ(implied.upper[1], kInf);
}

}  // namespace
