/* Speed of the model readers on generated text in memory: bytes a second, columns to the right of the usual
 * figures. One model in both formats: random sparse rows, integer and fractional coefficients, bounds on some
 * columns. */
#include <benchmark/benchmark.h>

#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "fileio/network/file.h"
#include "fileio/record/model_reader.h"
#include "fileio/stream/number.h"

namespace {

using namespace tovik::fileio;

class SilentLog final : public ReaderLog {
 public:
  void warning(std::string_view) override {}
  void result(std::string_view) override {}
};

struct Entry {
  int row, column;
  double value;
};

/* Entries by rows; every column occurs. */
std::vector<Entry> random_entries(int rows, int columns, int per_row) {
  std::mt19937 random(1);
  std::vector<Entry> entries;
  for (int i = 0; i < rows; ++i) {
    for (int k = 0; k < per_row; ++k) {
      const int column = k == 0 ? i % columns : static_cast<int>(random() % static_cast<unsigned>(columns));
      const int whole = static_cast<int>(random() % 200) - 100;
      const double value = k % 3 == 0 ? whole + 0.5 : whole + static_cast<double>(random() % 1000000) / 1e6;
      entries.push_back({i, column, value});
    }
  }
  return entries;
}

std::string number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.12g", value);
  return text;
}

std::string lp_text(int rows, int columns, int per_row) {
  std::string text = "Minimize\n obj:";
  for (int j = 0; j < columns; ++j)
    text += " + " + std::to_string(j % 17) + " x" + std::to_string(j) + (j % 8 == 7 ? "\n" : "");
  text += "\nSubject To\n";
  int row = -1;
  for (const Entry& e : random_entries(rows, columns, per_row)) {
    if (e.row != row) text += (row >= 0 ? " >= 1\n r" : " r") + std::to_string(e.row) + ":";
    row = e.row;
    text += (e.value < 0 ? " - " : " + ") + number(e.value < 0 ? -e.value : e.value) + " x" +
            std::to_string(e.column);
  }
  text += " >= 1\nBounds\n";
  for (int j = 0; j < columns; j += 2)
    text += " x" + std::to_string(j) + " <= " + std::to_string(j % 90 + 10) + "\n";
  return text + "Generals\n x1\nEnd\n";
}

std::string mps_text(int rows, int columns, int per_row) {
  std::string text = "NAME          BENCH\nROWS\n N  obj\n";
  for (int i = 0; i < rows; ++i) text += " G  r" + std::to_string(i) + "\n";
  std::vector<std::vector<Entry>> by_column(static_cast<std::size_t>(columns));
  std::vector<int> last(static_cast<std::size_t>(columns), -1);
  for (const Entry& e : random_entries(rows, columns, per_row)) {
    const std::size_t j = static_cast<std::size_t>(e.column);
    if (last[j] != e.row) by_column[j].push_back(e);
    last[j] = e.row;
  }
  text += "COLUMNS\n";
  for (int j = 0; j < columns; ++j) {
    const std::string name = "    x" + std::to_string(j);
    text += name + "  obj  " + std::to_string(j % 17) + "\n";
    for (const Entry& e : by_column[static_cast<std::size_t>(j)]) {
      text += name + "  r" + std::to_string(e.row) + "  " + number(e.value) + "\n";
    }
  }
  text += "RHS\n";
  for (int i = 0; i < rows; ++i) text += "    rhs  r" + std::to_string(i) + "  1\n";
  text += "BOUNDS\n";
  for (int j = 0; j < columns; j += 2)
    text += " UP bnd  x" + std::to_string(j) + "  " + std::to_string(j % 90 + 10) + "\n";
  return text + "ENDATA\n";
}

using Reader = ReadFailure (*)(ByteSource&, const ReadOptions&, ReaderLog&, FileModel&);

void read_all(benchmark::State& state, Reader reader, const std::string& text) {
  for (auto _ : state) {
    MemorySource source(text);
    SilentLog log;
    FileModel model;
    const ReadFailure failure = reader(source, {}, log, model);
    if (failure) state.SkipWithError("the text is not understood");
    benchmark::DoNotOptimize(model.value.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(text.size()));
}

/* Argument: rows (as many columns, ten entries a row). */
void ReadLp(benchmark::State& state) {
  const int rows = static_cast<int>(state.range(0));
  read_all(state, read_lp, lp_text(rows, rows, 10));
}
BENCHMARK(ReadLp)->Arg(100)->Arg(10000)->Arg(200000)->Unit(benchmark::kMillisecond);

void ReadMps(benchmark::State& state) {
  const int rows = static_cast<int>(state.range(0));
  read_all(state, read_mps, mps_text(rows, rows, 10));
}
BENCHMARK(ReadMps)->Arg(100)->Arg(10000)->Arg(200000)->Unit(benchmark::kMillisecond);

/* Ten arcs a node, random ends; most numbers whole. */
std::string network_text(int nodes) {
  std::mt19937 random(1);
  const auto node = [&] { return std::to_string(random() % static_cast<unsigned>(nodes) + 1); };
  std::string text = "c bench\np min " + std::to_string(nodes) + ' ' + std::to_string(10 * nodes) + '\n';
  for (int i = 1; i < nodes; i += 7)
    text += "n " + std::to_string(i) + ' ' + std::to_string(static_cast<int>(random() % 2000) - 1000) + '\n';
  for (int k = 0; k < 10 * nodes; ++k) {
    const double cost = static_cast<double>(random() % 100000) / (k % 4 == 0 ? 100 : 1);
    text +=
        "a " + node() + ' ' + node() + " 0 " + std::to_string(random() % 10000) + ' ' + number(cost) + '\n';
  }
  return text;
}

/* Argument: nodes. */
void ReadNetwork(benchmark::State& state) {
  const std::string text = network_text(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    MemorySource source(text);
    SilentLog log;
    tovik::model::NetworkData data;
    if (read_network(source, {}, log, data)) state.SkipWithError("the text is not understood");
    benchmark::DoNotOptimize(data.cost.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(text.size()));
}
BENCHMARK(ReadNetwork)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

void ParseNumbers(benchmark::State& state) {
  std::vector<std::string> texts;
  for (const Entry& e : random_entries(1000, 1000, 10)) texts.push_back(number(e.value));
  for (auto _ : state) {
    for (const std::string& text : texts) {
      double value = 0;
      parse_whole_number(text.data(), text.data() + text.size(), value);
      benchmark::DoNotOptimize(value);
    }
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(texts.size()));
}
BENCHMARK(ParseNumbers);

}  // namespace
