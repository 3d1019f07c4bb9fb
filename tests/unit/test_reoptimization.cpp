/* What is found out about a standing optimum by looking at the changes only: it must be what a complete look at the
 * basis finds, entry by entry, and the entries that are not named as changed must not have changed. */
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "lp/simplex/solver.h"
#include "support/scattered_lps.h"

namespace {

using namespace tovik::lp;
using namespace tovik::lp::simplex;
using support::DenseLp;
using State = Reoptimization::State;

/* Always feasible, often with an optimum: rows around the activity of a point within the bounds. */
DenseLp feasible_lp(support::Random& random, int rows, int columns) {
  DenseLp lp = scattered_lp(random, rows, columns);
  std::vector<double> x;
  for (int j = 0; j < columns; ++j) {
    if (lp.lower[j] == -kInf && lp.upper[j] == kInf) lp.lower[j] = -9;
    x.push_back(lp.lower[j] > -kInf ? lp.lower[j] : lp.upper[j]);
    if (random.chance(0.5)) lp.cost[j] = lp.lower[j] > -kInf ? std::fabs(lp.cost[j]) : -std::fabs(lp.cost[j]);
  }
  for (int i = 0; i < rows; ++i) {
    double activity = 0;
    for (int j = 0; j < columns; ++j) activity += lp.a[i][j] * x[j];
    lp.row_lower[i] = random.chance(0.4) ? -kInf : activity - random.pick(0, 6);
    lp.row_upper[i] = random.chance(0.4) ? kInf : activity + random.pick(0, 6);
  }
  return lp;
}

/* The basis of `solver`, looked at as a whole in an engine of its own. */
class WholeLook {
 public:
  WholeLook(const DenseLp& lp, const Answer& basis) : solver_(lp.data(), Options{}, control_, nullptr) {
    solver_.set_basis(basis.column_status, basis.row_status);
    regular_ = solver_.factor_basis();
    solver_.extract();
  }
  bool regular() const { return regular_; }
  const Answer& answer() const { return solver_.answer(); }

 private:
  support::QuietControl control_;
  Solver solver_;
  bool regular_ = false;
};

/* A small change of a bound, a side or a cost, in both. False: nothing was done. */
bool change(support::Random& random, DenseLp& lp, Solver& solver) {
  const double by = random.pick(-2, 2) / (random.chance(0.5) ? 1.0 : 64.0);
  const int j = random.below(lp.columns()), i = random.below(lp.rows());
  switch (random.pick(0, 3)) {
    case 0:
      lp.cost[j] += by;
      solver.change_cost(j, lp.cost[j]);
      return true;
    case 1: {
      double& low = lp.lower[j];
      if (low == -kInf || low + by > lp.upper[j]) return false;
      low += by;
      break;
    }
    case 2: {
      double& high = lp.upper[j];
      if (high == kInf || high + by < lp.lower[j]) return false;
      high += by;
      break;
    }
    default: {
      double& side = random.chance(0.5) ? lp.row_lower[i] : lp.row_upper[i];
      const double before = side;
      side += by;
      if (lp.row_lower[i] > lp.row_upper[i]) {
        side = before;
        return false;
      }
      solver.change_row_bounds(i, lp.row_lower[i], lp.row_upper[i]);
      return true;
    }
  }
  solver.change_bounds(j, lp.lower[j], lp.upper[j]);
  return true;
}

void expect_same(const std::vector<double>& found, const std::vector<double>& whole, const char* what) {
  ASSERT_EQ(found.size(), whole.size());
  for (size_t k = 0; k < found.size(); ++k)
    EXPECT_NEAR(found[k], whole[k], 1e-9 * (1 + std::fabs(whole[k]))) << what << ' ' << k;
}

/* A copy of the answer, kept by the entries that are named. */
struct Copy {
  std::vector<double> x, d, activity, y;
  std::vector<BasisStatus> column_status, row_status;

