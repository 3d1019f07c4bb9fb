/* Brings a simplex engine up to date with an LP of which a journal names the changes, and looks at nothing else.
 *
 * The LP is seen through a source: column_bounds(j), cost(j), row_bounds(i) and offset(), in minimization form. */
#pragma once

#include "env/journal.h"
#include "lp/simplex/relaxation.h"
#include "lp/verify/bounds.h"

namespace tovik::lp::run {

/* Bounds, sides and costs that differ from the engine's copy. */
template <class Source>
void synchronize_values(const Source& source, const Journal& changes, simplex::Relaxation& engine) {
  const LpData& known = engine.user_lp();
  const auto column = [&](int j) {
    const verify::Limits bounds = source.column_bounds(j);
    if (bounds.lower != known.lower[j] || bounds.upper != known.upper[j])
      engine.change_bounds(j, bounds.lower, bounds.upper);
    if (const double cost = source.cost(j); cost != known.cost[j]) engine.change_cost(j, cost);
    engine.renew_column(j);
  };
  const auto row = [&](int i) {
    const verify::Limits sides = source.row_bounds(i);
    if (sides.lower != known.row_lower[i] || sides.upper != known.row_upper[i])
      engine.change_row_bounds(i, sides.lower, sides.upper);
    engine.renew_row(i);  // its slack counts from the right-hand side
  };
  if (changes.values_lost()) {
    engine.renew_answer();
    for (int j = 0; j < known.num_columns(); ++j) column(j);
    for (int i = 0; i < known.num_rows(); ++i) row(i);
  } else {
    for (const int j : changes.columns().touched()) column(j);
    for (const int i : changes.rows().touched()) row(i);
  }
  engine.change_offset(source.offset());
}

/* So much is new that scale factors and basis deserve a fresh start. */
inline bool mostly_new(int added, int all) {
  return 2 * static_cast<std::int64_t>(added) > static_cast<std::int64_t>(all) + 20;
}

}  // namespace tovik::lp::run
