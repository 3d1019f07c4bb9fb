/* Speed of the model writers into memory that is thrown away: bytes a second, columns to the right of the
 * usual figures. Random sparse columns, whole and fractional coefficients, bounds on some columns. */
#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "fileio/model_writer.h"
#include "fileio/number_text.h"
#include "model/load.h"

namespace {

using namespace tovik;
using namespace tovik::fileio;

class SilentLog final : public ReaderLog {
 public:
  void warning(std::string_view) override {}
  void result(std::string_view) override {}
};

class NowhereSink final : public ByteSink {
 public:
  bool write(const char* bytes, std::size_t count) override {
    benchmark::DoNotOptimize(bytes);
    size += count;
    return true;
  }
  bool commit() override { return true; }
  std::size_t size = 0;
};

double random_value(std::mt19937& random, int kind) {
  const int whole = static_cast<int>(random() % 200) - 100;
  if (kind == 0) return whole == 0 ? 1 : whole;
  if (kind == 1) return whole + 0.5;
  if (kind == 2) return whole + static_cast<double>(random() % 1000000) / 1e6;
  return whole + static_cast<double>(random()) / 4294967296.0;  // 17 digits
}

/* Ten entries a column. kind of the values as above, 4: a mix. */
model::Model make_model(int size, int kind) {
  std::mt19937 random(1);
  model::ModelData data;
  data.start.push_back(0);
  for (int j = 0; j < size; ++j) {
    data.objective.push_back(j % 17);
    data.lower.push_back(0);
    data.upper.push_back(j % 2 == 0 ? j % 90 + 10 : 1e20);
    for (int k = 0; k < 10; ++k) {
      data.index.push_back(static_cast<int>(random() % static_cast<unsigned>(size)));
      data.value.push_back(random_value(random, kind == 4 ? k % 3 : kind));
    }
    data.start.push_back(static_cast<std::int64_t>(data.index.size()));
    data.column_names.add("x" + std::to_string(j));
    data.row_names.add("r" + std::to_string(j));
    data.sense.push_back('G');
    data.rhs.push_back(1);
  }
  return model::Model(std::move(data));
}

template <class Writer>
void write_all(benchmark::State& state, Writer writer) {
  const model::Model model = make_model(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  std::size_t bytes = 0;
  for (auto _ : state) {
    NowhereSink sink;
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
