/* Row and column scaling by powers of two (exact): geometric passes, then equilibration of the columns.
 * Scaled matrix = R A C; a column's scaled value is x / C, its scaled cost c * C; a row's scaled activity is
 * R * (A x). */
#pragma once

#include <vector>

#include "lp/base/lp_data.h"

namespace tovik::lp::simplex {

struct Scaling {
  std::vector<double> row, column;  // empty when the model is not scaled
  bool active() const { return !row.empty() || !column.empty(); }
};

/* mode -1: none; 0: geometric and equilibrated unless the entries lie within [0.2, 5]; 1: more passes. */
Scaling compute_scaling(const Matrix& matrix, int mode);

/* For a line that is added to a scaled model: a power of two that brings the geometric mean of its smallest
 * and largest entry near 1. */
double scale_factor(double smallest, double largest);

}  // namespace tovik::lp::simplex
