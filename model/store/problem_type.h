/* How a problem's data and its type go together: mixed-integer data (column types, sets, indicators, ...), a
 * quadratic objective, quadratic constraints. */
#pragma once

#include "include/tovik.h"

namespace tovik::model {

/* Does a problem of this type have column types? */
constexpr bool is_mixed_integer(int type) {
  return type != TVK_PROBTYPE_LP && type != TVK_PROBTYPE_QP && type != TVK_PROBTYPE_QCP;
}

/* The mixed-integer kind of a problem type. */
constexpr int mixed_integer_type(int type) {
  switch (type) {
    case TVK_PROBTYPE_LP:
      return TVK_PROBTYPE_MILP;
    case TVK_PROBTYPE_QP:
      return TVK_PROBTYPE_MIQP;
    case TVK_PROBTYPE_QCP:
      return TVK_PROBTYPE_MIQCP;
    default:
      return type;
  }
}

/* Does a problem of this type have quadratic constraints, perhaps none yet? */
constexpr bool is_quadratically_constrained(int type) {
  return type == TVK_PROBTYPE_QCP || type == TVK_PROBTYPE_MIQCP || type == TVK_PROBTYPE_FIXED_MIQCP;
}

/* Can a problem of this type have a quadratic objective? */
constexpr bool is_quadratic(int type) {
  return type == TVK_PROBTYPE_QP || type == TVK_PROBTYPE_MIQP || type == TVK_PROBTYPE_FIXED_MIQP ||
         is_quadratically_constrained(type);
}

/* The type that a problem becomes with a quadratic objective. */
constexpr int quadratic_type(int type) {
  return type == TVK_PROBTYPE_LP ? TVK_PROBTYPE_QP : type == TVK_PROBTYPE_MILP ? TVK_PROBTYPE_MIQP : type;
}

/* The type that a problem becomes with a quadratic constraint. */
constexpr int quadratically_constrained_type(int type) {
  switch (type) {
    case TVK_PROBTYPE_LP:
    case TVK_PROBTYPE_QP:
      return TVK_PROBTYPE_QCP;
    case TVK_PROBTYPE_MILP:
    case TVK_PROBTYPE_MIQP:
      return TVK_PROBTYPE_MIQCP;
    default:
      return type;
  }
}

}  // namespace tovik::model
