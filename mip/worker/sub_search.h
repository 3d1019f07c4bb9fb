/* A search within a search, as a heuristic sees it: the search itself stands in a room behind the heuristics. */
#pragma once

#include <cstdint>
#include <vector>

#include "lp/base/control.h"
#include "mip/domain/problem.h"
#include "mip/worker/settings.h"

namespace tovik::mip {

struct SubSearchResult {
  bool found = false;
  std::vector<double> x;   // best solution, also where it has no columns
  bool exhausted = false;  // there is no better one
  std::int64_t iterations = 0;
};

class SubSearch {
 public:
  SubSearch() = default;
  SubSearch(const SubSearch&) = delete;
  SubSearch& operator=(const SubSearch&) = delete;
  virtual ~SubSearch() = default;
  /* Within the limits of the settings, and while the control does not say stop. */
  virtual SubSearchResult run(const Problem& problem, const Settings& settings, lp::Control& control) = 0;
};

}  // namespace tovik::mip
