#include "lp/simplex/dual_weights.h"

#include "lp/simplex/dual_dantzig.h"
#include "lp/simplex/dual_devex.h"
#include "lp/simplex/dual_steepest_edge.h"

namespace tovik::lp::simplex {

void DualWeights::save(const Core& core) {
  if (by_variable_.size() != static_cast<size_t>(core.total()))
    by_variable_.assign(static_cast<size_t>(core.total()), 1.0);
  for (int p = 0; p < core.m(); ++p) by_variable_[core.basis.head(p)] = weight_[p];
}

void DualWeights::restore(const Core& core) {
  for (int p = 0; p < core.m(); ++p) {
    weight_[p] = by_variable_[core.basis.head(p)];
  }
  for (int p = 0; p < core.m(); ++p) by_variable_[core.basis.head(p)] = 1.0;
}

void DualRule::start(Core& core, bool /*carried*/, DualWeights& weights, SparseVector& /*work*/) const {
  weights.reset(core.m());
  ++core.counters.dual.weight_resets;
}

bool DualRule::accept(int /*p*/, const SparseVector& /*rho*/, DualWeights& /*weights*/) const {
  return true;
}

const DualRule& dual_rule(Pricing pricing) {
  static const DualSteepestEdge unit(DualSteepestEdge::Start::unit);
  static const DualSteepestEdge exact(DualSteepestEdge::Start::exact);
  static const DualDevex devex;
  static const DualDantzig dantzig;
  switch (pricing) {
    case Pricing::automatic:
    case Pricing::steepest_edge_unit:
      return unit;
    case Pricing::steepest_edge:
      return exact;
    case Pricing::devex:
      return devex;
    case Pricing::dantzig:
      return dantzig;
  }
  return unit;
}

}  // namespace tovik::lp::simplex
