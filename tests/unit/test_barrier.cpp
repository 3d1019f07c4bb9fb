/* The pieces of the interior point method, and models whose answer is planted. */
#include "lp/barrier/barrier.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "lp/barrier/gmres.h"
#include "lp/barrier/newton.h"
#include "support/dense_lp.h"
#include "support/quiet_control.h"
#include "support/random.h"

namespace {

using namespace tovik::lp;
using namespace tovik::lp::barrier;
using support::DenseLp;

/* An LP with an optimal pair, every kind of bound, row and standing mixed. */
struct Planted {
  DenseLp lp{0, 0};
  std::vector<double> x, y;
  double value = 0;
};

Planted plant(support::Random& random, int rows, int columns) {
  Planted planted{DenseLp(rows, columns), {}, {}, 0};
  DenseLp& lp = planted.lp;
  for (auto& row : lp.a) {
    for (double& entry : row) entry = random.chance(0.4) ? random.uniform(-3, 3) : 0;
    row[static_cast<std::size_t>(random.below(columns))] = 1;
  }
  std::vector<double> d(static_cast<std::size_t>(columns));
  for (int j = 0; j < columns; ++j) {
    const double x = random.uniform(-5, 5), width = random.uniform(0.5, 10), slope = random.uniform(0.1, 3);
    lp.lower[j] = -kInf;
    switch (random.below(8)) {
      case 0:  // free
        break;
      case 1:  // at its only bound
        lp.lower[j] = x;
        d[j] = slope;
        break;
      case 2:
        lp.upper[j] = x;
        d[j] = -slope;
        break;
      case 3:  // boxed, at either end, or between
        lp.lower[j] = x, lp.upper[j] = x + width;
        d[j] = slope;
        break;
      case 4:
        lp.lower[j] = x - width, lp.upper[j] = x;
        d[j] = -slope;
        break;
      case 5:
        lp.lower[j] = x - width, lp.upper[j] = x + width;
        break;
      case 6:  // fixed
        lp.lower[j] = lp.upper[j] = x;
        d[j] = random.uniform(-2, 2);
        break;
      default:
        lp.lower[j] = x - width;
    }
    planted.x.push_back(x);
  }
  for (int i = 0; i < rows; ++i) {
    double activity = 0;
    for (int j = 0; j < columns; ++j) activity += lp.a[i][j] * planted.x[j];
    const double y = random.uniform(0.1, 3), width = random.uniform(0.5, 10);
    lp.row_lower[i] = -kInf, lp.row_upper[i] = kInf;
    planted.y.push_back(0);
    switch (random.below(7)) {
      case 0:
        lp.row_lower[i] = lp.row_upper[i] = activity;
        planted.y[i] = random.uniform(-3, 3);
        break;
      case 1:
        lp.row_lower[i] = activity;
        planted.y[i] = y;
        break;
      case 2:
        lp.row_upper[i] = activity;
        planted.y[i] = -y;
        break;
      case 3:
        lp.row_lower[i] = activity, lp.row_upper[i] = activity + width;
        planted.y[i] = y;
        break;
      case 4:
        lp.row_upper[i] = activity + width;
        break;
      case 5:
        lp.row_lower[i] = activity - width, lp.row_upper[i] = activity + width;
        break;
      default:  // no side
        break;
    }
  }
  lp.offset = random.uniform(-10, 10);
  planted.value = lp.offset;
  for (int j = 0; j < columns; ++j) {
    lp.cost[j] = d[j];
    for (int i = 0; i < rows; ++i) lp.cost[j] += lp.a[i][j] * planted.y[i];
    planted.value += lp.cost[j] * planted.x[j];
  }
  return planted;
}

double objective(const LpData& lp, const std::vector<double>& x) {
  double sum = lp.offset;
  for (std::size_t j = 0; j < x.size(); ++j) sum += lp.cost[j] * x[j];
  return sum;
}

std::vector<double> activities(const LpData& lp, const std::vector<double>& x) {
  std::vector<double> sum(lp.row_lower.size());
  for (int j = 0; j < lp.num_columns(); ++j) {
    for (int k = lp.matrix.start[j]; k < lp.matrix.start[j + 1]; ++k)
      sum[lp.matrix.index[k]] += lp.matrix.value[k] * x[j];
  }
  return sum;
}

std::vector<double> reduced_costs(const LpData& lp, const std::vector<double>& y) {
  std::vector<double> d = lp.cost;
  for (int j = 0; j < lp.num_columns(); ++j) {
    for (int k = lp.matrix.start[j]; k < lp.matrix.start[j + 1]; ++k)
      d[j] -= lp.matrix.value[k] * y[lp.matrix.index[k]];
  }
  return d;
}

/* What a pair of points leaves between their objectives, where the signs of the multipliers say which bound counts; kInf
 * where a multiplier asks for a bound that is not there by more than the tolerance. */
double dual_objective(const LpData& lp, const std::vector<double>& y, double tolerance) {
  double sum = lp.offset;
  const auto add = [&](double multiplier, double lower, double upper) {
    const double bound = multiplier > 0 ? lower : upper;
    if (std::isinf(bound)) {
      if (std::fabs(multiplier) > tolerance) sum = -kInf;
    } else {
      sum += multiplier * bound;
    }
  };
  const std::vector<double> d = reduced_costs(lp, y);
  for (std::size_t i = 0; i < y.size(); ++i) add(y[i], lp.row_lower[i], lp.row_upper[i]);
  for (std::size_t j = 0; j < d.size(); ++j) add(d[j], lp.lower[j], lp.upper[j]);
  return sum;
}

void expect_optimal(const LpData& lp, const Result& result, double value) {
  ASSERT_EQ(result.ending, Ending::optimal);
  ASSERT_TRUE(result.has_point);
  const double size = 1 + std::fabs(value);
  EXPECT_NEAR(objective(lp, result.x), value, 1e-6 * size);
  EXPECT_NEAR(dual_objective(lp, result.y, 1e-5 * size), value, 1e-5 * size);
  const std::vector<double> activity = activities(lp, result.x);
  for (std::size_t i = 0; i < activity.size(); ++i) {
    EXPECT_GE(activity[i], lp.row_lower[i] - 1e-6 * size);
    EXPECT_LE(activity[i], lp.row_upper[i] + 1e-6 * size);
  }
  for (std::size_t j = 0; j < result.x.size(); ++j) {
    EXPECT_GE(result.x[j], lp.lower[j]);
    EXPECT_LE(result.x[j], lp.upper[j]);
  }
}

Result solved(const LpData& lp, const Options& options = {}) {
  support::QuietControl control;
  return barrier::solve(lp, options, control, nullptr);
}

/* What the five equations of a direction miss, each measured by itself; share of the largest term. */
double largest_miss(const Form& form, const Point& at, const Blocks& wanted, const Point& step) {
  double worst = 0, largest = 1;
  const auto miss = [&](double left, double right, double size) {
    worst = std::max(worst, std::fabs(left - right));
    largest = std::max(largest, size);
  };
  for (int i = 0; i < form.m; ++i) {
    double sum = 0, size = 0;
    for (int k = form.rows.start[i]; k < form.rows.start[i + 1]; ++k) {
      sum += form.rows.value[k] * step.x[form.rows.index[k]];
      size += std::fabs(form.rows.value[k] * step.x[form.rows.index[k]]);
    }
    miss(sum, wanted.primal[i], size);
  }
  for (int j = 0; j < form.n; ++j) {
    double sum = step.z[j] - step.v[j], size = std::fabs(step.z[j]) + std::fabs(step.v[j]);
    for (int k = form.a.start[j]; k < form.a.start[j + 1]; ++k) {
      sum += form.a.value[k] * step.y[form.a.index[k]];
      size += std::fabs(form.a.value[k] * step.y[form.a.index[k]]);
    }
    miss(sum, wanted.dual[j], size);
    if (form.has_lower[j])
      miss(at.z[j] * step.x[j] + at.x[j] * step.z[j], wanted.lower_pairs[j], std::fabs(at.z[j] * step.x[j]));
    if (!form.has_upper[j]) continue;
    miss(step.x[j] + step.w[j], wanted.upper[j], std::fabs(step.x[j]));
    miss(at.v[j] * step.w[j] + at.w[j] * step.v[j], wanted.upper_pairs[j], std::fabs(at.v[j] * step.w[j]));
  }
  return worst / largest;
}

TEST(Barrier, DirectionsMeetAllBlocksInEitherSystem) {
  support::Random random(support::fresh_seed());
  support::QuietControl control;
  for (int round = 0; round < 60; ++round) {
    TRACE_RANDOM(random, round);
    const int rows = 1 + random.below(8);
    const Planted planted = plant(random, rows, rows + 2 + random.below(12));
    const LpData lp = planted.lp.data();
    const Form form(lp);
    if (form.m == 0 || form.n <= form.m) continue;
    Point at(form);
    Blocks wanted(form);
    const double spread = random.chance(0.5) ? 6 : 1;  // orders of magnitude of the products' sides
    const auto side = [&] { return std::pow(10, random.uniform(-spread, spread) / 2); };
    const auto draw = [&] { return random.uniform(-1, 1); };
    for (int i = 0; i < form.m; ++i) wanted.primal[i] = draw(), at.y[i] = draw();
    for (int j = 0; j < form.n; ++j) {
      at.x[j] = side();
      wanted.dual[j] = draw();
      if (form.has_lower[j]) at.z[j] = side(), wanted.lower_pairs[j] = draw();
      if (form.has_upper[j])
        at.w[j] = side(), at.v[j] = side(), wanted.upper[j] = draw(), wanted.upper_pairs[j] = draw();
    }
    Point steps[2] = {Point(form), Point(form)};
    for (const System system : {System::normal, System::augmented}) {
      Options options;
      options.system = system;
      options.dense_column = random.chance(0.3) ? 2 : 0;  // some columns are not eliminated
      Kkt kkt(form);
      ASSERT_EQ(kkt.analyze(options, control, nullptr), cholesky::State::done);
      EXPECT_EQ(kkt.setup().augmented, system == System::augmented);
      Newton newton(form, kkt);
      ASSERT_EQ(newton.prepare(at, Regularization{}, control), cholesky::State::done);
      Point& step = steps[system == System::augmented];
      newton.solve(wanted, Newton::kFull, step, control);
      if (newton.trust() > 1e-9) continue;  // rows that depend on each other
      EXPECT_LT(largest_miss(form, at, wanted, step), 1e-7);
    }
  }
}

TEST(Barrier, GmresSolvesWhatItsPreconditionerOnlyApproaches) {
  support::Random random(7);
  constexpr int kSize = 30;
  std::vector<std::vector<double>> k(kSize, std::vector<double>(kSize));
  for (int i = 0; i < kSize; ++i) {
    for (int j = 0; j <= i; ++j)
      k[i][j] = k[j][i] = i == j ? 10 * (i % 2 == 0 ? 1 : -1) : random.uniform(-0.5, 0.5);
  }
  std::vector<double> g(kSize), x(kSize, 0.0), product(kSize);
  for (double& v : g) v = random.uniform(-1, 1);
  const auto apply = [&](const std::vector<double>& in, std::vector<double>& out) {
    for (int i = 0; i < kSize; ++i) out[i] = dot(k[i], in);
  };
  gmres(
      apply,
      [&](std::vector<double>& v) {
        for (int i = 0; i < kSize; ++i) v[i] /= k[i][i];
      },
      g, {20, 1e-12}, x);
  apply(x, product);
  for (int i = 0; i < kSize; ++i) EXPECT_NEAR(product[i], g[i], 1e-11);
}

TEST(Barrier, StepsLeaveEveryPairPositive) {
  support::Random random(support::fresh_seed());
  for (int round = 0; round < 200; ++round) {
    TRACE_RANDOM(random, round);
    const LpData lp = plant(random, 4, 9).lp.data();
    const Form form(lp);
    Point at(form), step(form);
    for (int j = 0; j < form.n; ++j) {
      at.x[j] = at.z[j] = at.w[j] = at.v[j] = 1;
      for (std::vector<double>* v : {&step.x, &step.z, &step.w, &step.v}) (*v)[j] = random.uniform(-3, 3);
      if (!form.has_lower[j]) at.z[j] = step.z[j] = 0;
      if (!form.has_upper[j]) at.w[j] = at.v[j] = step.w[j] = step.v[j] = 0;
    }
    const Steps longest = longest_steps(form, at, step), steps = interior_steps(form, at, step);
    EXPECT_LE(steps.primal, longest.primal);
    EXPECT_LE(steps.dual, longest.dual);
    EXPECT_GE(steps.primal, 0.89 * longest.primal);
    EXPECT_GE(steps.dual, 0.89 * longest.dual);
    for_pairs(form, at, step, [&](double value, double multiplier, double dvalue, double dmultiplier) {
      EXPECT_GT(value + steps.primal * dvalue, 0);
      EXPECT_GT(multiplier + steps.dual * dmultiplier, 0);
      EXPECT_GE(value + longest.primal * dvalue, -1e-12);
      EXPECT_GE(multiplier + longest.dual * dmultiplier, -1e-12);
    });
    Point extra = step;  // a correction: the same blocks, other numbers
    for (std::vector<double>* v : {&extra.x, &extra.z, &extra.w, &extra.v}) {
      for (double& entry : *v) entry *= random.uniform(-2, 2);
    }
    Weights weights;
    for (double& weight : weights) weight = random.uniform(0, 1);
    const auto weighted = longest_steps(form, at, step, extra, weights);
    for (int k = 0; k < kWeights; ++k) {
      Point sum = step;
      add(form, weights[k], extra, sum);
      const Steps alone = longest_steps(form, at, sum);
      EXPECT_NEAR(weighted[k].primal, alone.primal, 1e-12);
      EXPECT_NEAR(weighted[k].dual, alone.dual, 1e-12);
    }
  }
}

TEST(Barrier, FindsPlantedOptimaFromEveryStartByEveryAlgorithm) {
  support::Random random(support::fresh_seed());
  for (int round = 0; round < 60; ++round) {
    TRACE_RANDOM(random, round);
    const int rows = random.below(25);
    const Planted planted = plant(random, rows, 1 + rows + random.below(30));
    const LpData lp = planted.lp.data();
    Options options;
    options.start = static_cast<Start>(1 + round % 4);
    options.algorithm = static_cast<Algorithm>(round / 4 % 4);
    options.system = static_cast<System>(round / 16 % 3);
    options.correctors = round % 7 - 1;
    const Result result = solved(lp, options);
    expect_optimal(lp, result, planted.value);
    EXPECT_LE(result.iterations, 80);
  }
}

/* Units of rows, columns, sides and costs say nothing about the model. */
TEST(Barrier, CopiesInOtherUnitsHaveTheSameAnswer) {
  support::Random random(support::fresh_seed());
  for (int round = 0; round < 24; ++round) {
    TRACE_RANDOM(random, round);
    const Planted planted = plant(random, 12, 24);
    LpData lp = planted.lp.data();
    const double sides = round % 3 == 0 ? 1e6 : round % 3 == 1 ? 1e-6 : 1;
    const double costs = round % 2 == 0 ? 1e6 : 1e-3;
    for (std::vector<double>* v : {&lp.lower, &lp.upper, &lp.row_lower, &lp.row_upper}) {
      for (double& bound : *v) bound *= sides;
    }
    for (double& c : lp.cost) c *= costs;
    lp.offset *= sides * costs;
    const Result result = solved(lp);
    ASSERT_EQ(result.ending, Ending::optimal);
    EXPECT_NEAR(objective(lp, result.x), planted.value * sides * costs,
                1e-6 * (1 + std::fabs(planted.value) * sides * costs));
  }
}

/* Takes a planted model's answer away: two rows that contradict each other, or a direction without end. */
TEST(Barrier, ClaimsNothingWithoutAProof) {
  support::Random random(support::fresh_seed());
  int undecided = 0;  // one in some hundred, on which the simplex would go on
  for (int round = 0; round < 60; ++round) {
    TRACE_RANDOM(random, round);
    Planted planted = plant(random, 8, 16);
    DenseLp& lp = planted.lp;
    const bool infeasible = round % 2 == 0;
    if (infeasible) {
      lp.a[0] = lp.a[1];
      for (double& entry : lp.a[0]) entry *= -2;
      lp.row_lower[1] = 3, lp.row_upper[1] = kInf;
      lp.row_lower[0] = -5, lp.row_upper[0] = kInf;  // at most 2.5 of what must be at least 3
    } else {
      for (int i = 0; i < lp.rows(); ++i) {  // both columns leave the rows, which are met by the others alone
        const double share = lp.a[i][0] * planted.x[0] + lp.a[i][1] * planted.x[1];
        lp.row_lower[i] -= share, lp.row_upper[i] -= share;
        lp.a[i][0] = lp.a[i][1] = 0;
      }
      lp.a[2][0] = 1, lp.a[2][1] = -1;
      lp.lower[0] = lp.lower[1] = 0, lp.upper[0] = lp.upper[1] = kInf;
      lp.cost[0] = -2, lp.cost[1] = 1;
    }
    const LpData data = lp.data();
    Options options;
    options.algorithm = static_cast<Algorithm>(round / 2 % 3);
    const Result result = solved(data, options);
    if (result.ending == Ending::no_progress) {
      ++undecided;
      continue;
    }
    if (infeasible) {
      ASSERT_EQ(result.ending, Ending::infeasible);
      /* The rows demand more than the box allows. */
      double demanded = 0, allowed = 0;
      LpData homogeneous = data;
      for (double& c : homogeneous.cost) c = 0;
      const std::vector<double> d = reduced_costs(homogeneous, result.farkas);
      for (std::size_t i = 0; i < result.farkas.size(); ++i) {
        const double y = result.farkas[i];
        if (y != 0) demanded += y * (y > 0 ? data.row_lower[i] : data.row_upper[i]);
      }
      for (std::size_t j = 0; j < d.size(); ++j) {
        const double bound = d[j] < 0 ? data.upper[j] : data.lower[j];
        if (!std::isinf(bound)) allowed += -d[j] * bound;
        EXPECT_TRUE(!std::isinf(bound) || std::fabs(d[j]) < 1e-7);
      }
      EXPECT_GT(demanded, allowed);
    } else {
      ASSERT_EQ(result.ending, Ending::unbounded);
      double slope = 0;
      for (std::size_t j = 0; j < result.ray.size(); ++j) {
        slope += data.cost[j] * result.ray[j];
        EXPECT_TRUE(result.ray[j] >= 0 || data.lower[j] == -kInf);
        EXPECT_TRUE(result.ray[j] <= 0 || data.upper[j] == kInf);
      }
      EXPECT_LT(slope, 0);
      const std::vector<double> change = activities(data, result.ray);
      for (std::size_t i = 0; i < change.size(); ++i) {
        EXPECT_TRUE(change[i] <= 1e-7 || data.row_upper[i] == kInf);
        EXPECT_TRUE(change[i] >= -1e-7 || data.row_lower[i] == -kInf);
      }
    }
  }
  EXPECT_LE(undecided, 3);
}

TEST(Barrier, HandlesModelsOfUnusualShape) {
  const auto with = [](auto change) {
    DenseLp lp(2, 3);
    lp.a = {{1, 1, 1}, {2, 2, 2}};
    lp.cost = {1, 2, 3};
    lp.row_lower = {6, 12}, lp.row_upper = {6, 12};
    change(lp);
    return lp.data();
  };
  const struct {
    const char* what;
    LpData lp;
    double value;
  } cases[] = {
      {"dependent equations", with([](DenseLp&) {}), 6},
      {"no costs", with([](DenseLp& lp) {
         lp.cost = {0, 0, 0};
       }),
       0},
      {"no rows", with([](DenseLp& lp) { lp.a.clear(), lp.row_lower.clear(), lp.row_upper.clear(); }), 0},
      {"an empty row", with([](DenseLp& lp) {
         lp.a[1] = {0, 0, 0}, lp.row_lower[1] = -1, lp.row_upper[1] = 1;
       }),
       6},
      {"free rows only", with([](DenseLp& lp) {
         lp.row_lower = {-kInf, -kInf}, lp.row_upper = {kInf, kInf};
         lp.lower = {1, 1, 1};
       }),
       6},
      {"all fixed", with([](DenseLp& lp) {
         lp.lower = lp.upper = {1, 2, 3};
       }),
       14},
      {"all free", with([](DenseLp& lp) {
         lp.cost = {1, 1, 1};
         lp.lower = {-kInf, -kInf, -kInf};
       }),
       6},
      {"a point for a box", with([](DenseLp& lp) {
         lp.lower = {1, 2, 2.5}, lp.upper = {1 + 1e-9, 2, 4};
       }),
       14},
      {"nothing at all", DenseLp(0, 0).data(), 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    for (const Algorithm algorithm : {Algorithm::automatic, Algorithm::embedding_from_constant}) {
      Options options;
      options.algorithm = algorithm;
      const Result result = solved(c.lp, options);
      ASSERT_EQ(result.ending, Ending::optimal);
      EXPECT_NEAR(objective(c.lp, result.x), c.value, 1e-6);
    }
  }
}

TEST(Barrier, DenseColumnsStayOutOfTheNormalEquations) {
  support::Random random(3);
  Planted planted = plant(random, 80, 240);
  for (int i = 0; i < 80; ++i) {
    for (int j = 0; j < 240; ++j) planted.lp.a[i][j] = (j - i) % 80 == 0 || j == 0 ? 1.0 + i % 3 : 0;
    planted.lp.row_lower[i] = planted.lp.row_upper[i] = 10;
  }
  for (int j = 0; j < 240; ++j)
    planted.lp.lower[j] = 0, planted.lp.upper[j] = kInf, planted.lp.cost[j] = 1 + j % 7;
  struct Looking : Observer {
    barrier::Setup seen;
    void dense_columns(int, int) override {}
    void setup(const barrier::Setup& setup) override { seen = setup; }
    void out_of_core(const cholesky::Storage&) override {}
    void iteration(const Iteration&) override {}
    void corrections(std::int64_t, int, std::int64_t) override {}
  } looking;
  support::QuietControl control;
  Options options;
  options.system = System::normal;
  const LpData lp = planted.lp.data();
  const Result apart = barrier::solve(lp, options, control, &looking);
  EXPECT_EQ(looking.seen.dense_columns, 1);
  EXPECT_LT(looking.seen.counts.entries, 3 * 81);
  options.dense_column = 1000;
  const Result together = barrier::solve(lp, options, control, &looking);
  EXPECT_EQ(looking.seen.dense_columns, 0);
  EXPECT_GT(looking.seen.counts.entries, 80 * 81 / 2 - 1);
  ASSERT_EQ(apart.ending, Ending::optimal);
  ASSERT_EQ(together.ending, Ending::optimal);
  EXPECT_NEAR(objective(lp, apart.x), objective(lp, together.x),
              1e-6 * (1 + std::fabs(objective(lp, apart.x))));
}

TEST(Barrier, LimitsEndItWithTheBestPoint) {
  support::Random random(5);
  const LpData lp = plant(random, 20, 50).lp.data();
  Options options;
  options.iteration_limit = 3;
  const Result short_run = solved(lp, options);
  EXPECT_EQ(short_run.ending, Ending::iteration_limit);
  EXPECT_EQ(short_run.iterations, 3);
  EXPECT_TRUE(short_run.has_point);
  const Result whole = solved(lp);
  EXPECT_LT(whole.worst_residual, short_run.worst_residual);

  class OutOfTime : public support::QuietControl {
   public:
    Stop poll_clock() override { return --left < 0 ? Stop::time_limit : Stop::none; }
    int left = 4;
  } control;
  EXPECT_EQ(barrier::solve(lp, {}, control, nullptr).ending, Ending::time_limit);
}

}  // namespace
