/* The table of the heuristics. A new one: its file with a class of Plugin, and its line in heuristics.cpp.
 *
 * A heuristic puts points into worker.out.candidates, in the space of the problem; integer columns need only be near whole
 * numbers: the judge decides each and finds the continuous columns anew where it must. */
#pragma once

#include <memory>
#include <vector>

#include "mip/worker/global.h"
#include "mip/worker/plugin.h"

namespace tovik::mip {

struct Heuristic {
  std::unique_ptr<Plugin> plugin;
  int interval;            // nodes between calls, at most; grows while it finds nothing
  bool at_root;            // after the root's relaxation
  std::int64_t last = -1;  // node of the last call
  int failures = 0;        // in a row
};

/* Those that the settings allow, cheap ones first. */
std::vector<Heuristic> make_heuristics(const Global& global);

}  // namespace tovik::mip
