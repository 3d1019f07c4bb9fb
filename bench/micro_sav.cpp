/* Speed of the SAV reader and writer in memory: bytes a second of the file, columns to the right of the usual
 * figures. Random sparse columns, or the model of the SAV file that TOVIK_BENCH_MODEL names. Read is from
 * bytes to the model; the checksum is part of both and shown by itself too. */
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "bench/random_model.h"
#include "fileio/sav/crc32c.h"
#include "fileio/sav/file.h"
#include "tests/support/text_sink.h"

namespace {

using namespace tovik;
using namespace tovik::fileio;
using namespace bench;

std::string file_of(const model::Model& model) {
  support::TextSink sink;
  write_sav({model, 0, "bench", {}}, sink);
  return sink.text;
}

model::Model model_of(const std::string& file) {
  MemorySource source(file);
  SavFile read;
  if (read_sav(source, read) != 0) std::abort();
  return model::Model(model_data(std::move(read)));
}

/* Argument: rows (as many columns, ten entries a column); 0 the model of the environment. */
model::Model model_for(const benchmark::State& state) {
  const char* const name = std::getenv("TOVIK_BENCH_MODEL");
  const int size = static_cast<int>(state.range(0));
  if (size != 0 || name == nullptr) return make_model(size != 0 ? size : 500000, 4);
  std::ostringstream bytes;
  bytes << std::ifstream(name, std::ios::binary).rdbuf();
  return model_of(bytes.str());
}

void WriteSav(benchmark::State& state) {
  const model::Model model = model_for(state);
  std::size_t bytes = 0;
  for (auto _ : state) {
    NullSink sink;
    if (!write_sav({model, 0, "bench", {}}, sink)) state.SkipWithError("the model cannot be written");
    bytes += sink.size;
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}
BENCHMARK(WriteSav)->Arg(100)->Arg(10000)->Arg(0)->Unit(benchmark::kMillisecond);

void ReadSav(benchmark::State& state) {
  const std::string file = file_of(model_for(state));
  for (auto _ : state) benchmark::DoNotOptimize(model_of(file).num_rows());
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * file.size()));
}
BENCHMARK(ReadSav)->Arg(100)->Arg(10000)->Arg(0)->Unit(benchmark::kMillisecond);

/* Argument: 1 as the library does it, 0 by tables. */
void Checksum(benchmark::State& state) {
  const std::string bytes(1 << 18, 'x');
  for (auto _ : state) {
    if (state.range(0) == 0) {
      benchmark::DoNotOptimize(
          crc32c_by_tables(0, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()));
    } else {
      Crc32c crc;
      crc.add(bytes.data(), bytes.size());
      benchmark::DoNotOptimize(crc.value());
    }
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes.size()));
}
BENCHMARK(Checksum)->Arg(0)->Arg(1);

}  // namespace
