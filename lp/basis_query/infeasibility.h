/* Activities of rows at a point, and by how much it violates rows and columns, in the user's space: positive
 * above the upper limit, negative below the lower one, 0 within; a point that is not a number gives none. */
#pragma once

#include "model/store/model.h"

namespace tovik::lp::run {

/* Row i times x, x by column; compensated, because its cancellation decides about feasibility. */
double row_activity(const model::Model& model, int i, const double* x);
double row_violation(const model::Model& model, int i, const double* x);
/* Bounds of column j, where a semi-continuous one may as well be zero. */
double column_violation(const model::Model& model, int j, double value);

}  // namespace tovik::lp::run
