/* Time of builds, solves and updates of the factor on generated bases of three makes:
 *   tree     spanning-tree-like network columns: singletons only, hyper-sparse solves
 *   stairs   staircase blocks coupled to their neighbours: a small kernel, medium density
 *   bump     a dense-ish kernel in the middle of singletons
 * Counters: nonzeros of the factor over those of the basis, and work ticks per run. */
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <set>

#include "lp/factor/factor.h"

namespace {

using namespace tovik::lp;
using namespace tovik::lp::factor;

enum Make { kTree, kStairs, kBump };

/* 2 m columns: the first m are a basis, the others of the same make wait to enter. */
Matrix generate(Make make, int m, std::mt19937& random) {
  std::uniform_real_distribution<double> value(0.5, 2.0);
  Matrix a;
  a.rows = m;
  a.columns = 2 * m;
  for (int j = 0; j < 2 * m; ++j) {
    const int home = j % m;
    std::set<int> rows{home};
    int extra = 1, reach = m;
    if (make == kStairs) extra = 4, reach = std::min(m, 24);
    if (make == kBump) extra = home < m / 4 ? 6 : 1, reach = m / 4;
    for (int k = 0; k < extra; ++k) {
      const int step = static_cast<int>(random() % static_cast<unsigned>(reach));
      rows.insert(make == kTree ? step % (home + 1) : make == kStairs ? (home + step) % m : step);
    }
    for (const int i : rows) {
      a.index.push_back(i);
      a.value.push_back(make == kTree ? (i == home ? 1.0 : -1.0) : i == home ? 3.0 : value(random));
    }
    a.start.push_back(static_cast<int>(a.index.size()));
  }
  return a;
}

struct Bench {
  explicit Bench(const benchmark::State& state)
      : random(7),
        matrix(generate(static_cast<Make>(state.range(0)), static_cast<int>(state.range(1)), random)),
        factor(matrix),
        head(matrix.rows) {
    for (int i = 0; i < matrix.rows; ++i) head[i] = i;
    factor.build(head);
    v.resize(matrix.rows);
    w.resize(matrix.rows);
  }

  void load(SparseVector& x, int column) {
    x.clear();
    for (int k = matrix.start[column]; k < matrix.start[column + 1]; ++k) {
      x.array[matrix.index[k]] = matrix.value[k];
      x.index[x.count++] = matrix.index[k];
    }
  }

  void observe(const SparseVector& x) {
    density += 0.05 * (static_cast<double>(x.count) / matrix.rows - density);
  }

  std::mt19937 random;
  Matrix matrix;
  Factor factor;
  std::vector<int> head;
  SparseVector v, w;
  double density = 0.0;
};

void report(benchmark::State& state, const Bench& bench, std::int64_t work) {
  const Stats& stats = bench.factor.stats();
  state.counters["fill"] =
      static_cast<double>(stats.factor_nonzeros) / static_cast<double>(stats.basis_nonzeros);
  state.counters["ticks"] = static_cast<double>(work) / static_cast<double>(state.iterations());
}

void build(benchmark::State& state) {
  Bench bench(state);
  const std::int64_t before = bench.factor.work();
  for (auto _ : state) benchmark::DoNotOptimize(bench.factor.build(bench.head));
  report(state, bench, bench.factor.work() - before);
}

void ftran_column(benchmark::State& state) {
  Bench bench(state);
  const std::int64_t before = bench.factor.work();
  int column = bench.matrix.rows;
  for (auto _ : state) {
    bench.load(bench.v, column);
    if (++column == bench.matrix.columns) column = bench.matrix.rows;
    bench.factor.ftran(bench.v, bench.density);
    bench.observe(bench.v);
  }
  report(state, bench, bench.factor.work() - before);
}

void btran_unit(benchmark::State& state) {
  Bench bench(state);
  const std::int64_t before = bench.factor.work();
  for (auto _ : state) {
    bench.v.clear();
    bench.v.set_unit(static_cast<int>(bench.random() % static_cast<unsigned>(bench.matrix.rows)));
    bench.factor.btran(bench.v, bench.density);
    bench.observe(bench.v);
  }
  report(state, bench, bench.factor.work() - before);
}

/* A simplex-like cycle: column, row, update, and a rebuild whenever the factor asks for one. */
void replace(benchmark::State& state) {
  Bench bench(state);
  const int m = bench.matrix.rows;
  const std::int64_t before = bench.factor.work();
  int column = m;
  std::vector<char> basic(bench.matrix.columns + m, 0);
  for (const int j : bench.head) basic[j] = 1;
  for (auto _ : state) {
    do column = (column + 1) % bench.matrix.columns;
    while (basic[column]);
    bench.load(bench.v, column);
    bench.v.want_pack = true;
    bench.factor.ftran(bench.v, bench.density);
    bench.observe(bench.v);
    int r = bench.v.index[0];
    for (int k = 1; k < bench.v.count; ++k) {
      const int i = bench.v.index[k];
      if (std::abs(bench.v.array[i]) > std::abs(bench.v.array[r])) r = i;
    }
    bench.w.clear();
    bench.w.set_unit(r);
    bench.w.want_pack = true;
    bench.factor.btran(bench.w, bench.density);
    const bool updated = bench.factor.update(bench.v, bench.w, r);
    if (updated) {
      basic[bench.head[r]] = 0;
      basic[column] = 1;
      bench.head[r] = column;
    }
    if (!updated || bench.factor.wants_rebuild()) bench.factor.build(bench.head);
  }
  report(state, bench, bench.factor.work() - before);
}

void makes(benchmark::internal::Benchmark* b) {
  b->ArgNames({"make", "m"})
      ->Args({kTree, 1000})
      ->Args({kTree, 50000})
      ->Args({kStairs, 5000})
      ->Args({kBump, 2000});
}

BENCHMARK(build)->Apply(makes);
BENCHMARK(ftran_column)->Apply(makes);
BENCHMARK(btran_unit)->Apply(makes);
BENCHMARK(replace)->Apply(makes);

}  // namespace
