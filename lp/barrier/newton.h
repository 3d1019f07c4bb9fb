/* Directions from right-hand sides by block, all five met:
 *
 *   A dx = primal,  dx + dw = upper,  A'dy + dz - dv = dual,  z dx + x dz = lower_pairs,  v dw + w dv = upper_pairs
 *
 * Regularization of the factor is not part of these equations: refinement measures what they miss, all blocks, and
 * takes it away; errors of the reduced system alone hide what is lost in reducing.
 *
 * Order: prepare() at each point, then solve() as often as wanted. `trust` is the residual that the last solve left,
 * relative to its right-hand side and the terms. */
#pragma once

#include "lp/barrier/kkt.h"
#include "lp/barrier/point.h"

namespace tovik::lp::barrier {

class Newton {
 public:
  Newton(const Form& form, Kkt& kkt)
      : form_(form),
        kkt_(kkt),
        d_(form.n, 0.0),
        left_(form),
        correction_(form),
        dual_(form.n, 0.0),
        primal_(form.m, 0.0) {}

  cholesky::State prepare(const Point& at, const Regularization& regularization, Control& control);
  /* What a step may miss, relative: with more it is refined by the factor, with more than `poor` by Krylov steps. Directions
   * that only tell where to aim, or which are corrections of another, need few digits. */
  struct Precision {
    double enough, poor;
  };
  static constexpr Precision kFull{1e-10, 1e-6}, kStep{1e-8, 1e-6}, kCorrection{1e-4, 1e-3}, kAim{1e-3, 1e-3};
  void solve(const Blocks& wanted, const Precision& precision, Point& step, Control& control);

  static constexpr int kRefinements = 3;
  void set_refinements(int count) { refinements_ = count; }
  double trust() const { return trust_; }
  std::int64_t solves() const { return solves_; }

 private:
  void solve_once(const Blocks& wanted, Kkt::Accuracy accuracy, Point& step, Control& control);
  bool improve(const Blocks& wanted, Kkt::Accuracy accuracy, Point& step, Control& control);
  double measure(const Blocks& wanted, const Point& step);

  const Form& form_;
  Kkt& kkt_;
  const Point* at_ = nullptr;
  std::vector<double> d_;
  Blocks left_;  // what a step misses
  Point correction_, tried_;
  std::vector<double> dual_, primal_;
  int refinements_ = kRefinements;
  double trust_ = 0;
  std::int64_t solves_ = 0;
};

}  // namespace tovik::lp::barrier
