/* One LP, solved by dual or primal simplex, with the answer checked in the user's own space.
 *
 * A solve that goes on from an optimum first looks at what has changed since (Reoptimization); where nothing
 * needs to move it costs no more than that. The answer stays in the solver, and who keeps a copy is told
 * which entries are new.
 *
 * Takes the model in minimization form, scales it, keeps basis and factor between solves (warm start), orders
 * dual, primal and clean-up runs, verifies each claim on the unscaled data (violations with compensated sums,
 * Farkas certificate, ray) and hands out values, duals, statuses and certificates in the user's space of the
 * minimization form: row duals y = d objective / d right-hand side, reduced costs d = c - A'y. */
#pragma once

#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "lp/base/answer.h"
#include "lp/base/basis.h"
#include "lp/simplex/activities.h"
#include "lp/simplex/core.h"
#include "lp/simplex/dual.h"
#include "lp/simplex/model_edit.h"
#include "lp/simplex/observer.h"
#include "lp/simplex/primal.h"
#include "lp/simplex/reoptimization.h"
#include "lp/simplex/statistics.h"
#include "lp/simplex/user_space.h"

namespace tovik::lp::simplex {

class Solver {
 public:
  /* lp: minimization form, user's space. The control must outlive the solver or be replaced before each
   * solve. */
  Solver(LpData lp, const Options& options, Control& control, Observer* observer);
  ~Solver();
  Solver& operator=(const Solver&) = delete;

  void set_control(Control& control, Observer* observer);
  void detach();  // forgets control and observer after a run
  void set_options(const Options& options);
  const Options& options() const { return options_; }
  void set_objective_limits(double lower, double upper);  // minimization form

  /* Statuses by column and by row; the row status is that of the row's activity: BasisStatus::lower means the
   * activity stands at the row's lower bound. */
  void set_basis(const std::vector<BasisStatus>& columns, const std::vector<BasisStatus>& rows);
  void set_dual_norms(const std::vector<double>& norms,
                      const std::vector<int>& head);   // head: variable by position
  bool has_dual_norms() const { return keep_norms_; }  // weights of the present basis
  void forget_basis();
  bool has_basis() const { return has_basis_; }
  /* Another method leaves a factored basis in the core: leave_basis(core). The next solve goes on from it. */
  template <class F>
  void take_basis(F leave_basis) {
    begin_at_rest();
    leave_basis(*core_);
    has_basis_ = true;
  }

  Outcome solve(Method method);
  const Answer& answer() const { return answer_; }
  Answer release_answer() {
    reoptimization_.forget();
    return std::move(answer_);
  }
  /* What is known of the present basis and model before a solve: looks at changes only. */
  Reoptimization::State standing();
  /* Entries of the answer that the last solves may have changed: all of them, or those that the standing
   * names, until answer_taken(). The answer may have grown or lost its last entries. */
  bool answer_is_new() const { return answer_is_new_; }
  std::span<const int> changed_columns() const { return reoptimization_.columns(); }
  std::span<const int> changed_rows() const { return reoptimization_.rows(); }
  void answer_taken();
  /* A copy may be wrong in these entries although the answer is the same. */
  void renew_column(int j) { reoptimization_.renew_column(j); }
  void renew_row(int i) { reoptimization_.renew_row(i); }
  void renew_answer() { answer_is_new_ = true; }

  /* The state, to be looked at. */
  const Core& core() const { return *core_; }
  /* Factors the basis at hand as it is and computes its values by the model's own bounds and costs. False when it is
   * singular: it may then have been repaired to another one. */
  bool factor_basis();
  /* Solves with the factored basis, in scaled space: B v and B' v. */
  void ftran(SparseVector& v) const { core_->factor.ftran(v, 1.0); }
  void btran(SparseVector& v) const { core_->factor.btran(v, 1.0); }
  /* Where has_dual_norms(). */
  const std::vector<double>& dual_norms() const {
    return dual_ != nullptr ? dual_->norms().view() : carried_norms_.view();
  }
  const Counters& counters() const { return core_->counters; }
  /* From here on counts are of a new optimization, or go on from those of another engine. */
  void begin_count();
  void continue_count(const Counters& before);
  /* What has been counted since: in place, for it is done after each optimization. */
  void write_statistics(Statistics& out) const;
  void invalidate() { reoptimization_.forget(); }  // the next solve must run its algorithm

  const UserSpace& user() const { return user_; }
  /* Vectors in the user's space; its matrix has sizes but no entries, see each_entry. */
  const LpData& user_lp() const { return user_.lp; }
  template <class F>
  void each_entry(int j, F f) const {
    user_.each_entry(j, f);
  }

  /* The model as the user stated it, entries and all. */
  LpData user_copy() const;

  /* Change of data without loss of the basis; the next solve goes on from it. */
  void change_bounds(int j, double lower, double upper);
  void change_row_bounds(int i, double lower, double upper);
  void change_cost(int j, double cost);
  void change_offset(double offset);
  /* Rows and columns go and come. False when the basis does not allow it; nothing has then happened. */
  bool edit(ModelEdit change);

  /* Factor of the present basis, made when there is none. False when the basis is singular. */
  bool ensure_factor();
  double column_scale(int j) const { return user_.column_scale(j); }
  double row_scale(int i) const { return user_.row_scale(i); }
  /* Fills the answer's values, duals and violations from the core's present point. */
  void extract();

 protected:
  /* A copy in the same state on the same columns, without its answer. */
  Solver(const Solver& other);
  Dual& the_dual();  // made when first asked for
  Primal& the_primal();
  bool is_still_optimal(Method method);
  Reoptimization::State recheck();
  /* An optimal basis and by how many times it misses the user's tolerances. */
  struct BestBasis {
    Basis basis;
    double excess = 1e300;
  };
  Outcome run_to_tolerance(Method method);
  void tighten_tolerances(double primal_excess, double dual_excess);
  Outcome restore_best_basis(const Basis& basis);
  Outcome run(Method method);
  bool already_optimal();
  bool start_by_sifting();
  bool run_primal_once(std::int64_t budget, Outcome& ended);
  Work work_so_far() const;
  void reset_nonbasic_value(int j);
  Outcome run_dual();
  std::int64_t patience() const;
  std::int64_t patience_after_sifting() const;
  Outcome stalled(Outcome outcome) const;
  bool run_dual_near(Outcome& outcome);
  Outcome run_primal();
  void take_core_values();
  double row_residual(int i) const;
  double basic_residual(int p) const;
  double residual_excess() const;
  void refine_values();
  void correct_values_and_duals();
  bool verify_infeasible(const std::vector<double>& scaled_row);
  bool verify_ray();
  std::vector<double> new_row_lengths(const ModelEdit& change);
  void prepare();
  void begin_at_rest();
  bool bounds_cross();

  Options options_;
  UserSpace user_;
  std::unique_ptr<Core> core_;
  std::unique_ptr<Dual> dual_;
  std::unique_ptr<Primal> primal_;
  bool has_basis_ = false;
  bool keep_norms_ = false;
  DualWeights carried_norms_;  // for the dual that is not yet made
  Answer answer_;
  Activities sums_;
  Reoptimization reoptimization_;
  bool answer_is_new_ = true;
  bool values_are_fresh_ = false;  // computed from the model's own bounds and costs, and not moved since
  bool in_step_ = false;           // the start of this solve: values and duals have followed the changes
  bool known_infeasible_ = false;  // the start of this solve, by the look at the changes
  bool sifted_ = false;            // ... sifting has left its basis
  std::int64_t sifting_ticks_ = 0;
  Work work_before_;  // when the count began
};

}  // namespace tovik::lp::simplex
