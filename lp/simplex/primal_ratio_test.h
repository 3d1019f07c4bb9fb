/* Choice of the leaving variable in the primal simplex.
 *
 * The entering variable q moves by t >= 0 in `direction` (+1, -1); the basic variables change by
 * -direction * t * column.
 * - feasible(): Harris' two passes: the largest pivot among the ratios below the smallest relaxed one.
 * - infeasible(): first phase: the sum of infeasibilities is piecewise linear in t; break points are passed
 *   while its slope is negative, then the last one with a large enough pivot is taken.
 * - Cost: both loop over the pattern of the column only.
 * - Papers: Harris, Math. Programming 5 (1973); Maros, EJOR 23 (1986). */
#pragma once

#include <vector>

#include "lp/base/sparse_vector.h"
#include "lp/simplex/core.h"

namespace tovik::lp::simplex {

struct PrimalPick {
  int position = -1;     // -1: nothing blocks
  double alpha = 0;      // column entry of the position
  double step = 0;       // t at which the position reaches its bound; negative when it stands beyond it
  int leaving_move = 0;  // +1: leaves at its lower bound, -1: at its upper bound
};

class PrimalRatioTest {
 public:
  void resize(const Core& core);
  /* slack: relaxation of the bounds in the first pass. */
  PrimalPick feasible(Core& core, const SparseVector& column, double direction, double slack);
  /* slope: |d_q| of the sum of infeasibilities; limit: largest t of q itself. */
  PrimalPick infeasible(Core& core, const SparseVector& column, double direction, double slope, double limit);

 private:
  struct Break {
    double relaxed;
    double tight;
    double alpha;  // as in the column
    int position;
    int leaving_move;
  };
  void collect(const Core& core, const SparseVector& column, double direction);
  std::vector<Break> breaks_;
  std::vector<int> candidate_;
};

}  // namespace tovik::lp::simplex
