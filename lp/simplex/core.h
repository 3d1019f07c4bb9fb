/* The state that dual and primal simplex share, and the steps that both take.
 *
 * The state is cut into parts. Each holds its own vectors, shows them by const views and changes them by named
 * operations only; what concerns more than one part at a time is an operation of Core:
 *
 *   model    ScaledModel      the model, never touched by algorithms
 *   work     WorkingData      costs and bounds that iterations use: perturbed, shifted, widened, boxed
 *   basis    BasisPartition   head and positions; where the nonbasics stand
 *   values   IterateValues    x and its bounds by position, reduced costs d by variable
 *   rows     RowCopy          the matrix by rows; active: columns that are nonbasic and not fixed
 *   factor   factor::Factor   LU factor of the basis
 *
 * - Space: scaled; one index space of total = n + m variables, see scaled_model.h.
 * - Order: a basis (set_logical_basis, set_basis), refactor(), compute_primal(), compute_dual(), then steps.
 *   Which flags hold together: docs/resolve.md.
 * - Copies: share the columns of the matrix until one of them is edited.
 * - Errors: bad_alloc passes through; numerical trouble is returned as values. */
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "lp/base/control.h"
#include "lp/base/lp_data.h"
#include "lp/base/sparse_vector.h"
#include "lp/factor/factor.h"
#include "lp/simplex/basis_partition.h"
#include "lp/simplex/engine_random.h"
#include "lp/simplex/iterate_values.h"
#include "lp/simplex/observer.h"
#include "lp/simplex/row_copy.h"
#include "lp/simplex/scaled_model.h"
#include "lp/simplex/types.h"
#include "lp/simplex/working_data.h"

namespace tovik::lp::simplex {

/* Running average of a result density: steers sparse against dense loops. */
class Density {
 public:
  double value() const { return value_; }
  void update(double count, double dimension) {
    if (dimension > 0) value_ = 0.95 * value_ + 0.05 * (count < 0 ? 1.0 : count / dimension);
  }
  void update(const SparseVector& v) { update(v.count, v.dimension()); }

 private:
  double value_ = 0;
};

inline constexpr std::int64_t kUnlimited = std::int64_t{1} << 60;  // iterations or ticks

/* What an algorithm knows of where it stands beyond the state of the core. */
struct Standing {
  bool dual, phase1;
  double objective;  // running value of the minimization form, in phase 2
};

enum class FactorState { good, repaired, singular };

class Core {
 public:
  Core(LpData scaled_lp, const Options& options, Control& control);
  /* The same state on the same columns, for another search path. */
  Core(const Core& other);
  Core& operator=(const Core&) = delete;

  // ---- parts ----
  EngineRandom random;
  ScaledModel model;
  RowCopy rows;
  WorkingData work;
  BasisPartition basis;
  IterateValues values;
  factor::Factor factor;

  int n() const { return model.n(); }
  int m() const { return model.m(); }
  int total() const { return model.total(); }
  const Matrix& matrix() const { return model.matrix(); }

  // ---- run ----
  Control* control;
  Observer* observer = nullptr;        // may be null
  std::int64_t tick_end = kUnlimited;  // of total_work(): where a run ends with tick_limit
  Options options;
  Counters counters;
  bool scaled = false;  // the model was scaled
  Density row_ep_density, row_ap_density, column_density, dse_density, flip_density;

  double primal_tolerance() const { return primal_tolerance_; }  // in force, scaled space
  double dual_tolerance() const { return dual_tolerance_; }
  void set_tolerances(double primal, double dual) {
    primal_tolerance_ = primal;
    dual_tolerance_ = dual;
  }
  double threshold() const { return threshold_; }  // Markowitz threshold in force
  /* The largest Markowitz threshold that is of use is near; each numerical failure comes closer. */
  void raise_threshold();
  int repairs() const { return repairs_; }  // of singular bases since forget_repairs()
  void forget_repairs() { repairs_ = 0; }

  // ---- basis ----
  void set_logical_basis();  // all logicals basic, structurals at their nearest bound
  /* Takes statuses (size total); wrong numbers of basics are mended with logicals or by dropping. Forgets the
   * factor. */
  void set_basis(const std::vector<BasisStatus>& status);
  std::vector<BasisStatus> basis_status() const;
  BasisStatus status(int j) const;
  /* Puts nonbasic j on the bound that `move` prefers or, when `prefer` is 0, the bound nearest to zero. Sets
   * move, value. */
  void place_nonbasic(int j, int prefer) { basis.place_at_bound(j, prefer, work); }
  /* Nonbasic j goes to its other bound. */
  void flip_nonbasic(int j) {
    const int move = -basis.move(j);
    basis.place(j, move, move > 0 ? work.lower(j) : work.upper(j));
  }
  /* Bookkeeping of one basis change: q enters at position p, the leaving variable stands at its bound given
   * by out_move. */
  void change_basis(int q, int p, int leaving_move);
  /* Takes the last change_basis() back; both variables are still to be placed. */
  void undo_change_basis(int q, int p, int leaving);
  std::vector<int> positions_of_logicals(std::span<const int> rows_of_logicals) const;  // ascending

