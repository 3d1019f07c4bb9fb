#include "mip/heuristics/heuristics.h"

#include <utility>

#include "mip/heuristics/diving_rules.h"
#include "mip/heuristics/feasibility_jump.h"
#include "mip/heuristics/feasibility_pump.h"
#include "mip/heuristics/fix_and_propagate.h"
#include "mip/heuristics/neighbourhood.h"
#include "mip/heuristics/one_opt.h"
#include "mip/heuristics/rounding.h"

namespace tovik::mip {

std::vector<Heuristic> make_heuristics(const Global& global) {
  using Kind = Heuristic::Kind;
  using Place = Heuristic::Place;
  using Need = Heuristic::Need;
  const HeuristicSettings& settings = global.settings.heuristics;
  std::vector<Heuristic> table;
  if (global.integer_columns.empty()) return table;
  const auto add = [&](bool wanted, int every, Heuristic line) {
    if (!wanted || every < 0) return;
    if (every > 0) line.interval = every;
    table.push_back(std::move(line));
  };
  const auto add_dive = [&](bool wanted, std::unique_ptr<Plugin> dive) {
    add(settings.diving && wanted, settings.interval, {std::move(dive), Kind::dive, 10});
  };
  const int every = settings.interval;
  add(settings.jumps, every, {std::make_unique<FeasibilityJump>(), Kind::start, 1, Place::root_only});
  add(settings.rounding, every, {std::make_unique<SimpleRounding>(), Kind::rounding, 1});
  add(settings.rounding, every, {std::make_unique<PropagatedRounding>(), Kind::rounding, 10});
  add(settings.jumps, every, {std::make_unique<Shifting>(), Kind::rounding, 10});
  add(settings.fixing, every,
      {std::make_unique<FixAndPropagate>(), Kind::rounding, 10, Place::everywhere, Need::first});
  add(settings.improvement, every, {std::make_unique<OneOpt>(), Kind::improvement, 1});
  const DiveKind dives = settings.dives;
  const bool traditional = dives == DiveKind::automatic || dives == DiveKind::traditional;
  add_dive(traditional, std::make_unique<LockDive>());
  add_dive(traditional, std::make_unique<PseudoCostDive>());
  add_dive(traditional || dives == DiveKind::guided, std::make_unique<FractionalDive>());
  add_dive(dives == DiveKind::automatic || dives == DiveKind::guided, std::make_unique<GuidedDive>());
  add_dive(dives == DiveKind::probing, std::make_unique<ProbingDive>());
  add(settings.diving && dives == DiveKind::automatic && settings.pump >= 0, every,
      {std::make_unique<FeasibilityPump>(), Kind::rescue, 1, Place::root_only});
  const int search_every = settings.neighbourhood_interval;
  add(true, search_every, {std::make_unique<Rens>(), Kind::neighbourhood, 1, Place::root_only});
  add(true, search_every,
      {std::make_unique<ReducedCostNeighbourhood>(), Kind::neighbourhood, 1, Place::root_only,
       Need::wide_gap});
  // Around incumbents: what is off in the tree serves polishing still.
  const bool polishes = global.settings.polish.is_on();
  const auto add_search = [&](std::unique_ptr<Plugin> search, Place place, Need need) {
    if (search_every >= 0) {
      add(true, search_every, {std::move(search), Kind::neighbourhood, 20, place, need});
    } else {
      add(polishes, 0, {std::move(search), Kind::neighbourhood, 1, Place::polishing_only});
    }
  };
  add_search(std::make_unique<Rins>(), Place::everywhere, Need::wide_gap);
  add_search(std::make_unique<Crossover>(), Place::tree_only, Need::none);
  add_search(std::make_unique<Region>(), Place::tree_only, Need::none);
  add(polishes, 0, {std::make_unique<Mutation>(), Kind::neighbourhood, 1, Place::polishing_only});
  if (settings.local_branching) {
    add(true, 0, {std::make_unique<LocalBranching>(), Kind::intensification, 1});
  } else {
    add(polishes, 0, {std::make_unique<LocalBranching>(), Kind::neighbourhood, 1, Place::polishing_only});
  }
  return table;
}

}  // namespace tovik::mip
