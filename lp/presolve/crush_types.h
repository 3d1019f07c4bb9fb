/* What the crush of linear forms and bases works on, and the steps that several operations share. */
#pragma once

#include <vector>

#include "lp/base/basis.h"
#include "lp/presolve/compressed_vectors.h"

namespace tovik::lp::presolve {

/* g'x + constant. */
struct LinearForm {
  std::vector<double> coefficients;
  double constant = 0;
};

/* Column s leaves a form by a x_s = beta - rest'x; rest may hold s. */
void substitute(LinearForm& form, int s, double a, double beta, const View& rest);

/* The status of a variable whose scaled copy has status `at`. */
inline BasisStatus scaled_status(BasisStatus at, bool same_direction) {
  if (same_direction || (at != BasisStatus::lower && at != BasisStatus::upper)) return at;
  return at == BasisStatus::lower ? BasisStatus::upper : BasisStatus::lower;
}

}  // namespace tovik::lp::presolve