  // ---- bounds and costs ----
  void use_original_bounds();  // work bounds = model bounds; nonbasics placed by their move
  void use_original_costs();   // drops perturbation and shifts
  void perturb_costs(double scale) {
    work.perturb_costs(model, scale);
    ++counters.dual.perturbations;
  }
  /* Sets the working cost of j so that its reduced cost becomes d. */
  void shift_cost(int j, double d);
  /* The same for a small feasible d. */
  void shift_to_feasible(int j);
  /* A change of the model; the working bounds follow. The value of a nonbasic is left for its holder to
   * place. */
  void change_bounds(int j, double lower, double upper);
  /* Bounds of j that cross become equal. */
  void close_bounds(int j);
  /* Bounds of j in the model, at work and, where j is basic, at its position. */
  void force_bounds(int j, double lower, double upper);
  /* Working bounds of the basic variable in position p. */
  void set_basic_bounds(int p, double lower, double upper) {
    work.set_bounds(basis.head(p), lower, upper);
    values.set_bounds(p, lower, upper);
  }
  /* The bounds of j's position, where it is basic, are those at work. */
  void take_basic_bounds(int j) { values.set_bounds(basis.position(j), work.lower(j), work.upper(j)); }
  bool is_fixed(int j) const { return model.is_fixed(j); }

  // ---- row copy ----
  bool rows_are_stale() const { return rows_are_stale_; }
  void update_basis_pattern();  // row copy activity from nonbasic flags and fixed columns (after set_basis)
  /* After an edit the row copy waits for the first who reads it. */
  void ensure_rows() {
    if (rows_are_stale_) update_basis_pattern();
  }

  // ---- edits and copies ----
  /* Rows and columns go and come, in scaled space (see model_edit.h). Keeps the factor unless rows do. The x of
   * new logicals and the d of new columns are left 0. */
  void edit(const ModelEdit& change);
  /* All but what a factorization or a pass over the model would make anew: statuses, x, d, the model's costs and
   * bounds, the factor. Working costs and bounds are the model's after restore(). */
  struct Saved {
    std::vector<double> cost, lower, upper;
    BasisPartition::Saved basis;
    IterateValues::Saved values;
    std::shared_ptr<const factor::Factor::Saved> factor;
  };
  Saved save() const;
  void restore(const Saved& saved);

  // ---- factor ----
  bool has_factor() const { return has_factor_; }  // factor belongs to head
  void drop_factor() { has_factor_ = false; }
  /* Factors head. Singular bases are mended with logicals (the removed variables become nonbasic): `repaired`
   * as often as options allow, then `singular`. The factor is that of the mended basis in any case. */
  FactorState refactor(FactorReason reason = FactorReason::start);
  /* The same, and x moves along where no basic variable was replaced. */
  FactorState refactor_with_values();
  /* As Factor::update; where that fails the factor is lost. */
  bool update_factor(const SparseVector& column, const SparseVector& row, int p) {
    return has_factor_ = factor.update(column, row, p);
  }
  void undo_factor_updates() {
    factor.undo_updates();
    has_factor_ = true;
  }
  void ftran(SparseVector& v, Density& density);
  struct Solve {
    SparseVector* vector;
    Density* density;
  };
  /* Several solves with the same factor, together where their results are dense. */
  void ftran(std::span<const Solve> solves);
  void btran(SparseVector& v, Density& density);
  /* rho' A over active columns into alpha (dimension n). */
  void price(const SparseVector& rho, SparseVector& alpha);
  /* The same; a full result may come back without its list (count -1), and the caller updates row_ap_density.
   */
  void price_unlisted(const SparseVector& rho, SparseVector& alpha);
  /* Writes a line of the display level 1 where somebody listens. */
  void log(const char* line) {
    if (observer != nullptr) observer->text(line);
  }

  // ---- values ----
  void compute_primal();     // x from the nonbasic values; also gathers x_lower, x_upper
  void compute_dual();       // d of every nonbasic from the working costs
  double objective() const;  // working costs at the present point
  /* The bound that the present basis gives for the model's own costs. One solve and one pass over the matrix. */
  double original_dual_bound();

  struct Infeasibility {
    int count = 0;
    double largest = 0, sum = 0;
  };
  Infeasibility primal_infeasibility() const;  // basics against working bounds
  Infeasibility dual_infeasibility() const;    // nonbasics by move; free: |d|; boxed ones count too

  // ---- work and limits ----
  std::int64_t work_done = 0;  // ticks outside the factor
  void charge(std::int64_t ticks) { work_done += ticks; }
  std::int64_t total_work() const { return work_done + factor.work(); }
  /* Asked before each iteration: reports the work, calls the callback, looks at limits, at the control and
   * now and then at the clock. True: stop with `outcome`. */
  bool must_stop(const Standing& at, std::int64_t iteration_end, Outcome& outcome);
  /* Hands the work since the last call to the control. */
  void report_work() {
    const std::int64_t done = total_work();
    control->add_work(static_cast<std::uint64_t>(done - reported_work_));
    reported_work_ = done;
  }

 private:
  void price(const SparseVector& rho, bool list_always, SparseVector& alpha);
  FactorState factor_basis(FactorReason reason);
  void replace_dependent(Observer* watcher);
  void tell_factor_the_sizes();
  void sync_rows();
  void keep_active(int j) {  // in the row copy, where it is not to be made anew
    if (j >= n() || rows_are_stale_) return;
    if (basis.nonbasic(j) && !is_fixed(j)) {
      rows.activate(j);
    } else {
      rows.deactivate(j);
    }
  }

  bool has_factor_ = false;
  bool rows_are_stale_ = false;
  double primal_tolerance_, dual_tolerance_;
  double threshold_;
  int repairs_ = 0;
  std::int64_t reported_work_ = 0;
};

}  // namespace tovik::lp::simplex
