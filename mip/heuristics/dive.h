/* A dive: fractions of the relaxation's point are rounded a few at a time, each change is propagated and the relaxation
 * solved again, until its point is whole, infeasible, not below the cutoff, or the budget is spent.
 *
 * - What is rounded next, and where to, is the rule of a derived class (rate).
 * - Backtracking: a step that fails is taken back and its first column goes the other way, once; where a first incumbent is
 *   looked for (Moment::first) so do, some times, the last steps before it that have another side.
 * - Steps: as many columns as a tenth of the fractions; unless a first incumbent is looked for the count must fall by half a
 *   column a level, but for the first levels.
 * - Leaves: domain and relaxation as they were, but for one checkpoint's worth of work.
 * - Points that are whole, or can be rounded without harm to any row, become candidates. */
#pragma once

#include <span>
#include <vector>

#include "mip/branching/branching.h"
#include "mip/worker/plugin.h"

namespace tovik::mip {

class Dive : public Plugin {
 public:
  Verdict call(Worker& worker, const Moment& moment) final;

 protected:
  /* The fraction with the least score goes first. */
  struct Choice {
    double score;
    bool up;
  };
  /* False: the rule has nothing to go by. */
  virtual bool applies(const Worker&) const { return true; }
  /* One choice a fraction. May probe the relaxation. */
  virtual void rate(Worker& worker, std::span<const Fraction> fractions, std::vector<Choice>& choices) = 0;

 private:
  bool descend(Worker& worker, std::int64_t end);
  bool step(Worker& worker, std::span<const Fraction> fractions, std::int64_t end);

  struct Turn {
    int position;  // before the step
    Fraction fraction;
    bool up;
  };
  bool turn(Worker& worker, std::int64_t end);

  std::vector<Turn> turns_;
  int turns_left_ = 0;
  bool is_first_ = false;  // a first incumbent is looked for
  std::vector<Choice> choices_;
  std::vector<int> order_;
};

}  // namespace tovik::mip
