/* Bounds that a binary column sets (x <= slope z + constant) and that the relaxation's optimum violates. */
#pragma once

#include "mip/worker/plugin.h"
#include "mip/worker/worker.h"

namespace tovik::mip {

class ImpliedBounds : public Plugin {
 public:
  const char* name() const override { return "implied bounds"; }
  Verdict call(Worker& worker, const Moment& moment) override;
};

}  // namespace tovik::mip
