#include "mip/cuts/separators.h"

#include "mip/cuts/aggregated_rounding.h"
#include "mip/cuts/clique_cuts.h"
#include "mip/cuts/cover.h"
#include "mip/cuts/flow_path.h"
#include "mip/cuts/gomory.h"
#include "mip/cuts/gub_cover.h"
#include "mip/cuts/implied_bounds.h"
#include "mip/cuts/user_cuts.h"
#include "mip/cuts/zero_half.h"

namespace tovik::mip {

std::vector<SeparatorEntry> make_separators(const Global& global) {
  const CutSettings& cuts = global.settings.cuts;
  std::vector<SeparatorEntry> table;
  const auto add = [&]<class Separator>(Effort effort, std::unique_ptr<Separator> separator) {
    if (effort >= 0) table.push_back({effort, std::move(separator)});
  };
  if (!global.problem.user_cuts.empty()) add(0, std::make_unique<UserCuts>());
  add(cuts.implied_bounds, std::make_unique<ImpliedBounds>());
  add(cuts.cliques, std::make_unique<CliqueCuts>());
  add(cuts.covers, std::make_unique<CoverCuts>(global));
  // They cost hardly anything, but trees were larger with them as often as smaller, and twice as large for assignments.
  if (cuts.gub_covers > 0) add(cuts.gub_covers, std::make_unique<GubCoverCuts>(global));
  add(cuts.flow_covers, std::make_unique<AggregatedRounding>(Substitution::variable_bounds));
  add(cuts.flow_paths, std::make_unique<FlowPaths>());
  add(cuts.rounding, std::make_unique<AggregatedRounding>(Substitution::bounds));
  add(cuts.zero_half, std::make_unique<ZeroHalfCuts>());
  add(cuts.fractional, std::make_unique<GomoryCuts>());
  return table;
}

}  // namespace tovik::mip
