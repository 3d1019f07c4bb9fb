/* The pool of solutions: decisions, gaps, capacity and the three rules of replacement. */
#include <algorithm>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "env/solution_pool.h"
#include "support/random.h"

using namespace tovik;
using Result = SolutionPool::Result;
using Point = std::vector<double>;

namespace {

std::vector<double> objectives(const SolutionPool& pool) {
  std::vector<double> all;
  for (int k = 0; k < pool.size(); ++k) all.push_back(pool[k].objective);
  return all;
}

}  // namespace

TEST(SolutionPool, KeepsTheBestOfEachDecision) {
  SolutionPool pool({1, 0}, 1);
  EXPECT_EQ(pool.add(Point{1, 0.5}, 5, {}), Result::added);
  EXPECT_EQ(pool.add(Point{1, 0.7}, 6, {}), Result::known);
  EXPECT_EQ(pool.add(Point{1, 0}, 4, {}), Result::improved);
  EXPECT_EQ(pool.add(Point{2, 0}, 4, {}), Result::added);
  EXPECT_EQ(pool[0].name(), "p1");
  EXPECT_EQ(pool.point(0), (Point{1, 0}));
  EXPECT_EQ(pool.find("p2"), 1);
  for (const char* none : {"p3", "p", "", "p02", "p2x", "q2"}) EXPECT_EQ(pool.find(none), -1) << none;
  pool.remove(0, 0);
  EXPECT_EQ(pool.find("p2"), 0);
  EXPECT_EQ(pool.add(Point{1, 0}, 4, {}), Result::added);
  EXPECT_EQ(pool[1].name(), "p3");  // names are given once
}

TEST(SolutionPool, WithoutIntegersDecisionsAreColumnsThatAreZero) {
  SolutionPool pool({0, 0}, -1);
  EXPECT_EQ(pool.add(Point{1, 0}, 1, {}), Result::added);
  EXPECT_EQ(pool.add(Point{2, 0}, 2, {}), Result::improved);
  EXPECT_EQ(pool.add(Point{0, 1}, 1, {}), Result::added);
  EXPECT_EQ(pool.size(), 2);
}

TEST(SolutionPool, GapsHoldForWhatIsThereAndWhatComes) {
  PoolRules rules;
  rules.relative_gap = 0.5;
  rules.absolute_gap = 3;
  SolutionPool pool({1}, -1);  // maximized
  EXPECT_EQ(pool.add(Point{1}, 4, rules), Result::added);
  EXPECT_EQ(pool.add(Point{2}, 2, rules), Result::added);  // half as good
  EXPECT_EQ(pool.add(Point{3}, 1.9, rules), Result::too_bad);
  EXPECT_EQ(pool.add(Point{4}, 7, rules), Result::added);  // the absolute gap counts now
  EXPECT_EQ(objectives(pool), (std::vector<double>{4, 7}));
  rules.absolute_gap = 1;
  EXPECT_EQ(pool.add(Point{5}, 6, rules), Result::added);
  EXPECT_EQ(objectives(pool), (std::vector<double>{7, 6}));
  EXPECT_EQ(pool.replaced(), 0);
}

TEST(SolutionPool, FullPoolsReplaceByTheirRule) {
  PoolRules rules;
  rules.capacity = 0;
  SolutionPool none({1}, 1);
  EXPECT_EQ(none.add(Point{1}, 1, rules), Result::no_place);
  rules.capacity = 2;

  SolutionPool oldest({1}, 1);
  for (const double v : {1, 2, 3}) oldest.add(Point{v}, v, rules);
  EXPECT_EQ(objectives(oldest), (std::vector<double>{2, 3}));
  EXPECT_EQ(oldest.replaced(), 1);

  rules.replacement = PoolReplacement::worst;
  SolutionPool best({1}, 1);
  for (const double v : {5, 3, 4, 7, 3}) best.add(Point{v}, v, rules);
  EXPECT_EQ(objectives(best), (std::vector<double>{3, 4}));
  EXPECT_EQ(best.replaced(), 1);

  rules.replacement = PoolReplacement::least_diverse;
  rules.capacity = 3;
  SolutionPool diverse({1}, 1);
  for (const double v : {0, 10, 11, 20}) diverse.add(Point{v}, v, rules);
  EXPECT_EQ(objectives(diverse), (std::vector<double>{0, 10, 20}));  // 11 was worse than 10
  EXPECT_EQ(diverse.add(Point{21}, 21, rules), Result::too_bad);
  EXPECT_EQ(diverse.replaced(), 1);
}

/* The distances that are kept up to date against those that are computed anew, with members that are deleted in between. */
TEST(SolutionPool, LeastDiverseLeaves) {
  support::Random random(7);
  PoolRules rules;
  rules.replacement = PoolReplacement::least_diverse;
  SolutionPool pool(std::vector<char>(6, 1), 1);
  for (int step = 0; step < 600; ++step) {
    rules.capacity = random.pick(3, 8);
    if (pool.size() > 0 && random.chance(0.2)) {
      const int k = random.below(pool.size());
      pool.remove(k, k);
    }
    if (pool.size() > rules.capacity) rules.capacity = pool.size();
    Point x(6);
    for (double& v : x) v = random.pick(0, 3);
    std::vector<SolutionPool::Member> before;
    for (int k = 0; k < pool.size(); ++k) before.push_back(pool[k]);
    const Result result = pool.add(x, random.pick(0, 9), rules);
    if (result != Result::added || static_cast<int>(before.size()) < rules.capacity) continue;
    before.push_back(pool[pool.size() - 1]);
    double least = INFINITY, gone = INFINITY;
    for (std::size_t a = 0; a < before.size(); ++a) {
      double nearest = INFINITY;
      for (std::size_t b = 0; b < before.size(); ++b) {
        if (a != b) nearest = std::min(nearest, pool.distance(before[a], before[b]));
      }
      least = std::min(least, nearest);
      if (pool.find(before[a].name()) < 0) gone = nearest;
    }
    EXPECT_EQ(gone, least) << "step " << step;
  }
  EXPECT_GT(pool.replaced(), 50);
}