  void take_all(const Answer& a) {
    x = a.x, d = a.d, activity = a.activity, y = a.y;
    column_status = a.column_status, row_status = a.row_status;
  }
  void take(Solver& solver) {
    const Answer& a = solver.answer();
    if (solver.answer_is_new()) {
      take_all(a);
    } else {
      for (const int j : solver.changed_columns())
        x[j] = a.x[j], d[j] = a.d[j], column_status[j] = a.column_status[j];
      for (const int i : solver.changed_rows())
        activity[i] = a.activity[i], y[i] = a.y[i], row_status[i] = a.row_status[i];
    }
    solver.answer_taken();
  }
  bool operator==(const Copy&) const = default;
};

TEST(Reoptimization, FindsWhatAWholeLookAtTheBasisFinds) {
  int optimal = 0, infeasible = 0, dual_lost = 0, moved = 0;
  for (int round = 0; round < 300; ++round) {
    support::Random random(static_cast<unsigned>(round));
    TRACE_RANDOM(random, round);
    DenseLp lp = feasible_lp(random, random.pick(1, 8), random.pick(1, 10));
    support::QuietControl control;
    Solver solver(lp.data(), Options{}, control, nullptr);
    if (solver.solve(random.chance(0.5) ? Method::dual : Method::primal) != Outcome::optimal) continue;
    Copy copy;
    copy.take(solver);
    for (int step = 0; step < 12; ++step) {
      bool any = false;
      for (int k = random.pick(1, 3); k > 0; --k) any |= change(random, lp, solver);
      if (!any) continue;
      const State state = solver.standing();
      if (state == State::unknown) break;
      const Answer& answer = solver.answer();
      const std::vector<double> before = copy.x;
      copy.take(solver);
      Copy all;
      all.take_all(answer);
      EXPECT_TRUE(copy == all) << "an entry has changed that was not named";
      WholeLook whole(lp, answer);
      ASSERT_TRUE(whole.regular());
      expect_same(answer.x, whole.answer().x, "x");
      expect_same(answer.activity, whole.answer().activity, "activity");
      expect_same(answer.y, whole.answer().y, "y");
      expect_same(answer.d, whole.answer().d, "d");
      EXPECT_NEAR(answer.objective, whole.answer().objective, 1e-9 * (1 + std::fabs(answer.objective)));
      for (int j = 0; j < lp.columns(); ++j) {
        const double scaled = answer.d[j] * solver.column_scale(j);
        if (answer.column_status[j] != BasisStatus::basic) {
          EXPECT_NEAR(solver.core().values.d(j), scaled, 1e-9 * (1 + std::fabs(scaled)))
              << "the engine's own, column " << j;
        }
      }
      const bool primal = whole.answer().violation.primal() <= 1e-6;
      EXPECT_EQ(state == State::primal_infeasible, !primal);
      if (state == State::optimal) {
        EXPECT_LE(whole.answer().violation.dual, 1e-6);
        EXPECT_EQ(solver.standing(), State::optimal) << "nothing has changed since";
      }
      optimal += state == State::optimal;
      infeasible += state == State::primal_infeasible;
      dual_lost += state == State::primal_feasible;
      moved += state == State::optimal && copy.x != before;
      if (testing::Test::HasFailure()) return;
      if (state !=
          State::optimal) {  // a solve goes on from there, and what it finds is an optimum of the model
        const Outcome outcome = solver.solve(Method::dual);
        if (outcome != Outcome::optimal) break;
        copy.take(solver);
        Solver cold(lp.data(), Options{}, control, nullptr);
        ASSERT_EQ(cold.solve(Method::primal), Outcome::optimal);
        EXPECT_NEAR(solver.answer().objective, cold.answer().objective,
                    1e-6 * (1 + std::fabs(cold.answer().objective)));
      }
    }
  }
  EXPECT_GT(optimal, 200);
  EXPECT_GT(infeasible, 40);
  EXPECT_GT(dual_lost, 40);
  EXPECT_GT(moved, 40) << "optima that moved without a pivot";
}

}  // namespace
