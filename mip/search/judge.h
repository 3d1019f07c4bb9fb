/* Decides whether a point is a solution of the original problem: the one door through which incumbents come.
 *
 * Integer columns are rounded and objects decided by the point (a semi-continuous column is 0 or on, a set keeps its best
 * window, an indicator's constraint holds or not); where rows and bounds then do not hold but for rounding, or the
 * objective is not below the cutoff, the continuous columns are found anew by an LP with all that is discrete fixed. What is
 * accepted holds exactly on integer columns, and rows, bounds and objects within the tolerance, by compensated sums. */
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "lp/simplex/relaxation.h"
#include "mip/domain/problem.h"
#include "mip/pool/cut.h"
#include "mip/worker/settings.h"

namespace tovik::mip {

struct Solution {
  std::vector<double> x;
  double objective = kInf;
};

class Judge {
 public:
  Judge(const Problem& original, const Settings& settings, lp::Control& control)
      : problem_(original), settings_(settings), control_(control) {}

  /* x: of the original problem. False when no solution below the cutoff comes of it. */
  bool accept(std::span<const double> x, double cutoff, Solution* solution);
  /* The point with its integers and objects as they are meant, whatever its objective; no LP is solved. */
  bool accept_as_it_is(std::span<const double> x, Solution* solution) const;
  /* From now on it must hold too. */
  void add_cut(const Cut& cut) { cuts_.push_back(cut); }
  bool satisfies_cuts(std::span<const double> x) const;
  std::int64_t iterations() const { return iterations_; }

 private:
  bool holds(std::span<const double> x) const;
  void snap(std::vector<double>& x) const;
  bool complete(std::vector<double>& x);
  void decide(std::span<const double> x, std::vector<lp::simplex::BoundChange>& bounds) const;

  const Problem& problem_;
  const Settings& settings_;
  lp::Control& control_;
  std::unique_ptr<lp::simplex::Relaxation> fixed_;  // made when first needed
  std::int64_t iterations_ = 0;
  std::vector<Cut> cuts_;
  std::size_t cuts_in_fixed_ = 0;  // that are rows there
};

/* How far a point is from satisfying a cut; 0 when it does. */
double violation(const Cut& cut, std::span<const double> x);

}  // namespace tovik::mip
