/* A sequence of changes and re-solves, recorded once and played to every engine, so that all do the same
 * work. */
#pragma once

#include <string>
#include <vector>

#include "bench/nodes/engine.h"

namespace bench {

/* Processor time of this process in microseconds. */
double processor_us();

/* Changes, then one re-solve. */
struct Step {
  std::vector<BoundChange> bounds;
  Rows add;
  std::vector<int> remove;
};

struct Script {
  std::string name;
  std::vector<Step> steps;
  bool wants_primal = false;  // the search asks for values after each optimal re-solve
};

/* What one engine made of a script: times count changes, re-solve and values. */
struct Played {
  std::vector<Solve> solves;
  std::vector<double> us;  // by step
  double root_us = 0;
  std::int64_t root_pivots = 0;
  double total_us() const;
  std::int64_t pivots() const;
};

/* Applies a step and re-solves. */
Solve take(const Step& step, Engine& engine);

/* A new engine solves the root, then plays the steps. */
Played play(const Script& script, const Contestant& contestant, const Model& model);

/* Repeats that pay for what takes `us`: three for what is short, one for what takes long. */
int repeats(double us);

/* The fastest of several plays, step by step. */
Played play_best(const Script& script, const Contestant& contestant, const Model& model);

/* Steps after which two engines disagree: one text each, empty when all is well. */
std::vector<std::string> differences(const Script& script, const Played& ours, const Played& theirs);

}  // namespace bench
