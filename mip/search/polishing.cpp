// Improving the incumbent by searches about it, instead of the next node.
#include <algorithm>
#include <cmath>

#include "mip/search/search.h"

namespace tovik::mip {
namespace {

constexpr int kMostFailures = 60;  // in a row, before the tree goes on; a better incumbent begins anew

}  // namespace

/* Once a condition has been met it stays so. The root's relaxation must have been solved. */
bool Search::polishing_is_due() {
  const PolishSettings& wanted = global_.settings.polish;
  if (!wanted.is_on() || nodes_ == 0 || enumerates() || !global_.has_incumbent_point()) return false;
  if (!polishing_.is_on) {
    const double gap = global_.incumbent_value - open_bound();
    polishing_.is_on = gap <= wanted.absolute_gap ||
                       gap <= wanted.relative_gap * (1e-10 + std::fabs(global_.incumbent_value)) ||
                       nodes_ >= wanted.nodes || solutions_ >= wanted.solutions ||
                       (wanted.seconds < kInf && meter_.seconds() >= wanted.seconds);
  }
  if (global_.incumbent_value < polishing_.value) polishing_.failures = 0;
  return polishing_.is_on && polishing_.failures < kMostFailures;
}

/* One search. It sets out from the root, where its fixings hold for all. */
void Search::polish() {
  leave_path(0);
  polishing_.value = global_.incumbent_value;
  ++polishing_.failures;
  const Phase before = enter(Phase::heuristics);
  if (worker_.solve({}) == lp::Outcome::optimal) {
    heuristics_.polish(worker_, passed(),
                       [this](const Candidate& candidate) { return try_candidate(candidate); });
  } else {
    polishing_.failures = kMostFailures;  // the tree will tell
  }
  enter(before);
}

std::optional<Conclusion> Search::polish_on() {
  if (!started_ || nodes_ == 0 || enumerates() || !global_.has_incumbent_point()) return std::nullopt;
  meter_.begin();
  while (asks_to_stop() == lp::Stop::none && !has_enough_solutions()) {
    const std::int64_t iterations = heuristics_.iterations();
    polish();
    if (new_incumbent_) {
      new_incumbent_ = false;
      drop_nodes(global_.cutoff);
      note_root_fixings();
      polishing_.failures = 0;
    }
    if (tree_.empty() || gap_is_closed(open_bound())) {
      end_run();
      return conclude();
    }
    if (polishing_.failures > kMostFailures && heuristics_.iterations() == iterations) break;
  }
  end_run();
  return std::nullopt;
}

}  // namespace tovik::mip
