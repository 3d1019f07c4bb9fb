#include <vector>

#include "mip/domain/domain.h"
#include "mip/presolve/rules.h"
#include "mip/propagate/propagator.h"

namespace tovik::mip {

void propagate_bounds(PresolveState& state) {
  if (!state.allows(PresolveRule::propagation)) return;
  lp::presolve::Workspace& ws = state.ws();
  std::vector<int> row_map, column_map;
  const Problem left = state.extract(row_map, column_map);
  Domain domain(left, state.tolerances());
  Propagator propagator(left);
  const bool possible = propagator.run_all(domain);
  ws.add_work(domain.work() + propagator.work() + static_cast<std::int64_t>(left.lp.matrix.index.size()));
  if (!possible) {
    state.set_infeasible(PresolveFinding::Kind::propagation, -1, -1);
    return;
  }
  for (int k = 0; k < left.num_columns(); ++k) {
    const int j = column_map[k];
    if (left.is_integer[k] != 0) state.tighten(j, domain.lower(k), domain.upper(k));
  }
}

}  // namespace tovik::mip
