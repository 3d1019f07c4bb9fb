/* Where an engine stands while it asks for its callback. Nothing is computed unless the callback wants to know.
 * Sums of infeasibilities and objectives are those of the LP that the engine works on, which may be scaled and presolved;
 * kInf where the algorithm does not have the number at that time. */
#pragma once

#include <cstdint>
#include <variant>

namespace tovik::lp {

struct SimplexProgress {
  bool dual = false;
  bool phase1 = false;
  std::int64_t iterations = 0;
  double objective = 0;  // of the minimization form
  double primal_infeasibility = 0, dual_infeasibility = 0;
};

struct PresolveProgress {
  int rows_removed = 0, columns_removed = 0;  // the aggregator's included
  int substitutions = 0;
  int bounds_improved = 0;
};

/* Infeasibilities are the largest of any row or column. */
struct BarrierProgress {
  std::int64_t iterations = 0;
  double primal_objective = 0, dual_objective = 0;  // of the minimization form
  double primal_infeasibility = 0, dual_infeasibility = 0;
};

struct CrossoverProgress {
  std::int64_t exchanges = 0;
  int left = 0;  // pushes of the kind at work
};

using Progress = std::variant<SimplexProgress, PresolveProgress, BarrierProgress, CrossoverProgress>;

/* What is at work; the numbers are those that callbacks are told. */
enum class CallOrigin {
  simplex = 1,
  network = 3,
  primal_crossover = 4,
  dual_crossover = 5,
  barrier = 6,
  presolve = 7
};

class ProgressSource {
 public:
  virtual ~ProgressSource() = default;
  virtual CallOrigin origin() const { return CallOrigin::simplex; }
  virtual Progress progress() const = 0;
};

}  // namespace tovik::lp
