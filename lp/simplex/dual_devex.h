/* Dual devex: reference weights, at least 1, that need no solve of their own. They start at 1, the present
 * basis being the reference, and start anew when one has grown too far.
 * Paper: Harris, Math. Programming 5 (1973). */
#pragma once

#include "lp/simplex/dual_weights.h"

namespace tovik::lp::simplex {

class DualDevex : public DualRule {
 public:
  static constexpr double kReset = 1e7;  // weights this far from the reference say nothing any more

  const char* name() const override { return "devex"; }
  WeightKind kind() const override { return WeightKind::reference; }
  bool update(const DualPivot& pivot, DualWeights& weights) const override;
};

}  // namespace tovik::lp::simplex
