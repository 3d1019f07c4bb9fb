/* Filling the solution pool against enumeration: random small problems of every kind, with and without gaps, filters, presolve,
 * cuts and heuristics, at once or a few solutions a call. */
#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <vector>

#include "support/environment_fixture.h"
#include "support/load_mip.h"
#include "support/random_mip.h"

using support::kInf;
using tovik::mip::Problem;

namespace {

constexpr double kTolerance = 1e-4;  // what the rows' tolerance is worth in the objective

using Decision = std::vector<int>;  // values of the integer columns

/* The best objective of every decision that has a solution; unbounded: none at all. */
struct AllSolutions {
  std::map<Decision, double> best_of;
  double best = kInf;
  bool unbounded = false;
};

/* passes: bool(const Decision&) */
template <class Passes>
AllSolutions enumerate(const Problem& problem, Passes&& passes) {
  AllSolutions all;
  support::EachLeaf leaves(problem, [&](const tovik::lp::LpData& lp) {
    Decision decision;
    for (int j = 0; j < problem.num_columns(); ++j) {
      if (problem.is_integer[j] != 0) decision.push_back(static_cast<int>(std::lround(lp.lower[j])));
    }
    if (!passes(decision)) return;
    support::QuietControl control;
    tovik::lp::simplex::Solver solver(lp, {}, control, nullptr);
    const tovik::lp::Outcome outcome = solver.solve(tovik::lp::Method::dual);
    all.unbounded |= outcome == tovik::lp::Outcome::unbounded;
    if (outcome != tovik::lp::Outcome::optimal) return;
    const double objective = solver.answer().objective;
    const auto [it, is_new] = all.best_of.try_emplace(decision, objective);
    it->second = std::min(it->second, objective);
    all.best = std::min(all.best, objective);
  });
  leaves.run();
  return all;
}

AllSolutions enumerate(const Problem& problem) {
  return enumerate(problem, [](const Decision&) { return true; });
}

struct Filter {
  bool is_diversity;
  double lower, upper;
  std::vector<int> column;
  std::vector<double> coefficient, reference;
};

/* A range filter as one more row, whatever the columns are. */
void add_row(Problem& problem, const Filter& filter) {
  tovik::lp::Matrix& matrix = problem.lp.matrix;
  for (std::size_t k = 0; k < filter.column.size(); ++k) {
    const int at = matrix.start[filter.column[k] + 1];
    matrix.index.insert(matrix.index.begin() + at, matrix.rows);
    matrix.value.insert(matrix.value.begin() + at, filter.coefficient[k]);
    for (int j = filter.column[k] + 1; j <= matrix.columns; ++j) ++matrix.start[j];
  }
  ++matrix.rows;
  problem.lp.row_lower.push_back(filter.lower <= -TVK_INFBOUND ? -kInf : filter.lower);
  problem.lp.row_upper.push_back(filter.upper >= TVK_INFBOUND ? kInf : filter.upper);
}

/* Of solutions that pass; best is that of all, whether they pass or not. */
AllSolutions enumerate(const Problem& problem, const std::vector<Filter>& filters) {
  Problem with_rows = problem;
  std::vector<int> place(static_cast<std::size_t>(problem.num_columns()), -1);
  int integers = 0;
  for (int j = 0; j < problem.num_columns(); ++j) {
    if (problem.is_integer[j] != 0) place[j] = integers++;
  }
  for (const Filter& filter : filters) {
    if (!filter.is_diversity) add_row(with_rows, filter);
  }
  AllSolutions all = enumerate(with_rows, [&](const Decision& decision) {
    return std::all_of(filters.begin(), filters.end(), [&](const Filter& filter) {
      if (!filter.is_diversity) return true;
      double distance = 0;
      for (std::size_t k = 0; k < filter.column.size(); ++k)
        distance +=
            filter.coefficient[k] * std::fabs(decision[place[filter.column[k]]] - filter.reference[k]);
      return distance >= filter.lower - 1e-6 && distance <= filter.upper + 1e-6;
    });
  });
  all.best = enumerate(problem).best;
  return all;
}

std::vector<Filter> draw_filters(support::Random& random, const Problem& problem) {
  std::vector<Filter> filters;
  std::vector<int> binaries;
  std::vector<char> is_semi(static_cast<std::size_t>(problem.num_columns()), 0);
  for (const tovik::mip::SemiColumn& semi : problem.semi_columns) is_semi[semi.column] = 1;
  for (int j = 0; j < problem.num_columns(); ++j) {
    if (problem.is_integer[j] != 0 && is_semi[j] == 0 && problem.lp.lower[j] >= 0 && problem.lp.upper[j] <= 1)
      binaries.push_back(j);
  }
  const int count = random.pick(1, 2);
  while (static_cast<int>(filters.size()) < count) {
    Filter filter{random.chance(0.6) && !binaries.empty(), -TVK_INFBOUND, TVK_INFBOUND, {}, {}, {}};
    for (int j = 0; j < problem.num_columns(); ++j) {
      const bool may = !filter.is_diversity || std::count(binaries.begin(), binaries.end(), j) > 0;
      if (!may || random.chance(0.3)) continue;
      filter.column.push_back(j);
      filter.coefficient.push_back(random.chance(0.5)   ? 1
                                   : random.chance(0.7) ? random.pick(-3, 3)
                                                        : random.uniform(0, 2));
      filter.reference.push_back(random.chance(0.8) ? random.pick(0, 1) : random.uniform(-1, 2));
    }
    if (random.chance(0.7)) filter.lower = random.pick(-2, 2);
    if (random.chance(0.7)) filter.upper = std::max(filter.lower, -2.0) + random.pick(0, 3);
    filters.push_back(filter);
  }
  return filters;
}

class Populate : public support::WithEnvironment {
 protected:
  std::map<Decision, double> pool(ProbHandle lp, const Problem& problem) {
    std::map<Decision, double> members;
    const int count = TVKgetsolnpoolnumsolns(env_, lp);
    std::vector<double> x(static_cast<std::size_t>(problem.num_columns()));
    for (int k = 0; k < count; ++k) {
      EXPECT_EQ(TVKgetsolnpoolx(env_, lp, k, x.data(), 0, problem.num_columns() - 1), 0);
      double objective = NAN, violation = NAN;
      EXPECT_EQ(TVKgetsolnpoolobjval(env_, lp, k, &objective), 0);
      EXPECT_EQ(TVKgetsolnpoolquality(env_, lp, k, TVK_QUALITY_MAX_INT_INFEAS, &violation, nullptr), 0);
      EXPECT_EQ(violation, 0);
      Decision decision;
      for (int j = 0; j < problem.num_columns(); ++j) {
        if (problem.is_integer[j] != 0) decision.push_back(static_cast<int>(x[j]));
      }
      EXPECT_TRUE(members.emplace(decision, objective).second) << "twice";
    }
    return members;
  }
  void add(ProbHandle lp, const Filter& filter) {
    const int count = static_cast<int>(filter.column.size());
    if (filter.is_diversity) {
      ASSERT_EQ(TVKaddsolnpooldivfilter(env_, lp, filter.lower, filter.upper, count, filter.column.data(),
                                        filter.coefficient.data(), filter.reference.data(), nullptr),
                0)
          << errors();
    } else {
      ASSERT_EQ(TVKaddsolnpoolrngfilter(env_, lp, filter.lower, filter.upper, count, filter.column.data(),
                                        filter.coefficient.data(), nullptr),
                0)
          << errors();
    }
  }
  /* Until the status is not the limit of the call; the last one. */
  int populate(ProbHandle lp) {
    int status = TVK_STATUS_POPULATE_SOLUTION_LIMIT;
    for (int call = 0; call < 2000 && status == TVK_STATUS_POPULATE_SOLUTION_LIMIT; ++call) {
      const int before = TVKgetsolnpoolnumsolns(env_, lp);
      EXPECT_EQ(TVKpopulate(env_, lp), 0) << errors();
      ++calls_;
      status = TVKgetstat(env_, lp);
      if (status == TVK_STATUS_POPULATE_SOLUTION_LIMIT) {
        EXPECT_GE(TVKgetsolnpoolnumsolns(env_, lp), before);
      }
    }
    return status;
  }
  /* The pool of what was enumerated without a limit; its size. */
  std::size_t compare(ProbHandle lp, const Problem& problem, const AllSolutions& truth, int status) {
    const double most = truth.best + room(truth.best);
    EXPECT_EQ(status,
              most < 1e50 ? TVK_STATUS_ALL_SOLUTIONS_FOUND_TOLERANCE : TVK_STATUS_ALL_SOLUTIONS_FOUND);
    const std::map<Decision, double> found = pool(lp, problem);
    for (const auto& [decision, objective] : found) {
      const auto known = truth.best_of.find(decision);
      if (known == truth.best_of.end()) {
        ADD_FAILURE() << "no solution that passes: " << objective;
        continue;
      }
      EXPECT_NEAR(known->second, objective, kTolerance);
      EXPECT_LE(objective, most + kTolerance);
    }
    for (const auto& [decision, objective] : truth.best_of) {
      if (objective < most - kTolerance) {
        EXPECT_TRUE(found.contains(decision)) << objective;
      }
    }
    double incumbent = NAN;
    EXPECT_EQ(TVKgetobjval(env_, lp, &incumbent), 0);
    EXPECT_NEAR(incumbent, truth.best, kTolerance);
    return found.size();
  }
  void set(int parameter, int value) { ASSERT_EQ(TVKsetintparam(env_, parameter, value), 0); }
  void draw_parameters(support::Random& random) {
    set(TVK_PARAM_PREIND, random.chance(0.7) ? 1 : 0);
    set(TVK_PARAM_HEURFREQ, random.chance(0.5) ? 0 : -1);
    set(TVK_PARAM_CUTPASS, random.chance(0.5) ? 0 : -1);
    set(TVK_PARAM_NODESEL, random.pick(0, 3));
    set(TVK_PARAM_SOLNPOOLINTENSITY, random.pick(3, 4));
    set(TVK_PARAM_POPULATELIM, random.chance(0.6) ? 2100000000 : random.pick(1, 7));
    set(TVK_PARAM_SOLNPOOLCAPACITY, 2100000000);
    ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_SOLNPOOLAGAP, random.chance(0.5) ? 1e75 : random.pick(0, 8)), 0);
    ASSERT_EQ(TVKsetdblparam(env_, TVK_PARAM_SOLNPOOLGAP, random.chance(0.7) ? 1e75 : random.uniform(0, 1)),
              0);
  }
  double room(double best) {
    double relative = NAN, absolute = NAN;
    EXPECT_EQ(TVKgetdblparam(env_, TVK_PARAM_SOLNPOOLGAP, &relative), 0);
    EXPECT_EQ(TVKgetdblparam(env_, TVK_PARAM_SOLNPOOLAGAP, &absolute), 0);
    return std::min(absolute, relative * (1e-10 + std::fabs(best)));
  }

  int calls_ = 0;
};

}  // namespace

