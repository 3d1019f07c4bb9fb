/* Dual steepest edge: w[p] = ||row p of B^-1||^2, at least kFloor.
 * - Start: carried weights are kept; otherwise 1 by the unit start, the true norms by the exact one (m solves
 *   where the basis is not all logicals).
 * - Trust: accept() puts the exact norm in the stored one's place and answers whether the choice may stand.
 * - Paper: Forrest, Goldfarb, Math. Programming 57 (1992). */
#pragma once

#include "lp/simplex/dual_weights.h"

namespace tovik::lp::simplex {

class DualSteepestEdge : public DualRule {
 public:
  enum class Start { unit, exact };
  static constexpr double kFloor = 1e-4;
  static constexpr double kAccept =
      0.25;  // a stored weight below this share of the exact one misled the choice

  explicit DualSteepestEdge(Start start) : start_(start) {}
  const char* name() const override { return "steepest-edge"; }
  WeightKind kind() const override { return WeightKind::norms; }
  bool needs_tau() const override { return true; }
  void start(Core& core, bool carried, DualWeights& weights, SparseVector& work) const override;
  bool accept(int p, const SparseVector& rho, DualWeights& weights) const override;
  bool update(const DualPivot& pivot, DualWeights& weights) const override;

 private:
  Start start_;
};

}  // namespace tovik::lp::simplex
