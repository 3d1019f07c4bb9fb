/* How column types and the problem type go together. */
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

}  // namespace tovik::model
