#include "lp/run/iteration_log.h"

#include <cmath>
#include <cstdio>
#include <string>

#include "env/channel.h"
#include "lp/run/numbers.h"
#include "lp/simplex/core.h"
#include "lp/simplex/progress.h"
#include "model/store/model.h"

namespace tovik::lp::run {
namespace {

constexpr int kNameCut = 255;
constexpr std::int64_t kElapsedIterations = 1000;  // an elapsed-time line at such multiples only
constexpr double kElapsedSeconds = 10.0;
constexpr double kWideObjective = 1e11;  // from here on the detailed log prints exponents

std::int64_t next_log_point(std::int64_t count) {
  std::int64_t step = 100;
  while (step * 20 <= count) step *= 10;
  return (count / step + 1) * step;
}

std::string label(const model::NameTable& names, int k, char letter) {
  if (names.empty()) return letter + std::to_string(k + 1);
  return std::string(names.name(k)).substr(0, kNameCut);
}

}  // namespace

IterationLog::IterationLog(Environment& env, const Problem& problem, int display)
    : env_(env), problem_(problem), display_(display), start_(clock_seconds(env)), last_elapsed_(start_) {}

void IterationLog::set_origin(const std::vector<int>& rows, const std::vector<int>& columns) {
  rows_ = &rows;
  columns_ = &columns;
}

void IterationLog::text(const char* line) {
  if (display_ > 0) message(env_.results_channel, "%s", line);
}

void IterationLog::removed_by_singularity(const simplex::Core& core, int variable) {
  if (display_ <= 0) return;
  if (variable < core.n()) {
    message(env_.results_channel, "Variable '%.255s' fixed because of singularity.\n",
            label(problem_.model->column_names(), column(variable), 'x').c_str());
  } else if (const int i = row(variable - core.n()); problem_.model->sense()[i] == 'R') {
    message(env_.results_channel, "Variable 'range %.255s' caused singularity.\n",
            label(problem_.model->row_names(), i, 'c').c_str());
  } else {
    message(env_.results_channel, "Slack removed by singularity.\n");
  }
}

void IterationLog::pricing(const char* rule, bool changed) {
  if (display_ > 0) message(env_.results_channel, changed ? "Switched to %s.\n" : "Using %s.\n", rule);
}

void IterationLog::elapsed(std::int64_t count) {
  if (count % kElapsedIterations != 0 || count < elapsed_mark_ + kElapsedIterations) return;
  elapsed_mark_ = count;
  const double now = clock_seconds(env_);
  if (now - last_elapsed_ < kElapsedSeconds) return;
  last_elapsed_ = now;
  message(env_.results_channel, "Elapsed time = %7.2f sec. (%d iterations).\n", now - start_,
          static_cast<int>(count));
  if (env_.results_channel != nullptr) env_.results_channel->flush();
}

void IterationLog::iteration(const simplex::Core& core, const simplex::IterationEvent& event) {
  if (display_ <= 0) return;
  const std::int64_t count = core.counters.iterations;
  scaled_ = core.scaled;
  elapsed(count);
  if (display_ == 1) {
    brief(core, event, count);
  } else {
    detailed(core, event, count);
  }
}

void IterationLog::brief(const simplex::Core& core, const simplex::IterationEvent& event,
                         std::int64_t count) {
  const int phase = event.phase1 ? 1 : 2;
  if (count < next_line_ && phase == last_phase_) return;
  last_phase_ = phase;
  if (count >= next_line_) next_line_ = next_log_point(count);
  if (count < 2) message(env_.results_channel, "\nIteration log . . .\n");
  const int number = static_cast<int>(count);
  if (phase == 2) {
    message(env_.results_channel, "Iteration: %5d    Objective     = %20.6f\n", number,
            times(problem_.model->objective_sense(), event.objective));
  } else {
    message(
        env_.results_channel,
        scaled_ ? "Iteration: %5d    Scaled infeas = %20.6f\n" : "Iteration: %5d    Infeasibility = %20.6f\n",
        number, phase1_infeasibility(core, event.dual));
  }
  if (env_.results_channel != nullptr) env_.results_channel->flush();
}

std::string IterationLog::variable(const simplex::Core& core, int j, bool entering) const {
  char buffer[kNameCut + 32];
  if (j < core.n()) {
    const std::string name = label(problem_.model->column_names(), column(j), 'x');
    std::snprintf(buffer, sizeof buffer, "%23s", name.c_str());
  } else {
    const int i = row(j - core.n());
    const bool ranged = problem_.model->sense()[i] == 'R';
    const std::string name = label(problem_.model->row_names(), i, 'c');
    std::snprintf(buffer, sizeof buffer, "%17s %s", name.c_str(), entering && ranged ? "range" : "slack");
  }
  return buffer;
}

void IterationLog::detailed(const simplex::Core& core, const simplex::IterationEvent& event,
                            std::int64_t count) {
  if (count < 2) {
    message(env_.results_channel,
            "\nIteration           Objective     "
            "       In Variable           Out Variable\n");
  }
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, event.phase1 ? (scaled_ ? "%6d sI" : "%6d  I") : "%6d   ",
                static_cast<int>(count));
  std::string line = buffer;
  const double shown = event.phase1 ? phase1_infeasibility(core, event.dual)
                                    : times(problem_.model->objective_sense(), event.objective);
  std::snprintf(buffer, sizeof buffer, std::fabs(shown) < kWideObjective ? "%20.6f" : "%20.6e", shown);
  line += buffer;
  line += variable(core, event.entering, true);
  if (event.leaving < 0) {
    line += event.entering_to_upper ? "    goes to upper bound\n" : "    goes to lower bound\n";
  } else {
    line += variable(core, event.leaving, false) + "\n";
  }
  message(env_.results_channel, "%s", line.c_str());
  if (env_.results_channel != nullptr) env_.results_channel->flush();
}

}  // namespace tovik::lp::run
