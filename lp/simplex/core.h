/* The state that dual and primal simplex share, and the steps that both take.
 *
 * One index space of total = n + m variables: structurals 0..n-1, the logical of row i is n + i, with
 * A x + I s = 0, so that the logical's bounds are [-row_upper, -row_lower] and the right-hand side is zero.
 * Everything here is in scaled space. By variable (size total), but for head and x (size m):
 *
 *   cost, lower, upper    the model's own data, never touched by perturbation
 *   work_cost             what the iterations use: perturbed or shifted
 *   work_lower, _upper    what the iterations use: widened, implied, or the boxes of the dual's first phase
 *   nonbasic              1 nonbasic, 0 basic
 *   move                  the direction in which a nonbasic may move: +1 at lower, -1 at upper, 0 fixed, free
 *                         or basic
 *   value                 of a nonbasic; without meaning for basic ones
 *   d                     reduced cost of a nonbasic (stale for fixed columns between rebuilds), 0 for basic
 *   position              of a basic variable in head; without meaning for nonbasic ones
 *   random_value          uniform in [0, 1), drawn once: sizes of perturbations and shifts
 *   head                  by position: the basic variable (positions and rows share indices once factored)
 *   x, x_lower, x_upper   by position: value and working bounds of the basic variable
 *
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
#include "lp/simplex/observer.h"
#include "lp/simplex/row_copy.h"
#include "lp/simplex/types.h"

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

/* Cheap generator of the engine's own: shuffles ties and perturbations, never the user's stream. */
class EngineRandom {
 public:
  explicit EngineRandom(std::uint64_t seed = 1)
      : state_(seed * 0x9e3779b97f4a7c15ULL + 0x632be59bd9b4e019ULL) {}
  double real() {  // [0, 1)
    state_ ^= state_ << 13;
    state_ ^= state_ >> 7;
    state_ ^= state_ << 17;
    return static_cast<double>(state_ >> 11) * 0x1.0p-53;
  }
  int below(int n) { return static_cast<int>(real() * n); }

 private:
  std::uint64_t state_;
};

inline constexpr std::int64_t kUnlimited = std::int64_t{1} << 60;  // iterations or ticks

enum class FactorState { good, repaired, singular };

struct ModelEdit;

/* The vectors and flags of one simplex state: all that a copy of it for another search path holds of its own.
 * The columns of the scaled model are shared between copies until one of them edits its model. */
struct SimplexVectors {
  SimplexVectors(Matrix matrix, const Options& options);

  int n, m, total;
  std::shared_ptr<Matrix> columns;
  double offset = 0;
  RowCopy rows;
  std::vector<double> cost, lower, upper;  // total
  std::vector<double> work_cost, work_lower, work_upper;
  std::vector<signed char> nonbasic, move;
  std::vector<double> value, d;
  std::vector<int> head;                    // m
  std::vector<int> position;                // total; of basic variables, others hold no meaning
  std::vector<double> x, x_lower, x_upper;  // m
  std::vector<double> random_value;         // total; uniform in [0,1), fixed once per problem

  bool has_factor = false;  // factor belongs to head
  bool rows_are_stale = false;
  Options options;
  Counters counters;
  EngineRandom random;
  double primal_tolerance, dual_tolerance;  // in force, scaled space
  double threshold;                         // Markowitz threshold in force
  bool costs_perturbed = false, costs_shifted = false, bounds_perturbed = false;
  bool scaled = false;  // the model was scaled
  /* Variables whose cost was shifted since the costs were the model's; one may stand here more than once. */
  std::vector<int> shifted;
  int free_nonbasic = 0;  // by working bounds; as counted by count_free() and kept since
  int repairs = 0;        // singularity repairs in this solve
  Density row_ep_density, row_ap_density, column_density, dse_density, flip_density;
};

class Core : public SimplexVectors {
 public:
  Core(LpData scaled_lp, const Options& options, Control& control);
  /* The same state on the same columns, for another search path. */
  Core(const Core& other);
  Core& operator=(const Core&) = delete;

