#include "mip/search/heuristic_schedule.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tovik::mip {
namespace {

constexpr int kPatience = 4, kPatienceWithSearches = 2, kMostDoublings = 8;
constexpr double kDiveShare = 0.1, kDiveShareAtFirst = 0.5;  // of the tree's iterations; without an incumbent
constexpr double kSubShare = 0.1, kSubShareAtFirst = 0.2;
constexpr double kTickShare = 0.15, kTickShareAtFirst = 0.3;  // of all work, for sub-searches
constexpr double kEntryShare = 0.05;                          // of the entries that pivots touch
constexpr double kEntriesAtFirst = 3e6, kTimesAtFirst = 100;
constexpr double kWideGap = 0.01;  // relative
constexpr std::int64_t kStart = 1000, kSubStart = 2000;
// Polishing: iterations of the first sub-search, and the part by which they grow with each that fails.
constexpr std::int64_t kPolishingStart = 5000, kPolishingGrowth = 10;
constexpr double kCuriosity = 0.3, kForgetting = 0.3;

}  // namespace

HeuristicSchedule::HeuristicSchedule(const Global& global) : global_(global) {
  for (Heuristic& h : make_heuristics(global)) {
    const char* name = h.plugin->name();
    entries_.push_back({std::move(h)});
    entries_.back().counts.name = name;
  }
}

HeuristicSchedule::Account HeuristicSchedule::account(Heuristic::Kind kind) {
  switch (kind) {
    case Heuristic::Kind::dive:
    case Heuristic::Kind::rescue:
      return dives;
    case Heuristic::Kind::neighbourhood:
    case Heuristic::Kind::intensification:
      return sub_searches;
    default:
      return cheap;
  }
}

bool HeuristicSchedule::has_wide_gap() const {
  const double value = global_.incumbent_value;
  return is_first() || value - bound_ > kWideGap * std::max(std::fabs(value), std::fabs(bound_));
}

bool HeuristicSchedule::is_due(const Entry& entry, const Moment& moment, std::int64_t nodes) const {
  const Heuristic& h = entry.heuristic;
  if (moment.before_relaxation || h.kind == Heuristic::Kind::start) {
    return moment.before_relaxation && h.kind == Heuristic::Kind::start && entry.last < 0;
  }
  if (h.place == Heuristic::Place::polishing_only) return false;
  if (h.kind == Heuristic::Kind::improvement || h.kind == Heuristic::Kind::intensification) {
    return global_.has_incumbent() && global_.incumbent_value < entry.improved_value;
  }
  if ((h.kind == Heuristic::Kind::rescue || h.need == Heuristic::Need::first) && !is_first()) return false;
  if (h.need == Heuristic::Need::wide_gap && moment.root && !has_wide_gap()) return false;
  if (moment.before_cuts) {
    return h.kind == Heuristic::Kind::rounding ||
           (is_first() && h.place != Heuristic::Place::tree_only &&
            (h.kind == Heuristic::Kind::dive || h.kind == Heuristic::Kind::neighbourhood));
  }
  if (moment.root) return h.place != Heuristic::Place::tree_only && entry.last < 0;
  if (h.place == Heuristic::Place::root_only) return false;
  const int patience = h.kind == Heuristic::Kind::neighbourhood ? kPatienceWithSearches : kPatience;
  const std::int64_t interval = static_cast<std::int64_t>(h.interval)
                                << std::min(entry.failures / patience, kMostDoublings);
  return nodes - std::max<std::int64_t>(entry.last, 0) >= interval;
}

std::int64_t HeuristicSchedule::entries_touched(const Worker& worker) {
  return worker.domain.work() + worker.propagator.work() + worker.out.work;
}

/* Whether those that ask no relaxation may go on: a pivot touches as many entries as there are rows and columns. */
bool HeuristicSchedule::has_entries_left(const Worker& worker) const {
  const lp::LpData& lp = global_.problem.lp;
  const double pivot = lp.num_columns() + lp.num_rows();
  const auto all = static_cast<double>(worker.iterations + strong_iterations_);
  const double start = kEntriesAtFirst + kTimesAtFirst * static_cast<double>(lp.matrix.index.size());
  return static_cast<double>(touched_) <= start + kEntryShare * pivot * all;
}

