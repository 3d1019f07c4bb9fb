/* Solution arrays that the last optimization left in a problem, in the user's space and the user's signs. */
#pragma once

#include <vector>

namespace tovik {

struct Solution {
  double objective = 0;
  std::vector<double> x;      // columns
  std::vector<double> slack;  // rows: rhs - activity
  std::vector<double> pi;     // rows: d objective / d rhs; empty without dual values
  std::vector<double> dj;     // columns: obj - A'pi; empty without dual values
  int method = -1;            // of the optimizer that made it (env/method_code.h)
  bool has_basis = false;
  bool primal_feasible = false;
  bool dual_feasible = false;
  int iterations = 0;
  int phase1_iterations = 0;
  int barrier_iterations = 0;
  int crossover_primal_pushes = 0, crossover_primal_exchanges = 0;
  int crossover_dual_pushes = 0, crossover_dual_exchanges = 0;
  int factorizations = 0;
  std::vector<double> ray;     // columns: direction of unboundedness (unbounded); empty otherwise
  std::vector<double> farkas;  // rows: y with y'A x <= y'b violated by every x in its bounds (infeasible)
  double farkas_gap = 0;       // by which the proof holds
  const void* live_engine = nullptr;  // updates the arrays in place; null: none
};

}  // namespace tovik
