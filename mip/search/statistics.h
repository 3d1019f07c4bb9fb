/* What a search counts while it runs, and where its time and its work go.
 *
 * - Work is exact by phase. The clock is read at the root's changes of phase, and in the tree once in a while: what has passed is
 *   then shared out by the work that the phases did since. Nothing here steers the search.
 * - Plugins are timed at their first calls, and at every sixteenth of those that come often.
 * - Cost: two additions at a change of phase. */
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "lp/base/control.h"
#include "mip/domain/problem.h"
#include "mip/pool/cut.h"

namespace tovik::mip {

enum class Phase : unsigned char { presolve, root_relaxation, cuts, heuristics, branching, tree, count };
inline constexpr std::size_t kPhases = static_cast<std::size_t>(Phase::count);

struct Spent {
  double seconds = 0;
  std::int64_t ticks = 0;
};

struct PluginCounts {
  const char* name = "";
  std::int64_t calls = 0;
  std::int64_t found = 0;      // cuts, or points that may be solutions
  std::int64_t successes = 0;  // calls that brought cuts, or a new incumbent
  double seconds = 0;
};

struct IncumbentRecord {
  double seconds = 0;  // since the search began, earlier runs of it included
  std::int64_t nodes = 0;
  double objective = 0;
  const char* found_by = "";  // a heuristic's name, "start", or "relaxation"
};

struct SymmetryCounts {
  std::int64_t generators = 0;
  std::int64_t orbitopes = 0;
  std::int64_t moved = 0;     // binary columns that are moved where use is made of it
  std::int64_t fixings = 0;   // bounds at nodes
  std::int64_t ticks = 0;     // of all that symmetry takes, and
  std::int64_t found_in = 0;  // of these to find the generators
};

struct SearchStatistics {
  std::array<Spent, kPhases> phases{};
  double seconds = 0;        // of all runs
  double last_run = 0;       // seconds of its call at the end of the last run
  double root_seconds = -1;  // when the root was done; negative: it was not
  double root_bound_before_cuts = -kInf, root_bound_after_cuts = -kInf;
  int cut_rounds = 0, tree_cut_rounds = 0;  // at the root, and below
  int largest_depth = 0;
  std::int64_t conflicts = 0;               // that were learned
  std::int64_t conflict_bounds = 0;         // bounds in them
  std::int64_t clause_moves = 0;            // bounds that followed from them
  std::vector<IncumbentRecord> incumbents;  // the first kMostIncumbents - 1, and the last
  // Of plugins and cuts, filled when they are asked for.
  std::vector<PluginCounts> separators, heuristics;
  CutCounts cuts{};  // that became rows
  SymmetryCounts symmetry;
  std::int64_t strong_iterations = 0, heuristic_iterations = 0, judge_iterations = 0;
};

inline constexpr std::size_t kMostIncumbents = 1000;

/* Of one search after another. seconds_before: of the earlier ones, which the later one's clock does not know. */
SearchStatistics joined(SearchStatistics earlier, const SearchStatistics& later, double seconds_before);

/* What another search counted that worked beside this one: all but times and incumbents. */
void add_counts(SearchStatistics& all, const SearchStatistics& beside);

/* Hands on to the control of a call, and counts the work on its way. */
class MeteredControl : public lp::Control {
 public:
  explicit MeteredControl(lp::Control& control) : control_(control) {}
  void log(const char* text) override { control_.log(text); }
  void flush() override { control_.flush(); }
  void add_work(std::uint64_t ticks) override {
    ticks_ += static_cast<std::int64_t>(ticks);
    control_.add_work(ticks);
  }
  double seconds() override { return control_.seconds(); }
  lp::Stop poll() override { return control_.poll(); }
  lp::Stop poll_clock() override { return control_.poll_clock(); }
  lp::Stop iteration_callback(const lp::ProgressSource& now) override {
    return control_.iteration_callback(now);
  }
  std::int64_t ticks() const { return ticks_; }

 private:
  lp::Control& control_;
  std::int64_t ticks_ = 0;
};

/* Order: begin, any number of enter(), end; again for the next run. What came before begin() in the same call, by the
 * clock of the control, is presolve's. */
class PhaseMeter {
 public:
  PhaseMeter(MeteredControl& control, SearchStatistics& statistics)
      : control_(control), statistics_(statistics) {}
  void begin();
  void end();
  Phase phase() const { return phase_; }
  /* The phase that was left. precise: the clock is read at once. */
  Phase enter(Phase phase, bool precise);
  /* Of all runs up to now. */
  double seconds() { return earlier_ + control_.seconds(); }

 private:
  void share_out();

  MeteredControl& control_;
  SearchStatistics& statistics_;
  Phase phase_ = Phase::tree;
  std::array<std::int64_t, kPhases> unread_{};  // ticks since the clock was read
  std::int64_t unread_ticks_ = 0, last_ticks_ = 0;
  double earlier_ = 0, last_seconds_ = 0;
};

/* One call of a plugin, from its construction to its end. */
class TimedCall {
 public:
  TimedCall(PluginCounts& counts, lp::Control& control)
      : counts_(counts), control_(control), weight_(weight_of(counts.calls++)) {
    if (weight_ > 0) begin_ = control_.seconds();
  }
  ~TimedCall() {
    if (weight_ > 0) counts_.seconds += weight_ * (control_.seconds() - begin_);
  }
  TimedCall(const TimedCall&) = delete;
  TimedCall& operator=(const TimedCall&) = delete;

 private:
  static int weight_of(std::int64_t call) {
    constexpr int kAlways = 64, kEvery = 16;
    return call < kAlways ? 1 : call % kEvery == 0 ? kEvery : 0;
  }
  PluginCounts& counts_;
  lp::Control& control_;
  int weight_;
  double begin_ = 0;
};

}  // namespace tovik::mip
