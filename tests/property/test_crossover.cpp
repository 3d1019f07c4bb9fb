/* Crossover from planted complementary pairs of degenerate LPs: it ends at a basis, an optimal one where the pair is
 * exact, and the simplex has little to mend where it is not. */
#include "lp/crossover/crossover.h"

#include <gtest/gtest.h>

#include <cmath>

#include "lp/crossover/path.h"
#include "lp/simplex/solver.h"
#include "support/dense_lp.h"
#include "support/quiet_control.h"
#include "support/random.h"

namespace {

using namespace tovik::lp;
using crossover::First;
using support::DenseLp;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kModels = 1200;
#else
constexpr int kModels = 6000;
#endif

struct Planted {
  DenseLp lp{0, 0};
  crossover::Point pair;
  double value = 0;
};

/* Small integers, rows and columns that are multiples or sums of others; `inner` of the columns and rows stand between
 * their bounds: more or fewer than a basis has. */
class PairMaker : public support::Random {
 public:
  using Random::Random;

  Planted make(int rows, int columns, double inner) {
    Planted planted{DenseLp(rows, columns), {}, 0};
    DenseLp& lp = planted.lp;
    for (auto& row : lp.a) {
      for (double& entry : row) entry = chance(0.5) ? pick(-2, 2) : 0;
    }
    for (int copies = pick(0, 2); copies > 0 && rows > 2; --copies) {
      auto& row = lp.a[static_cast<std::size_t>(pick(0, rows - 1))];
      for (int j = 0; j < columns; ++j) row[j] = 2 * lp.a[0][j] - lp.a[1][j];
    }
    std::vector<double> d;
    for (int j = 0; j < columns; ++j) {
      if (j > 0 && chance(0.2)) {
        const int like = pick(0, j - 1), times = chance(0.5) ? 1 : -2;
        for (auto& row : lp.a) row[j] = times * row[like];
      }
      const double x = pick(-3, 3);
      planted.pair.x.push_back(x);
      d.push_back(bounds(x, inner, lp.lower[j], lp.upper[j]));
    }
    for (int i = 0; i < rows; ++i) {
      double activity = 0;
      for (int j = 0; j < columns; ++j) activity += lp.a[i][j] * planted.pair.x[j];
      planted.pair.y.push_back(bounds(activity, inner, lp.row_lower[i], lp.row_upper[i]));
    }
    planted.value = lp.offset = pick(-5, 5);
    for (int j = 0; j < columns; ++j) {
      lp.cost[j] = d[j];
      for (int i = 0; i < rows; ++i) lp.cost[j] += lp.a[i][j] * planted.pair.y[i];
      planted.value += lp.cost[j] * planted.pair.x[j];
    }
    return planted;
  }

  void disturb(double size, crossover::Point& pair) {
    for (auto* v : {&pair.x, &pair.y}) {
      for (double& value : *v) value += size * (2 * uniform(0, 1) - 1);
    }
  }

