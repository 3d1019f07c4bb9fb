/* Plain pricing of the dual: all weights are 1 and stay so; the largest infeasibility leaves. */
#pragma once

#include "lp/simplex/dual_weights.h"

namespace tovik::lp::simplex {

class DualDantzig : public DualRule {
 public:
  const char* name() const override { return nullptr; }
  WeightKind kind() const override { return WeightKind::unit; }
  bool update(const DualPivot& /*pivot*/, DualWeights& /*weights*/) const override { return false; }
};

}  // namespace tovik::lp::simplex
