/* The LPs that settle what is true of an LP, all in equation form and all with an optimum:
 *
 * - equation form: A x - r = 0 with a column r_i for each row that is not an equation, A_i x = b_i for those that are;
 *   columns in the order x, r.
 * - elastic form: each equation may be missed on either side at a price of 1 (columns x, r, then two a row: below,
 *   above). Its optimum is 0 where the LP is feasible; else its multipliers prove that it is not.
 * - recession form: the directions of the box -1..1 along which no finite bound or side is left, with the LP's costs.
 *   Its optimum is negative where the LP, if feasible, is unbounded; else its multipliers are feasible for the dual.
 *
 * Cost of each: a copy of the LP. */
#pragma once

#include <vector>

#include "lp/base/basis.h"
#include "lp/base/lp_data.h"
#include "lp/refine/iterate.h"

namespace tovik::lp::refine {

class EquationForm {
 public:
  explicit EquationForm(const LpData& original);

  const LpData& lp() const { return lp_; }
  int original_columns() const { return original_columns_; }
  /* Of a basis of the original, and back. */
  Basis basis(const Basis& original) const;
  Basis original_basis(const Basis& of_form) const;
  /* Of a point of the original. */
  std::vector<Extended> point(const std::vector<double>& x, const std::vector<double>& activity) const;

  LpData elastic() const;
  Iterate elastic_start() const;  // feasible
  /* What an iterate of the elastic form misses in row i: positive when A x stays below b. */
  double missed(const Iterate& elastic, int i) const;
  /* The elastic form with this LP's costs, where each row may be missed by just what the iterate misses, and the
   * iterate with a basis for that. */
  LpData allow_misses(Iterate& elastic) const;

  LpData recession() const;
  Iterate recession_start() const;

 private:
  LpData lp_;
  int original_columns_;
  std::vector<int> activity_column_;  // r_i by row, -1 for an equation
};

}  // namespace tovik::lp::refine