 private:
  /* Bounds for a value and its multiplier. */
  double bounds(double at, double inner, double& lower, double& upper) {
    const double width = pick(1, 4), slope = pick(1, 4);
    lower = -kInf, upper = kInf;
    if (chance(inner)) {
      if (chance(0.7)) lower = at - width;
      if (chance(0.5)) upper = at + width;
      return 0;
    }
    if (chance(0.3)) {
      lower = upper = at;
      return pick(-3, 3);
    }
    const bool at_lower = chance(0.5);
    (at_lower ? lower : upper) = at;
    if (chance(0.4)) (at_lower ? upper : lower) = at + (at_lower ? width : -width);
    return at_lower ? slope : -slope;
  }
};

class Pushes : public crossover::Observer {
 public:
  void begin(int primal_pushes, int dual_pushes) override { primal = primal_pushes, dual = dual_pushes; }
  void progress(const crossover::Progress&) override {}
  int primal = 0, dual = 0;
};

crossover::Result cross(simplex::Solver& solver, const crossover::Point& pair, First first, Pushes* pushes) {
  crossover::Point scaled = pair;
  for (std::size_t j = 0; j < pair.x.size(); ++j) scaled.x[j] /= solver.column_scale(static_cast<int>(j));
  for (std::size_t i = 0; i < pair.y.size(); ++i) scaled.y[i] /= solver.row_scale(static_cast<int>(i));
  crossover::Result result;
  solver.take_basis(
      [&](simplex::Core& core) { result = crossover::cross_over(core, scaled, {first}, pushes); });
  return result;
}

/* As many basics as rows, everything else at a bound, free ones at 0. */
std::string faults_of_basis(const simplex::Core& core) {
  int basics = 0;
  for (int j = 0; j < core.total(); ++j) {
    if (!core.basis.nonbasic(j)) {
      if (core.basis.head(core.basis.position(j)) != j) return "not where its position says";
      ++basics;
      continue;
    }
    const double x = core.basis.value(j);
    if (x != core.model.lower(j) && x != core.model.upper(j) && !(core.model.is_free(j) && x == 0))
      return "a nonbasic between its bounds";
  }
  return basics == core.m() ? "" : "a wrong number of basics";
}

TEST(Crossover, ExactPairsEndAtOptimalBases) {
  PairMaker random(support::fresh_seed());
  support::QuietControl control;
  int pushes_of_kind[2] = {0, 0}, exchanges = 0;
  for (int round = 0; round < kModels && !HasFailure(); ++round) {
    TRACE_RANDOM(random, round);
    const int rows = random.pick(1, 9);
    const Planted planted = random.make(rows, random.pick(1, 16), random.uniform(0, 1));
    const LpData lp = planted.lp.data();
    SCOPED_TRACE(support::describe(lp));
    simplex::Solver solver(lp, {}, control, nullptr);
    Pushes pushes;
    const crossover::Result result =
        cross(solver, planted.pair, round % 2 == 0 ? First::primal : First::dual, &pushes);
    ASSERT_EQ(faults_of_basis(solver.core()), "");
    ASSERT_EQ(result.primal.count, 0);
    ASSERT_EQ(result.dual.count, 0);
    ASSERT_EQ(result.abandoned, 0);
    ASSERT_LE(result.counts.primal_pushes, pushes.primal);
    ASSERT_LE(result.counts.dual_pushes, pushes.dual);
    ASSERT_LE(result.counts.primal_exchanges, result.counts.primal_pushes);
    ASSERT_LE(result.counts.dual_exchanges, result.counts.dual_pushes);
    pushes_of_kind[0] += pushes.primal;
    pushes_of_kind[1] += pushes.dual;
    exchanges += result.counts.primal_exchanges + result.counts.dual_exchanges;
    ASSERT_EQ(solver.solve(Method::dual), Outcome::optimal);
    ASSERT_EQ(solver.counters().iterations, 0);
    ASSERT_NEAR(solver.answer().objective, planted.value, 1e-7 * (1 + std::fabs(planted.value)));
  }
  EXPECT_GT(pushes_of_kind[0], kModels / 2) << "the models have optimal faces";
  EXPECT_GT(pushes_of_kind[1], kModels / 2);
  EXPECT_GT(exchanges, kModels / 2);
}

TEST(Crossover, NoisyPairsLeaveTheSimplexTheRest) {
  PairMaker random(support::fresh_seed());
  support::QuietControl control;
  for (int round = 0; round < kModels && !HasFailure(); ++round) {
    TRACE_RANDOM(random, round);
    const int rows = random.pick(1, 9);
    Planted planted = random.make(rows, random.pick(1, 16), random.uniform(0, 1));
    const double noise[] = {1e-10, 1e-7, 1e-4, 0.1, 10};
    random.disturb(noise[round % 5], planted.pair);
    const LpData lp = planted.lp.data();
    for (int j = 0; j < lp.num_columns(); ++j)
      planted.pair.x[j] = std::clamp(planted.pair.x[j], lp.lower[j], lp.upper[j]);
    SCOPED_TRACE(support::describe(lp));
    simplex::Solver solver(lp, {}, control, nullptr);
    const crossover::Result result =
        cross(solver, planted.pair, random.chance(0.5) ? First::primal : First::dual, nullptr);
    ASSERT_EQ(faults_of_basis(solver.core()), "");
    if (round % 5 == 0) {
      ASSERT_EQ(result.primal.count, 0) << result.primal.largest;
      ASSERT_EQ(result.dual.count, 0);
    }
    ASSERT_EQ(solver.solve(random.chance(0.5) ? Method::primal : Method::dual), Outcome::optimal);
    ASSERT_NEAR(solver.answer().objective, planted.value, 1e-6 * (1 + std::fabs(planted.value)));
  }
}

TEST(Crossover, VerticesNeedNoPush) {
  PairMaker random(support::fresh_seed());
  support::QuietControl control;
  int vertices = 0;
  for (int round = 0; round < kModels / 4 && !HasFailure(); ++round) {
    TRACE_RANDOM(random, round);
    const LpData lp = random.make(random.pick(1, 4), random.pick(1, 7), random.uniform(0, 1)).lp.data();
    simplex::Solver solver(lp, {}, control, nullptr);
    ASSERT_EQ(solver.solve(Method::dual), Outcome::optimal);
    const Answer answer = solver.answer();
    // Strictly complementary only: else a basic at its bound may be given to its bound.
    bool strict = true;
    const auto look = [&](BasisStatus at, double value, double multiplier, double lower, double upper) {
      if (at != BasisStatus::basic) {
        strict = strict && (lower == upper || std::fabs(multiplier) > 1e-6);
      } else {
        strict = strict && std::min(value - lower, upper - value) > 1e-6;
      }
    };
    for (int j = 0; j < lp.num_columns(); ++j)
      look(answer.column_status[j], answer.x[j], answer.d[j], lp.lower[j], lp.upper[j]);
    for (int i = 0; i < lp.num_rows(); ++i)
      look(answer.row_status[i], answer.activity[i], answer.y[i], lp.row_lower[i], lp.row_upper[i]);
    if (!strict) continue;
    ++vertices;
    Pushes pushes;
    const crossover::Result result = cross(solver, {answer.x, answer.y}, First::primal, &pushes);
    ASSERT_EQ(pushes.primal + pushes.dual, 0);
    ASSERT_EQ(result.primal.count + result.dual.count, 0);
    solver.extract();
    ASSERT_EQ(solver.answer().column_status, answer.column_status);
    ASSERT_EQ(solver.answer().row_status, answer.row_status);
  }
  EXPECT_GT(vertices, 0);
}

/* Columns e_i + 8 e_(i+1) and e_0: without the last they are triangular, and their inverse has entries of 8^28. */
TEST(Crossover, NearlySingularBasesAreRepaired) {
  constexpr int kRows = 29;
  DenseLp lp(kRows, kRows + 1);
  for (int j = 0; j < kRows; ++j) {
    lp.a[j][j] = 1;
    if (j + 1 < kRows) lp.a[j + 1][j] = 8;
  }
  lp.a[0][kRows] = 1;
  crossover::Point pair{std::vector<double>(kRows + 1, 1.0), std::vector<double>(kRows, 0.0)};
  for (int i = 0; i < kRows; ++i) lp.row_lower[i] = lp.row_upper[i] = i == 0 ? 2 : 9;
  support::Random random(1);
  for (double& x : pair.x) x += random.uniform(-1e-9, 1e-9);
  support::QuietControl control;
  simplex::Options options;
  options.scaling = -1;
  simplex::Solver solver(lp.data(), options, control, nullptr);
  solver.take_basis([&](simplex::Core& core) {
    std::vector<BasisStatus> status(static_cast<std::size_t>(core.total()), BasisStatus::lower);
    for (int j = 0; j < kRows; ++j) status[j] = BasisStatus::basic;
    core.set_basis(status);
    const crossover::ComplementaryStart start = crossover::make_complementary(core, pair);
    crossover::Path path(core, start, nullptr);
    path.refactor();
    EXPECT_FALSE(core.basis.nonbasic(kRows));
    for (int p = 0; p < kRows; ++p) EXPECT_NEAR(core.values.x(p), start.x[core.basis.head(p)], 1e-6);
    EXPECT_EQ(path.nonbasics_to_push().size(), 1U) << "what has left stands where it stood";
  });
}

TEST(Crossover, StoppedAnywhereItLeavesABasis) {
  PairMaker random(support::fresh_seed());
  int stopped = 0;
  for (int round = 0; round < kModels / 4 && !HasFailure(); ++round) {
    TRACE_RANDOM(random, round);
    const Planted planted = random.make(random.pick(1, 9), random.pick(1, 16), random.uniform(0, 1));
    const LpData lp = planted.lp.data();
    support::QuietControl impatient(random.pick(0, 6)), patient;
    simplex::Solver solver(lp, {}, impatient, nullptr);
    Pushes pushes;
    const crossover::Result result =
        cross(solver, planted.pair, random.chance(0.5) ? First::primal : First::dual, &pushes);
    ASSERT_EQ(faults_of_basis(solver.core()), "");
    const int done = result.counts.primal_pushes + result.counts.dual_pushes;
    if (result.stop != Stop::none) {
      ++stopped;
      ASSERT_EQ(result.stop, Stop::user_abort);
      ASSERT_LE(done + result.abandoned, pushes.primal + pushes.dual);
    } else {
      ASSERT_EQ(result.abandoned, 0);
    }
    solver.set_control(patient, nullptr);
    ASSERT_EQ(solver.solve(Method::primal), Outcome::optimal);
    ASSERT_NEAR(solver.answer().objective, planted.value, 1e-7 * (1 + std::fabs(planted.value)));
  }
  EXPECT_GT(stopped, kModels / 20);
}

}  // namespace
