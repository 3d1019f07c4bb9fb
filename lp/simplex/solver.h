/* One LP, solved by dual or primal simplex, with the answer checked in the user's own space.
 *
 * Takes the model in minimization form, scales it, keeps basis and factor between solves (warm start), orders
 * dual, primal and clean-up runs, verifies each claim on the unscaled data (violations with compensated sums,
 * Farkas certificate, ray) and hands out values, duals, statuses and certificates in the user's space of the
 * minimization form: row duals y = d objective / d right-hand side, reduced costs d = c - A'y. */
#pragma once

#include <memory>
#include <vector>

#include "lp/simplex/core.h"
#include "lp/simplex/dual.h"
#include "lp/simplex/observer.h"
#include "lp/simplex/primal.h"
#include "lp/simplex/scaling.h"

namespace tovik::lp::simplex {

enum class Method { dual, primal };

/* Largest violations of a point in the user's space, and where. */
struct Violation {
  double row = 0, column = 0, dual = 0;
  int worst_row = -1, worst_column = -1, worst_dual = -1;  // worst_dual: variable, n + i for a row's dual
  double primal() const { return row > column ? row : column; }
};

struct Answer {
  Outcome outcome = Outcome::trouble;
  bool has_values = false;  // x, activity, y, d, statuses are set
  bool primal_feasible = false, dual_feasible = false;
  bool unscaled_infeasible =
      false;                     // optimal in scaled space, violated by more than the tolerance in the user's
  Method method = Method::dual;  // of the last run that moved
  double objective = 0;
  std::vector<double> x, activity, y, d;
  std::vector<At> column_status, row_status;  // of a row: the status of its slack-like logical, see below
  std::vector<double> ray;                    // unbounded: columns
  std::vector<double> farkas;  // infeasible: y by row with max over the box of y'Ax < min of y'(row bounds)
  double farkas_gap = 0;       // by which the certificate holds
  Violation violation;
};

class Solver {
 public:
  /* lp: minimization form, user's space. The control must outlive the solver or be replaced before each
   * solve. */
  Solver(LpData lp, const Options& options, Control& control, Observer* observer);
  ~Solver();

  void set_control(Control& control, Observer* observer);
  void detach();  // forgets control and observer after a run
  void set_options(const Options& options);
  const Options& options() const { return options_; }
  void set_objective_limits(double lower, double upper);  // minimization form

  /* Statuses by column and by row; the row status is that of the row's activity: At::lower means the activity
   * stands at the row's lower bound. */
  void set_basis(const std::vector<At>& columns, const std::vector<At>& rows);
  void set_dual_norms(const std::vector<double>& norms,
                      const std::vector<int>& head);   // head: variable by position
  bool has_dual_norms() const { return keep_norms_; }  // weights of the present basis
  void forget_dual_norms() { keep_norms_ = false; }
  void forget_basis();
  bool has_basis() const { return has_basis_; }

  Outcome solve(Method method);
  const Answer& answer() const { return answer_; }
  Answer release_answer() { return std::move(answer_); }
  Core& core() { return *core_; }
  const Core& core() const { return *core_; }
  Dual& dual();  // made when first asked for
  Primal& primal();
  const Scaling& scaling() const { return scaling_; }
  /* Vectors in the user's space; its matrix has sizes but no entries, see each_entry. */
  const LpData& user_lp() const { return lp_; }
  /* f(row, value) for the entries of column j in the user's space: scale factors are powers of two, so
   * nothing is lost. */
  template <class F>
  void each_entry(int j, F f) const {
    const Matrix& matrix = core_->lp.matrix;
    const double c = 1.0 / column_scale(j);
    for (int k = matrix.start[j]; k < matrix.start[j + 1]; ++k) {
      const int i = matrix.index[k];
      f(i, scaling_.active() ? matrix.value[k] * c / scaling_.row[i] : matrix.value[k]);
    }
  }
  std::int64_t num_entries() const { return static_cast<std::int64_t>(core_->lp.matrix.index.size()); }

  /* Change of data without loss of the basis; the next solve goes on from it. */
  void change_bounds(int j, double lower, double upper);
  void change_row_bounds(int i, double lower, double upper);
  void change_cost(int j, double cost);
  void change_offset(double offset);

  /* Factor of the present basis, made when there is none. False when the basis is singular. */
  bool ensure_factor();
  double column_scale(int j) const { return scaling_.active() ? scaling_.column[j] : 1.0; }
  double row_scale(int i) const { return scaling_.active() ? scaling_.row[i] : 1.0; }
  /* Fills the answer's values, duals and violations from the core's present point. */
  void extract();

 private:
  Outcome run(Method method);
  bool already_optimal();
  bool start_by_sifting();
  void settle(int j);
  Outcome run_dual();
  Outcome run_primal();
  bool verify_infeasible(const std::vector<double>& scaled_row);
  bool verify_ray();
  void prepare();
  bool bounds_cross();

  LpData lp_;
  Scaling scaling_;
  Options options_;
  std::unique_ptr<Core> core_;
  std::unique_ptr<Dual> dual_;
  std::unique_ptr<Primal> primal_;
  bool has_basis_ = false;
  bool keep_norms_ = false;
  Answer answer_;
};

/* Violations of a primal-dual point of lp; statuses tell which sign of d is wrong. Compensated sums. */
Violation measure_violation(const LpData& lp, const Answer& answer);

}  // namespace tovik::lp::simplex
