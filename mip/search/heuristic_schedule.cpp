#include "mip/search/heuristic_schedule.h"

#include <algorithm>
#include <utility>

namespace tovik::mip {
namespace {

constexpr int kPatience = 4, kMostDoublings = 8;
constexpr double kDiveShare = 0.1, kDiveShareAtFirst = 0.3;  // of the tree's iterations; without an incumbent
constexpr double kSubShare = 0.1, kSubShareAtFirst = 0.2;
constexpr std::int64_t kStart = 1000, kSubStart = 2000;

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
      return sub_searches;
    default:
      return cheap;
  }
}

bool HeuristicSchedule::is_due(const Entry& entry, const Moment& moment, std::int64_t nodes) const {
  const Heuristic& h = entry.heuristic;
  if (h.kind == Heuristic::Kind::improvement) {
    return global_.has_incumbent() && global_.incumbent_value < improved_value_;
  }
  if (h.kind == Heuristic::Kind::rescue && global_.has_incumbent()) return false;
  if (moment.before_cuts) {
    return h.kind == Heuristic::Kind::rounding ||
           (h.kind == Heuristic::Kind::dive && !global_.has_incumbent());
  }
  if (moment.root) return h.place != Heuristic::Place::tree_only && entry.last < 0;
  if (h.place == Heuristic::Place::root_only) return false;
  const std::int64_t interval = static_cast<std::int64_t>(h.interval)
                                << std::min(entry.failures / kPatience, kMostDoublings);
  return nodes - std::max<std::int64_t>(entry.last, 0) >= interval;
}

/* Simplex iterations that are left to spend. */
std::int64_t HeuristicSchedule::allowance(Account account, const Worker& worker) const {
  const std::int64_t tree = worker.iterations - in_worker_;
  const bool first = !global_.has_incumbent();
  const bool subs = account == sub_searches;
  const double share =
      subs ? (first ? kSubShareAtFirst : kSubShare) : (first ? kDiveShareAtFirst : kDiveShare);
  const std::int64_t start = subs ? kSubStart + 2 * root_iterations_ : kStart + root_iterations_;
  std::int64_t left = start + static_cast<std::int64_t>(share * static_cast<double>(tree)) - spent_[account];
  if (global_.settings.iteration_limit < kNoLimit) {
    left = std::min(left, global_.settings.iteration_limit - worker.iterations);
  }
  return left;
}

bool HeuristicSchedule::call(Entry& entry, Worker& worker, const Moment& moment, const Taker& take) {
  const Account payer = account(entry.heuristic.kind);
  Moment now = moment;
  now.iterations = allowance(payer, worker);
  if (now.iterations <= 0) return false;
  const std::int64_t before = worker.iterations;
  const TimedCall timed(entry.counts, worker.control);
  if (entry.heuristic.plugin->call(worker, now) != Verdict::found) worker.out.candidates.clear();
  const std::int64_t own = worker.iterations - before;
  in_worker_ += own;
  spent_[payer] += own;
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

/* Of the dives that are due the one that has waited longest; -1: none. */
int HeuristicSchedule::next_dive(const Moment& moment, std::int64_t nodes) const {
  int best = -1;
  for (int k = 0; k < static_cast<int>(entries_.size()); ++k) {
    if (entries_[k].heuristic.kind != Heuristic::Kind::dive || !is_due(entries_[k], moment, nodes)) continue;
    if (best < 0 || entries_[k].last < entries_[best].last) best = k;
  }
  return best;
}

std::vector<PluginCounts> HeuristicSchedule::plugin_counts() const {
  std::vector<PluginCounts> counts;
  for (const Entry& entry : entries_) counts.push_back(entry.counts);
  return counts;
}

bool HeuristicSchedule::run(Worker& worker, const Moment& moment, std::int64_t nodes, const Taker& take) {
  if (root_iterations_ < 0) root_iterations_ = worker.iterations;
  if (global_.incumbent_value < seen_value_) {
    // A new incumbent has a neighbourhood of its own.
    seen_value_ = global_.incumbent_value;
    for (Entry& entry : entries_) {
      if (entry.heuristic.kind == Heuristic::Kind::neighbourhood) entry.failures = 0;
    }
  }
  bool found = false, dived = false;
  const int dive = next_dive(moment, nodes);
  for (int k = 0; k < static_cast<int>(entries_.size()); ++k) {
    Entry& entry = entries_[k];
    const Heuristic::Kind kind = entry.heuristic.kind;
    if (!is_due(entry, moment, nodes)) continue;
    // At the root one dive after the other, until one has come to something.
    if (kind == Heuristic::Kind::dive && (moment.root ? dived && found : k != dive)) continue;
    if (worker.must_stop()) break;
    dived |= kind == Heuristic::Kind::dive;
    if (!moment.before_cuts) entry.last = nodes;
    if (kind == Heuristic::Kind::improvement) improved_value_ = global_.incumbent_value;
    found |= call(entry, worker, moment, take);
  }
  return found;
}

}  // namespace tovik::mip
