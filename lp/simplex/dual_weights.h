/* Dual steepest-edge weights.
 * - Holds: w[p] = ||row p of B^-1||^2 by basis position (scaled space), at least kFloor. Reads nothing but
 *   its arguments.
 * - Order: exact() when a row's exact norm is known; update() once per pivot, before the factor is updated;
 *   save()/restore() around a refactorization, which may permute positions.
 * - Trust: exact() compares the stored with the exact norm and answers whether the choice may stand.
 * - Paper: Forrest, Goldfarb, Math. Programming 57 (1992). */
#pragma once

#include <cstdint>
#include <vector>

#include "lp/simplex/core.h"

namespace tovik::lp::simplex {

class DualNorms {
 public:
  static constexpr double kFloor = 1e-4;
  static constexpr double kAccept =
      0.25;  // a stored weight below this share of the exact one misled the choice

  void reset(int rows) { weight_.assign(static_cast<size_t>(rows), 1.0); }
  void set(std::vector<double> weights) { weight_ = std::move(weights); }
  /* m unit solves; exact for any basis. */
  void compute(Core& core, SparseVector& work);
  bool exact(int p, double norm2) {
    const double stored = weight_[p];
    weight_[p] = norm2;
    return stored >= kAccept * norm2;
  }
  void update(int p, const SparseVector& column, double pivot, const SparseVector& tau);
  /* Devex: reference weights that need no further solve (Harris 1973). */
  void update_devex(int p, const SparseVector& column, double pivot);
  void save(const Core& core);
  void restore(const Core& core);
  double* data() { return weight_.data(); }
  const std::vector<double>& view() const { return weight_; }
  bool fits(int rows) const { return static_cast<int>(weight_.size()) == rows; }

 private:
  std::vector<double> weight_;
  std::vector<double> by_variable_;  // total, filled between save and restore
};

}  // namespace tovik::lp::simplex
