/* A basis near an interior point, for a simplex that is to make a vertex of it.
 *
 * Variables, the rows' logicals among them, are ranked by how far they stand from their bounds against the size of their
 * multipliers, both in the form's scale: free ones first, fixed ones last. The first as many as there are rows are basic,
 * the others stand at the bound that their multiplier asks for. The matrix is not looked at: who factors the basis
 * mends what depends on each other.
 * Cost: a sort. */
#pragma once

#include <vector>

#include "lp/base/basis.h"
#include "lp/base/lp_data.h"

namespace tovik::lp::barrier {

/* x, d by column, activity, y by row: of the LP itself. */
struct GuessedFrom {
  const std::vector<double>& x;
  const std::vector<double>& d;
  const std::vector<double>& activity;
  const std::vector<double>& y;
};

Basis guess_basis(const LpData& lp, const GuessedFrom& point);

}  // namespace tovik::lp::barrier
