/* FTRAN of two to four right-hand sides in one pass over the factor.
 *
 * The values of one slot stand side by side, so that each entry of L and U is read once for all right-hand
 * sides and each visit updates them with vector instructions. All slots are swept: it pays where the results
 * are dense enough that single solves would run plain too. Results agree with those of Solver up to rounding.
 * Between solves the workspace is zero. Cost counted: the entries once, and a share for each further
 * right-hand side. */
#pragma once

#include <span>
#include <vector>

#include "lp/base/sparse_vector.h"
#include "lp/factor/lu.h"
#include "lp/factor/solver.h"

namespace tovik::lp::factor {

class JointSolver {
 public:
  static constexpr int kMost = 4;

  explicit JointSolver(const Lu& lu) : lu_(lu) {}
  /* Overwrites each of `vectors` (kMost at most) with its solution; packs the spike of those that ask for it.
   */
  void ftran(std::span<SparseVector* const> vectors, Counts& counts);

 private:
  template <int kLanes>
  void solve(std::span<SparseVector* const> vectors, Counts& counts);

  const Lu& lu_;
  std::vector<double> x_;  // by slot, kLanes values each
};

}  // namespace tovik::lp::factor
