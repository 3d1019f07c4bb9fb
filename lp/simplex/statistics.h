/* What the simplex engine has counted in one optimization, as plain data.
 * - Order: Solver::begin_count() or continue_count() begins a count, Solver::write_statistics() reads it.
 * - Counts of two engines that worked for one optimization add up (Work::add, and Counters handed on by
 *   continue_count()); what describes a state, such as densities, is that of the last engine.
 * - Cost: about a hundred instructions an optimization, which one that moves nothing would feel twice. */
#pragma once

#include <cstdint>

#include "lp/factor/factor.h"
#include "lp/simplex/types.h"

namespace tovik::lp::simplex {

/* Ticks, and what the factor did. */
struct Work {
  factor::Counts factor;
  std::int64_t other_ticks = 0;  // of the engine outside its factor: pricing, ratio tests, values
  std::int64_t sifting_ticks = 0;

  void add(const Work& other) {
    factor.add(other.factor);
    other_ticks += other.other_ticks;
    sifting_ticks += other.sifting_ticks;
  }
  void subtract(const Work& other) {
    factor.subtract(other.factor);
    other_ticks -= other.other_ticks;
    sifting_ticks -= other.sifting_ticks;
  }
};

/* Running averages of the shares of nonzeros in results, at the end. */
struct Densities {
  double ftran = 0;  // entering column
  double btran = 0;  // row of the inverse
  double row = 0;    // row of the tableau
  double dse = 0;    // solve for the weights
  double flips = 0;  // change of the basic values by bound flips
};

struct Statistics {
  Counters counters;
  Work work;
  factor::Stats factor;  // of the last factorization
  Densities densities;
};

}  // namespace tovik::lp::simplex
