/* When which heuristic is called, and what it may spend.
 *
 * - Before the root's cuts: roundings, and dives while there is no incumbent, so that a long root is not without one.
 * - Cheap ones come every few nodes, dives one a node in turn, improvements once an incumbent; what finds nothing four
 *   times in a row waits twice as long.
 * - Effort: simplex iterations of dives, and of the judge for them, are a share of the tree's, larger while there is no
 *   incumbent, and an allowance at the start of the order of the root's own; sub-searches have a share of their own.
 * - Depends on counters only, never on the clock. */
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

#include "mip/heuristics/heuristics.h"
#include "mip/search/statistics.h"
#include "mip/worker/worker.h"

namespace tovik::mip {

class HeuristicSchedule {
 public:
  explicit HeuristicSchedule(const Global& global);

  /* What became of a candidate. */
  struct Taken {
    bool better = false;          // it is the new incumbent
    std::int64_t iterations = 0;  // that the judge spent on it
  };
  using Taker = std::function<Taken(const Candidate&)>;

  /* At the relaxation's optimum of a node; nodes: processed so far. True when there is a new incumbent. */
  bool run(Worker& worker, const Moment& moment, std::int64_t nodes, const Taker& take);

  std::vector<PluginCounts> plugin_counts() const;
  std::int64_t iterations() const { return in_worker_; }

 private:
  struct Entry {
    Heuristic heuristic;
    PluginCounts counts{};
    std::int64_t last = -1;  // node of the last call
    int failures = 0;        // in a row
  };
  enum Account { cheap, dives, sub_searches, kAccounts };

  static Account account(Heuristic::Kind kind);
  bool is_due(const Entry& entry, const Moment& moment, std::int64_t nodes) const;
  std::int64_t allowance(Account account, const Worker& worker) const;
  bool call(Entry& entry, Worker& worker, const Moment& moment, const Taker& take);
  int next_dive(const Moment& moment, std::int64_t nodes) const;

  const Global& global_;
  std::vector<Entry> entries_;
  std::array<std::int64_t, kAccounts> spent_{};
  std::int64_t in_worker_ = 0;         // iterations of the worker that were heuristics'
  std::int64_t root_iterations_ = -1;  // before the first call
  double seen_value_ = kInf;           // incumbent at the last call
  double improved_value_ = kInf;       // incumbent that improvements have seen
};

}  // namespace tovik::mip
