/* The sums over the user's model: however many differences have been added up, they are those of the point; and the marks
 * name exactly what a difference has touched. */
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "lp/simplex/activities.h"
#include "lp/simplex/solver.h"
#include "support/scattered_lps.h"

namespace {

using namespace tovik::lp;
using namespace tovik::lp::simplex;
using support::DenseLp;

/* What values of 1e12 and entries of 5e4 may leave behind in sums of twice the usual digits; in plain ones it is 10. */
constexpr double kTrace = 1e-13;
/* Of the table's own sums, where long double has no more digits than double. */
constexpr double kRelative = 2e-15;

std::set<int> marked(MarkedList& list) {
  return {list.view().begin(), list.view().end()};
}

/* Sums beside the table that they are taken over, whose entries differ enough to be scaled. */
class Fixture {
 public:
  Fixture(support::Random& random, int rows, int columns, int scaling)
      : lp(scattered_lp(random, rows, columns)),
        x(static_cast<size_t>(columns)),
        y(static_cast<size_t>(rows)) {
    for (auto& row : lp.a) {
      const double r = std::ldexp(1.0, random.pick(-8, 8));
      for (size_t j = 0; j < row.size(); ++j) row[j] *= r * (j % 3 == 0 ? 64 : 1);
    }
    Options options;
    options.scaling = scaling;
    solver = std::make_unique<Solver>(lp.data(), options, control, nullptr);
    sums = std::make_unique<Activities>(solver->user());
  }

  void expect_exact() const {
    const auto near = [](double sum, long double exact, long double size) {
      EXPECT_LE(std::fabs(sum - static_cast<double>(exact)), kRelative * static_cast<double>(size) + kTrace)
          << exact;
    };
    long double objective = lp.offset, objective_size = std::fabs(lp.offset);
    for (size_t i = 0; i < y.size(); ++i) {
      long double sum = 0, size = 0;
      for (size_t j = 0; j < x.size(); ++j) {
        sum += static_cast<long double>(lp.a[i][j]) * x[j];
        size += std::fabs(lp.a[i][j] * x[j]);
      }
      near(sums->activity(static_cast<int>(i)), sum, size);
    }
    for (size_t j = 0; j < x.size(); ++j) {
      long double d = lp.cost[j], size = std::fabs(lp.cost[j]);
      for (size_t i = 0; i < y.size(); ++i) {
        d -= static_cast<long double>(lp.a[i][j]) * y[i];
        size += std::fabs(lp.a[i][j] * y[i]);
      }
      near(sums->reduced_cost(static_cast<int>(j)), d, size);
      objective += static_cast<long double>(lp.cost[j]) * x[j];
      objective_size += std::fabs(lp.cost[j] * x[j]);
    }
    near(sums->objective(), objective, objective_size);
  }

  support::QuietControl control;
  DenseLp lp;
  std::vector<double> x, y;
  std::unique_ptr<Solver> solver;
  std::unique_ptr<Activities> sums;
};

/* Sizes over twenty decades: a sum that drops the error of an operation keeps the small terms no longer. */
double any_value(support::Random& random) {
  return random.chance(0.2) ? 0.0 : random.uniform(-1, 1) * std::pow(10.0, random.pick(-8, 12));
}

TEST(Activities, AreThoseOfThePointAfterAnyDifferences) {
  for (int round = 0; round < 60; ++round) {
    support::Random random(static_cast<unsigned>(round));
    TRACE_RANDOM(random, round);
    Fixture f(random, random.pick(1, 12), random.pick(1, 15), round % 2 == 0 ? 0 : -1);
    for (double& v : f.x) v = any_value(random);
    for (double& v : f.y) v = any_value(random);
    f.sums->compute(f.x, f.y);
    f.expect_exact();
    for (int step = 0; step < 300; ++step) {
      const int j = random.below(f.lp.columns()), i = random.below(f.lp.rows());
      switch (random.pick(0, 2)) {
        case 0: {
          const double from = std::exchange(f.x[j], any_value(random));
          f.sums->move_x(j, from, f.x[j]);
          break;
        }
        case 1: {
          const double from = std::exchange(f.y[i], any_value(random));
          f.sums->move_y(i, from, f.y[i]);
          break;
        }
        default: {
          const double from = std::exchange(f.lp.cost[j], random.pick(-9, 9) / 10.0);
          f.solver->change_cost(j, f.lp.cost[j]);
          f.sums->change_cost(j, from, f.lp.cost[j], f.x[j]);
        }
      }
    }
    // Back among small numbers, the large ones must have gone without a trace.
    for (int j = 0; j < f.lp.columns(); ++j) {
      const double from = std::exchange(f.x[j], random.pick(-3, 3));
      f.sums->move_x(j, from, f.x[j]);
    }
    for (int i = 0; i < f.lp.rows(); ++i) {
      const double from = std::exchange(f.y[i], random.pick(-3, 3));
      f.sums->move_y(i, from, f.y[i]);
    }
    f.expect_exact();
    if (testing::Test::HasFailure()) return;
  }
}

TEST(Activities, MarksNameWhatADifferenceTouches) {
  support::Random random(3);
  Fixture f(random, 8, 10, 0);
  f.sums->compute(f.x, f.y);
  for (int j = 0; j < f.lp.columns(); ++j) {
    std::set<int> rows;
    for (int i = 0; i < f.lp.rows(); ++i) {
      if (f.lp.a[i][j] != 0) rows.insert(i);
    }
    f.sums->move_x(j, 0, 1);
    EXPECT_EQ(marked(f.sums->rows()), rows);
    EXPECT_EQ(marked(f.sums->columns()), std::set{j});
    EXPECT_EQ(f.sums->take_work(), static_cast<std::int64_t>(rows.size()));
    f.sums->rows().clear();
    f.sums->columns().clear();
    f.sums->change_cost(j, 0, 1, 0);
    EXPECT_EQ(marked(f.sums->columns()), std::set{j});
    EXPECT_TRUE(marked(f.sums->rows()).empty());
    f.sums->columns().clear();
  }
  for (int i = 0; i < f.lp.rows(); ++i) {
    std::set<int> columns;
    for (int j = 0; j < f.lp.columns(); ++j) {
      if (f.lp.a[i][j] != 0) columns.insert(j);
    }
    f.sums->move_y(i, 0, 1);
    EXPECT_EQ(marked(f.sums->columns()), columns);
    EXPECT_EQ(marked(f.sums->rows()), std::set{i});
    f.sums->rows().clear();
    f.sums->columns().clear();
  }
}

}  // namespace
