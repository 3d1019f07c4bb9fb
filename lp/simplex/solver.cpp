#include "lp/simplex/solver.h"

#include <cmath>
#include <utility>

namespace tovik::lp::simplex {
namespace {

/* Scales in place. */
LpData scale_lp(LpData lp, const Scaling& scaling) {
  if (!scaling.active()) return lp;
  for (int j = 0; j < lp.num_columns(); ++j) {
    const double c = scaling.column[j];
    lp.cost[j] *= c;
    lp.lower[j] /= c;
    lp.upper[j] /= c;
    for (int k = lp.matrix.start[j]; k < lp.matrix.start[j + 1]; ++k) {
      lp.matrix.value[k] *= c * scaling.row[lp.matrix.index[k]];
    }
  }
  for (int i = 0; i < lp.num_rows(); ++i) {
    lp.row_lower[i] *= scaling.row[i];
    lp.row_upper[i] *= scaling.row[i];
  }
  return lp;
}

/* All but the matrix, which the engine holds. */
LpData without_entries(const LpData& lp) {
  LpData copy;
  copy.matrix.rows = lp.matrix.rows;
  copy.matrix.columns = lp.matrix.columns;
  copy.cost = lp.cost;
  copy.lower = lp.lower;
  copy.upper = lp.upper;
  copy.row_lower = lp.row_lower;
  copy.row_upper = lp.row_upper;
  copy.offset = lp.offset;
  return copy;
}

}  // namespace

Solver::Solver(LpData lp, const Options& options, Control& control, Observer* observer)
    : options_(options),
      user_{without_entries(lp), compute_scaling(lp.matrix, options.scaling)},
      core_(std::make_unique<Core>(scale_lp(std::move(lp), user_.scaling), options_, control)),
      sums_(user_),
      reoptimization_(*core_, user_, sums_, answer_) {
  user_.core = core_.get();
  core_->observer = observer;
  core_->scaled = user_.scaling.active();
  core_->set_logical_basis();
}

Solver::Solver(const Solver& other)
    : options_(other.options_),
      user_(other.user_),
      core_(std::make_unique<Core>(*other.core_)),
      has_basis_(other.has_basis_),
      keep_norms_(other.keep_norms_),
      carried_norms_(!other.keep_norms_       ? DualWeights{}
                     : other.dual_ != nullptr ? other.dual_->norms()
                                              : other.carried_norms_),
      sums_(user_),
      reoptimization_(*core_, user_, sums_, answer_) {
  user_.core = core_.get();
}

Dual& Solver::the_dual() {
  if (dual_ == nullptr) {
    dual_ = std::make_unique<Dual>(*core_);
    dual_->norms() = std::exchange(carried_norms_, {});
  }
  return *dual_;
}

Primal& Solver::the_primal() {
  if (primal_ == nullptr) primal_ = std::make_unique<Primal>(*core_);
  return *primal_;
}

Solver::~Solver() = default;

void Solver::set_control(Control& control, Observer* observer) {
  core_->control = &control;
  core_->observer = observer;
}

void Solver::detach() {
  core_->control = nullptr;
  core_->observer = nullptr;
}

void Solver::set_objective_limits(double lower, double upper) {
  options_.objective_lower = lower;
  options_.objective_upper = upper;
}

void Solver::begin_count() {
  core_->counters = {};
  work_before_ = work_so_far();
}

void Solver::continue_count(const Counters& before) {
  core_->counters = before;
  work_before_ = work_so_far();
}

Work Solver::work_so_far() const {
  return {core_->factor.counts(), core_->work_done, sifting_ticks_};
}

void Solver::write_statistics(Statistics& out) const {
  const Core& core = *core_;
  out.counters = core.counters;
  Work work = work_so_far();
  work.subtract(work_before_);
  out.work = work;
  out.factor = core.factor.stats();
  out.densities = {core.column_density.value(), core.row_ep_density.value(), core.row_ap_density.value(),
                   core.dse_density.value(), core.flip_density.value()};
}

void Solver::change_offset(double offset) {
  user_.lp.offset = offset;
  core_->model.set_offset(offset);
}

void Solver::set_options(const Options& options) {
  options_ = options;
  core_->options = options;
}

void Solver::set_basis(const std::vector<BasisStatus>& columns, const std::vector<BasisStatus>& rows) {
  std::vector<BasisStatus> status(columns);
  status.reserve(static_cast<size_t>(core_->total()));
  for (BasisStatus at : rows) status.push_back(activity_status(at));
  reoptimization_.forget();
  core_->use_original_bounds();
  core_->set_basis(status);
  has_basis_ = true;
  keep_norms_ = false;
}

void Solver::set_dual_norms(const std::vector<double>& norms, const std::vector<int>& head) {
  if (norms.size() != head.size() || static_cast<int>(norms.size()) != core_->m()) return;
  std::vector<double> by_variable(static_cast<size_t>(core_->total()), 1.0);
  for (size_t p = 0; p < head.size(); ++p) by_variable[head[p]] = norms[p];
  std::vector<double> weights(static_cast<size_t>(core_->m()));
  for (int p = 0; p < core_->m(); ++p) weights[p] = by_variable[core_->basis.head(p)];
  the_dual().norms().set(std::move(weights), WeightKind::norms);
  keep_norms_ = true;
}

/* No working costs or bounds of an earlier solve, no claim of it. */
void Solver::begin_at_rest() {
  prepare();
  reoptimization_.forget();
  values_are_fresh_ = false;
  keep_norms_ = false;
  core_->use_original_bounds();
  core_->use_original_costs();
  core_->ensure_rows();
}

void Solver::forget_basis() {
  reoptimization_.forget();
  core_->use_original_bounds();
  core_->set_logical_basis();
  has_basis_ = false;
  keep_norms_ = false;
}

/* After a change of its bounds a non-basic variable that stood fixed or free must not stay between the new
 * ones: only where it stands at a bound, or at 0 when free, the statuses tell its value. Between two bounds
 * the reduced cost decides where it is known; where that is 0 the variable stays as near as it can. */
void Solver::reset_nonbasic_value(int j) {
  constexpr double kNoCost = 1e-9;
  Core& core = *core_;
  if (!core.basis.nonbasic(j)) return;
  int prefer = core.basis.move(j);
  if (prefer == 0 && reoptimization_.holds()) {
    const double v = core.basis.value(j);
    prefer = std::fabs(core.values.d(j)) > kNoCost ? (core.values.d(j) > 0 ? 1 : -1)
             : std::fabs(v - core.model.lower(j)) <= std::fabs(v - core.model.upper(j)) ? 1
                                                                                        : -1;
  }
  core.place_nonbasic(j, prefer);
}

void Solver::change_bounds(int j, double low, double high) {
  reoptimization_.note(j);
  user_.lp.lower[j] = low;
  user_.lp.upper[j] = high;
  const double c = column_scale(j);
  core_->change_bounds(j, low / c, high / c);
  reset_nonbasic_value(j);
}

void Solver::change_row_bounds(int i, double low, double high) {
  reoptimization_.note(core_->n() + i);
  user_.lp.row_lower[i] = low;
  user_.lp.row_upper[i] = high;
  const double r = row_scale(i);
  core_->change_bounds(core_->n() + i, -high * r, -low * r);
  reset_nonbasic_value(core_->n() + i);
}

void Solver::change_cost(int j, double c) {
  reoptimization_.note(j);
  user_.lp.cost[j] = c;
  core_->model.set_cost(j, c * column_scale(j));
}

/* A factorization permutes the positions of the basis: what is known by position moves along. */
bool Solver::ensure_factor() {
  Core& core = *core_;
  if (core.has_factor()) return true;
  if (keep_norms_) the_dual().norms().save(core);
  core.ensure_rows();
  const FactorState state = core.refactor_with_values();
  if (state != FactorState::good) {
    reoptimization_.forget();
    keep_norms_ = false;
    return state != FactorState::singular;
  }
  if (keep_norms_) the_dual().norms().restore(core);
  return true;
}

bool Solver::factor_basis() {
  if (reoptimization_.is_at_rest() && core_->has_factor()) return true;
  reoptimization_.forget();
  core_->ensure_rows();
  core_->use_original_bounds();
  core_->use_original_costs();
  core_->forget_repairs();
  if (!ensure_factor() || core_->repairs() > 0) return false;
  core_->compute_primal();
  return true;
}

}  // namespace tovik::lp::simplex
