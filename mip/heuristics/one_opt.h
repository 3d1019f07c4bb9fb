/* One-opt: integer columns of the incumbent are moved, one after another, the dearest first, as far as their cost falls and
 * the slack of their rows allows. Columns of objects stay. Cost: one pass over the entries. */
#pragma once

#include "mip/worker/plugin.h"

namespace tovik::mip {

class OneOpt : public Plugin {
 public:
  const char* name() const override { return "one-opt"; }
  Verdict call(Worker& worker, const Moment& moment) override;
};

}  // namespace tovik::mip
