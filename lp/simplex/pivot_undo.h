/* What the dual iterations of a probe overwrite, so that they can be taken back in the time they took.
 *
 * - Holds: old values in the order in which they were overwritten; memory stays between probes.
 * - Order: start(); before each change save_duals(), save_basics(), save_flips(), save_pivot() ...; undo()
 * once. The factor takes back its own updates (Factor::record_updates).
 * - Valid: for iterations only. A refactorization permutes the basis: the caller stops the probe before one.
 * - Cost: of the entries saved. Errors: bad_alloc passes through. */
#pragma once

#include <span>
#include <vector>

#include "lp/simplex/core.h"
#include "lp/simplex/dual_pricing.h"
#include "lp/simplex/dual_weights.h"

namespace tovik::lp::simplex {

class PivotUndo {
 public:
  void start(const Core& core);
  bool active() const { return active_; }

  void save_dual(const Core& core, int j) { duals_.push_back({j, core.values.d(j), core.work.cost(j)}); }
  void save_basic(const Core& core, const DualWeights& norms, int p) {
    basics_.push_back({p, core.values.x(p), norms.view()[p]});
  }
  /* The basic values and weights in the pattern of a column; all of them where it has no list. */
  void save_basics(const Core& core, const DualWeights& norms, const SparseVector& column);
  void save_nonbasic(const Core& core, int j) {
    nonbasics_.push_back({j, core.basis.move(j), core.basis.value(j)});
  }
  /* Before entering replaces the basic variable of position p. */
  void save_pivot(const Core& core, int entering, int p);

  void undo(Core& core, DualWeights& norms, DualPricing& pricing);

 private:
  struct Dual {
    int variable;
    double d, work_cost;
  };
  struct Basic {
    int position;
    double x, weight;
  };
  struct Nonbasic {
    int variable;
    int move;
    double value;
  };
  struct Pivot {
    int position, entering, leaving;
    double lower, upper;
  };
  bool active_ = false;
  WorkingData::ShiftMark shifts_;
  int free_nonbasic_ = 0;
  EngineRandom random_;
  std::vector<Dual> duals_;
  std::vector<Basic> basics_;
  std::vector<Nonbasic> nonbasics_;
  std::vector<Pivot> pivots_;
};

}  // namespace tovik::lp::simplex
