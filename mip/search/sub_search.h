/* Searches within a search, for heuristics: branch and cut on a smaller problem, silently. */
#pragma once

#include "mip/worker/sub_search.h"

namespace tovik::mip {

class TreeSubSearch : public SubSearch {
 public:
  SubSearchResult run(const Problem& problem, const Settings& settings, lp::Control& control) override;
};

}  // namespace tovik::mip
