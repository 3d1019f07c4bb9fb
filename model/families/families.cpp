#include "model/families/families.h"

namespace tovik::model {

bool Families::empty() const {
  return !has_mixed_integer() && quadratic_objective.empty() && quadratic_rows.empty();
}

bool Families::has_mixed_integer() const {
  return !sets.empty() || !indicators.empty() || !user_cuts.empty() || !lazy_constraints.empty() ||
         !order.empty() || !starts.empty();
}

void Families::clear_mixed_integer() noexcept {
  sets.clear();
  indicators.clear();
  user_cuts.clear();
  lazy_constraints.clear();
  order.clear();
  starts.clear();
}

void Families::clear_names() noexcept {
  sets.clear_names();
  indicators.clear_names();
  user_cuts.clear_names();
  lazy_constraints.clear_names();
  quadratic_rows.clear_names();
}

void Families::renumber_columns(std::span<const int> renumber) noexcept {
  sets.renumber_columns(renumber);
  indicators.renumber_columns(renumber);
  user_cuts.renumber_columns(renumber);
  lazy_constraints.renumber_columns(renumber);
  order.renumber_columns(renumber);
  starts.renumber_columns(renumber);
  quadratic_objective.renumber_columns(renumber);
  quadratic_rows.renumber_columns(renumber);
}

void Families::remove_small(double eps) noexcept {
  indicators.remove_small(eps);
  user_cuts.remove_small(eps);
  lazy_constraints.remove_small(eps);
  quadratic_objective.remove_small(eps);
  quadratic_rows.remove_small(eps);
}

}  // namespace tovik::model
