/* Speed of the model writers into memory that is thrown away: bytes a second, columns to the right of the
 * usual figures. Random sparse columns, whole and fractional coefficients, bounds on some columns. */
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "bench/random_model.h"
#include "fileio/record/model_writer.h"
#include "fileio/stream/number_text.h"

namespace {

using namespace tovik;
using namespace tovik::fileio;
using namespace bench;

template <class Writer>
void write_all(benchmark::State& state, Writer writer) {
  const model::Model model = make_model(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  std::size_t bytes = 0;
  for (auto _ : state) {
    NullSink sink;
    SilentLog log;
    TextWriter out(sink);
    if (writer({model, "bench"}, {}, log, out) != 0) state.SkipWithError("the model cannot be written");
    out.close();
    bytes += sink.size;
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

/* Arguments: rows (as many columns, ten entries a column), kind of the values. */
void WriteLp(benchmark::State& state) {
  write_all(state, write_lp);
}
BENCHMARK(WriteLp)->ArgsProduct({{100, 10000, 200000}, {4}})->Args({10000, 3})->Unit(benchmark::kMillisecond);

void WriteMps(benchmark::State& state) {
  write_all(state, write_mps);
}
BENCHMARK(WriteMps)
    ->ArgsProduct({{100, 10000, 200000}, {4}})
    ->Args({10000, 3})
    ->Unit(benchmark::kMillisecond);

void FormatNumbers(benchmark::State& state) {
  std::mt19937 random(1);
  std::vector<double> values;
  for (int k = 0; k < 1000; ++k) values.push_back(random_value(random, static_cast<int>(state.range(0))));
  char text[kNumberText];
  for (auto _ : state) {
    for (const double value : values) benchmark::DoNotOptimize(write_shortest(text, value));
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(values.size()));
}
BENCHMARK(FormatNumbers)->DenseRange(0, 3);

}  // namespace
