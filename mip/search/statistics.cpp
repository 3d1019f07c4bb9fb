#include "mip/search/statistics.h"

#include <algorithm>
#include <utility>

namespace tovik::mip {
namespace {

constexpr std::int64_t kTicksBetweenReadings = 2000000;

/* The same plugins stand in both lists, where there are any. */
void add(std::vector<PluginCounts>& sums, const std::vector<PluginCounts>& more) {
  if (sums.empty()) sums.resize(more.size());
  for (std::size_t k = 0; k < more.size(); ++k) {
    sums[k].name = more[k].name;
    sums[k].calls += more[k].calls;
    sums[k].found += more[k].found;
    sums[k].successes += more[k].successes;
    sums[k].seconds += more[k].seconds;
  }
}

}  // namespace

SearchStatistics joined(SearchStatistics earlier, const SearchStatistics& later, double seconds_before) {
  SearchStatistics all = std::move(earlier);
  add_counts(all, later);
  for (std::size_t k = 0; k < kPhases; ++k) all.phases[k].seconds += later.phases[k].seconds;
  all.seconds = seconds_before + later.seconds;
  all.last_run = later.last_run;
  all.root_seconds = later.root_seconds < 0 ? -1 : seconds_before + later.root_seconds;
  if (all.root_bound_before_cuts == -kInf) all.root_bound_before_cuts = later.root_bound_before_cuts;
  all.root_bound_after_cuts = std::max(all.root_bound_after_cuts, later.root_bound_after_cuts);
  for (IncumbentRecord found : later.incumbents) {
    found.seconds += seconds_before;
    if (all.incumbents.size() == kMostIncumbents) all.incumbents.pop_back();
    all.incumbents.push_back(found);
  }
  return all;
}

void add_counts(SearchStatistics& all, const SearchStatistics& beside) {
  for (std::size_t k = 0; k < kPhases; ++k) all.phases[k].ticks += beside.phases[k].ticks;
  all.cut_rounds += beside.cut_rounds;
  all.tree_cut_rounds += beside.tree_cut_rounds;
  all.largest_depth = std::max(all.largest_depth, beside.largest_depth);
  all.conflicts += beside.conflicts;
  all.conflict_bounds += beside.conflict_bounds;
  all.clause_moves += beside.clause_moves;
  add(all.separators, beside.separators);
  add(all.heuristics, beside.heuristics);
  for (std::size_t k = 0; k < kCutClasses; ++k) all.cuts[k] += beside.cuts[k];
  // The search after a restart has other generators.
  all.symmetry.generators = std::max(all.symmetry.generators, beside.symmetry.generators);
  all.symmetry.orbitopes = std::max(all.symmetry.orbitopes, beside.symmetry.orbitopes);
  all.symmetry.moved = std::max(all.symmetry.moved, beside.symmetry.moved);
  all.symmetry.fixings += beside.symmetry.fixings;
  all.symmetry.ticks += beside.symmetry.ticks;
  all.symmetry.found_in += beside.symmetry.found_in;
  all.strong_iterations += beside.strong_iterations;
  all.heuristic_iterations += beside.heuristic_iterations;
  all.judge_iterations += beside.judge_iterations;
}

void PhaseMeter::begin() {
  phase_ = Phase::presolve;
  last_seconds_ = 0;
}

void PhaseMeter::end() {
  enter(phase_, true);
  earlier_ += last_seconds_;
  statistics_.seconds = earlier_;
  statistics_.last_run = last_seconds_;
}

Phase PhaseMeter::enter(Phase phase, bool precise) {
  const std::int64_t ticks = control_.ticks() - last_ticks_;
  last_ticks_ += ticks;
  statistics_.phases[static_cast<std::size_t>(phase_)].ticks += ticks;
  unread_[static_cast<std::size_t>(phase_)] += ticks;
  unread_ticks_ += ticks;
  if (precise || unread_ticks_ >= kTicksBetweenReadings) share_out();
  return std::exchange(phase_, phase);
}

void PhaseMeter::share_out() {
  const double now = control_.seconds();
  const double passed = now - last_seconds_;
  last_seconds_ = now;
  if (unread_ticks_ == 0) {
    statistics_.phases[static_cast<std::size_t>(phase_)].seconds += passed;
    return;
  }
  for (std::size_t k = 0; k < kPhases; ++k) {
    const double share = static_cast<double>(unread_[k]) / static_cast<double>(unread_ticks_);
    statistics_.phases[k].seconds += share * passed;
  }
  unread_ = {};
  unread_ticks_ = 0;
}

}  // namespace tovik::mip
