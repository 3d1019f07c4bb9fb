/* The factored starting basis of a problem in the user's space.
 *
 * The basis matrix B has a column of A for each basic structural and the unit column e_i for the slack of row
 * i (slack = rhs - ax). The engine factors R B C with powers of two; this view multiplies them away: B^-1 =
 * C_B (R B C)^-1 R, with the slack of row i scaled by 1 / R_i. */
#pragma once

#include <vector>

#include "env/problem.h"
#include "lp/run/warm_simplex.h"

namespace tovik::lp::run {

class BasisView {
 public:
  /* Makes or reuses the engine, installs the problem's basis, factors it and computes the basic values. 1262
   * without a basis, 1256 when it is singular. */
  Status open(Environment& env, Problem& problem);
  /* The same for a routine that only asks: 1804 while another one, from whose callback it may have been
   * called, is changing or optimizing the problem with that engine. */
  Status open_for_query(Environment& env, Problem& problem);

  int rows() const { return core_->m(); }
  int columns() const { return core_->n(); }
  /* Variable of position p as users write it: column j, or -i-1 for the slack of row i. */
  int head(int p) const;
  int position(int variable) const {
    return core_->basis.nonbasic(variable) ? -1 : core_->basis.position(variable);
  }                           // n + i for slacks; -1 when nonbasic
  double value(int p) const;  // of a basic variable; slack of a row as rhs - ax
  /* out = row p of B^-1 (size m, by row). */
  void inverse_row(int p, std::vector<double>& out);
  /* out = B^-1 v, v by row, out by position. */
  void solve(const std::vector<double>& v, std::vector<double>& out);
  /* out = B^-T v, v by position, out by row. */
  void solve_transposed(const std::vector<double>& v, std::vector<double>& out);
  /* out = row p of B^-1 A by column, given row p of B^-1. */
  void row_times_matrix(const std::vector<double>& row, std::vector<double>& out) const;
  std::vector<double> column(int j) const;  // of A, or e_i for j = n + i; dense by row
  /* From the engine's units of a variable (n + i for slacks) to the user's. */
  double scale(int variable) const;
  simplex::Solver& solver() { return warm_->solver; }
  simplex::Relaxation& engine() { return warm_->solver; }
  const simplex::Core& core() const { return *core_; }

 private:
  WarmSimplex* warm_ = nullptr;
  const simplex::Core* core_ = nullptr;
  const Problem* problem_ = nullptr;
  SparseVector work_;
};

}  // namespace tovik::lp::run
