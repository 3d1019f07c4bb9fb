/* Rounding of the relaxation's point.
 *
 * - round_by_locks: each fraction goes where no row minds. Cost: one pass over the integer columns.
 * - SimpleRounding: that, as a plugin.
 * - PropagatedRounding: integer columns are fixed one after another in the domain, those that are nearly whole first, the
 *   others to the side that a random threshold says; each fixing is propagated. A fixing that fails is tried once on the
 *   other side; a few such failures end it. Continuous columns are left to the judge. */
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "mip/worker/plugin.h"
#include "mip/worker/worker.h"

namespace tovik::mip {

/* None where a fraction is locked on both sides, or the rounded point is not below the cutoff. */
std::optional<std::vector<double>> round_by_locks(const Worker& worker, std::span<const double> x);

class SimpleRounding : public Plugin {
 public:
  const char* name() const override { return "simple rounding"; }
  Verdict call(Worker& worker, const Moment& moment) override;
};

class PropagatedRounding : public Plugin {
 public:
  const char* name() const override { return "propagated rounding"; }
  Verdict call(Worker& worker, const Moment& moment) override;
};

}  // namespace tovik::mip