  factor::Factor factor;
  Control* control;
  Observer* observer = nullptr;        // may be null
  std::int64_t tick_end = kUnlimited;  // of total_work(): where a run ends with tick_limit
  const Matrix& matrix() const { return *columns; }

  // ---- basis ----
  void set_logical_basis();  // all logicals basic, structurals at their nearest bound
  /* Takes statuses (size total); wrong numbers of basics are mended with logicals or by dropping. Forgets the
   * factor. */
  void set_basis(const std::vector<BasisStatus>& status);
  std::vector<BasisStatus> basis_status() const;
  BasisStatus status(int j) const;
  /* Puts nonbasic j on the bound that `move` prefers or, when `prefer` is 0, the bound nearest to zero. Sets
   * move, value. */
  void place_nonbasic(int j, int prefer);
  void use_original_bounds();   // work bounds = model bounds; nonbasics placed by their move
  void use_original_costs();    // drops perturbation and shifts
  void update_basis_pattern();  // row copy activity from nonbasic flags and fixed columns (after set_basis)
  /* After an edit the row copy waits for the first who reads it. */
  void ensure_rows() {
    if (rows_are_stale) update_basis_pattern();
  }
  /* Rows and columns go and come, in scaled space (see model_edit.h). Keeps the factor unless rows do. The x of
   * new logicals and the d of new columns are left 0. */
  void edit(const ModelEdit& change);
  std::vector<int> positions_of_logicals(std::span<const int> rows_of_logicals) const;  // ascending
  void find_positions();  // after head was permuted
  void count_free();
  /* The largest Markowitz threshold that is of use is near; each numerical failure comes closer. */
  void raise_threshold();
  /* Sets the working cost of j so that its reduced cost becomes d, and remembers j. */
  void shift_cost(int j, double d);
  /* Bookkeeping of one basis change: q enters at position p, the leaving variable stands at its bound given
   * by out_move. */
  void change_basis(int q, int p, int leaving_move);

  // ---- factor ----
  /* Factors head. Singular bases are mended with logicals (the removed variables become nonbasic) while
   * allowed. */
  FactorState refactor(FactorReason reason = FactorReason::start);
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
  /* alpha_q = column q of [A I] into v (cleared first). */
  void load_column(int q, SparseVector& v) const;
  void add_column(int q, double multiplier, SparseVector& v) const;

  // ---- values ----
  void compute_primal();     // x from the nonbasic values; also gathers x_lower, x_upper
  void compute_dual();       // d of every nonbasic from work_cost
  double objective() const;  // working costs at the present point
  double column_dot(int j, const std::vector<double>& y) const;  // a_j' y

  struct Infeasibility {
    int count = 0;
    double largest = 0, sum = 0;
  };
  Infeasibility primal_infeasibility() const;  // basics against working bounds
  Infeasibility dual_infeasibility() const;    // nonbasics by move; free: |d|; boxed ones count too

  bool is_fixed(int j) const { return lower[j] == upper[j]; }
  bool is_free(int j) const { return lower[j] == -kInf && upper[j] == kInf; }

  std::int64_t work_done = 0;  // ticks outside the factor
  void charge(std::int64_t ticks) { work_done += ticks; }
  std::int64_t total_work() const { return work_done + factor.work(); }
  /* Asked before each iteration: reports the work, calls the callback, looks at limits, at the control and
   * now and then at the clock. True: stop with `outcome`. */
  bool must_stop(std::int64_t iteration_end, Outcome& outcome);
  /* Hands the work since the last call to the control. */
  void report_work() {
    const std::int64_t done = total_work();
    control->add_work(static_cast<std::uint64_t>(done - reported_work_));
    reported_work_ = done;
  }

 private:
  Matrix& own_matrix();  // to be edited: not shared with anybody
  void price(const SparseVector& rho, bool list_always, SparseVector& alpha);
  FactorState factor_basis(FactorReason reason);
  SparseVector buffer_;  // m: rebuild solves
  std::int64_t reported_work_ = 0;
};

}  // namespace tovik::lp::simplex
