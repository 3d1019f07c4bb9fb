/* When which heuristic is called, and what it may spend.
 *
 * - Before the root's relaxation: those that need none. What they find counts as an incumbent of low worth: the first one that
 *   the relaxation has a part in is still looked for.
 * - Before the root's cuts: roundings; while a first incumbent is looked for also dives and sub-searches, so that a long root
 *   is not without one.
 * - Cheap ones come every few nodes, dives one a node in turn, sub-searches one a node, the one that has been worth most,
 *   improvements once an incumbent; what finds nothing some times in a row waits twice as long.
 * - Effort: simplex iterations of dives, and of the judge for them, are a share of all others, larger while a first incumbent
 *   is looked for, and an allowance at the start of the order of the root's own; sub-searches have a share of their own. What is
 *   left must be worth a call. Those that ask no relaxation have a share of the entries that pivots touch.
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

  /* Of the search up to now. */
  struct Passed {
    std::int64_t nodes = 0;              // processed
    double bound = -kInf;                // of all solutions
    std::int64_t strong_iterations = 0;  // of branching's, which the worker does not count
    const MeteredControl* control = nullptr;
  };
  /* At the relaxation's optimum of a node, or before the root's. True when there is a new incumbent. */
  bool run(Worker& worker, const Moment& moment, const Passed& passed, const Taker& take);

  /* One sub-search about the incumbent, whatever it may cost: the one that has been worth most, or has been tried seldom.
   * The relaxation of the root stands at its optimum. True when there is a new incumbent. */
  bool polish(Worker& worker, const Passed& passed, const Taker& take);

  std::vector<PluginCounts> plugin_counts() const;
  std::int64_t iterations() const { return in_worker_; }

 private:
  struct Entry {
    Heuristic heuristic;
    PluginCounts counts{};
    std::int64_t last = -1;                    // node of the last call
    int failures = 0;                          // in a row
    std::int64_t iterations = 0, touched = 0;  // of all calls
    double improved_value = kInf;              // incumbent that it has seen, of improvements
    double reward = 1;                         // of late, in polishing: 0 to 1
    int polishing_calls = 0;
  };
  enum Account { cheap, dives, sub_searches, kAccounts };

  /* No incumbent, or one of low worth. */
  bool is_first() const { return global_.incumbent_value >= value_before_relaxation_; }
  bool has_wide_gap() const;
  static Account account(Heuristic::Kind kind);
  bool is_due(const Entry& entry, const Moment& moment, std::int64_t nodes) const;
  std::int64_t allowance(Account account, const Worker& worker) const;
  static std::int64_t entries_touched(const Worker& worker);
  bool has_entries_left(const Worker& worker) const;
  bool has_ticks_left() const;
  std::int64_t least_to_begin(const Entry& entry) const;
  bool call(Entry& entry, Worker& worker, const Moment& moment, const Taker& take);
  int next_dive(const Moment& moment, std::int64_t nodes) const;
  int next_neighbourhood(const Moment& moment, std::int64_t nodes) const;
  int next_for_polishing() const;
  bool make_call(Entry& entry, Worker& worker, const Moment& moment, const Taker& take);

  const Global& global_;
  std::vector<Entry> entries_;
  std::array<std::int64_t, kAccounts> spent_{};
  std::int64_t in_worker_ = 0;  // iterations of the worker that were heuristics'
  std::int64_t touched_ = 0;    // entries, by those that ask no relaxation
  std::int64_t sub_ticks_ = 0;  // of sub-searches
  const MeteredControl* control_ = nullptr;
  std::int64_t strong_iterations_ = 0;
  std::int64_t root_iterations_ = -1;      // before the first call
  double bound_ = -kInf;                   // of all solutions, at the last call
  double value_before_relaxation_ = kInf;  // what was found before the root's relaxation
  double seen_value_ = kInf;               // incumbent at the last call
  std::int64_t polishing_iterations_ = 0;  // that one sub-search may spend in polishing; 0: not begun
};

}  // namespace tovik::mip
