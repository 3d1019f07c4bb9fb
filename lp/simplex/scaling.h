/* Row and column scaling by powers of two (exact): geometric passes, then equilibration of the columns.
 * Scaled matrix = R A C; a column's scaled value is x / C, its scaled cost c * C; a row's scaled activity is
 * R * (A x). */
#pragma once

#include <vector>

#include "lp/linalg/lp_data.h"

namespace tovik::lp::simplex {

struct Scaling {
  std::vector<double> row, column;  // empty when the model is not scaled
  bool active() const { return !row.empty(); }
};

/* mode -1: none; 0: geometric and equilibrated unless the entries lie within [0.2, 5]; 1: more passes. */
Scaling compute_scaling(const Matrix& matrix, int mode);

}  // namespace tovik::lp::simplex
