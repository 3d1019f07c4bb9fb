#include "mip/search/sub_search.h"

#include "mip/search/presolved_search.h"

namespace tovik::mip {

SubSearchResult TreeSubSearch::run(const Problem& problem, const Settings& settings, lp::Control& control) {
  SilentObserver silent;
  PresolvedSearch search(problem, settings, control, silent);
  search.run();
  return {search.incumbent().x, search.progress().iterations};
}

}  // namespace tovik::mip
