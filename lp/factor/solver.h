/* FTRAN and BTRAN with a factored basis.
 *
 * Each solve moves its right-hand side into slot order, sweeps through two triangles with the row etas
 * between them, and moves the result back. A sweep runs in one of two modes:
 *   sparse  visits only slots that receive a value, in order, through a SlotSet; turns plain half-way when it
 *           has visited too many;
 *   plain   runs through all slots of the triangle and skips zeros.
 * Both modes do the same operations in the same order: a sweep gives the same bits in either. */
#pragma once

#include <cstdint>

#include "lp/base/sparse_vector.h"
#include "lp/factor/factor.h"
#include "lp/factor/lu.h"
#include "lp/factor/workspace.h"

namespace tovik::lp::factor {

class Solver {
 public:
  explicit Solver(const Lu& lu) : lu_(lu) {}
  void resize();  // after each build
  void force(SolveMode mode) { forced_ = mode; }

  void ftran(SparseVector& v, double expected_density);
  void btran(SparseVector& v, double expected_density);

  Workspace& workspace() { return work_; }
  /* Of the whole factor; those of solves are counted here. */
  const Counts& counts() const { return counts_; }
  Counts& counts() { return counts_; }

 private:
  void load(SparseVector& v, const std::vector<int>& slot_of);
  void store(SparseVector& v, const std::vector<int>& slot_of);
  void pack(SparseVector& v);
  bool start_plain(double expected_density) const;
  void ftran_etas();
  void ftran_etas_by_rows();
  void ftran_etas_by_columns();
  void btran_etas();
  template <bool kUp, class Lines>
  void sweep(const Lines& lines, int first, int end, bool plain);

  const Lu& lu_;
  Workspace work_;
  Counts counts_;
  SolveMode forced_ = SolveMode::automatic;
};

}  // namespace tovik::lp::factor
