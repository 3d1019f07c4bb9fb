// Rounds of cuts: at the root while its bound moves, at nodes in the tree as they pay.
#include <algorithm>
#include <cmath>

#include "mip/search/search.h"

namespace tovik::mip {
namespace {

constexpr double kWorthwhileGain = 1e-5;  // of the root's bound by a round of cuts, relative
constexpr int kStalledRounds = 8, kRootRounds = 100;
// By all rounds at the root, else their rows go again: a share of the gap to the incumbent, or of the bound itself.
constexpr double kLeastClosed = 0.05, kLeastMoved = 1e-3;
constexpr int kTreeRounds = 3;     // of cuts at a node
constexpr double kTreeGain = 0.1;  // of the node's gap that a round of cuts, or all, should close
constexpr double kTreeShare =
    0.03;  // entries that cuts touch, by those of the simplex (a pivot: rows and columns)

}  // namespace

/* Adds cuts while the root's bound moves. True when the relaxation has other rows than before. */
bool Search::separate(int slot, const NodeEvent& event) {
  const bool is_root = tree_[slot].parent < 0;
  if (rounds_.round < 0) return false;
  if (!is_root) return separate_in_tree(slot, event.objective);
  if (rounds_.round == 0) observer_.node(event);
  const double gain = event.objective - rounds_.objective;
  const bool moves = gain > kWorthwhileGain * std::max(1.0, std::fabs(event.objective));
  rounds_.stalled = moves ? 0 : rounds_.stalled + 1;
  rounds_.objective = event.objective;
  const int wanted = global_.settings.cuts.root_rounds;
  const int most = wanted == 0 ? kRootRounds : wanted;
  if (rounds_.stalled < kStalledRounds && rounds_.round < most) {
    separation_.drop_slack_rows(worker_, false);
    Moment moment;
    moment.root = true;
    moment.depth = tree_[slot].depth;
    moment.round = rounds_.round++;
    enter(Phase::cuts);
    ++statistics_.cut_rounds;
    if (const int added = separation_.round(worker_, x_, moment); added > 0) {
      watch_cuts(added);
      rounds_.any = true;
      observer_.cuts(separation_.take_counts());
      return true;
    }
  }
  rounds_.round = -1;  // done here
  enter(Phase::tree);
  if (rounds_.any) observer_.node(event);
  bool any_left = separation_.drop_slack_rows(worker_, true);
  if (rounds_.any && !cuts_were_worthwhile(event.objective)) {
    separation_.remove_rows(worker_, [](const Cut& cut) { return !cut.stays && cut.kind != CutClass::user; });
    any_left = true;
  }
  for (Cut& cut : separation_.take_left()) idle_cuts_.push_back(std::move(cut));
  return any_left;
}

/* Rows that hardly moved the root's bound would make all relaxations below dearer for as little: with big constants in the
 * problem by a factor of ten. Both measures have to say so: incumbents may still be poor, and gaps small. Rows that an
 * earlier stage has left count as worthwhile: what they moved is not known. */
bool Search::cuts_were_worthwhile(double bound) const {
  if (had_given_cuts_) return true;
  const double before = statistics_.root_bound_before_cuts, moved = bound - before;
  if (moved >= kLeastMoved * std::max(1.0, std::fabs(before))) return true;
  return !std::isinf(global_.cutoff) && moved >= kLeastClosed * (global_.cutoff - before);
}

/* More than a share of the gap, or of the value where there is none. */
bool Search::is_worthwhile(double gain, double from) const {
  const double gap = global_.cutoff - from;
  return gain > (std::isinf(gap) ? kWorthwhileGain * std::max(1.0, std::fabs(from)) : kTreeGain * gap);
}

/* The least effort of the families that are due at a node in the tree; -1: none are. All are at nodes from the queue, below
 * which much may be left; what brings nothing is tried ever more seldom, and the work stays a share of the simplex's. */
Effort Search::due_in_tree() {
  if (global_.settings.cuts.in_tree > 0) return 0;
  if (from_queue_) {
    const double pivot = problem_.num_columns() + worker_.num_rows();
    const double most = kTreeShare * pivot * static_cast<double>(worker_.iterations);
    if (tree_cuts_.waits <= 0 && static_cast<double>(tree_cuts_.work) <= most) return 0;
    tree_cuts_.waits = std::max(0, tree_cuts_.waits - 1);
  }
  const Effort whatever_it_costs = from_queue_ ? 2 : 3;
  return separation_.most_effort() >= whatever_it_costs ? whatever_it_costs : -1;
}

/* While a round closes a share of the node's gap. */
bool Search::separate_in_tree(int slot, double objective) {
  const CutSettings& cuts = global_.settings.cuts;
  if (cuts.in_tree < 0 || cuts.root_rounds < 0) return false;
  if (local_rows_made_ > 0) return false;  // what is made of them would hold where they do only
  if (rounds_.round == 0) {
    rounds_.least_effort = due_in_tree();
    if (rounds_.least_effort < 0) {
      rounds_.round = -1;
      return false;
    }
    rounds_.first_objective = objective;
  }
  const bool moves = rounds_.round == 0 || is_worthwhile(objective - rounds_.objective, rounds_.objective);
  rounds_.objective = objective;
  if (moves && rounds_.round < kTreeRounds) {
    separation_.drop_slack_rows(worker_, false);
    Moment moment;
    moment.depth = tree_[slot].depth;
    moment.least_effort = rounds_.least_effort;
    moment.round = rounds_.round++;
    const std::int64_t before = separation_.work();
    ++statistics_.tree_cut_rounds;
    enter(Phase::cuts);
    const int added = separation_.round(worker_, x_, moment);
    enter(Phase::tree);
    tree_cuts_.work += separation_.work() - before;
    if (added > 0) {
      watch_cuts(added);
      keep_cuts_of_tree(added);
      return true;
    }
  }
  rounds_.round = -1;  // done here
  const bool paid = is_worthwhile(objective - rounds_.first_objective, rounds_.first_objective);
  tree_cuts_.failures = paid ? 0 : tree_cuts_.failures + 1;
  tree_cuts_.waits = tree_cuts_.failures * tree_cuts_.failures;
  return false;
}

}  // namespace tovik::mip
