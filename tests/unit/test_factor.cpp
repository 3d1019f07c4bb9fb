/* The LU factor: solves against the true basis after builds and long sequences of replacements, agreement of
 * the solve modes, repair of singular bases. */
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <set>

#include "lp/factor/factor.h"
#include "support/random.h"

namespace tovik::lp::factor {
namespace {

using support::Random;

Matrix from_columns(int rows, const std::vector<std::vector<std::pair<int, double>>>& columns) {
  Matrix a;
  a.rows = rows;
  a.columns = static_cast<int>(columns.size());
  for (const auto& column : columns) {
    for (const auto& [i, v] : column) {
      a.index.push_back(i);
      a.value.push_back(v);
    }
    a.start.push_back(static_cast<int>(a.index.size()));
  }
  return a;
}

enum class Kind { network, staircase, scattered, dense, badly_scaled, near_singular, fresh_mix };

/* A matrix of m rows and 3 m columns of the given flavour; distinct rows within each column. */
Matrix generate(Kind kind, int m, Random& random) {
  std::vector<std::vector<std::pair<int, double>>> columns(3 * m);
  for (int j = 0; j < 3 * m; ++j) {
    std::set<int> rows;
    const int home = random.below(m);
    rows.insert(home);
    int extra = 0, reach = m;
    switch (kind) {
      case Kind::network:
        extra = 1;
        break;
      case Kind::staircase:
        extra = 3 + random.below(3), reach = std::min(m, 12);
        break;
      case Kind::dense:
        extra = m / 2;
        break;
      case Kind::fresh_mix:
        extra = j % 7 == 0 ? m / 4 : random.below(3);
        break;
      default:
        extra = 2 + random.below(4);
        break;
    }
    for (int k = 0; k < extra; ++k) rows.insert((home + random.below(reach)) % m);
    for (const int i : rows) {
      double value = random.uniform(-1, 1) * 4;
      if (kind == Kind::network) value = i == home ? 1.0 : -1.0;
      if (kind == Kind::badly_scaled) value *= std::pow(10.0, random.below(9) - 4);
      if (std::fabs(value) < 1e-6) value = 1.0;
      columns[j].emplace_back(i, value);
    }
    if (kind == Kind::near_singular && j % 5 == 4) {  // almost the neighbour
      columns[j] = columns[j - 1];
      columns[j].front().second *= 1.0 + 1e-7;
    }
  }
  return from_columns(m, columns);
}

struct Column {
  std::vector<std::pair<int, double>> entries;
};

Column column_of(const Matrix& a, int variable) {
  if (variable >= a.columns) return {{{variable - a.columns, 1.0}}};
  Column column;
  for (int k = a.start[variable]; k < a.start[variable + 1]; ++k)
    column.entries.emplace_back(a.index[k], a.value[k]);
  return column;
}

void load(SparseVector& v, const Column& column) {
  v.clear();
  for (const auto& [i, value] : column.entries) {
    v.array[i] = value;
    v.index[v.count++] = i;
  }
}

/* Every nonzero is listed exactly once. */
void expect_listed(const SparseVector& v) {
  if (v.count < 0) return;
  std::vector<int> seen(v.array.size(), 0);
  for (int k = 0; k < v.count; ++k) ++seen[v.index[k]];
  for (int i = 0; i < v.dimension(); ++i) {
    ASSERT_LE(seen[i], 1) << "position listed twice";
    ASSERT_TRUE(v.array[i] == 0.0 || seen[i] == 1) << "nonzero not listed";
  }
}

/* max |B x - b| relative to the largest terms that were summed in any row. */
double ftran_error(const Matrix& a, const std::vector<int>& head, const std::vector<double>& x,
                   const std::vector<double>& b) {
  std::vector<double> sum(b), size(b.size(), 1.0);
  for (std::size_t r = 0; r < head.size(); ++r) {
    for (const auto& [i, value] : column_of(a, head[r]).entries) {
      sum[i] -= value * x[r];
      size[i] += std::fabs(value * x[r]);
    }
  }
  double worst = 0.0;
  for (const double residual : sum) worst = std::max(worst, std::fabs(residual));
  return worst / *std::max_element(size.begin(), size.end());
}

double btran_error(const Matrix& a, const std::vector<int>& head, const std::vector<double>& y,
                   const std::vector<double>& c) {
  double worst = 0.0, largest = 1.0;
  for (std::size_t r = 0; r < head.size(); ++r) {
    double sum = c[r], size = 1.0;
    for (const auto& [i, value] : column_of(a, head[r]).entries) {
      sum -= value * y[i];
      size += std::fabs(value * y[i]);
    }
    worst = std::max(worst, std::fabs(sum));
    largest = std::max(largest, size);
  }
  return worst / largest;
}

/* Solves with random sparse and dense right-hand sides in every mode. */
void check_solves(Factor& factor, const Matrix& a, const std::vector<int>& head, Random& random,
                  double tolerance) {
  const int m = a.rows;
  for (const int nonzeros : {1, 3, m}) {
    std::vector<double> b(m, 0.0);
    for (int k = 0; k < nonzeros; ++k) b[random.below(m)] = random.uniform(-2, 2);
    for (const bool forward : {true, false}) {
      std::vector<double> first;
      for (const SolveMode mode : {SolveMode::automatic, SolveMode::sparse, SolveMode::plain}) {
        SparseVector v;
        v.resize(m);
        v.array = b;
        v.count = -1;
        if (nonzeros < m) v.reindex();
        factor.force_mode(mode);
        forward ? factor.ftran(v, 0.01) : factor.btran(v, 0.01);
        factor.force_mode(SolveMode::automatic);
        expect_listed(v);
        const double error = forward ? ftran_error(a, head, v.array, b) : btran_error(a, head, v.array, b);
        ASSERT_LE(error, tolerance) << (forward ? "ftran" : "btran");
        if (first.empty()) first = v.array;
        ASSERT_EQ(first, v.array) << "modes differ";
      }
    }
  }
}

/* Several right-hand sides at once must solve what single solves do, and leave the same spike for an
 * update. */
void check_joint_solves(Factor& factor, const Matrix& a, const std::vector<int>& head, double tolerance,
                        Random& random) {
  const int m = a.rows;
  for (const int lanes : {2, 3, 4}) {
    std::vector<SparseVector> vectors(lanes);
    std::vector<std::vector<double>> rights(lanes);
    std::vector<SparseVector*> together;
    for (int k = 0; k < lanes; ++k) {
      rights[k].assign(m, 0.0);
      for (int e = 0; e < 1 + k * m; ++e) rights[k][random.below(m)] = random.uniform(-2, 2);
      vectors[k].resize(m);
      vectors[k].array = rights[k];
      vectors[k].count = -1;
      if (k % 2 == 0) vectors[k].reindex();
      together.push_back(&vectors[k]);
    }
    SparseVector single = vectors[0];
    vectors[0].want_pack = single.want_pack = true;
    factor.ftran(together);
    for (int k = 0; k < lanes; ++k) {
      expect_listed(vectors[k]);
      ASSERT_LE(ftran_error(a, head, vectors[k].array, rights[k]), tolerance) << k << " of " << lanes;
    }
    factor.ftran(single, 1.0);
    const auto spike = [](const SparseVector& v) {
      std::map<int, double> entries;
      for (size_t k = 0; k < v.packed_index.size(); ++k) entries[v.packed_index[k]] = v.packed_value[k];
      return entries;
    };
    ASSERT_FALSE(vectors[0].want_pack);
    const std::map<int, double> expected = spike(single);
    const std::map<int, double> found = spike(vectors[0]);
    double largest = 1.0;
    for (const auto& [slot, value] : expected) largest = std::max(largest, std::fabs(value));
    for (const auto& [slot, value] : expected)
      ASSERT_NEAR(found.count(slot) > 0 ? found.at(slot) : 0.0, value, 1e-9 * largest);
    for (const auto& [slot, value] : found)
      ASSERT_NEAR(expected.count(slot) > 0 ? expected.at(slot) : 0.0, value, 1e-9 * largest);
  }
}

std::vector<int> logical_basis(const Matrix& a) {
  std::vector<int> head(a.rows);
  std::iota(head.begin(), head.end(), a.columns);
  return head;
}

/* A basis of random structural columns and logicals; may be singular. */
std::vector<int> random_basis(const Matrix& a, double structural_share, Random& random) {
  std::vector<int> head = logical_basis(a), columns(a.columns);
  std::iota(columns.begin(), columns.end(), 0);
  std::shuffle(columns.begin(), columns.end(), random.engine());
  for (int i = 0; i < a.rows; ++i) {
    if (random.uniform(0, 1) < structural_share) head[i] = columns[i];
  }
  std::shuffle(head.begin(), head.end(), random.engine());
  return head;
}

struct Family {
  const char* name;
  Kind kind;
  int m;
  double tolerance;         // of solves after a build
  double update_tolerance;  // and after updates with pivots as small as 1 % of their column
};

class FactorFamilies : public ::testing::TestWithParam<Family> {};

INSTANTIATE_TEST_SUITE_P(All, FactorFamilies,
                         ::testing::Values(Family{"network", Kind::network, 300, 1e-12, 1e-10},
                                           Family{"staircase", Kind::staircase, 240, 1e-12, 1e-10},
                                           Family{"scattered", Kind::scattered, 150, 1e-12, 1e-10},
                                           Family{"dense", Kind::dense, 60, 1e-12, 1e-10},
                                           Family{"badly_scaled", Kind::badly_scaled, 120, 1e-9, 1e-5},
                                           Family{"near_singular", Kind::near_singular, 100, 1e-12, 1e-10},
                                           Family{"mix", Kind::fresh_mix, 200, 1e-12, 1e-10}),
                         [](const auto& family) { return family.param.name; });

TEST_P(FactorFamilies, BuildSolvesAndRepairs) {
  const Family& family = GetParam();
  Random random(17);
  for (int round = 0; round < 12; ++round) {
    const Matrix a = generate(family.kind, family.m, random);
    Factor factor(a);
    std::vector<int> head = random_basis(a, round * 0.09, random);
    const std::multiset<int> given(head.begin(), head.end());
    const int deficiency = factor.build(head);
    ASSERT_EQ(deficiency, static_cast<int>(factor.exchanges().size()));
    std::multiset<int> expected = given;
    for (const Exchange& exchange : factor.exchanges()) {
      ASSERT_EQ(head[exchange.row], a.columns + exchange.row);
      const auto removed = expected.find(exchange.removed);
      ASSERT_NE(removed, expected.end());
      expected.erase(removed);
      expected.insert(a.columns + exchange.row);
    }
    ASSERT_EQ(expected, std::multiset<int>(head.begin(), head.end())) << "head is not the repaired basis";
    EXPECT_LE(factor.residual_check(), 1e-12);
    check_solves(factor, a, head, random, family.tolerance);
    check_joint_solves(factor, a, head, family.tolerance, random);
  }
}

/* Thousands of replacements as a simplex would make them, checked all along; factors are rebuilt when they
 * ask for it. */
TEST_P(FactorFamilies, ReplacementsKeepTheFactorRight) {
  const Family& family = GetParam();
  Random random(5);
  const Matrix a = generate(family.kind, family.m, random);
  const int m = a.rows;
  Factor factor(a);
  std::vector<int> head = logical_basis(a);
  ASSERT_EQ(factor.build(head), 0);
  std::vector<char> basic(a.columns + m, 0);
  for (const int j : head) basic[j] = 1;
  SparseVector column, row;
  column.resize(m);
  row.resize(m);
  int replaced = 0, refused = 0;
  for (int trial = 0; trial < 3000; ++trial) {
    const int q = random.below(a.columns + m);
    if (basic[q]) continue;
    load(column, column_of(a, q));
    column.want_pack = true;
    factor.ftran(column, 0.05);
    int r = -1;  // a large pivot among a few random positions, now and then a middling one
    double best = 1e-3;
    for (int k = 0; k < column.count; ++k) {
      const double size = std::fabs(column.array[column.index[k]]) * random.uniform(0.01, 1);
      if (size > best) best = size, r = column.index[k];
    }
    if (r < 0) continue;
    row.clear();
    row.set_unit(r);
    row.want_pack = true;
    factor.btran(row, 0.05);
    if (!factor.update(column, row, r)) {
      ++refused;
      factor.build(head);
      continue;
    }
    basic[head[r]] = 0;
    head[r] = q;
    basic[q] = 1;
    ++replaced;
    if (factor.wants_rebuild()) {
      const std::vector<int> before = head;
      factor.build(head);
      for (const Exchange& exchange : factor.exchanges()) {
        basic[exchange.removed] = 0;
        basic[a.columns + exchange.row] = 1;
      }
    }
    if (replaced % 37 == 0) {
      check_solves(factor, a, head, random, family.update_tolerance);
      check_joint_solves(factor, a, head, family.update_tolerance, random);
    }
    if (HasFatalFailure()) return;
  }
  EXPECT_GT(replaced, 800);
  EXPECT_LT(refused, replaced / 20);
}

TEST(Factor, RepairsKnownDeficiencies) {
  // Column 1 repeats column 0, column 2 is empty, column 3 a stored zero; row 3 is met by no column.
  const Matrix a =
      from_columns(4, {{{0, 1.0}, {1, 2.0}}, {{0, 1.0}, {1, 2.0}}, {}, {{2, 0.0}}, {{1, 1.0}, {2, 3.0}}});
  Factor factor(a);
  Random random(3);
  const std::vector<std::pair<std::vector<int>, int>> cases{{{0, 1, 4, 8}, 1}, {{0, 2, 4, 8}, 1},
                                                            {{0, 2, 3, 1}, 3}, {{5, 5, 6, 8}, 1},
                                                            {{0, 4, 3, 8}, 1}, {{0, 4, 5, 8}, 0}};
  for (const auto& [basis, deficiency] : cases) {
    std::vector<int> head = basis;
    EXPECT_EQ(factor.build(head), deficiency);
    check_solves(factor, a, head, random, 1e-12);
    EXPECT_EQ(factor.build(head), 0) << "the repaired basis is regular";
  }
}

TEST(Factor, EmptyBasis) {
  Matrix a;
  Factor factor(a);
  std::vector<int> head;
  EXPECT_EQ(factor.build(head), 0);
}

/* A long chain of singletons must not be swept again and again: work grows in proportion to the length. */
TEST(Factor, ChainsOfSingletonsAreLinear) {
  const auto work_for = [](int m) {
    std::vector<std::vector<std::pair<int, double>>> columns(m);
    for (int j = 0; j < m; ++j) {
      columns[j].emplace_back(m - 1 - j, 1.0);
      if (j > 0) columns[j].emplace_back(m - j, -1.0);
    }
    const Matrix a = from_columns(m, columns);
    Factor factor(a);
    std::vector<int> head(m);
    std::iota(head.begin(), head.end(), 0);
    EXPECT_EQ(factor.build(head), 0);
    EXPECT_EQ(factor.stats().bump, 0);
    return static_cast<double>(factor.counts().build_ticks);
  };
  EXPECT_LT(work_for(40000), 2.1 * work_for(20000));
}

TEST(Factor, HyperSparseSolvesTouchLittle) {
  Random random(9);
  const int m = 50000;
  const Matrix a = generate(Kind::network, m, random);
  Factor factor(a);
  std::vector<int> head = logical_basis(a);
  for (int i = 0; i < m; i += 5) head[i] = i / 5;
  factor.build(head);
  SparseVector v;
  v.resize(m);
  const std::int64_t before = factor.work();
  for (int k = 0; k < 100; ++k) {
    v.clear();
    v.set_unit(random.below(m));
    factor.btran(v, 0.0);
  }
  EXPECT_LT(factor.work() - before, 100 * 200);
}

TEST(SparseVectorTest, ListAndArrayStayInStep) {
  SparseVector v;
  v.resize(10);
  v.set_unit(3, 2.0);
  v.array[7] = 1e-16;
  v.index[v.count++] = 7;
  v.tight();
  EXPECT_EQ(v.count, 1);
  EXPECT_EQ(v.array[7], 0.0);
  v.count = -1;
  v.array[1] = -1.0;
  v.reindex();
  EXPECT_EQ(v.count, 2);
  EXPECT_EQ(v.index[0], 1);
  v.pack();
  EXPECT_EQ(v.packed_value, (std::vector<double>{-1.0, 2.0}));
  SparseVector w;
  w.resize(10);
  w.set_unit(9);
  w.copy(v);
  EXPECT_EQ(w.array, v.array);
  EXPECT_EQ(w.norm2(), 5.0);
  w.clear();
  EXPECT_EQ(w.array, std::vector<double>(10, 0.0));
}

TEST(MatrixTest, TransposeTwiceIsSortedOriginal) {
  Random random(1);
  const Matrix a = generate(Kind::scattered, 40, random);
  const Matrix rows = transpose(a);
  EXPECT_EQ(rows.rows, a.columns);
  EXPECT_EQ(rows.columns, a.rows);
  const Matrix back = transpose(rows);
  EXPECT_EQ(back.start, a.start);
  EXPECT_EQ(back.index, a.index);
  EXPECT_EQ(back.value, a.value);
}

}  // namespace
}  // namespace tovik::lp::factor
