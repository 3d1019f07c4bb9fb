#include "lp/run/crossover_run.h"

#include "env/channel.h"
#include "env/method_code.h"
#include "include/tovik.h"
#include "lp/crossover/crossover.h"
#include "lp/run/statistics.h"

namespace tovik::lp::run {
namespace {

class CrossoverLog final : public crossover::Observer {
 public:
  explicit CrossoverLog(const Environment& env)
      : env_(env), display_(env.settings.integer(TVK_PARAM_BARDISPLAY)) {}
  void begin(int primal_pushes, int dual_pushes) override {
    if (display_ < 2) return;
    message(env_.results_channel, "Crossover: %d primal pushes, %d dual pushes\n", primal_pushes,
            dual_pushes);
  }
  void progress(const crossover::Progress& now) override {
    if (display_ == 0) return;
    const crossover::Counts& done = now.done;
    message(env_.results_channel, "Crossover: %9d %s pushes left, %9d exchanges\n", now.left,
            now.primal ? "primal" : "dual", done.primal_exchanges + done.dual_exchanges);
    if (env_.results_channel != nullptr) env_.results_channel->flush();
  }

 private:
  const Environment& env_;
  const int display_;
};

crossover::Point scaled(const simplex::Solver& engine, const barrier::Result& point) {
  crossover::Point in;
  for (std::size_t j = 0; j < point.x.size(); ++j)
    in.x.push_back(point.x[j] / engine.column_scale(static_cast<int>(j)));
  for (std::size_t i = 0; i < point.y.size(); ++i)
    in.y.push_back(point.y[i] / engine.row_scale(static_cast<int>(i)));
  return in;
}

}  // namespace

CrossedOver cross_over(const RunContext& context, const barrier::Result& point, simplex::Solver& engine) {
  CrossoverLog log(context.env);
  crossover::Options options;
  options.first =
      context.algorithm.method == Method::dual ? crossover::First::dual : crossover::First::primal;
  crossover::Result result;
  const crossover::Point start = scaled(engine, point);
  engine.take_basis([&](simplex::Core& core) { result = crossover::cross_over(core, start, options, &log); });
  CrossedOver crossed;
  crossed.counts = result.counts;
  if (result.primal.count > 0 && result.dual.count == 0) crossed.clean_up = Method::dual;
  return crossed;
}

void store_counts(const BarrierCounts& counts, Problem& problem) {
  if (counts.ran()) statistics_of(problem).barrier = counts;
  if (problem.solution == nullptr) return;
  Solution& solution = *problem.solution;
  solution.barrier_iterations = counts.iterations;
  if (counts.ran()) solution.method = method_code::kBarrier;
  solution.crossover_primal_pushes = counts.crossover.primal_pushes;
  solution.crossover_primal_exchanges = counts.crossover.primal_exchanges;
  solution.crossover_dual_pushes = counts.crossover.dual_pushes;
  solution.crossover_dual_exchanges = counts.crossover.dual_exchanges;
}

}  // namespace tovik::lp::run
