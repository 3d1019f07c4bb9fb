/* Working bounds of the primal simplex: widened against degeneracy, shifted where rounding left a basic
 * variable outside.
 *
 * Only basic variables are widened: at the start of a perturbation, and each variable on entering the basis.
 * The present point therefore stays as it is and stays feasible. Fixed variables are never widened. restore()
 * puts the model's bounds back; nonbasics return to them, so the basic values have to be computed anew.
 *
 * - Sizes: widening: magnitude * scale * (1 + r_j) * max(1, |bound|); shifts: the violation, plus a random
 *   part of the tolerance. Scaled space. */
#pragma once

#include "lp/simplex/core.h"

namespace tovik::lp::simplex {

class PrimalBounds {
 public:
  /* Widens the bounds of all basics and from now on those of entering variables. */
  void perturb(Core& core, double scale);
  bool perturbing() const { return scale_ > 0; }
  /* Bounds differ from the model's. */
  bool changed() const { return scale_ > 0 || shifted_; }
  void widen(Core& core, int j) const;
  /* Moves the violated bound of the basic in position p past its value. */
  void shift_behind(Core& core, int p);
  /* Moves the bound at which the basic in position p is about to leave to its present value. */
  void shift_to_value(Core& core, int p, int leaving_move);
  void restore(Core& core);

 private:
  void shift(Core& core, int p, double lower, double upper);
  double scale_ = 0;
  bool shifted_ = false;
};

}  // namespace tovik::lp::simplex
