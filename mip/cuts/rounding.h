/* Complemented mixed-integer rounding (Marchand and Wolsey, Oper. Res. 49 (2001)).
 *
 * From sum_j a_j x_j + sum_i h_i t_i <= side, x within its bounds, t >= 0: columns are shifted to a bound, so that all
 * variables are >= 0; the inequality is divided by some delta; then with f0 = frac(side / delta), f = frac(a / delta)
 *
 *     sum_int (floor(a/delta) + max(0, f - f0) / (1 - f0)) x + sum_cont min(0, a) / (delta (1 - f0)) x <= floor(side / delta).
 *
 * With delta 1 and a tableau row it is Gomory's mixed-integer cut. Slacks of integral rows count as integers. */
#pragma once

#include <span>

#include "mip/cuts/row_sum.h"
#include "mip/pool/cut.h"

namespace tovik::mip {

class Rounding {
 public:
  explicit Rounding(const Worker& worker) : worker_(worker) {}

  /* The most violated cut that the combination, taken as <= (sign 1) or as >= (sign -1), gives at x. False: none is violated
   * enough. */
  bool separate(const RowSum& sum, double sign, std::span<const double> x, Cut* cut);

 private:
  /* A term of the shifted inequality: the variable is >= 0. */
  struct Term {
    double coefficient;
    double value;  // at x
    double range;  // upper bound of the shifted variable
    int column;    // or the slack's position in the sum, see is_slack
    bool is_slack, is_integer, from_upper;
  };
  bool shift(const RowSum& sum, double sign, std::span<const double> x);
  void complement(Term& term);
  double efficacy(double delta) const;
  bool build(const RowSum& sum, double delta, Cut* cut);

  const Worker& worker_;
  std::vector<Term> terms_;
  double side_ = 0;
  lp::CompensatedSum cut_side_;
};

/* Makes a cut safe to add: drops small coefficients against their columns' bounds, widens the side by what rounding may
 * have taken, refuses what is numerically poor, too dense or no longer violated at x. */
bool finish_cut(const Worker& worker, std::span<const double> x, Cut* cut);

}  // namespace tovik::mip
