#include "bench/nodes/script.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <numeric>

namespace bench {

namespace {

constexpr double kSameObjective = 1e-6;  // relative
constexpr double kShort = 3e5;           // microseconds, root included

const char* word(State state) {
  switch (state) {
    case State::optimal:
      return "optimal";
    case State::infeasible:
      return "infeasible";
    case State::limit:
      return "stopped";
    case State::failed:
      break;
  }
  return "failed";
}

bool agree(const Solve& a, const Solve& b) {
  if (a.state != b.state || a.state == State::failed) return false;
  if (a.state != State::optimal) return true;
  const double size = std::max({1.0, std::fabs(a.objective), std::fabs(b.objective)});
  return std::fabs(a.objective - b.objective) <= kSameObjective * size;
}

/* The first play decides what is compared; each time is the smallest of all. */
void keep_fastest(Played& best, const Played& again) {
  best.root_us = std::min(best.root_us, again.root_us);
  for (std::size_t k = 0; k < best.us.size(); ++k) best.us[k] = std::min(best.us[k], again.us[k]);
}

}  // namespace

double processor_us() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return 1e6 * static_cast<double>(now.tv_sec) + 1e-3 * static_cast<double>(now.tv_nsec);
}

double Played::total_us() const {
  return std::accumulate(us.begin(), us.end(), 0.0);
}

std::int64_t Played::pivots() const {
  std::int64_t sum = 0;
  for (const Solve& solve : solves) sum += solve.pivots;
  return sum;
}

Solve take(const Step& step, Engine& engine) {
  if (!step.remove.empty()) engine.delete_rows(step.remove);
  if (step.add.count() > 0) engine.add_rows(step.add);
  if (!step.bounds.empty()) engine.change_bounds(step.bounds);
  return engine.resolve();
}

Played play(const Script& script, const Contestant& contestant, const Model& model) {
  Played played;
  const std::unique_ptr<Engine> engine = contestant.make(model);
  double before = processor_us();
  played.root_pivots = engine->solve_root().pivots;
  played.root_us = processor_us() - before;
  for (const Step& step : script.steps) {
    before = processor_us();
    const Solve solve = take(step, *engine);
    if (script.wants_primal && solve.state == State::optimal) engine->primal();
    played.us.push_back(processor_us() - before);
    played.solves.push_back(solve);
  }
  return played;
}

int repeats(double us) {
  return us < kShort ? 3 : 1;
}

Played play_best(const Script& script, const Contestant& contestant, const Model& model) {
  Played best = play(script, contestant, model);
  for (int more = repeats(best.root_us + best.total_us()) - 1; more > 0; --more)
    keep_fastest(best, play(script, contestant, model));
  return best;
}

std::vector<std::string> differences(const Script& script, const Played& ours, const Played& theirs) {
  std::vector<std::string> found;
  for (std::size_t k = 0; k < script.steps.size(); ++k) {
    const Solve &a = ours.solves[k], &b = theirs.solves[k];
    if (agree(a, b)) continue;
    char text[160];
    std::snprintf(text, sizeof text, "%s, step %zu: %s %.10g against %s %.10g", script.name.c_str(), k + 1,
                  word(a.state), a.objective, word(b.state), b.objective);
    found.emplace_back(text);
  }
  return found;
}

}  // namespace bench
