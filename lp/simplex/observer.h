/* What the outside may watch of a running simplex: one event an iteration. The observer decides what to log
 * and when. */
#pragma once

#include <cstdint>

namespace tovik::lp::simplex {

class Core;

struct IterationEvent {
  bool phase1 = false;
  bool dual = true;
  int entering = -1;  // variable (n + i: logical of row i); -1 when there is none
  int leaving = -1;   // -1: the entering variable went to its other bound
  bool entering_to_upper = false;
  double objective = 0;  // objective of the minimization form in phase 2 (running value)
};

class Observer {
 public:
  virtual ~Observer() = default;
  virtual void iteration(const Core& core, const IterationEvent& event) = 0;
  /* The pricing rule in force, by its printed name, was chosen (before the first iteration) or changed. */
  virtual void pricing(const char* rule, bool changed) = 0;
  virtual void text(const char* line) = 0;  // other messages of the display level 1 and above
  /* A basic variable that made the basis singular was replaced by a logical. */
  virtual void removed_by_singularity(const Core& core, int variable) = 0;
};

}  // namespace tovik::lp::simplex
