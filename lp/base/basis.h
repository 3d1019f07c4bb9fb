/* A basis by variable, with its weights: the form in which a search stores it and passes it on.
 *
 * A row's status is that of its activity: lower means that the activity stands at the row's lower bound.
 * Weights are the dual steepest-edge weights of the basic variables by variable, columns first, in the
 * engine's scaled space: size columns + rows, entries of nonbasic variables hold no meaning; empty when
 * unknown. */
#pragma once

#include <vector>

#include "lp/base/basis_status.h"

namespace tovik::lp {

struct Basis {
  std::vector<BasisStatus> columns, rows;
  std::vector<double> dual_weights;
};

}  // namespace tovik::lp
