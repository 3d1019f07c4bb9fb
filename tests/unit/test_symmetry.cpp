// Symmetries of problems whose groups are known, and the orbits that are left at a node.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <set>
#include <vector>

#include "mip/symmetry/detector.h"
#include "mip/symmetry/orbital_fixing.h"
#include "mip/symmetry/orbitope.h"
#include "tests/support/models.h"
#include "tests/support/symmetric_mip.h"

namespace {

using namespace tovik::mip;

constexpr std::int64_t kNoTickLimit = INT64_MAX;

std::vector<int> image_of(const Generator& generator, int columns) {
  std::vector<int> image(columns);
  std::iota(image.begin(), image.end(), 0);
  for (std::size_t k = 0; k < generator.columns.size(); ++k)
    image[generator.columns[k]] = generator.images[k];
  return image;
}

/* The same problem but for the order of its rows. */
bool is_symmetry(const Problem& problem, const std::vector<int>& image) {
  const tovik::lp::LpData& lp = problem.lp;
  std::set<int> images(image.begin(), image.end());
  if (static_cast<int>(images.size()) != problem.num_columns()) return false;
  using Row = std::pair<std::pair<double, double>, std::map<int, double>>;
  std::vector<Row> before(problem.num_rows()), after;
  for (int i = 0; i < problem.num_rows(); ++i) before[i].first = {lp.row_lower[i], lp.row_upper[i]};
  after = before;
  for (int j = 0; j < problem.num_columns(); ++j) {
    const int to = image[j];
    if (problem.is_integer[j] != problem.is_integer[to] || lp.lower[j] != lp.lower[to] ||
        lp.upper[j] != lp.upper[to] || lp.cost[j] != lp.cost[to])
      return false;
    for (int k = lp.matrix.start[j]; k < lp.matrix.start[j + 1]; ++k) {
      before[lp.matrix.index[k]].second[j] = lp.matrix.value[k];
      after[lp.matrix.index[k]].second[to] = lp.matrix.value[k];
    }
  }
  std::sort(before.begin(), before.end());
  std::sort(after.begin(), after.end());
  return before == after;
}

/* All products of generators; 0 beyond `most`. */
std::size_t order_of_group(const std::vector<Generator>& generators, int columns, std::size_t most) {
  std::vector<int> identity(columns);
  std::iota(identity.begin(), identity.end(), 0);
  std::set<std::vector<int>> group{identity};
  std::vector<std::vector<int>> open{identity};
  while (!open.empty()) {
    const std::vector<int> element = open.back();
    open.pop_back();
    for (const Generator& generator : generators) {
      const std::vector<int> image = image_of(generator, columns);
      std::vector<int> product(columns);
      for (int j = 0; j < columns; ++j) product[j] = image[element[j]];
      if (group.insert(product).second) open.push_back(product);
      if (group.size() > most) return 0;
    }
  }
  return group.size();
}

/* Rows of ones over the given columns, at least one of each. */
Problem covering(int columns, const std::vector<std::vector<int>>& rows) {
  Problem p;
  tovik::lp::Matrix& m = p.lp.matrix;
  m.rows = static_cast<int>(rows.size());
  m.columns = columns;
  for (int j = 0; j < columns; ++j) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (std::count(rows[i].begin(), rows[i].end(), j) == 0) continue;
      m.index.push_back(static_cast<int>(i));
      m.value.push_back(1);
    }
    m.start.push_back(static_cast<int>(m.index.size()));
  }
  p.lp.cost.assign(columns, 1);
  p.lp.lower.assign(columns, 0);
  p.lp.upper.assign(columns, 1);
  p.is_integer.assign(columns, 1);
  p.lp.row_lower.assign(rows.size(), 1);
  p.lp.row_upper.assign(rows.size(), kInf);
  return p;
}

std::vector<std::vector<int>> edges_of_petersen() {
  std::vector<std::vector<int>> edges;
  for (int k = 0; k < 5; ++k) {
    edges.push_back({k, (k + 1) % 5});
    edges.push_back({k, 5 + k});
    edges.push_back({5 + k, 5 + (k + 2) % 5});
  }
  return edges;
}

std::vector<std::vector<int>> edges_of_cube() {
  std::vector<std::vector<int>> edges;
  for (int v = 0; v < 8; ++v) {
    for (const int bit : {1, 2, 4}) {
      if ((v & bit) == 0) edges.push_back({v, v | bit});
    }
  }
  return edges;
}

