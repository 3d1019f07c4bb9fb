/* The caller's cuts (Problem::user_cuts) that the relaxation violates. They are as valid as the caller says: what they cut off
 * is of no interest, and no solution found otherwise is refused for them. */
#pragma once

#include "mip/worker/plugin.h"
#include "mip/worker/worker.h"

namespace tovik::mip {

class UserCuts : public Plugin {
 public:
  const char* name() const override { return "user cuts"; }
  Verdict call(Worker& worker, const Moment& moment) override;
};

}  // namespace tovik::mip