TEST_F(Populate, FindsWhatEnumerationFinds) {
  const unsigned seed = support::fresh_seed();
  int compared = 0;
  std::size_t solutions = 0;
  for (unsigned k = 0; k < 2000; ++k) {
    SCOPED_TRACE(testing::Message() << "TOVIK_TEST_SEED=" << seed << " model " << k);
    support::RandomMip random(seed + 7919 * k);
    Problem problem = random.draw();
    if (!problem.indicators.empty()) continue;
    const int integers =
        static_cast<int>(std::count(problem.is_integer.begin(), problem.is_integer.end(), 1));
    if (integers == 0) continue;
    const AllSolutions truth = enumerate(problem);
    if (truth.unbounded) continue;
    draw_parameters(random.random());
    ProbHandle lp = support::load_mip(env_, problem);
    const int status = populate(lp);
    if (truth.best_of.empty()) {
      EXPECT_EQ(status, TVK_STATUS_MIP_INFEASIBLE);
      TVKfreeprob(env_, &lp);
      continue;
    }
    solutions += compare(lp, problem, truth, status);
    ++compared;
    TVKfreeprob(env_, &lp);
  }
  EXPECT_GT(compared, 400);
  EXPECT_GT(solutions, 2000u);
  printf("compared %d problems, %zu solutions, %d calls\n", compared, solutions, calls_);
}

