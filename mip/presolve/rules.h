/* The rules of presolve, one file a family. Each makes what reductions it finds and leaves the state consistent after every
 * one. */
#pragma once

#include "mip/presolve/state.h"

namespace tovik::mip {

/* rows.cpp: the queued rows. Empty, redundant, singleton and forcing ones go; sides that bounds imply are dropped. */
void reduce_rows(PresolveState& state);
/* columns.cpp: the queued columns. Fixed ones, those without rows, and those that no row keeps from their better bound. */
void reduce_columns(PresolveState& state);

/* bounds.cpp: propagation of all rows and objects; what it says of integer columns is kept. */
void propagate_bounds(PresolveState& state);
/* probing.cpp: values of binary columns are tried, within a limit on the work. */
void probe(PresolveState& state);
/* objects.cpp: objects that the bounds decide become bounds. */
void reduce_objects(PresolveState& state);

/* coefficients.cpp: all rows. */
void reduce_divisors(PresolveState& state);
void tighten_coefficients(PresolveState& state);
/* dominated_rows.cpp: pairs of rows where one has entries wherever the other has. */
void remove_dominated_rows(PresolveState& state);
/* cliques.cpp: rows that are cliques take up what makes others redundant. */
void merge_cliques(PresolveState& state);
/* implied_integers.cpp */
void find_implied_integers(PresolveState& state);

/* parallel_columns.cpp */
void reduce_parallel_columns(PresolveState& state);
/* dominated_columns.cpp: columns that another one, or the cheapest ones of their rows, replace at no higher cost. */
void fix_dominated_columns(PresolveState& state);

/* aggregate.cpp: equations of two columns, columns of one row, columns that an equation leaves free. */
void aggregate(PresolveState& state);

}  // namespace tovik::mip
