/* What those methods have done that give the simplex its start. */
#pragma once

#include <cstdint>

#include "lp/crossover/options.h"

namespace tovik::lp::run {

struct BarrierCounts {
  int iterations = 0;
  std::int64_t factorizations = 0, solves = 0;
  std::int64_t rows = 0, factor_entries = 0;  // of the last system that was factored
  double factor_flops = 0;                    // for one factorization of it
  double ordering_seconds = 0, seconds = 0;   // of all interior point work
  std::int64_t ticks = 0;
  crossover::Counts crossover;
  double crossover_seconds = 0;  // the simplex behind it is not counted
  bool ran() const { return factorizations > 0 || seconds > 0; }
};

struct NetworkCounts {
  int nodes = 0, arcs = 0;  // that were found in the LP
  std::int64_t iterations = 0, phase1_iterations = 0;
  double extraction_seconds = 0, seconds = 0;
  std::int64_t ticks = 0;
};

}  // namespace tovik::lp::run
