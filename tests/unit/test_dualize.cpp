/* The dual form of random LPs with every kind of row and column: same optimal value, and its basis gives one
 * of the primal that is optimal as it stands. Its rays prove the primal infeasible. */
#include "lp/presolve/dualize.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "lp/simplex/solver.h"
#include "tests/support/quiet_control.h"

using namespace tovik::lp;
using presolve::DualForm;
using tovik::lp::BasisStatus;
using tovik::lp::Method;
using tovik::lp::Outcome;

namespace {

class Maker {
 public:
  explicit Maker(unsigned seed) : random_(seed) {}
  int between(int low, int high) {
    return low + static_cast<int>(random_() % static_cast<unsigned>(high - low + 1));
  }
  LpData lp() {
    LpData lp;
    const int m = between(1, 9), n = between(1, 6);
    lp.matrix.rows = m;
    lp.matrix.columns = n;
    lp.offset = between(-3, 3);
    std::vector<double> activity(static_cast<size_t>(m), 0.0);
    for (int j = 0; j < n; ++j) {
      const int x = between(-3, 3);
      add_bounds(lp.lower, lp.upper, x);
      lp.cost.push_back(between(-3, 3));
      for (int i = 0; i < m; ++i) {
        const int a = between(-3, 3);
        if (a == 0 || between(0, 1) == 0) continue;
        lp.matrix.index.push_back(i);
        lp.matrix.value.push_back(a);
        activity[i] += a * x;
      }
      lp.matrix.start.push_back(static_cast<int>(lp.matrix.index.size()));
    }
    for (int i = 0; i < m; ++i)
      add_bounds(lp.row_lower, lp.row_upper, activity[i] + (between(0, 15) == 0 ? 1 : 0));
    return lp;
  }

 private:
  void add_bounds(std::vector<double>& lower, std::vector<double>& upper, double inside) {
    const int kind = between(0, 9);
    const double down = between(0, 2), up = between(0, 2);
    lower.push_back(kind < 3 || kind == 9 ? -kInf : kind < 5 ? inside : inside - down);
    upper.push_back(kind < 5 && kind >= 3 ? inside : kind > 7 || kind == 0 ? kInf : inside + up);
  }
  std::mt19937 random_;
};

/* The largest value of y'Ax over the box of x minus the least of y'(sides): negative when y proves that there
 * is no feasible point. */
double slack_of_proof(const LpData& lp, const std::vector<double>& y) {
  double slack = 0;
  for (int i = 0; i < lp.num_rows(); ++i) {
    if (y[i] != 0) slack -= y[i] * (y[i] > 0 ? lp.row_lower[i] : lp.row_upper[i]);
  }
  for (int j = 0; j < lp.num_columns(); ++j) {
    double sum = 0;
    for (int k = lp.matrix.start[j]; k < lp.matrix.start[j + 1]; ++k)
      sum += lp.matrix.value[k] * y[lp.matrix.index[k]];
    if (std::fabs(sum) > 1e-9) slack += sum * (sum > 0 ? lp.upper[j] : lp.lower[j]);
  }
  return slack;
}

TEST(Dualize, OptimalBasisOfTheDualIsOptimalForThePrimal) {
  support::QuietControl control;
  const simplex::Options options;
  int optimal = 0, infeasible = 0;
  for (unsigned seed = 1; seed <= 600; ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    const LpData lp = Maker(seed).lp();
    simplex::Solver direct(lp, options, control, nullptr);
    const Outcome expected = direct.solve(Method::primal);
    const DualForm dual = presolve::dualize(lp);
    simplex::Solver solver(dual.lp, options, control, nullptr);
    const Outcome outcome = solver.solve(seed % 2 == 0 ? Method::dual : Method::primal);
    ASSERT_EQ(outcome == Outcome::optimal, expected == Outcome::optimal);
    if (outcome == Outcome::unbounded) {
      ++infeasible;
      EXPECT_LT(slack_of_proof(lp, presolve::row_multipliers(dual, solver.answer().ray)), -1e-6);
    }
    if (outcome != Outcome::optimal) continue;
    ++optimal;
    EXPECT_NEAR(solver.answer().objective, -direct.answer().objective, 1e-6);
    const Answer point = presolve::undualize(lp, dual, solver.answer());
    simplex::Solver check(lp, options, control, nullptr);
    check.set_basis(point.column_status, point.row_status);
    ASSERT_EQ(check.solve(Method::dual), Outcome::optimal);
    EXPECT_EQ(check.core().counters.iterations, 0);
    for (int j = 0; j < lp.num_columns(); ++j) {
      EXPECT_NEAR(point.x[j], check.answer().x[j], 1e-6);
      EXPECT_NEAR(point.d[j], check.answer().d[j], 1e-6);
      EXPECT_EQ(point.column_status[j] == BasisStatus::basic,
                check.answer().column_status[j] == BasisStatus::basic);
    }
    for (int i = 0; i < lp.num_rows(); ++i) EXPECT_NEAR(point.y[i], check.answer().y[i], 1e-6);
  }
  EXPECT_GT(optimal, 100);
  EXPECT_GT(infeasible, 20);
}

TEST(Dualize, PaysForManyRowsUnlessTheDualGetsWide) {
  LpData lp;
  lp.matrix.rows = 900;
  lp.matrix.columns = 300;
  lp.matrix.start.assign(301, 0);
  lp.cost.assign(300, 1.0);
  lp.lower.assign(300, 0.0);
  lp.upper.assign(300, kInf);
  lp.row_lower.assign(900, 0.0);
  lp.row_upper.assign(900, kInf);
  EXPECT_TRUE(presolve::dualization_pays(lp));
  lp.row_upper.assign(900, 1.0);  // every row with two sides
  EXPECT_FALSE(presolve::dualization_pays(lp));
}

}  // namespace
