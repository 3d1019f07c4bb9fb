/* How a problem's data and its type go together: mixed-integer data (column types, sets, indicators, ...), a
 * quadratic objective, quadratic constraints. */
#pragma once

namespace tovik::model {

/* Does a problem of this type have column types? */
constexpr bool is_mixed_integer(int type) {
  return type != 0 && type != 5 && type != 10;
}

/* The mixed-integer kind of a problem type. */
constexpr int mixed_integer_type(int type) {
  switch (type) {
    case 0:
      return 1;
    case 5:
      return 7;
    case 10:
      return 11;
    default:
      return type;
  }
}

/* Does a problem of this type have quadratic constraints, perhaps none yet? */
constexpr bool is_quadratically_constrained(int type) {
  return type == 10 || type == 11 || type == 13;
}

/* Can a problem of this type have a quadratic objective? */
constexpr bool is_quadratic(int type) {
  return type == 5 || type == 7 || type == 8 || is_quadratically_constrained(type);
}

/* The type that a problem becomes with a quadratic objective. */
constexpr int quadratic_type(int type) {
  return type == 0 ? 5 : type == 1 ? 7 : type;
}

/* The type that a problem becomes with a quadratic constraint. */
constexpr int quadratically_constrained_type(int type) {
  switch (type) {
    case 0:
    case 5:
      return 10;
    case 1:
    case 7:
      return 11;
    default:
      return type;
  }
}

}  // namespace tovik::model