/* Filters that are there from the beginning, or come when the pool holds something; then all go. */
TEST_F(Populate, FindsWhatPassesTheFilters) {
  const unsigned seed = support::fresh_seed();
  // Filters may keep the search for many away from what the first one's gap leaves.
  for (const int gap : {TVK_PARAM_EPGAP, TVK_PARAM_EPAGAP}) ASSERT_EQ(TVKsetdblparam(env_, gap, 0), 0);
  int compared = 0;
  std::size_t passed = 0, all = 0;
  for (unsigned k = 0; k < 2000; ++k) {
    SCOPED_TRACE(testing::Message() << "TOVIK_TEST_SEED=" << seed << " model " << k);
    support::RandomMip random(seed + 15485863 * k);
    const Problem problem = random.draw();
    if (!problem.indicators.empty() ||
        std::count(problem.is_integer.begin(), problem.is_integer.end(), 1) == 0)
      continue;
    const AllSolutions unfiltered = enumerate(problem);
    if (unfiltered.unbounded || unfiltered.best_of.empty()) continue;
    draw_parameters(random.random());
    const std::vector<Filter> filters = draw_filters(random.random(), problem);
    const AllSolutions truth = enumerate(problem, filters);
    ProbHandle lp = support::load_mip(env_, problem);
    const bool late = random.random().chance(0.5);
    if (late) {
      ASSERT_EQ(TVKpopulate(env_, lp), 0) << errors();
    }
    for (const Filter& filter : filters) add(lp, filter);
    passed += compare(lp, problem, truth, populate(lp));
    ASSERT_EQ(TVKdelsolnpoolfilters(env_, lp, 0, TVKgetsolnpoolnumfilters(env_, lp) - 1), 0);
    all += compare(lp, problem, unfiltered, populate(lp));
    ++compared;
    TVKfreeprob(env_, &lp);
    if (HasFailure()) break;
  }
  EXPECT_GT(compared, 400);
  EXPECT_GT(passed, 800u);
  EXPECT_LT(passed, all * 3 / 4);
  printf("compared %d problems, %zu solutions of %zu pass\n", compared, passed, all);
}

