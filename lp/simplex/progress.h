/* How far the simplex is, for logs and callbacks: sums of infeasibilities in the scaled space.
 * - phase1_infeasibility: what the first phase still has to remove. Cost: a pass over the rows (primal) or over all
 *   variables (dual).
 * - CoreProgress: the same and the rest for a callback, made when it asks. In the dual's first phase there is no point and
 *   no bound, in the primal's the reduced costs are those of the infeasibility: such numbers are kInf. */
#pragma once

#include "lp/base/progress.h"
#include "lp/simplex/core.h"

namespace tovik::lp::simplex {

/* Bound violations of the basic variables in the primal, wrong-signed reduced costs in the dual. */
double phase1_infeasibility(const Core& core, bool dual);

class CoreProgress final : public ProgressSource {
 public:
  CoreProgress(const Core& core, const Standing& at) : core_(core), at_(at) {}
  Progress progress() const override;

 private:
  const Core& core_;
  const Standing& at_;
};

}  // namespace tovik::lp::simplex
