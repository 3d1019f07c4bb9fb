/* The table of the heuristics. A new one: its file with a class of Plugin, and its line in heuristics.cpp.
 *
 * A heuristic puts points into worker.out.candidates, in the space of the problem; integer columns need only be near whole
 * numbers: the judge decides each and finds the continuous columns anew where it must. It is called where the relaxation
 * has just been solved to an optimum that is no solution, and leaves domain and relaxation as they were. */
#pragma once

#include <memory>
#include <vector>

#include "mip/worker/global.h"
#include "mip/worker/plugin.h"

namespace tovik::mip {

struct Heuristic {
  enum class Kind {
    start,            // without a relaxation, once, before the root's
    rounding,         // of the relaxation's point: as cheap as a pass over the entries
    dive,             // one a node, in turn
    rescue,           // where dives have left the search without an incumbent
    neighbourhood,    // sub-searches
    intensification,  // sub-searches, once around each new incumbent
    improvement       // of each new incumbent, once
  };
  enum class Place { everywhere, root_only, tree_only, polishing_only };
  enum class Need {
    none,
    wide_gap,  // at the root
    first      // no incumbent
  };
  std::unique_ptr<Plugin> plugin;
  Kind kind;
  int interval;  // nodes between calls, at least; grows while it finds nothing
  Place place = Place::everywhere;
  Need need = Need::none;
};

/* Those that the settings allow, cheap ones first. */
std::vector<Heuristic> make_heuristics(const Global& global);

}  // namespace tovik::mip
