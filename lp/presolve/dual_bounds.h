/* Bounds that the duals of rows obey in every optimal basic solution of the present problem.
 *
 * They come from missing sides of rows (no lower side: y <= 0) and from columns whose reduced cost has a
 * known sign, because one of their bounds is infinite or lies strictly beyond a bound that a row implies:
 * such a column's inequality, sum a_ij y_i <= c_j or >= c_j, is propagated like a row of the primal.
 *
 * A column that gave a bound is part of the argument: whoever draws a conclusion from the bounds must leave
 * these columns in the problem. Likewise a row whose missing side was used must keep its type. Everything
 * else may be reduced at once: fixing columns and turning rows into equations only shrinks the feasible set,
 * and the argument stands on what stays. Propagation as in Andersen and Andersen (1995), section 3. */
#pragma once

#include <cstdint>
#include <vector>

#include "lp/presolve/workspace.h"

namespace tovik::lp::presolve {

class DualBounds {
 public:
  /* Implied: columns with strictly implied bounds count too. The workspace outlives this object. */
  DualBounds(Workspace& ws, bool implied);

  /* Computes the bounds from scratch; columns flagged in `excluded` give none. */
  void compute(const std::vector<char>& excluded);

  /* A row whose bounds contradict each other plainly, or -1. The bounds mean nothing then. */
  int contradiction() const { return contradiction_; }
  double lower(int i) const { return lower_[i]; }
  double upper(int i) const { return upper_[i]; }
  bool gave_bound(int j) const { return gave_[j] != 0; }
  bool sign_used(int i) const { return sign_used_[i] != 0; }

  struct Range {
    double least, most;
    double scale;  // largest term: of rounding errors
  };
  Range reduced_cost(int j);

 private:
  struct Sums {
    double least = 0, most = 0, scale = 0, largest = 0;  // largest: entry
    int infinite_least = 0, infinite_most = 0;
  };
  Sums sums(const View& column) const;
  void find_signs(bool implied);
  void visit(int j);
  void propagate(int j, const View& column, bool above);
  bool tighten(int i, bool is_upper, double value, double slack);

  Workspace& ws_;
  std::vector<char> not_negative_, not_positive_;  // by column: the reduced cost is >= 0, <= 0
  std::vector<double> lower_, upper_;              // by row
  std::vector<char> derived_lower_, derived_upper_, sign_used_;
  std::vector<char> gave_, queued_;
  std::vector<int> queue_, order_;
  int contradiction_ = -1;
};

}  // namespace tovik::lp::presolve
