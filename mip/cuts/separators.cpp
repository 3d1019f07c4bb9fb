#include "mip/cuts/separators.h"

#include "mip/cuts/aggregated_rounding.h"
#include "mip/cuts/gomory.h"

namespace tovik::mip {

std::vector<std::unique_ptr<Plugin>> make_separators(const Global& global) {
  const CutSettings& cuts = global.settings.cuts;
  std::vector<std::unique_ptr<Plugin>> table;
  const auto add = [&]<class Separator>(Effort effort, std::unique_ptr<Separator> separator) {
    if (effort >= 0) table.push_back(std::move(separator));
  };
  add(cuts.rounding, std::make_unique<AggregatedRounding>());
  add(cuts.fractional, std::make_unique<GomoryCuts>());
  return table;
}

}  // namespace tovik::mip
