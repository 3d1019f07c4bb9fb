/* From the stored model to the engines' plain data: minimization form, infinite bounds as kInf, rows as
 * ranges. */
#pragma once

#include "env/environment.h"
#include "lp/base/lp_data.h"
#include "lp/verify/bounds.h"
#include "model/store/model.h"

namespace tovik::lp::run {

LpData build_lp(const model::Model& model);

/* 1225 or 1233 for data that no optimizer can work with; the matrix is looked at on demand. */
Status check_finite(Environment& env, const model::Model& model, bool with_matrix);

/* Bounds of one row's activity. */
verify::Limits row_bounds(char sense, double rhs, double range);

/* Stored bounds use +-1e20 for infinity. On the other side it is a number like any other: nothing may stand
 * at an infinite point. */
inline double stored_lower(double b) {
  return b <= -model::kInfinity ? -kInf : b >= model::kInfinity ? model::kInfinity : b;
}
inline double stored_upper(double b) {
  return b >= model::kInfinity ? kInf : b <= -model::kInfinity ? -model::kInfinity : b;
}

}  // namespace tovik::lp::run
