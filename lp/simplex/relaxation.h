/* The LP relaxation of a search: one LP that is solved again and again after small changes.
 *
 * It is a Solver with a fast way from one optimum to the next. After a solve the basic values, reduced costs,
 * dual steepest-edge weights and the factor stay; changes are noted and followed by one FTRAN (bounds) and
 * one BTRAN (costs) at the next resolve(), which then pivots with the dual simplex from where it stands. A
 * resolve costs what its changes and pivots touch: no pass over rows, columns or entries, but where the
 * factor is rebuilt. Every outcome, infeasible, cut off or stopped by a limit, leaves the engine as warm as
 * an optimum does.
 *
 * - Space: everything that goes in and comes out is in the user's space of the minimization form.
 * - Order: change_..., add_rows, delete_... in any order; resolve(); then queries, which belong to the last
 *   resolve() until the next change. The answer() of the Solver is made by Detail::verified only.
 * - Trust: optimal and infeasible are claims on carried values within the engine's inner tolerances (a tenth
 * of the user's, scaled space); infeasible is proven by its row in any case. Detail::verified recomputes all
 * from the factor and judges it on the user's data with compensated sums.
 * - Threads: an object belongs to one thread; fork() makes another for another thread. They share the columns
 * of the matrix until one of them edits rows or columns.
 * - Errors: bad_alloc passes through, and the object is to be thrown away then. */
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <vector>

#include "lp/base/basis.h"
#include "lp/simplex/pending_changes.h"
#include "lp/simplex/solver.h"
#include "lp/verify/certificates.h"

namespace tovik::lp::simplex {

struct BoundChange {
  int column;
  double lower, upper;
};

struct CostChange {
  int column;
  double cost;
};

/* New rows: row i has the entries of column i of `entries`, whose indices are columns of the LP. */
struct RowBlock {
  Matrix entries;
  std::vector<double> lower, upper;
};

/* Of one call. */
struct Limits {
  std::int64_t iterations = std::numeric_limits<std::int64_t>::max();
  double cutoff = kInf;  // the objective may not exceed it: ends with objective_limit
  std::int64_t ticks = std::numeric_limits<std::int64_t>::max();
};

/* What must be ready on return; what is not is made when asked for. */
enum class Detail { objective, primal, primal_dual, verified };

enum class Side { down, up };  // of a branching: a new upper, a new lower bound

/* A bound on the objective with one more bound on one column. */
struct BranchBound {
  Outcome outcome =
      Outcome::numerical_failure;  // infeasible, optimal, objective_limit, or where it was stopped
  double bound = -kInf;            // valid whatever the outcome; kInf when infeasible
  std::int64_t iterations = 0;
};

/* Entries of a vector that are not zero. */
struct SparseEntries {
  std::vector<int> index;
  std::vector<double> value;
  void clear() {
    index.clear();
    value.clear();
  }
};

class Relaxation : public Solver {
 public:
  /* lp: minimization form. The control must outlive each call that takes it. */
  Relaxation(LpData lp, const Options& options, Control& control, Observer* observer = nullptr);

  /* A second engine in the same state, on the same columns. */
  std::unique_ptr<Relaxation> fork();

  // ---- changes ----
  void change_bounds(std::span<const BoundChange> changes);
  void change_costs(std::span<const CostChange> changes);
  void change_row_bounds(int row, double lower, double upper);
  void change_bounds(int column, double lower, double upper);
  void change_cost(int column, double cost);
  void change_offset(double offset);
  /* The basis is extended by the rows' logicals, the weights exactly, by one BTRAN a row. */
  void add_rows(const RowBlock& rows);
  /* Any rows and columns, ascending. The logical of a tight row is first pivoted in, by the primal ratio
   * test; a basic column is first pivoted out, by the dual ratio test. */
  void delete_rows(std::span<const int> rows);
  void delete_columns(std::span<const int> columns);

  // ---- solving ----
  /* Outcomes: optimal, infeasible, unbounded, objective_limit (the cutoff), iteration_limit, tick_limit,
   * time_limit, user_abort, infeasible_or_unbounded, and for numerical trouble singular and
   * numerical_failure. */
  Outcome resolve(Control& control, const Limits& limits = {}, Detail detail = Detail::primal);
  /* Strong branching at the present optimum: at most so many dual iterations with the bound; everything is
   * then as before, the factor included. */
  BranchBound probe(Control& control, int column, double bound, Side side, const Limits& limits);