/* With room for a few only the pool holds the best of all; with less intensity, solutions, though not all of them. */
TEST_F(Populate, KeepsTheBestAndNothingThatIsNoSolution) {
  const unsigned seed = support::fresh_seed();
  int full = 0, few = 0;
  for (unsigned k = 0; k < 1500; ++k) {
    SCOPED_TRACE(testing::Message() << "TOVIK_TEST_SEED=" << seed << " model " << k);
    support::RandomMip random(seed + 104729 * k);
    const Problem problem = random.draw();
    if (!problem.indicators.empty() ||
        std::count(problem.is_integer.begin(), problem.is_integer.end(), 1) == 0)
      continue;
    const AllSolutions truth = enumerate(problem);
    if (truth.unbounded || truth.best_of.empty()) continue;
    const bool has_capacity = random.random().chance(0.5);
    const int capacity = random.random().pick(1, 4);
    set(TVK_PARAM_POPULATELIM, 2100000000);
    set(TVK_PARAM_SOLNPOOLINTENSITY, has_capacity ? 4 : random.random().pick(0, 2));
    set(TVK_PARAM_SOLNPOOLCAPACITY, has_capacity ? capacity : 2100000000);
    set(TVK_PARAM_SOLNPOOLREPLACE, 1);
    ProbHandle lp = support::load_mip(env_, problem);
    ASSERT_EQ(TVKpopulate(env_, lp), 0) << errors();
    EXPECT_EQ(TVKgetstat(env_, lp), TVK_STATUS_ALL_SOLUTIONS_FOUND);
    std::vector<double> expected, got;
    for (const auto& [decision, objective] : truth.best_of) expected.push_back(objective);
    for (const auto& [decision, objective] : pool(lp, problem)) {
      got.push_back(objective);
      const auto known = truth.best_of.find(decision);
      ASSERT_NE(known, truth.best_of.end());
      EXPECT_GE(objective, known->second - kTolerance);
    }
    std::sort(expected.begin(), expected.end());
    std::sort(got.begin(), got.end());
    ASSERT_FALSE(got.empty());
    EXPECT_NEAR(got.front(), truth.best, kTolerance);
    if (has_capacity) {
      expected.resize(std::min(expected.size(), static_cast<std::size_t>(capacity)));
      ASSERT_EQ(got.size(), expected.size());
      for (std::size_t i = 0; i < got.size(); ++i) EXPECT_NEAR(got[i], expected[i], kTolerance);
      ++full;
    } else {
      ++few;
    }
    TVKfreeprob(env_, &lp);
  }
  EXPECT_GT(full, 100);
  EXPECT_GT(few, 100);
}
