/* Sensitivity ranges of an optimal basis: how far one datum may move, the others kept, before the basis stops
 * being optimal. Ranges are in the user's space and sense; infinite ends are +-1e20. */
#pragma once

#include <vector>

#include "env/problem.h"
#include "lp/run/basis_view.h"

namespace tovik::lp::run {

struct Interval {
  double lower, upper;
};

class Sensitivity {
 public:
  /* 1260 unless the problem's status is optimal, 1262 without a basis. */
  Status open(Environment& env, Problem& problem);
  Interval cost(int j);
  Interval rhs(int i);
  Interval lower_bound(int j);
  Interval upper_bound(int j);

 private:
  /* How far the value of a nonbasic variable may move: its column B^-1 a by position. */
  Interval step_range(const std::vector<double>& column);
  BasisView view_;
  const Problem* problem_ = nullptr;
  double sign_ = 1;
  std::vector<double> reduced_cost_;  // total, minimization form, user's space
};

}  // namespace tovik::lp::run