  // ---- what the last resolve found ----
  double objective() const { return objective_; }
  bool is_primal_feasible() { return ready() && the_dual().at_rest(); }  // of the basis at hand
  std::int64_t iterations() const { return iterations_; }                // of the last resolve
  std::span<const double> primal();
  std::span<const double> duals();          // of rows, d objective / d right-hand side
  std::span<const double> reduced_costs();  // of columns
  /* A bound on the optimum that holds whatever rounding did: from the present multipliers, with the original
   * costs and bounds, by compensated sums; -kInf where an unbounded column has a reduced cost. One pass over
   * the entries. */
  double safe_bound();
  /* After infeasible: the proof, verified on the user's data; null where it does not stand that test. */
  const verify::FarkasProof* farkas();

  // ---- basis ----
  Basis basis();
  void set_basis(const std::vector<BasisStatus>& columns, const std::vector<BasisStatus>& rows);
  void forget_basis();
  void set_options(const Options& options);
  void set_basis(const Basis& basis);
  /* Basic variables by position: column j, or n + i for the logical of row i. */
  std::span<const int> basis_head() const { return core_->basis.head(); }
  /* Row `position` of the tableau as a combination of the model's rows: sum_i w_i a_i x = sum_j c_j x_j,
   * where c is 1 for the basic column of the position (w is 1 for the basic logical's own row) and 0 for
   * other basic columns. columns: c of nonbasic columns, fixed ones included; null where only the weights are
   * wanted. Nothing is forgotten. */
  void tableau_row(int position, SparseEntries& weights, SparseEntries* columns);

  /* The present state: statuses, values, duals, weights, bounds, costs and the factor. */
  class Checkpoint;
  std::shared_ptr<const Checkpoint> save();
  /* False, and nothing has happened, when rows or columns have come or gone since. No refactorization. */
  bool restore(const Checkpoint& checkpoint);

  /* The logicals of these rows enter, these fixed columns leave where a fair pivot allows it. False when the basis
   * became singular. */
  bool pivot_rows_in(std::span<const int> rows);
  bool pivot_columns_out(std::span<const int> columns);

  // ---- as a Solver ----
  Outcome solve(Method method);
  bool edit(ModelEdit change);

 private:
  Relaxation(const Relaxation& other);
  void changed();
  void leave();
  void note(int variable);
  bool follow_changes();
  bool resolve_near(const Limits& limits, Outcome& outcome);
  bool finish_near(Outcome& outcome, std::int64_t iterations_left);
  bool clean_up(Outcome& outcome, std::int64_t iterations_left);
  Outcome resolve_anew(const Limits& limits);
  void start_near();
  bool ready();
  void recompute();
  bool close_bounds(int variable);
  void verify();
  void set_limits(const Limits& limits);
  BranchBound probe_by_checkpoint(Control& control, const BoundChange& branch, const Limits& limits);
  void settle_edit(bool in_step);
  void pivot_in(int row);
  void pivot_out(int column);
  bool pivot_for(const ModelEdit& change);
  void replace(int entering, int position, double step, int leaving_move);
  bool change_basis_only(int entering, int position);
  void start_requested_pivots();
  void load_inverse_row(int position);  // into row_
  void load_column(int variable);
  void resize_work();

  PendingChanges pending_;
  std::vector<int> crossing_;  // variables whose bounds cross, as last looked at
  MarkedList wrong_;      // nonbasic variables whose reduced cost has the wrong sign and no bound to go to
  bool near_ = false;     // x, d, weights and factor are in step with the model but for pending changes
  bool crossed_ = false;  // the last outcome is a pair of bounds that cross
  double objective_ = 0;
  std::int64_t iterations_ = 0;
  std::int64_t edits_ = 0;
  Outcome outcome_ = Outcome::numerical_failure;
  bool primal_made_ = false, duals_made_ = false, farkas_made_ = false;
  std::vector<double> primal_, duals_, reduced_costs_;
  verify::FarkasProof farkas_;
  SparseVector column_, row_, tau_, alpha_;
};

}  // namespace tovik::lp::simplex
