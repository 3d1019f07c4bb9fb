/* From the stored model to the engines' plain data: minimization form, infinite bounds as kInf, rows as
 * ranges. */
#pragma once

#include "lp/linalg/lp_data.h"
#include "model/model.h"

namespace tovik::lp::dispatch {

LpData build_lp(const model::Model& model);

/* Bounds of one row's activity. */
struct RowBounds {
  double lower, upper;
};
RowBounds row_bounds(char sense, double rhs, double range);

/* Stored bounds use +-1e20 for infinity. */
inline double stored_bound(double b) {
  return b >= model::kInfinity ? kInf : b <= -model::kInfinity ? -kInf : b;
}

}  // namespace tovik::lp::dispatch
