/* Forrest-Tomlin update (Math. Programming 2, 1972) in the slot numbering of lu.h. */
#pragma once

#include "lp/base/sparse_vector.h"
#include "lp/factor/lu.h"

namespace tovik::lp::factor {

/* Replaces the column in position r; x is a zero array over the slots, zero again afterwards. See
 * Factor::update for the other arguments. Returns false when the new diagonal disagrees with pivot * old
 * diagonal; lu is unusable
 * then unless updates are recorded. */
bool replace_column(const SparseVector& column, const SparseVector& row, int r, std::vector<double>& x,
                    Lu& lu);

/* Takes back the last update that was recorded; see UpdateRecord. Cost: what the update wrote. */
void undo_update(Lu& lu);

}  // namespace tovik::lp::factor