std::vector<std::vector<int>> ring(int size) {
  std::vector<std::vector<int>> edges;
  for (int k = 0; k < size; ++k) edges.push_back({k, (k + 1) % size});
  return edges;
}

std::vector<std::vector<int>> plane_of_seven() {
  std::vector<std::vector<int>> lines;
  for (int k = 0; k < 7; ++k) lines.push_back({k, (k + 1) % 7, (k + 3) % 7});
  return lines;
}

TEST(SymmetryDetector, FindsTheWholeGroupWhereItIsKnown) {
  struct Case {
    const char* name;
    int columns;
    std::vector<std::vector<int>> rows;
    std::size_t order;
  };
  const Case cases[] = {
      {"ring", 9, ring(9), 18},
      {"Petersen", 10, edges_of_petersen(), 120},
      {"cube", 8, edges_of_cube(), 48},
      {"plane", 7, plane_of_seven(), 168},
      {"six alike", 6, {{0, 1, 2, 3, 4, 5}}, 720},
      {"two triples", 6, {{0, 1, 2}, {3, 4, 5}}, 72},
      {"path", 4, {{0, 1}, {1, 2}, {2, 3}}, 2},
      {"arms of three lengths", 7, {{0, 1}, {0, 2}, {2, 3}, {0, 4}, {4, 5}, {5, 6}}, 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const Problem problem = covering(c.columns, c.rows);
    const Symmetries found = find_symmetries(problem, kNoTickLimit);
    EXPECT_TRUE(found.is_complete);
    for (const Generator& g : found.generators) EXPECT_TRUE(is_symmetry(problem, image_of(g, c.columns)));
    EXPECT_EQ(order_of_group(found.generators, c.columns, 5000), c.order);
  }
}

TEST(SymmetryDetector, TellsApartWhatTheDataTellsApart) {
  const Problem alike = covering(4, {{0, 1, 2, 3}});
  const auto order = [](const Problem& p) {
    return order_of_group(find_symmetries(p, kNoTickLimit).generators, p.num_columns(), 1000);
  };
  EXPECT_EQ(order(alike), 24u);
  Problem other = alike;
  other.lp.cost[1] = std::nextafter(1.0, 2.0);
  EXPECT_EQ(order(other), 6u);
  other = alike;
  other.lp.upper[2] = 2;
  EXPECT_EQ(order(other), 6u);
  other = alike;
  other.lp.matrix.value[0] = 2;
  EXPECT_EQ(order(other), 6u);
  other = alike;
  other.is_integer[3] = 0;
  EXPECT_EQ(order(other), 6u);
  other = alike;
  other.is_integer.assign(4, 0);
  EXPECT_EQ(order(other), 1u) << "nothing moves an integer column";
  other = alike;
  other.sets.push_back({1, {0, 1}, -1});
  EXPECT_EQ(order(other), 2u);
  other = alike;
  other.semi_columns.push_back({2, 1, 1});
  EXPECT_EQ(order(other), 6u);
  other = alike;
  other.indicators.push_back({0, 1, 1});
  EXPECT_EQ(order(other), 2u);
  other = covering(4, {{0, 1}, {2, 3}});
  other.lp.row_upper[0] = 2;
  EXPECT_EQ(order(other), 4u);
}

TEST(SymmetryDetector, FindsNothingButSymmetriesAndTheSameAgain) {
  const int count = support::models(500);
  int with = 0;
  for (int k = 0; k < count && !HasFailure(); ++k) {
    support::SymmetricMip maker(support::fresh_seed() + static_cast<unsigned>(k));
    TRACE_RANDOM(maker.random(), k);
    const Problem problem = maker.draw();
    const std::int64_t limit = k % 4 == 0 ? maker.random().pick(0, 3000) : kNoTickLimit;
    const Symmetries found = find_symmetries(problem, limit);
    with += found.generators.empty() ? 0 : 1;
    for (const Generator& g : found.generators)
      EXPECT_TRUE(is_symmetry(problem, image_of(g, problem.num_columns())));
    const Symmetries again = find_symmetries(problem, limit);
    ASSERT_EQ(again.generators.size(), found.generators.size());
    for (std::size_t g = 0; g < found.generators.size(); ++g) {
      EXPECT_EQ(again.generators[g].columns, found.generators[g].columns);
      EXPECT_EQ(again.generators[g].images, found.generators[g].images);
    }
  }
  EXPECT_GT(with, count / 2);
}

TEST(OrbitalFixing, KeepsToTheStabiliserOfWhatWasFixedToOne) {
  const Problem problem = covering(6, {{0, 1, 2}, {3, 4, 5}});
  const Symmetries found = find_symmetries(problem, kNoTickLimit);
  OrbitalFixing fixing(problem, found.generators);
  EXPECT_EQ(fixing.num_columns(), 6);
  const auto zeros = [&](const std::vector<BranchedBound>& path, int zero) {
    Domain domain(problem, {});
    for (const BranchedBound& b : path) domain.tighten(b.column, b.side, b.value, {});
    domain.tighten_upper(zero, 0, {});
    fixing.set_path(path);
    fixing.fix(domain);
    EXPECT_FALSE(domain.is_infeasible());
    int count = 0;
    for (int j = 0; j < 6; ++j) count += domain.upper(j) == 0 ? 1 : 0;
    return count;
  };
  EXPECT_EQ(zeros({}, 0), 6);
  EXPECT_EQ(zeros({{0, Side::upper, 0}}, 0), 6) << "zeros need not be kept";
  // Only what keeps column 0 counts: its own block may exchange the two others, the other block is alone.
  EXPECT_LE(zeros({{0, Side::lower, 1}}, 1), 2);
  EXPECT_LE(zeros({{0, Side::lower, 1}}, 3), 3);
  EXPECT_EQ(zeros({{0, Side::lower, 1}, {1, Side::lower, 1}, {4, Side::lower, 1}}, 2), 1);
  EXPECT_EQ(zeros({}, 5), 6) << "orbits come back";
}

/* Items that every one of several alike bins may hold, at most one bin an item; a flag a bin. */
Problem assignments(int items, int bins) {
  std::vector<std::vector<int>> rows;
  for (int i = 0; i < items; ++i) {
    rows.emplace_back();
    for (int b = 0; b < bins; ++b) rows.back().push_back(i * bins + b);
  }
  for (int b = 0; b < bins; ++b) {
    rows.push_back({items * bins + b});
    for (int i = 0; i < items; ++i) rows.back().push_back(i * bins + b);
  }
  Problem p = covering((items + 1) * bins, rows);
  for (int i = 0; i < items; ++i) {
    p.lp.row_upper[i] = 1;
    for (int b = 0; b < bins; ++b) p.lp.cost[i * bins + b] = 2 + i;  // items differ
  }
  return p;
}

TEST(Orbitope, IsFoundWhereColumnsMayBePermutedInEveryWay) {
  for (const auto& [items, bins] : {std::pair(1, 3), std::pair(3, 4), std::pair(5, 8)}) {
    const Problem problem = assignments(items, bins);
    std::vector<Generator> generators = find_symmetries(problem, kNoTickLimit).generators;
    const std::vector<Orbitope> found = take_orbitopes(problem, generators);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_TRUE(generators.empty());
    EXPECT_EQ(found[0].columns, bins);
    EXPECT_EQ(found[0].rows, items + 1);
    EXPECT_EQ(found[0].packing_rows, items);
    // Every two columns may be exchanged.
    for (int a = 0; a + 1 < bins; ++a) {
      std::vector<int> image(problem.num_columns());
      std::iota(image.begin(), image.end(), 0);
      for (int i = 0; i < found[0].rows; ++i)
        std::swap(image[found[0].at(i, a)], image[found[0].at(i, a + 1)]);
      EXPECT_TRUE(is_symmetry(problem, image));
    }
  }
  Problem few = assignments(3, 2);
  std::vector<Generator> generators = find_symmetries(few, kNoTickLimit).generators;
  EXPECT_TRUE(take_orbitopes(few, generators).empty());
  EXPECT_EQ(generators.size(), 1u);
}

TEST(Orbitope, GeneratorsThatAreLeftMoveNoneOfIt) {
  const int count = support::models(500);
  int with = 0;
  for (int k = 0; k < count && !HasFailure(); ++k) {
    support::SymmetricMip maker(support::fresh_seed() + static_cast<unsigned>(k));
    TRACE_RANDOM(maker.random(), k);
    const Problem problem = maker.draw();
    std::vector<Generator> generators = find_symmetries(problem, kNoTickLimit).generators;
    std::set<int> in;
    for (const Orbitope& orbitope : take_orbitopes(problem, generators)) {
      ++with;
      for (const int j : orbitope.entries) EXPECT_TRUE(in.insert(j).second);
      for (int a = 1; a < orbitope.columns; ++a) {
        std::size_t moved = 0;  // with what is not binary there is a symmetry: at least the colours agree
        for (int i = 0; i < orbitope.rows; ++i)
          moved += problem.lp.cost[orbitope.at(i, 0)] == problem.lp.cost[orbitope.at(i, a)] ? 1 : 0;
        EXPECT_EQ(moved, static_cast<std::size_t>(orbitope.rows));
      }
    }
    for (const Generator& g : generators) {
      for (const int j : g.columns) EXPECT_EQ(in.count(j), 0u);
    }
  }
  EXPECT_GT(with, count / 20);
}

/* All matrices of which the columns do not ascend, within the domain; by entry, whether 0 and 1 occur. */
std::vector<int> values_in_order(const Orbitope& orbitope, const Domain& domain) {
  const int rows = orbitope.rows, columns = orbitope.columns, size = rows * columns;
  std::vector<int> seen(size, 0);
  for (int code = 0; code < 1 << size; ++code) {
    const auto value = [&](int i, int j) { return code >> (i * columns + j) & 1; };
    bool fits = true;
    for (int i = 0; i < rows; ++i) {
      int ones = 0;
      for (int j = 0; j < columns; ++j) {
        const int x = orbitope.at(i, j);
        fits = fits && value(i, j) >= domain.lower(x) && value(i, j) <= domain.upper(x);
        ones += value(i, j);
      }
      fits = fits && (i >= orbitope.packing_rows || ones <= 1);
    }
    for (int j = 1; j < columns && fits; ++j) {
      int i = 0;
      while (i < rows && value(i, j - 1) == value(i, j)) ++i;
      fits = i == rows || value(i, j - 1) > value(i, j);
    }
    for (int e = 0; e < size && fits; ++e) seen[e] |= 1 << (code >> e & 1);
  }
  return seen;
}

TEST(OrbitopalFixing, FixesWhatAllMatricesInOrderHaveInCommon) {
  const int count = support::models(1000);
  support::Random random(support::fresh_seed());
  int fixings = 0;
  for (int k = 0; k < count && !HasFailure(); ++k) {
    TRACE_RANDOM(random, k);
    Orbitope orbitope;
    orbitope.rows = random.pick(1, 4);
    orbitope.columns = random.pick(2, 3);
    const int size = orbitope.rows * orbitope.columns;
    for (int e = 0; e < size; ++e) orbitope.entries.push_back(e);
    std::shuffle(orbitope.entries.begin(), orbitope.entries.end(), random.engine());
    orbitope.packing_rows = random.chance(0.5) ? 0 : random.pick(0, orbitope.rows);
    const Problem problem = covering(size, {});
    Domain domain(problem, {});
    for (int j = 0; j < size; ++j) {
      if (random.chance(0.4)) domain.fix(j, random.pick(0, 1), {});
    }
    const std::vector<int> seen = values_in_order(orbitope, domain);
    const bool any = std::count(seen.begin(), seen.end(), 0) == 0;
    OrbitopalFixing fixing({orbitope});
    while (fixing.fix(domain) && !domain.is_infeasible()) continue;
    if (domain.is_infeasible()) {
      EXPECT_FALSE(any);
      continue;
    }
    // With rows that pack it need not find everything: these are for propagation.
    if (orbitope.packing_rows == 0) {
      EXPECT_TRUE(any);
    }
    for (int e = 0; e < size && any; ++e) {
      const int x = orbitope.entries[e];
      if (domain.upper(x) == 0) {
        EXPECT_EQ(seen[e], 1);
      } else if (domain.lower(x) == 1) {
        EXPECT_EQ(seen[e], 2);
      } else if (orbitope.packing_rows == 0) {
        EXPECT_EQ(seen[e], 3);
      }
    }
    fixings += static_cast<int>(fixing.fixings());
  }
  EXPECT_GT(fixings, count / 10);
}

}  // namespace
