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

using Progress = std::variant<SimplexProgress, PresolveProgress>;

class ProgressSource {
 public:
  virtual ~ProgressSource() = default;
  virtual Progress progress() const = 0;
};

}  // namespace tovik::lp
