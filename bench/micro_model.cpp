/* Growth of building and changing models: each case at n, 2n and 4n; the time per item should stay level. */
#include <benchmark/benchmark.h>

#include <tovik.h>

#include <string>
#include <vector>

namespace {

struct Session {
  Session() : env(TVKopenTOVIK(&status)), lp(TVKcreateprob(env, &status, "bench")) {}
  ~Session() {
    TVKfreeprob(env, &lp);
    TVKcloseTOVIK(&env);
  }
  int status = 0;
  EnvHandle env;
  ProbHandle lp;
};

/* A permutation of 0 .. n - 1 that jumps about. */
int scattered(int k, int n) {
  return static_cast<int>(k * 611953LL % n);
}

void build(Session& s, int rows, int columns) {
  TVKnewcols(s.env, s.lp, columns, nullptr, nullptr, nullptr, nullptr, nullptr);
  TVKnewrows(s.env, s.lp, rows, nullptr, nullptr, nullptr, nullptr);
}

void add_row(Session& s, int k, int columns) {
  const int begin = 0,
            index[] = {scattered(k, columns), scattered(k + 1, columns), scattered(k + 2, columns)};
  const double value[] = {1, 2, 3}, rhs = k;
  TVKaddrows(s.env, s.lp, 0, 1, 3, &rhs, "L", &begin, index, value, nullptr, nullptr);
}

void rows_one_by_one(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  for (auto _ : state) {
    Session s;
    build(s, 0, n);
    for (int k = 0; k < n; ++k) add_row(s, k, n);
  }
  state.SetItemsProcessed(state.iterations() * n);
}

void rows_one_by_one_read_back(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  for (auto _ : state) {
    Session s;
    build(s, 0, n);
    for (int k = 0; k < n; ++k) {
      add_row(s, k, n);
      int count, begin, index[3], surplus;
      double value[3];
      TVKgetrows(s.env, s.lp, &count, &begin, index, value, 3, &surplus, k, k);
    }
  }
  state.SetItemsProcessed(state.iterations() * n);
}

enum class Where { everywhere, one_column, one_row };

template <Where where>
void coefficients_one_by_one(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  for (auto _ : state) {
    Session s;
    build(s, n, n);
    for (int k = 0; k < n; ++k) {
      TVKchgcoef(s.env, s.lp, where == Where::one_row ? 7 : scattered(k, n),
                 where == Where::one_column ? 7 : scattered(n - k, n), k + 1);
    }
  }
  state.SetItemsProcessed(state.iterations() * n);
}

void bounds_one_by_one(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  Session s;
  build(s, 0, n);
  for (auto _ : state) {
    for (int k = 0; k < n; ++k) {
      const int j = scattered(k, n);
      const double bound = k;
      TVKchgbds(s.env, s.lp, 1, &j, "U", &bound);
    }
  }
  state.SetItemsProcessed(state.iterations() * n);
}

void delete_first_rows_one_by_one(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  for (auto _ : state) {
    state.PauseTiming();
    Session s;
    build(s, 0, n);
    for (int k = 0; k < n; ++k) add_row(s, k, n);
    state.ResumeTiming();
    for (int k = 0; k < n; ++k) TVKdelrows(s.env, s.lp, 0, 0);
  }
  state.SetItemsProcessed(state.iterations() * n);
}

void add_and_delete_last_row(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  Session s;
  build(s, 0, n);
  for (int k = 0; k < n; ++k) add_row(s, k, n);
  for (auto _ : state) {
    for (int k = 0; k < n; ++k) {
      add_row(s, k, n);
      TVKdelrows(s.env, s.lp, n, n);
    }
  }
  state.SetItemsProcessed(state.iterations() * n);
}

void name_and_find(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  for (auto _ : state) {
    Session s;
    build(s, 0, n);
    for (int k = 0; k < n; ++k) {
      const int j = scattered(k, n);
      const std::string name = "name" + std::to_string(k);
      int found = 0;
      TVKchgname(s.env, s.lp, 'c', j, name.c_str());
      TVKgetcolindex(s.env, s.lp, name.c_str(), &found);
    }
  }
  state.SetItemsProcessed(state.iterations() * n);
}

void sizes(benchmark::internal::Benchmark* b) {
  b->Arg(250000)->Arg(500000)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(1);
}

BENCHMARK(rows_one_by_one)->Apply(sizes);
BENCHMARK(rows_one_by_one_read_back)->Apply(sizes);
BENCHMARK(coefficients_one_by_one<Where::everywhere>)->Apply(sizes);
BENCHMARK(coefficients_one_by_one<Where::one_column>)->Apply(sizes);
BENCHMARK(coefficients_one_by_one<Where::one_row>)->Apply(sizes);
BENCHMARK(bounds_one_by_one)->Apply(sizes);
BENCHMARK(delete_first_rows_one_by_one)->Apply(sizes);
BENCHMARK(add_and_delete_last_row)->Apply(sizes);
BENCHMARK(name_and_find)->Apply(sizes);

}  // namespace
