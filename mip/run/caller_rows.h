/* Rows and bounds that a callback states in its own space, carried to the problem that is searched. */
#pragma once

#include "mip/run/search_callback.h"

namespace tovik::mip::run {

/* Columns in any order; a repeated one counts with the sum of its values. */
struct CallerRow {
  int count;
  const int* columns;
  const double* values;
  double rhs;
  int sense;  // L, E or G
};

struct CallerBound {
  int column;
  char side;  // L, U or B
  double value;
};

/* a x <= b as it stands, a x >= b negated; of an equation both sides. */
Cut cut_of(const CallbackScene& scene, const CallerRow& row);

/* As a change of a bound, or as a row where the column is a sum of several that are searched, or none. */
void add_bound(const CallbackScene& scene, const CallerBound& bound, NewChild& child);

}  // namespace tovik::mip::run
