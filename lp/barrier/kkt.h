/* The linear system of a Newton step, and its factorization.
 *
 *   A dx = primal,   A'dy - (D + R_p) dx = dual
 *
 * with D >= 0 by column. Some columns are eliminated, the others stay:
 *
 *   [ A_1 (D_1 + R_p)^-1 A_1' + R_d   A_2          ]
 *   [ A_2'                            -(D_2 + R_p) ]
 *
 * All eliminated: the normal equations. Kept in any case: free columns, whose D is 0, and dense ones, which would fill
 * the rest; so the matrix is symmetric quasi-definite and has a factor L D L' with known signs for every order (R.
 * Vanderbei, Symmetric quasi-definite matrices, 1995). Whether the others are eliminated is decided by counted work of
 * both: slacks always are.
 *
 * Order: analyze() once, allocate(), factorize() for each D, solve() as often as wanted.
 * Cost: factorize() flops(), solve() twice the entries of the factor. Both are added to Control's work.
 * Errors: the states of cholesky; bad_alloc passes through, and its FileError out of solve(). */
#pragma once

#include <vector>

#include "lp/barrier/form.h"
#include "lp/barrier/options.h"
#include "lp/base/control.h"

namespace tovik::lp::barrier {

/* R_p of a column by its kind, and R_d. What is eliminated bears little: the whole matrix scales with it. A pivot of
 * its own needs more. */
struct Regularization {
  double eliminated = 1e-14, kept = 1e-10, free = 1e-6;
  double rows = 1e-12;  // R_d; `kept` in the augmented system
  void multiply(double factor) {
    for (double* r : {&eliminated, &kept, &free, &rows}) *r *= factor;
  }
};

class Kkt {
 public:
  explicit Kkt(const Form& form) : form_(form) {}

  cholesky::State analyze(const Options& options, Control& control, Observer* observer);
  cholesky::State allocate() { return factor_.allocate(); }
  cholesky::State factorize(const std::vector<double>& d, const Regularization& regularization,
                            Control& control);
  /* primal: size m, becomes dy. dual: size n, becomes dx. */
  void solve(std::vector<double>& primal, std::vector<double>& dual, Control& control) const {
    solve(primal, dual, Accuracy::of_factor, control);
  }
  /* `iterated`: the factor is the preconditioner of some Krylov steps on the matrix without R_d and without the R_p of
   * the columns that stay. */
  enum class Accuracy { of_factor, iterated };
  void solve(std::vector<double>& primal, std::vector<double>& dual, Accuracy accuracy,
             Control& control) const;

  const Setup& setup() const { return setup_; }
  const cholesky::Storage& storage() const { return factor_.storage(); }
  const cholesky::Report& report() const { return report_; }
  double solve_cost() const;   // multiplications
  double factor_cost() const;  // flops, those that form the matrix included

 private:
  struct Layout {            // which columns stay, and what the matrix looks like then
    std::vector<int> kept;   // columns in the order of their rows behind the m first ones
    std::vector<int> place;  // by column: its place in kept, or -1
    cholesky::Pattern pattern;
    double forming = 0;  // multiplications to form the matrix
  };

  int dense_limit(const Options& options) const;
  Layout make_layout(const std::vector<char>& keep) const;
  void multiply(const std::vector<double>& in, std::vector<double>& out) const;
  void form_matrix(const std::vector<double>& d, const Regularization& regularization);

  const Form& form_;
  Layout layout_;
  std::vector<int> position_;  // by entry of form.rows: its place in the column of form.a
  cholesky::Cholesky factor_;
  std::vector<double> values_, inverse_,
      diagonal_;  // of the matrix; (D + R_p)^-1; D + R_p, D for columns that stay
  std::vector<signed char> signs_;
  Setup setup_;
  cholesky::Report report_;
  mutable std::vector<double> work_;
};

}  // namespace tovik::lp::barrier
