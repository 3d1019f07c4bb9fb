/* What a model can hold beyond rows, columns and column types, one member a family. All of it refers to
 * columns only: rows of the matrix come and go without touching it; deleted columns leave every family at
 * once. */
#pragma once

#include <span>

#include "model/families/indicators.h"
#include "model/families/mip_starts.h"
#include "model/families/priority_order.h"
#include "model/families/quadratic.h"
#include "model/families/row_pool.h"
#include "model/families/sets.h"

namespace tovik::model {

struct Families {
  // Mixed-integer data: a problem that holds any of it is a mixed-integer problem.
  Sets sets;
  Indicators indicators;
  RowPool user_cuts{'u'}, lazy_constraints{'l'};
  PriorityOrder order;
  MipStarts starts;
  // Quadratic data.
  QuadraticObjective quadratic_objective;
  QuadraticRows quadratic_rows;

  bool empty() const;
  bool has_mixed_integer() const;  // beyond column types
  void clear_mixed_integer() noexcept;
  void clear_names() noexcept;  // of all but the MIP starts, which are no part of the model's statement
  void renumber_columns(std::span<const int> renumber) noexcept;
  void remove_small(double eps) noexcept;
};

}  // namespace tovik::model
