/* First points from a local search that asks no relaxation.
 *
 * - FeasibilityJump: before the root's relaxation, from the bounds that cost least and from the values nearest to 0.
 * - Shifting: from the rounded point of the relaxation, while there is no incumbent, and ever more seldom after it.
 * Points have the values that the search left the continuous columns with: the judge finds better ones. Problems with objects
 * are left alone. Cost: a multiple of the entries of the problem. */
#pragma once

#include <span>
#include <vector>

#include "mip/heuristics/jump_search.h"
#include "mip/worker/plugin.h"
#include "mip/worker/worker.h"

namespace tovik::mip {

class FeasibilityJump : public Plugin {
 public:
  const char* name() const override { return "feasibility jump"; }
  Verdict call(Worker& worker, const Moment& moment) override;
};

class Shifting : public Plugin {
 public:
  const char* name() const override { return "shifting"; }
  Verdict call(Worker& worker, const Moment& moment) override;
};

}  // namespace tovik::mip
