/* Sifting on covering, partitioning and general problems with many columns: its basis must be next to
 * optimal, and it must cope with problems that have no feasible point or no best one. */
#include "lp/simplex/sifting.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "lp/simplex/solver.h"
#include "tests/support/quiet_control.h"

using namespace tovik::lp;
using tovik::lp::BasisStatus;
using tovik::lp::Method;
using tovik::lp::Outcome;

namespace {

/* Columns of a few entries 1; cost grows with their number. Rows >= 1 or = 1. */
LpData covering(unsigned seed, int rows, int columns, bool partition) {
  std::mt19937 random(seed);
  const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  LpData lp;
  lp.matrix.rows = rows;
  lp.matrix.columns = columns;
  for (int j = 0; j < columns; ++j) {
    const int length = j < rows ? 1 : 2 + below(5);
    std::vector<char> used(static_cast<size_t>(rows), 0);
    for (int k = 0; k < length; ++k) {
      const int i = j < rows ? j : below(rows);
      if (used[i]) continue;
      used[i] = 1;
      lp.matrix.index.push_back(i);
      lp.matrix.value.push_back(1.0);
    }
    lp.matrix.start.push_back(static_cast<int>(lp.matrix.index.size()));
    lp.cost.push_back(j < rows ? 20.0 : length + below(10) / 3.0);
    lp.lower.push_back(0.0);
    lp.upper.push_back(j % 3 == 0 ? 1.0 : kInf);
  }
  lp.row_lower.assign(static_cast<size_t>(rows), 1.0);
  lp.row_upper.assign(static_cast<size_t>(rows), partition ? 1.0 : kInf);
  return lp;
}

struct Solved {
  Outcome outcome;
  double objective;
  std::int64_t iterations;
};

Solved solve(const LpData& lp, const simplex::SiftingResult* start) {
  support::QuietControl control;
  simplex::Solver solver(lp, simplex::Options{}, control, nullptr);
  if (start != nullptr) solver.set_basis(start->basis.columns, start->basis.rows);
  const Outcome outcome = solver.solve(start != nullptr ? Method::primal : Method::dual);
  return {outcome, solver.answer().objective, solver.core().counters.iterations};
}

}  // namespace

TEST(Sifting, BasisIsNextToOptimal) {
  for (const bool partition : {false, true}) {
    for (unsigned seed = 1; seed <= 4; ++seed) {
      const LpData lp = covering(seed, 60, 5000, partition);
      support::QuietControl control;
      const simplex::SiftingResult sifted = simplex::sift(lp, simplex::Options{}, control);
      ASSERT_TRUE(sifted.usable);
      const Solved direct = solve(lp, nullptr), after = solve(lp, &sifted);
      ASSERT_EQ(direct.outcome, Outcome::optimal);
      ASSERT_EQ(after.outcome, Outcome::optimal);
      EXPECT_NEAR(after.objective, direct.objective, 1e-6 * std::fabs(direct.objective));
      EXPECT_LE(after.iterations, 60) << "seed " << seed << ", sifting left too much to do";
    }
  }
}

TEST(Sifting, ProblemsWithoutAnswer) {
  LpData infeasible = covering(7, 30, 2000, true);
  for (size_t k = 0; k < infeasible.upper.size(); ++k)
    infeasible.upper[k] = 1e-4;  // too little of everything
  LpData unbounded = covering(8, 30, 2000, false);
  unbounded.cost[1999] = -1;
  unbounded.upper[1999] = kInf;
  for (const auto& [lp, expected] :
       {std::pair{&infeasible, Outcome::infeasible}, std::pair{&unbounded, Outcome::unbounded}}) {
    support::QuietControl control;
    const simplex::SiftingResult sifted = simplex::sift(*lp, simplex::Options{}, control);
    EXPECT_EQ(solve(*lp, sifted.usable ? &sifted : nullptr).outcome, expected);
  }
}

TEST(Sifting, StopsWhenTold) {
  const LpData lp = covering(3, 100, 20000, false);
  support::QuietControl control;
  control.allowed = 20;
  const simplex::SiftingResult sifted = simplex::sift(lp, simplex::Options{}, control);
  EXPECT_LE(sifted.rounds, 2);
  EXPECT_LE(control.polls, 40);
}
