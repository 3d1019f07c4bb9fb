/* The surplus protocol of queries whose arrays may be too short. With space 0 and a surplus pointer a query
 * only reports what it needs: as a negative surplus, with code 1207 that prints nothing. Otherwise it fills
 * what fits, and the surplus is the space that is left (negative: missing, 1207). */
#pragma once

#include <algorithm>
#include <climits>
#include <cstdint>

#include "env/error.h"
#include "include/tovik.h"

namespace tovik::model {

inline bool is_size_query(int space, const int* surplus) {
  return space == 0 && surplus != nullptr;
}

inline Status report_size(std::int64_t needed, int* surplus) {
  *surplus = -static_cast<int>(std::min<std::int64_t>(needed, INT_MAX));
  return needed > 0 ? Status::reported(TVK_ERROR_ARRAY_TOO_SHORT) : Status();
}

inline Status report_surplus(std::int64_t needed, int space, int* surplus) {
  const std::int64_t left = space - needed;
  *surplus = static_cast<int>(std::max<std::int64_t>(left, -INT_MAX));
  return left < 0 ? Status(TVK_ERROR_ARRAY_TOO_SHORT) : Status();
}

}  // namespace tovik::model