/* Sub-searches spend more than iterations: presolve, cuts. */
bool HeuristicSchedule::has_ticks_left() const {
  const double share = is_first() ? kTickShareAtFirst : kTickShare;
  return static_cast<double>(sub_ticks_) <= share * static_cast<double>(control_->ticks());
}

/* Simplex iterations that are left to spend. */
std::int64_t HeuristicSchedule::allowance(Account account, const Worker& worker) const {
  const std::int64_t tree = worker.iterations - in_worker_ + strong_iterations_;
  const bool first = is_first();
  const bool subs = account == sub_searches;
  const double share =
      subs ? (first ? kSubShareAtFirst : kSubShare) : (first ? kDiveShareAtFirst : kDiveShare);
  const std::int64_t start = subs    ? kSubStart + 2 * root_iterations_
                             : first ? 5 * (kStart + root_iterations_)
                                     : kStart + root_iterations_;
  std::int64_t left = start + static_cast<std::int64_t>(share * static_cast<double>(tree)) - spent_[account];
  if (global_.settings.iteration_limit < kNoLimit) {
    left = std::min(left, global_.settings.iteration_limit - worker.iterations);
  }
  return left;
}

bool HeuristicSchedule::call(Entry& entry, Worker& worker, const Moment& moment, const Taker& take) {
  const Account payer = account(entry.heuristic.kind);
  Moment now = moment;
  now.first = is_first();
  now.iterations = allowance(payer, worker);
  if (payer == cheap && entry.touched > 0 && !has_entries_left(worker)) return false;
  if (payer != cheap && now.iterations < least_to_begin(entry)) return false;
  if (payer == sub_searches && !has_ticks_left()) return false;
  return make_call(entry, worker, now, take);
}

bool HeuristicSchedule::make_call(Entry& entry, Worker& worker, const Moment& moment, const Taker& take) {
  const Account payer = account(entry.heuristic.kind);
  const std::int64_t before = worker.iterations, touched = entries_touched(worker);
  const std::int64_t ticks = control_->ticks();
  const TimedCall timed(entry.counts, worker.control);
  if (entry.heuristic.plugin->call(worker, moment) != Verdict::found) worker.out.candidates.clear();
  const std::int64_t own = worker.iterations - before;
  if (payer == sub_searches) sub_ticks_ += control_->ticks() - ticks;
  entry.iterations += own;
  entry.touched += entries_touched(worker) - touched;
  if (payer == cheap) touched_ += entries_touched(worker) - touched;
  in_worker_ += own;
  spent_[payer == cheap ? dives : payer] += own;
  bool better = false;
  for (Candidate& candidate : worker.out.candidates) candidate.found_by = entry.counts.name;
  for (const Candidate& candidate : std::exchange(worker.out.candidates, {})) {
    ++entry.counts.found;
    const Taken taken = take(candidate);
    better |= taken.better;
    spent_[payer] += taken.iterations;
  }
  if (better) ++entry.counts.successes;
  entry.failures = better ? 0 : entry.failures + 1;
  return better;
}

/* What is cut short is wasted. */
std::int64_t HeuristicSchedule::least_to_begin(const Entry& entry) const {
  const std::int64_t calls = entry.counts.calls;
  return 1 + (calls == 0 ? root_iterations_ / 4 : entry.iterations / calls / 2);
}

/* Of the dives that are due the one that has waited longest; -1: none. */
int HeuristicSchedule::next_dive(const Moment& moment, std::int64_t nodes) const {
  int best = -1;
  for (int k = 0; k < static_cast<int>(entries_.size()); ++k) {
    if (entries_[k].heuristic.kind != Heuristic::Kind::dive || !is_due(entries_[k], moment, nodes)) continue;
    if (best < 0 || entries_[k].last < entries_[best].last) best = k;
  }
  return best;
}

/* Of the sub-searches that are due the one that has been worth most, a little more for those that have been tried seldom; -1:
 * none. */
int HeuristicSchedule::next_neighbourhood(const Moment& moment, std::int64_t nodes) const {
  constexpr double kCurious = 2;
  int best = -1;
  double highest = 0;
  for (int k = 0; k < static_cast<int>(entries_.size()); ++k) {
    const Entry& entry = entries_[k];
    if (entry.heuristic.kind != Heuristic::Kind::neighbourhood || !is_due(entry, moment, nodes)) continue;
    const double score = (static_cast<double>(entry.counts.successes) + kCurious) /
                         (static_cast<double>(entry.counts.calls) + kCurious);
    if (best >= 0 && score <= highest) continue;
    best = k;
    highest = score;
  }
  return best;
}

