/* L D L' of quasi-definite matrices: residuals on patterns of all kinds with every ordering, counts against elimination by
 * hand, replaced pivots, several right-hand sides, stops. */
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <set>
#include <string>

#include "lp/cholesky/cholesky.h"
#include "lp/cholesky/elimination.h"
#include "lp/cholesky/ordering.h"
#include "lp/cholesky/quotient_graph.h"
#include "lp/cholesky/supernodes.h"
#include "lp/cholesky/symbolic.h"
#include "lp/cholesky/trailing_rows.h"
#include "support/quiet_control.h"
#include "support/random.h"

namespace tovik::lp::cholesky {
namespace {

using support::QuietControl;
using support::Random;

constexpr Ordering kOrderings[] = {Ordering::automatic, Ordering::minimum_degree, Ordering::minimum_fill,
                                   Ordering::nested_dissection};

/* Row indices below the diagonal by column; duplicates are fine. */
struct Shape {
  explicit Shape(int size) : below(size) {}
  void edge(int i, int j) {
    if (i != j) below[std::min(i, j)].insert(std::max(i, j));
  }
  int size() const { return static_cast<int>(below.size()); }
  std::vector<std::set<int>> below;
};

Pattern pattern_of(const Shape& shape) {
  Pattern pattern;
  pattern.size = shape.size();
  pattern.start.push_back(0);
  for (int j = 0; j < shape.size(); ++j) {
    pattern.index.push_back(j);
    pattern.index.insert(pattern.index.end(), shape.below[j].begin(), shape.below[j].end());
    pattern.start.push_back(static_cast<std::int64_t>(pattern.index.size()));
  }
  return pattern;
}

struct NamedShape {
  std::string name;
  std::function<Shape(Random&)> make;
};

Shape arrow(int n, bool head_first) {
  Shape shape(n);
  for (int i = 0; i < n; ++i) shape.edge(i, head_first ? 0 : n - 1);
  return shape;
}

Shape grid(int a, int b, int c) {
  Shape shape(a * b * c);
  auto number = [&](int i, int j, int k) { return (i * b + j) * c + k; };
  for (int i = 0; i < a; ++i)
    for (int j = 0; j < b; ++j)
      for (int k = 0; k < c; ++k) {
        if (i + 1 < a) shape.edge(number(i, j, k), number(i + 1, j, k));
        if (j + 1 < b) shape.edge(number(i, j, k), number(i, j + 1, k));
        if (k + 1 < c) shape.edge(number(i, j, k), number(i, j, k + 1));
      }
  return shape;
}

Shape random_tree(int n, Random& random) {
  Shape shape(n);
  for (int i = 1; i < n; ++i) shape.edge(i, random.below(i));
  return shape;
}

Shape scattered(int n, double degree, Random& random) {
  Shape shape(n);
  for (int k = 0; k < static_cast<int>(n * degree / 2); ++k) shape.edge(random.below(n), random.below(n));
  return shape;
}

Shape dense(int n) {
  Shape shape(n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < i; ++j) shape.edge(i, j);
  return shape;
}

/* Cliques of random size that meet in a few vertices: fronts with many children of different rows. */
Shape cliques(int n, int count, Random& random) {
  Shape shape(n);
  for (int c = 0; c < count; ++c) {
    std::vector<int> members;
    for (int k = random.pick(2, 12); k > 0; --k) members.push_back(random.below(n));
    for (const int a : members)
      for (const int b : members) shape.edge(a, b);
  }
  return shape;
}

Shape apart(Random& random) {
  Shape shape(120);
  for (int part = 0; part < 4; ++part)
    for (int k = 0; k < 40; ++k) shape.edge(part * 25 + random.below(25), part * 25 + random.below(25));
  return shape;  // the last twenty are alone
}

const NamedShape kShapes[] = {
    {"nothing", [](Random&) { return Shape(0); }},
    {"one", [](Random&) { return Shape(1); }},
    {"diagonal", [](Random&) { return Shape(50); }},
    {"arrow", [](Random&) { return arrow(300, false); }},
    {"arrow that fills", [](Random&) { return arrow(300, true); }},
    {"chain", [](Random&) { return grid(500, 1, 1); }},
    {"grid", [](Random&) { return grid(19, 17, 1); }},
    {"cube", [](Random&) { return grid(8, 7, 9); }},
    {"tree", [](Random& random) { return random_tree(400, random); }},
    {"dense", [](Random&) { return dense(170); }},
    {"sparse", [](Random& random) { return scattered(300, 2.5, random); }},
    {"fuller", [](Random& random) { return scattered(400, 6, random); }},
    {"cliques", [](Random& random) { return cliques(300, 120, random); }},
    {"apart", [](Random& random) { return apart(random); }},
};

/* A matrix on a pattern. Signs: all +1 and diagonally dominant, or of both kinds; then entries between rows of the same sign
 * keep each block definite, those between the signs may have any size. */
struct Model {
  Pattern pattern;
  std::vector<double> values;
  std::vector<signed char> signs;
};

Model model_of(const Shape& shape, bool mixed, Random& random) {
  Model model{pattern_of(shape), {}, std::vector<signed char>(shape.size(), 1)};
  if (mixed)
    for (signed char& sign : model.signs) sign = random.chance(0.5) ? 1 : -1;
  const Pattern& pattern = model.pattern;
  std::vector<double> sum(shape.size(), 0);
  model.values.resize(pattern.index.size());
  for (int j = 0; j < shape.size(); ++j)
    for (std::int64_t k = pattern.start[j] + 1; k < pattern.start[j + 1]; ++k) {
      const int i = pattern.index[k];
      const bool same = model.signs[i] == model.signs[j];
      model.values[k] = random.uniform(-1, 1) * (same ? 1 : 3);
      if (same) sum[i] += std::abs(model.values[k]), sum[j] += std::abs(model.values[k]);
    }
  for (int j = 0; j < shape.size(); ++j)
    model.values[pattern.start[j]] = model.signs[j] * (sum[j] + random.uniform(0.5, 2));
  return model;
}

std::vector<double> product(const Model& model, const std::vector<double>& x) {
  std::vector<double> y(x.size(), 0);
  for (int j = 0; j < model.pattern.size; ++j)
    for (std::int64_t k = model.pattern.start[j]; k < model.pattern.start[j + 1]; ++k) {
      const int i = model.pattern.index[k];
      y[i] += model.values[k] * x[j];
      if (i != j) y[j] += model.values[k] * x[i];
    }
  return y;
}

std::vector<double> random_vector(int n, Random& random) {
  std::vector<double> x(n);
  for (double& value : x) value = random.uniform(-1, 1);
  return x;
}

/* Largest |b - K x| against the size of K x. */
double residual(const Model& model, const std::vector<double>& x, const std::vector<double>& b) {
  const std::vector<double> image = product(model, x);
  double worst = 0, size = 1;
  for (std::size_t i = 0; i < x.size(); ++i) {
    worst = std::max(worst, std::abs(b[i] - image[i]));
    size = std::max({size, std::abs(b[i]), std::abs(x[i])});
  }
  return worst / size;
}

std::vector<double> solution(const Cholesky& factor, std::vector<double> b) {
  factor.solve(b.data());
  return b;
}

void expect_permutation(const std::vector<int>& order, int n) {
  std::vector<int> sorted = order;
  std::sort(sorted.begin(), sorted.end());
  ASSERT_EQ(static_cast<int>(sorted.size()), n);
  for (int k = 0; k < n; ++k) ASSERT_EQ(sorted[k], k);
}

/* Entries of each column of L, by elimination of sets. */
std::vector<int> brute_counts(const Shape& shape, const std::vector<int>& order) {
  const int n = shape.size();
  std::vector<int> place(n), counts(n);
  for (int k = 0; k < n; ++k) place[order[k]] = k;
  std::vector<std::set<int>> rows(n);
  for (int j = 0; j < n; ++j)
    for (const int i : shape.below[j])
      rows[std::min(place[i], place[j])].insert(std::max(place[i], place[j]));
  for (int k = 0; k < n; ++k) {
    counts[k] = static_cast<int>(rows[k].size()) + 1;
    if (!rows[k].empty()) rows[*rows[k].begin()].insert(std::next(rows[k].begin()), rows[k].end());
  }
  return counts;
}

TEST(Cholesky, SolvesOnEveryShapeWithEveryOrdering) {
  Random random(4711);
  for (const NamedShape& named : kShapes)
    for (const bool mixed : {false, true}) {
      const Model model = model_of(named.make(random), mixed, random);
      const int n = model.pattern.size;
      const std::vector<double> b = random_vector(n, random);
      for (const Ordering ordering : kOrderings) {
        SCOPED_TRACE(named.name + (mixed ? " mixed, ordering " : ", ordering ") +
                     std::to_string(static_cast<int>(ordering)));
        QuietControl control;
        Cholesky factor;
        Options options;
        options.ordering = ordering;
        ASSERT_EQ(factor.analyze(model.pattern, options, control), State::done);
        Report report;
        ASSERT_EQ(factor.factorize(model.values.data(), model.signs.data(), {}, control, &report),
                  State::done);
        EXPECT_EQ(report.replaced, 0);
        EXPECT_LE(residual(model, solution(factor, b), b), 1e-11);
        EXPECT_EQ(factor.counts().rows, n);
        EXPECT_GE(factor.counts().stored, factor.counts().entries);
      }
    }
}

TEST(Cholesky, CountsColumnsAsEliminationDoes) {
  Random random(4712);
  for (const NamedShape& named : kShapes) {
    SCOPED_TRACE(named.name);
    const Shape shape = named.make(random);
    const Graph graph = graph_of(pattern_of(shape));
    std::vector<int> order(shape.size());
    for (int k = 0; k < shape.size(); ++k) order[k] = k;
    std::shuffle(order.begin(), order.end(), random.engine());
    const Elimination elimination = eliminate(graph, order);
    expect_permutation(elimination.order, shape.size());
    EXPECT_EQ(elimination.count, brute_counts(shape, elimination.order));
    // The same fill as by the order asked for, which was renumbered only.
    std::vector<int> asked = brute_counts(shape, order), got = elimination.count;
    std::sort(asked.begin(), asked.end());
    std::sort(got.begin(), got.end());
    EXPECT_EQ(asked, got);
    for (int k = 0; k < shape.size(); ++k)
      EXPECT_TRUE(elimination.parent[k] < 0 || elimination.parent[k] > k);
  }
}

/* The archive of OpenBLAS asks the environment which kernels it is to take, and is answered in lp/cholesky/blas_kernels. */
extern "C" char* openblas_get_corename() __attribute__((weak));

TEST(Cholesky, ProductsUseWhatTheProcessorCanDo) {
#if defined(__x86_64__)
  if (openblas_get_corename == nullptr) GTEST_SKIP() << "another BLAS";
  if (!__builtin_cpu_supports("avx2") || !__builtin_cpu_supports("fma")) GTEST_SKIP() << "an old processor";
  EXPECT_STRNE(openblas_get_corename(), "Prescott");
#endif
}

/* Against the definition, for all widths, rows around the sizes of registers, and a pivot that is infinite; what stands beside
 * the rows stays. */
TEST(Cholesky, TrailingRowsSolveTheTriangleAndDivideByThePivots) {
  constexpr int kMost = 37, kStride = kLeaf + kMost + 1;
  constexpr double kBeside = 1e300;
  Random random(20);
  for (const auto solve : {solve_trailing_rows, solve_trailing_rows_by_blas}) {
    for (int width = 1; width <= kLeaf; ++width) {
      for (int rows = 1; rows <= kMost; ++rows) {
        std::vector<double> panel(static_cast<std::size_t>(kStride) * width, kBeside), inverse(width);
        const auto at = [&](int i, int j) -> double& {
          return panel[i + static_cast<std::size_t>(j) * kStride];
        };
        for (int j = 0; j < width; ++j) {
          const bool infinite = width > 3 && j == width / 2;
          at(j, j) = infinite ? 0 : 2 + random.uniform(-1, 1);
          inverse[j] = infinite ? 0 : 1 / at(j, j);
          for (int i = j + 1; i < width; ++i) at(i, j) = infinite ? 0 : random.uniform(-1, 1) / 4;
          for (int i = 0; i < rows; ++i) at(width + i, j) = random.uniform(-1, 1);
        }
        const std::vector<double> before = panel;
        solve(panel.data(), inverse.data(), width, panel.data() + width, rows, kStride);
        for (int j = 0; j < width; ++j) {
          EXPECT_EQ(at(width + rows, j), kBeside);
          for (int i = width; i < width + rows; ++i) {
            if (inverse[j] == 0) {
              EXPECT_EQ(at(i, j), 0);
              continue;
            }
            double sum = 0;
            for (int k = 0; k <= j; ++k) sum += at(i, k) * at(k, k) * (k == j ? 1 : at(j, k));
            EXPECT_NEAR(sum, before[i + static_cast<std::size_t>(j) * kStride], 1e-13)
                << width << ' ' << rows;
          }
        }
      }
    }
  }
}

TEST(Cholesky, PreviewCountsWhatAnalyzeGoesOnFrom) {
  QuietControl control;
  const Pattern pattern = pattern_of(grid(9, 9, 9));
  for (const Ordering ordering : kOrderings) {
    Options options;
    options.ordering = ordering;
    Cholesky previewed, direct;
    ASSERT_EQ(previewed.preview(pattern, options, control), State::done);
    const double first = previewed.counts().flops;
    ASSERT_EQ(previewed.analyze(pattern, options, control), State::done);
    ASSERT_EQ(direct.analyze(pattern, options, control), State::done);
    EXPECT_LE(previewed.counts().flops, first);
    EXPECT_EQ(previewed.counts().flops, direct.counts().flops);
    EXPECT_EQ(previewed.counts().used, direct.counts().used);
  }
}

TEST(Cholesky, OrderingsArePermutations) {
  Random random(4713);
  for (const NamedShape& named : kShapes) {
    SCOPED_TRACE(named.name);
    const Graph graph = graph_of(pattern_of(named.make(random)));
    QuietControl control;
    expect_permutation(minimum_degree_order(graph, control), graph.size);
    expect_permutation(nested_dissection_order(graph, control), graph.size);
    expect_permutation(minimum_fill_order(graph, control), graph.size);
  }
}

/* Large graphs are ordered by our own least degree, small ones by the package's. */
TEST(Cholesky, LeastDegreeIsAsGoodAsThePackages) {
  Random random(4719);
  double ratio = 1;
  int shapes = 0;
  for (const NamedShape& named : kShapes) {
    SCOPED_TRACE(named.name);
    const Graph graph = graph_of(pattern_of(named.make(random)));
    QuietControl control;
    const std::vector<int> order = least_score_order(graph, Score::degree, control);
    expect_permutation(order, graph.size);
    if (graph.size == 0) continue;
    const double flops = eliminate(graph, order).flops;
    const double package = eliminate(graph, minimum_degree_order(graph, control)).flops;
    EXPECT_LE(flops, 1.5 * package);
    ratio *= flops / package;
    ++shapes;
  }
  EXPECT_LE(std::pow(ratio, 1.0 / shapes), 1.05);
}

TEST(Cholesky, OrderingsLeaveTheApplicationsRandomNumbersAlone) {
  Random random(4720);
  const Graph graph = graph_of(pattern_of(grid(30, 30, 1)));
  QuietControl control;
  const auto draw = [&](unsigned seed, bool with_ordering, std::vector<int>* order) {
    std::srand(seed);
    std::vector<int> drawn;
    for (int k = 0; k < 50; ++k) {
      if (k == 20 && with_ordering) *order = nested_dissection_order(graph, control);
      drawn.push_back(std::rand());
    }
    return drawn;
  };
  std::vector<int> one, other;
  EXPECT_EQ(draw(1, true, &one), draw(1, false, nullptr));
  EXPECT_EQ(draw(2, true, &other), draw(2, false, nullptr));
  EXPECT_EQ(one, other) << "nor do they depend on them";
}

/* With merged supernodes and without: each row list holds the pattern of K and, but for the parent's columns, lies in the
 * parent's; merging only adds. */
TEST(Cholesky, SupernodesAreClosedUnderTheTree) {
  Random random(4714);
  for (const NamedShape& named : kShapes) {
    SCOPED_TRACE(named.name);
    const Pattern pattern = pattern_of(named.make(random));
    const Graph graph = graph_of(pattern);
    QuietControl control;
    const Elimination elimination = eliminate(graph, minimum_degree_order(graph, control));
    std::int64_t stored[2];
    int supernodes[2];
    for (const bool merge : {false, true}) {
      const Symbolic symbolic = make_symbolic(pattern, find_supernodes(elimination, merge));
      expect_permutation(symbolic.order, pattern.size);
      stored[merge] = symbolic.panel.back();
      supernodes[merge] = symbolic.supernodes();
      for (int s = 0; s < symbolic.supernodes(); ++s) {
        const int up = symbolic.parent[s];
        ASSERT_EQ(up < 0, symbolic.below(s) == 0);
        for (std::int64_t k = symbolic.row_start[s]; k < symbolic.row_start[s + 1]; ++k) {
          const int row = symbolic.rows[k], place = symbolic.relative[k];
          ASSERT_GE(row, symbolic.start[s + 1]);
          ASSERT_TRUE(k == symbolic.row_start[s] || row > symbolic.rows[k - 1]);
          const int there = place < symbolic.width(up)
                                ? symbolic.start[up] + place
                                : symbolic.rows[symbolic.row_start[up] + place - symbolic.width(up)];
          ASSERT_EQ(there, row);
        }
      }
    }
    EXPECT_LE(stored[0], stored[1]);
    EXPECT_GE(supernodes[0], supernodes[1]);
  }
}

TEST(Cholesky, SeveralRightHandSidesAsOneByOne) {
  Random random(4715);
  for (const NamedShape& named : kShapes) {
    SCOPED_TRACE(named.name);
    const Model model = model_of(named.make(random), true, random);
    const int n = model.pattern.size;
    QuietControl control;
    Cholesky factor;
    ASSERT_EQ(factor.analyze(model.pattern, {}, control), State::done);
    ASSERT_EQ(factor.factorize(model.values.data(), model.signs.data(), {}, control, nullptr), State::done);
    std::vector<double> together = random_vector(5 * n, random);
    const std::vector<double> sides = together;
    factor.solve(together.data(), 5);
    for (int c = 0; c < 5; ++c) {
      const std::vector<double> one = solution(factor, {sides.begin() + c * n, sides.begin() + (c + 1) * n});
      for (int i = 0; i < n; ++i) EXPECT_NEAR(one[i], together[c * n + i], 1e-11 * (1 + std::abs(one[i])));
    }
  }
}

/* Pivots of the wrong sign and zeros are replaced and counted; the rest of the matrix is solved as if nothing were there. */
TEST(Cholesky, ReplacesPivotsThatCannotBe) {
  Random random(4716);
  for (const NamedShape& named : kShapes) {
    SCOPED_TRACE(named.name);
    Model model = model_of(named.make(random), true, random);
    const int n = model.pattern.size;
    if (n < 40) continue;
    // Rows 10, 20 and 30 are cut off: their pivots are what stands on the diagonal.
    for (int j = 0; j < n; ++j)
      for (std::int64_t k = model.pattern.start[j] + 1; k < model.pattern.start[j + 1]; ++k)
        for (const int row : {10, 20, 30})
          if (j == row || model.pattern.index[k] == row) model.values[k] = 0;
    auto diagonal = [&](int j) -> double& { return model.values[model.pattern.start[j]]; };
    diagonal(10) = -model.signs[10] * 5.0;
    diagonal(20) = 0;
    diagonal(30) = model.signs[30] * 1e-9;
    QuietControl control;
    Cholesky factor;
    ASSERT_EQ(factor.analyze(model.pattern, {}, control), State::done);
    Report report;
    const std::vector<double> b = random_vector(n, random);
    ASSERT_EQ(factor.factorize(model.values.data(), model.signs.data(), {1e-8, 4}, control, &report),
              State::done);
    EXPECT_EQ(report.replaced, 3);
    EXPECT_GT(report.smallest_pivot, 1e-8);
    const std::vector<double> x = solution(factor, b);
    for (const int row : {10, 20, 30}) EXPECT_DOUBLE_EQ(x[row], b[row] / (4.0 * model.signs[row]));
    // An infinite pivot makes the unknown 0.
    ASSERT_EQ(factor.factorize(model.values.data(), model.signs.data(), {1e-8, 0}, control, &report),
              State::done);
    EXPECT_EQ(report.replaced, 3);
    std::vector<double> y = solution(factor, b), rest = b;
    for (const int row : {10, 20, 30}) {
      EXPECT_EQ(y[row], 0);
      rest[row] = 0;
    }
    EXPECT_LE(residual(model, y, rest), 1e-11);
  }
}

TEST(Cholesky, PositiveDefiniteNeedsNoSigns) {
  Random random(4717);
  const Model model = model_of(scattered(200, 4, random), false, random);
  QuietControl control;
  Cholesky factor;
  ASSERT_EQ(factor.analyze(model.pattern, {}, control), State::done);
  for (int round = 0; round < 2; ++round) {  // the second on top of the numbers of the first
    ASSERT_EQ(factor.factorize(model.values.data(), nullptr, {}, control, nullptr), State::done);
    const std::vector<double> b = random_vector(200, random);
    EXPECT_LE(residual(model, solution(factor, b), b), 1e-12);
  }
}

/* Entries of L far from the diagonal are tiny: on the way they count as 0, whoever works, and for the caller they do not. */
TEST(Cholesky, NumbersTooSmallToBeNormalCountAsZeroInsideOnly) {
  constexpr int kSize = 2600;
  Shape shape(kSize);
  for (int i = 0; i + 1 < kSize; ++i) shape.edge(i, i + 1);
  for (int i = 0; i < 2; ++i) shape.edge(i * 40, kSize - 1);
  Model model;
  model.pattern = pattern_of(shape);
  for (int j = 0; j < kSize; ++j) {
    const std::int64_t begin = model.pattern.start[j], end = model.pattern.start[j + 1];
    for (std::int64_t k = begin; k < end; ++k) model.values.push_back(k == begin ? 1 : 1e-12);
  }
  QuietControl control;
  Cholesky factor;
  ASSERT_EQ(factor.analyze(model.pattern, {}, control), State::done);
  ASSERT_EQ(factor.factorize(model.values.data(), nullptr, {}, control, nullptr), State::done);
  std::vector<double> b(kSize, 0.0);
  b[kSize / 2] = 1;
  const std::vector<double> x = solution(factor, b);
  EXPECT_NEAR(x[kSize / 2], 1, 1e-15);
  for (const double value : x)
    EXPECT_TRUE(value == 0 || std::isnormal(value)) << value << ": no denormal number is left";
  volatile double tiny = 1e-300, share = 1e-12;
  EXPECT_GT(tiny * share, 0) << "the caller's arithmetic is what it was";
}

/* Asks to stop at the n-th look. */
class StoppingControl : public QuietControl {
 public:
  explicit StoppingControl(int looks) : looks_(looks) {}
  Stop poll() override { return poll_clock(); }
  Stop poll_clock() override { return --looks_ < 0 ? Stop::user_abort : Stop::none; }

 private:
  int looks_;
};

TEST(Cholesky, StopsWhenAsked) {
  Random random(4718);
  const Model model = model_of(grid(12, 12, 12), false, random);
  for (const Ordering ordering : kOrderings) {
    StoppingControl at_once(0);
    Cholesky factor;
    Options options;
    options.ordering = ordering;
    EXPECT_EQ(factor.analyze(model.pattern, options, at_once), State::stopped);
  }
  const Graph graph = graph_of(model.pattern);
  for (const Score score : {Score::fill, Score::degree}) {
    StoppingControl later(1);
    EXPECT_TRUE(least_score_order(graph, score, later).empty());
  }
  QuietControl control;
  Cholesky factor;
  ASSERT_EQ(factor.analyze(model.pattern, {}, control), State::done);
  StoppingControl at_once(0);
  EXPECT_EQ(factor.factorize(model.values.data(), nullptr, {}, at_once, nullptr), State::stopped);
  ASSERT_EQ(factor.factorize(model.values.data(), nullptr, {}, control, nullptr), State::done);
  const std::vector<double> b = random_vector(model.pattern.size, random);
  EXPECT_LE(residual(model, solution(factor, b), b), 1e-12);
}

}  // namespace
}  // namespace tovik::lp::cholesky
