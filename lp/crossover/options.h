/* What callers of crossover say, are told while it runs, and get. */
#pragma once

#include <cstdint>
#include <vector>

#include "lp/base/control.h"
#include "lp/simplex/core.h"

namespace tovik::lp::crossover {

/* Which pushes come first. */
enum class First { primal, dual };

struct Options {
  First first = First::primal;
};

/* A point of the core's scaled LP. */
struct Point {
  std::vector<double> x;  // n: within the bounds
  std::vector<double> y;  // m: multipliers of the rows
};

/* A push is done when its variable stands at a bound (primal), or its multiplier is 0 (dual), or it has changed places
 * with another: those are the exchanges. */
struct Counts {
  int primal_pushes = 0, primal_exchanges = 0;
  int dual_pushes = 0, dual_exchanges = 0;
};

struct Progress {
  bool primal = false;  // which pushes are at work
  int left = 0;         // of them
  Counts done;
};

/* Told about once in a second of work; for logs. */
class Observer {
 public:
  virtual ~Observer() = default;
  virtual void begin(int primal_pushes, int dual_pushes) = 0;
  virtual void progress(const Progress& now) = 0;
};

struct Result {
  Stop stop = Stop::none;  // why it ended before its time: what was left stands at the nearest bounds
  Counts counts;
  int abandoned = 0;  // pushes that no pivot was good enough for, or that were not reached
  /* At the basis it ends with, by the LP's own bounds and costs. */
  simplex::Core::Infeasibility primal, dual;
};

}  // namespace tovik::lp::crossover
