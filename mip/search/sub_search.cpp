#include "mip/search/sub_search.h"

#include "mip/search/presolved_search.h"

namespace tovik::mip {

SubSearchResult TreeSubSearch::run(const Problem& problem, const Settings& settings, lp::Control& control) {
  SilentObserver silent;
  Settings alone = settings;
  alone.learn_conflicts = false;
  alone.team.threads = 1;
  alone.symmetry = 0;
  PresolvedSearch search(problem, alone, control, silent);
  const Conclusion end = search.run();
  SubSearchResult result;
  result.found = search.has_incumbent();
  result.x = search.incumbent().x;
  result.exhausted =
      end == Conclusion::optimal || end == Conclusion::within_gap || end == Conclusion::infeasible;
  result.iterations = search.progress().iterations;
  return result;
}

}  // namespace tovik::mip
