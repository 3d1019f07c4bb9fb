/* Speed of the sparse factorization against the dense product on the same core: A A' + I of models and grids. See
 * bench/README.md for the columns. */
#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/cholesky/systems.h"
#include "lp/cholesky/blas.h"
#include "lp/cholesky/cholesky.h"

namespace {

using namespace tovik::lp::cholesky;
using namespace bench;

class Patience : public tovik::lp::Control {
 public:
  using Stop = tovik::lp::Stop;
  void log(const char*) override {}
  void flush() override {}
  void add_work(std::uint64_t count) override { ticks += count; }
  double seconds() override { return 0; }
  Stop poll() override { return Stop::none; }
  Stop poll_clock() override { return Stop::none; }
  Stop iteration_callback(const tovik::lp::ProgressSource&) override { return Stop::none; }
  std::uint64_t ticks = 0;
};

double wall_seconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

double processor_seconds() {
  return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

/* The shortest of some runs, as many as fit into half a second, at least two. */
template <class Run>
double seconds_of(const Run& run, double (*now)()) {
  double best = 1e30, total = 0;
  for (int round = 0; round < 2 || (total < 0.5 && round < 50); ++round) {
    const double begin = now();
    run();
    const double taken = now() - begin;
    best = std::min(best, taken);
    total += taken;
  }
  return best;
}

double dense_rate() {
  const int n = 1500;
  const std::size_t entries = static_cast<std::size_t>(n) * n;
  std::vector<double> a(entries, 1.5), b(entries, 0.5), c(entries);
  const double seconds = seconds_of(
      [&] {
        blas::multiply('N', 'T', {n, n, n}, -1, {a.data(), n}, {b.data(), n}, 1, {c.data(), n});
      },
      processor_seconds);
  return 2.0 * n * n * n / seconds;
}

struct Run {
  State state = State::done;
  double analysis = 0, factorization = 0, solve = 0;
  Counts counts;
};

Run run(const System& system, Ordering ordering, int threads) {
  Run result;
  Patience control;
  Cholesky factor;
  Options options;
  options.ordering = ordering;
  options.threads = threads;
  const double begin = wall_seconds();
  result.state = factor.analyze(system.pattern, options, control);
  result.analysis = wall_seconds() - begin;
  result.counts = factor.counts();
  if (result.state != State::done) return result;
  result.factorization = seconds_of(
      [&] {
        const State state = factor.factorize(system.values.data(), nullptr, {}, control, nullptr);
        if (state != State::done) result.state = state;
      },
      threads == 1 ? processor_seconds : wall_seconds);
  std::vector<double> x(static_cast<std::size_t>(system.pattern.size), 1.0);
  result.solve = seconds_of([&] { factor.solve(x.data()); }, processor_seconds);
  return result;
}

const char* letters(Ordering ordering) {
  switch (ordering) {
    case Ordering::minimum_degree:
      return "AMD";
    case Ordering::minimum_fill:
      return "AMF";
    case Ordering::nested_dissection:
      return "ND";
    default:
      return "?";
  }
}

void print(const System& system, const Run& one, const Run& two, double rate) {
  const Counts& counts = one.counts;
  if (one.state != State::done) {
    std::printf("%-20s %8d  not factorized: state %d, %.0f MB\n", system.name.c_str(), counts.rows,
                static_cast<int>(one.state), static_cast<double>(counts.bytes) / 1e6);
    return;
  }
  const double speed = counts.flops / one.factorization;
  std::printf("%-20s %8d %9zu %4s %7.3f %7.3f %9.0f %6d %6d %9.2e %8.4f %6.2f %4.0f%% %8.4f %5.2f %8.3f\n",
              system.name.c_str(), counts.rows, system.pattern.index.size(), letters(counts.used),
              counts.ordering_seconds, one.analysis - counts.ordering_seconds,
              static_cast<double>(counts.entries) / 1e3, counts.supernodes, counts.largest_front,
              counts.flops, one.factorization, speed / 1e9, 100 * speed / rate, two.factorization,
              one.factorization / two.factorization, one.solve * 1e3);
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Sparse factorization against the dense product");
  std::vector<std::string> models;
  bool grids = false;
  int threads = 2;
  std::string ordering = "automatic";
  app.add_option("models", models, "model files");
  app.add_flag("--grids", grids, "grids of two and three dimensions, too");
  app.add_option("--threads", threads, "of the second run");
  app.add_option("--ordering", ordering)->check(CLI::IsMember({"automatic", "degree", "fill", "dissection"}));
  CLI11_PARSE(app, argc, argv);
  const Ordering wanted = ordering == "degree"       ? Ordering::minimum_degree
                          : ordering == "fill"       ? Ordering::minimum_fill
                          : ordering == "dissection" ? Ordering::nested_dissection
                                                     : Ordering::automatic;
  std::vector<System> systems;
  const double rate = dense_rate();
  std::printf("dense product: %.1f Gflop/s\n", rate / 1e9);
  std::printf("%-20s %8s %9s %4s %7s %7s %9s %6s %6s %9s %8s %6s %5s %8s %5s %8s\n", "system", "rows",
              "entries", "by", "order s", "other s", "L/1000", "nodes", "front", "flops", "factor s", "Gf/s",
              "dense", "threads", "times", "solve ms");
  auto measure = [&](const System& system) {
    print(system, run(system, wanted, 1), run(system, wanted, threads), rate);
  };
  for (const std::string& model : models) measure(system_of_model(model));
  if (grids) {
    measure(grid(300, 300, 1));
    measure(grid(1000, 1000, 1));
    measure(grid(20, 20, 20));
    measure(grid(40, 40, 40));
    measure(grid(60, 60, 60));
  }
  return 0;
}
