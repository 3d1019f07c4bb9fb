/* What follows from semi-continuous columns, ordered sets and indicators when bounds move.
 *
 * - A semi-continuous column that cannot be 0 is in its interval; one that cannot reach the interval is 0.
 * - Set of type 1: a column that cannot be 0 leaves 0 for all others. Type 2: for all but its neighbours; two columns
 *   that cannot be 0 and are no neighbours are infeasible.
 * - Indicator: an active switch sets the slack to 0, a slack that cannot be 0 sets the switch off.
 * Zero means zero up to the feasibility tolerance. */
#pragma once

#include <vector>

#include "mip/domain/domain.h"

namespace tovik::mip {

class ObjectPropagator {
 public:
  explicit ObjectPropagator(const Problem& problem);

  /* All objects that the column belongs to. */
  void propagate(Domain& domain, int column) const;
  void propagate_all(Domain& domain) const;

 private:
  enum class Kind : unsigned char { semi_column, set, indicator };
  struct Use {
    Kind kind;
    int index;
  };
  void add(int column, Kind kind, int index);
  static void semi_column(Domain& domain, int index);
  static void ordered_set(Domain& domain, int index);
  static void indicator(Domain& domain, int index);

  std::vector<std::vector<Use>> uses_;  // by column; empty without objects
};

}  // namespace tovik::mip
