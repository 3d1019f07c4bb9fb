/* What the benchmarks of writers share: places for text that keep nothing, and a model to write. */
#pragma once

#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <string_view>

#include "fileio/record/model_reader.h"
#include "fileio/stream/output.h"
#include "model/store/load.h"
#include "model/store/model.h"

namespace bench {

using namespace tovik;
using namespace tovik::fileio;

class SilentLog final : public ReaderLog {
 public:
  void warning(std::string_view) override {}
  void result(std::string_view) override {}
};

class NullSink final : public ByteSink {
 public:
  bool write(const char* bytes, std::size_t count) override {
    benchmark::DoNotOptimize(bytes);
    size += count;
    return true;
  }
  bool commit() override { return true; }
  std::size_t size = 0;
};

inline double random_value(std::mt19937& random, int kind) {
  const int whole = static_cast<int>(random() % 200) - 100;
  if (kind == 0) return whole == 0 ? 1 : whole;
  if (kind == 1) return whole + 0.5;
  if (kind == 2) return whole + static_cast<double>(random() % 1000000) / 1e6;
  return whole + static_cast<double>(random()) / 4294967296.0;  // 17 digits
}

/* Ten entries a column. kind of the values as above, 4: a mix. */
inline model::Model make_model(int size, int kind) {
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

}  // namespace bench
