/* Where a variable stands in a basis, in the words of every engine. */
#pragma once

namespace tovik::lp {

/* Where a variable stands. Values match the codes of the public basis routines. */
enum class BasisStatus : signed char { lower = 0, basic = 1, upper = 2, free = 3 };

/* The status of a row's activity from that of its logical, and the other way: the logical is minus the
 * activity. */
inline BasisStatus activity_status(BasisStatus logical) {
  return logical == BasisStatus::lower   ? BasisStatus::upper
         : logical == BasisStatus::upper ? BasisStatus::lower
                                         : logical;
}

}  // namespace tovik::lp