/* By upper confidence bounds ("Finite-time analysis of the multiarmed bandit problem", Machine Learning 47 (2002)); -1:
 * there is none. */
int HeuristicSchedule::next_for_polishing() const {
  const auto serves = [](const Entry& entry) {
    const Heuristic& h = entry.heuristic;
    const bool is_search =
        h.kind == Heuristic::Kind::neighbourhood || h.kind == Heuristic::Kind::intensification;
    return is_search && h.place != Heuristic::Place::root_only;
  };
  int calls = 0;
  for (const Entry& entry : entries_) calls += serves(entry) ? entry.polishing_calls : 0;
  int best = -1;
  double highest = 0;
  for (int k = 0; k < static_cast<int>(entries_.size()); ++k) {
    const Entry& entry = entries_[k];
    if (!serves(entry)) continue;
    const double score =
        entry.reward + kCuriosity * std::sqrt(std::log(1.0 + calls) / (1.0 + entry.polishing_calls));
    if (best >= 0 && score <= highest) continue;
    best = k;
    highest = score;
  }
  return best;
}

bool HeuristicSchedule::polish(Worker& worker, const Passed& passed, const Taker& take) {
  strong_iterations_ = passed.strong_iterations;
  bound_ = passed.bound;
  control_ = passed.control;
  const int next = next_for_polishing();
  if (next < 0) return false;
  if (polishing_iterations_ == 0)
    polishing_iterations_ = kPolishingStart + 2 * std::max<std::int64_t>(0, root_iterations_);
  Entry& entry = entries_[next];
  Moment moment;
  moment.iterations = polishing_iterations_;
  const bool better = make_call(entry, worker, moment, take);
  ++entry.polishing_calls;
  entry.reward += kForgetting * ((better ? 1.0 : 0.0) - entry.reward);
  if (!better) polishing_iterations_ += polishing_iterations_ / kPolishingGrowth;
  seen_value_ = std::min(seen_value_, global_.incumbent_value);
  return better;
}

std::vector<PluginCounts> HeuristicSchedule::plugin_counts() const {
  std::vector<PluginCounts> counts;
  for (const Entry& entry : entries_) counts.push_back(entry.counts);
  return counts;
}

bool HeuristicSchedule::run(Worker& worker, const Moment& moment, const Passed& passed, const Taker& take) {
  const std::int64_t nodes = passed.nodes;
  strong_iterations_ = passed.strong_iterations;
  bound_ = passed.bound;
  control_ = passed.control;
  if (root_iterations_ < 0 && !moment.before_relaxation) root_iterations_ = worker.iterations;
  if (global_.incumbent_value < seen_value_) {
    // A new incumbent has a neighbourhood of its own.
    seen_value_ = global_.incumbent_value;
    for (Entry& entry : entries_) {
      if (entry.heuristic.kind == Heuristic::Kind::neighbourhood) entry.failures = 0;
    }
  }
  bool found = false, dived = false;
  const int dive = next_dive(moment, nodes), neighbourhood = next_neighbourhood(moment, nodes);

  for (int k = 0; k < static_cast<int>(entries_.size()); ++k) {
    Entry& entry = entries_[k];
    const Heuristic::Kind kind = entry.heuristic.kind;
    if (!is_due(entry, moment, nodes)) continue;
    // At the root one dive after the other, until one has come to something.
    if (kind == Heuristic::Kind::dive && (moment.root ? dived && found : k != dive)) continue;
    if (kind == Heuristic::Kind::neighbourhood && !moment.root && k != neighbourhood) continue;
    if (worker.must_stop()) break;
    dived |= kind == Heuristic::Kind::dive;
    if (!moment.before_cuts) entry.last = nodes;
    entry.improved_value = global_.incumbent_value;
    found |= call(entry, worker, moment, take);
  }
  if (moment.before_relaxation && found) value_before_relaxation_ = global_.incumbent_value;
  return found;
}

}  // namespace tovik::mip
