/* Speed of the SAV reader and writer in memory: bytes a second of the file, columns to the right of the usual
 * figures. With TOVIK_BENCH_MODEL the name of an MPS file stands for a model of that file's size, else random
 * sparse columns. Read is from bytes to the model; the checksum is part of both and shown by itself too. */
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

#include "fileio/crc32c.h"
#include "fileio/file_families.h"
#include "fileio/model_reader.h"
#include "fileio/sav_file.h"

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

class MemorySink final : public ByteSink {
 public:
  bool write(const char* bytes, std::size_t count) override {
    text.append(bytes, count);
    return true;
  }
  bool commit() override { return true; }
  std::string text;
};

model::ModelData random_data(int size) {
  std::mt19937 random(1);
  model::ModelData data;
  data.start.push_back(0);
  for (int j = 0; j < size; ++j) {
    data.objective.push_back(j % 17);
    data.lower.push_back(0);
    data.upper.push_back(j % 2 == 0 ? j % 90 + 10 : 1e20);
    for (int k = 0; k < 10; ++k) {
      data.index.push_back(static_cast<int>(random() % static_cast<unsigned>(size)));
      data.value.push_back(1 + static_cast<double>(random() % 100) / 8);
    }
    data.start.push_back(static_cast<std::int64_t>(data.index.size()));
    data.column_names.add("x" + std::to_string(j));
    data.row_names.add("r" + std::to_string(j));
    data.sense.push_back('G');
    data.rhs.push_back(1);
  }
  return data;
}

model::ModelData data_of_file(const char* name) {
  std::ostringstream text;
  text << std::ifstream(name, std::ios::binary).rdbuf();
  const std::string bytes = text.str();
  MemorySource source(bytes);
  SilentLog log;
  FileModel file;
  if (read_mps(source, {}, log, file)) std::abort();
  model::ModelData data;
  data.families = families_of(file);
  data.objective = std::move(file.objective);
  data.lower = std::move(file.lower);
  data.upper = std::move(file.upper);
  data.rhs = std::move(file.rhs);
  data.range = std::move(file.range);
  data.sense = std::move(file.sense);
  data.start = std::move(file.start);
  data.index = std::move(file.index);
  data.value = std::move(file.value);
  data.column_names = file.columns.release();
  data.row_names = file.rows.release();
  return data;
}

/* Argument: rows (as many columns, ten entries a column); 0 the model of the environment. */
model::Model make_model(const benchmark::State& state) {
  const char* const name = std::getenv("TOVIK_BENCH_MODEL");
  const int size = static_cast<int>(state.range(0));
  if (size == 0 && name == nullptr) return model::Model(random_data(500000));
  return model::Model(size == 0 ? data_of_file(name) : random_data(size));
}

void WriteSav(benchmark::State& state) {
  const model::Model model = make_model(state);
  std::size_t bytes = 0;
  for (auto _ : state) {
    NowhereSink sink;
    if (!write_sav({model, 0, "bench", {}}, sink)) state.SkipWithError("the model cannot be written");
    bytes += sink.size;
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}
BENCHMARK(WriteSav)->Arg(100)->Arg(10000)->Arg(0)->Unit(benchmark::kMillisecond);

void ReadSav(benchmark::State& state) {
  MemorySink file;
  write_sav({make_model(state), 0, "bench", {}}, file);
  for (auto _ : state) {
    MemorySource source(file.text);
    SavFile read;
    if (read_sav(source, read) != 0) state.SkipWithError("the file cannot be read");
    const model::Model model(model_data(std::move(read)));
    benchmark::DoNotOptimize(model.num_rows());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * file.text.size()));
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
