#include "lp/simplex/solver.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "lp/linalg/sum.h"
#include "lp/simplex/certificates.h"
#include "lp/simplex/sifting.h"
#include "lp/simplex/tolerance.h"

namespace tovik::lp::simplex {
namespace {

constexpr double kInnerShare = 0.1;  // the engine works to a tenth of the user's tolerances
constexpr double kTightest = 1e-10;  // no tolerance of the engine is tightened below this
constexpr int kTightenings = 4;
constexpr int kRounds = 12;  // dual/primal alternations before giving up
constexpr std::int64_t kUnlimited = std::int64_t{1} << 60;

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

/* a_j'y for all columns, compensated. */
std::vector<double> transpose_product(const Solver& solver, const std::vector<double>& y) {
  std::vector<double> z(static_cast<size_t>(solver.core().n));
  for (int j = 0; j < solver.core().n; ++j) {
    CompensatedSum sum;
    solver.each_entry(j, [&](int i, double a) { sum.add_product(a, y[i]); });
    z[j] = sum.value();
  }
  return z;
}

std::vector<double> product(const Solver& solver, const std::vector<double>& x) {
  std::vector<CompensatedSum> sums(static_cast<size_t>(solver.core().m));
  for (int j = 0; j < solver.core().n; ++j) {
    if (x[j] == 0) continue;
    solver.each_entry(j, [&](int i, double a) { sums[i].add_product(a, x[j]); });
  }
  std::vector<double> activity(sums.size());
  for (size_t i = 0; i < sums.size(); ++i) activity[i] = sums[i].value();
  return activity;
}

/* Wrong-signed part of a reduced cost, given where the variable stands in a minimization. */
double dual_violation(double d, At status, double low, double high) {
  if (low == high || status == At::basic) return status == At::basic ? std::fabs(d) : 0.0;
  if (status == At::lower) return std::max(0.0, -d);
  if (status == At::upper) return std::max(0.0, d);
  return std::fabs(d);
}

}  // namespace

Violation measure_violation(const LpData& lp, const Answer& answer) {
  Violation v;
  for (int j = 0; j < lp.num_columns(); ++j) {
    const double bound = std::max(lp.lower[j] - answer.x[j], answer.x[j] - lp.upper[j]);
    if (bound > v.column) {
      v.column = bound;
      v.worst_column = j;
    }
    const double wrong = dual_violation(answer.d[j], answer.column_status[j], lp.lower[j], lp.upper[j]);
    if (wrong > v.dual) {
      v.dual = wrong;
      v.worst_dual = j;
    }
  }
  for (int i = 0; i < lp.num_rows(); ++i) {
    const double bound = std::max(lp.row_lower[i] - answer.activity[i], answer.activity[i] - lp.row_upper[i]);
    if (bound > v.row) {
      v.row = bound;
      v.worst_row = i;
    }
    const double wrong = dual_violation(answer.y[i], answer.row_status[i], lp.row_lower[i], lp.row_upper[i]);
    if (wrong > v.dual) {
      v.dual = wrong;
      v.worst_dual = lp.num_columns() + i;
    }
  }
  return v;
}

Solver::Solver(LpData lp, const Options& options, Control& control, Observer* observer)
    : lp_(without_entries(lp)), scaling_(compute_scaling(lp.matrix, options.scaling)), options_(options) {
  core_ = std::make_unique<Core>(scale_lp(std::move(lp), scaling_), options_, control);
  core_->observer = observer;
  core_->scaled = scaling_.active();
  core_->set_logical_basis();
}

Dual& Solver::dual() {
  if (dual_ == nullptr) dual_ = std::make_unique<Dual>(*core_);
  return *dual_;
}

Primal& Solver::primal() {
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

void Solver::change_offset(double offset) {
  lp_.offset = offset;
  core_->lp.offset = offset;
}

void Solver::set_options(const Options& options) {
  options_ = options;
  core_->options = options;
}

void Solver::set_basis(const std::vector<At>& columns, const std::vector<At>& rows) {
  std::vector<At> status(columns);
  status.reserve(static_cast<size_t>(core_->total));
  for (At at : rows) status.push_back(at == At::lower ? At::upper : at == At::upper ? At::lower : at);
  core_->use_original_bounds();
  core_->set_basis(status);
  has_basis_ = true;
  keep_norms_ = false;
}

void Solver::set_dual_norms(const std::vector<double>& norms, const std::vector<int>& head) {
  if (norms.size() != head.size() || static_cast<int>(norms.size()) != core_->m) return;
  std::vector<double> by_variable(static_cast<size_t>(core_->total), 1.0);
  for (size_t p = 0; p < head.size(); ++p) by_variable[head[p]] = norms[p];
  std::vector<double> weights(static_cast<size_t>(core_->m));
  for (int p = 0; p < core_->m; ++p) weights[p] = by_variable[core_->head[p]];
  dual().norms().set(std::move(weights));
  keep_norms_ = true;
}

void Solver::forget_basis() {
  core_->use_original_bounds();
  core_->set_logical_basis();
  has_basis_ = false;
  keep_norms_ = false;
}

/* After a change of its bounds a non-basic variable that stood fixed or free must not stay between the new
 * ones: only where it stands at a bound, or at 0 when free, the statuses tell its value. */
void Solver::settle(int j) {
  core_->work_lower[j] = core_->lower[j];
  core_->work_upper[j] = core_->upper[j];
  if (core_->nonbasic[j]) core_->place_nonbasic(j, core_->move[j]);
}

void Solver::change_bounds(int j, double low, double high) {
  lp_.lower[j] = low;
  lp_.upper[j] = high;
  const double c = column_scale(j);
  const bool was_fixed = core_->is_fixed(j);
  core_->lower[j] = low / c;
  core_->upper[j] = high / c;
  settle(j);
  if (core_->nonbasic[j] && was_fixed != core_->is_fixed(j)) {
    if (was_fixed) {
      core_->rows.activate(j);
    } else {
      core_->rows.deactivate(j);
    }
  }
}

void Solver::change_row_bounds(int i, double low, double high) {
  lp_.row_lower[i] = low;
  lp_.row_upper[i] = high;
  const double r = row_scale(i);
  core_->lower[core_->n + i] = -high * r;
  core_->upper[core_->n + i] = -low * r;
  settle(core_->n + i);
}

void Solver::change_cost(int j, double c) {
  lp_.cost[j] = c;
  core_->cost[j] = c * column_scale(j);
}

bool Solver::ensure_factor() {
  if (core_->has_factor) return true;
  return core_->refactor() != FactorState::singular;
}

void Solver::prepare() {
  core_->options = options_;
  core_->primal_tolerance = options_.primal_tolerance * kInnerShare;
  core_->dual_tolerance = options_.dual_tolerance * kInnerShare;
  core_->repairs = 0;
  answer_ = Answer{};
}

/* A column or row whose bounds cross by more than the tolerance decides the problem; smaller gaps are closed.
 */
bool Solver::bounds_cross() {
  Core& core = *core_;
  for (int j = 0; j < core.total; ++j) {
    if (core.lower[j] <= core.upper[j]) continue;
    const double scale = j < core.n ? column_scale(j) : 1.0 / row_scale(j - core.n);
    const double gap = (core.lower[j] - core.upper[j]) * scale;
    if (!(gap <= options_.primal_tolerance)) {
      answer_.farkas_gap = gap;
      return true;
    }
    core.lower[j] = core.upper[j];
    if (j < core.n && core.nonbasic[j]) core.rows.deactivate(j);
  }
  return false;
}

Outcome Solver::solve(Method method) {
  prepare();
  if (bounds_cross()) {
    extract();
    answer_.method = method;
    answer_.farkas.assign(static_cast<size_t>(core_->m), 0.0);
    answer_.outcome = Outcome::infeasible;
    return answer_.outcome;
  }
  // Columns that sifting left out are for the primal to bring in.
  if (start_by_sifting() && !already_optimal()) method = Method::primal;
  Outcome outcome = Outcome::trouble;
  for (int round = 0; round <= kTightenings; ++round) {
    outcome = run(method);
    extract();
    answer_.outcome = outcome;
    has_basis_ = true;
    if (outcome != Outcome::optimal) break;
    const double primal_excess = answer_.violation.primal() / options_.primal_tolerance;
    const double dual_excess = answer_.violation.dual / options_.dual_tolerance;
    answer_.unscaled_infeasible = primal_excess > 1 || dual_excess > 1;
    if (!answer_.unscaled_infeasible || round == kTightenings) break;
    const double primal_goal = core_->primal_tolerance / (3 * primal_excess);
    while (primal_excess > 1 && core_->primal_tolerance > std::max(kTightest, primal_goal)) {
      core_->primal_tolerance = tighten_feasibility(core_->primal_tolerance);
    }
    const double dual_goal = core_->dual_tolerance / (3 * dual_excess);
    while (dual_excess > 1 && core_->dual_tolerance > std::max(kTightest, dual_goal)) {
      core_->dual_tolerance = tighten_optimality(core_->dual_tolerance);
    }
    core_->has_factor = false;  // a fresh factor for the last digits
  }
  return outcome;
}

bool Solver::start_by_sifting() {
  const bool wanted = options_.sifting == Sifting::always ||
                      (options_.sifting == Sifting::when_it_pays && sifting_pays(core_->m, core_->n));
  if (has_basis_ || !wanted || core_->m == 0 || core_->n == 0) return false;
  LpData lp = lp_;
  lp.matrix.start.assign(1, 0);
  for (int j = 0; j < core_->n; ++j) {
    each_entry(j, [&](int i, double a) {
      lp.matrix.index.push_back(i);
      lp.matrix.value.push_back(a);
    });
    lp.matrix.start.push_back(static_cast<int>(lp.matrix.index.size()));
  }
  const SiftingResult found = sift(lp, options_, *core_->control);
  core_->counters.iterations += found.iterations;
  if (!found.usable) return false;
  set_basis(found.column_status, found.row_status);
  return true;
}

Outcome Solver::run(Method method) {
  return method == Method::dual ? run_dual() : run_primal();
}

/* A start that is final needs no iteration; the dual would leave it when it perturbs the costs of boxed
 * variables. Whatever may end a run early is left to the run. */
bool Solver::already_optimal() {
  Core& core = *core_;
  if (!has_basis_ || core.control->poll() != Stop::none || !ensure_factor()) return false;
  core.use_original_costs();
  core.use_original_bounds();
  core.compute_primal();
  core.compute_dual();
  if (core.primal_infeasibility().count > 0 || core.dual_infeasibility().count > 0) return false;
  const double objective = core.objective();
  return objective >= options_.objective_lower && objective <= options_.objective_upper;
}

Outcome Solver::run_dual() {
  answer_.method = Method::dual;
  if (already_optimal()) return Outcome::optimal;
  Dual::Settings settings;
  Outcome last = Outcome::trouble;
  for (int round = 0; round < kRounds; ++round) {
    settings.keep_norms = keep_norms_;
    settings.perturb = round < 3;
    settings.warm = has_basis_ && round == 0;
    answer_.method = Method::dual;
    last = dual().solve(settings, kUnlimited);
    keep_norms_ = true;
    if (last == Outcome::infeasible && verify_infeasible(dual().farkas())) return last;
    if (last == Outcome::optimal && core_->dual_infeasibility().count == 0) {
      // While costs were perturbed the limit was looked at now and then only.
      return core_->objective() > options_.objective_upper ? Outcome::objective_limit : last;
    }
    if (last != Outcome::optimal && last != Outcome::infeasible && last != Outcome::infeasible_or_unbounded &&
        last != Outcome::trouble && last != Outcome::singular) {
      return last;
    }
    // Clean up by the primal; a budget keeps it from wandering while the dual could do better.
    const bool cleaning = last == Outcome::optimal && round + 2 < kRounds;
    const std::int64_t budget =
        cleaning ? std::max<std::int64_t>(1000, core_->counters.iterations / 10) : kUnlimited;
    answer_.method = Method::primal;
    keep_norms_ = false;
    last = primal().solve(budget);
    if (last == Outcome::infeasible && verify_infeasible(primal().infeasibility_duals())) return last;
    if (last == Outcome::unbounded && verify_ray()) return last;
    if (last != Outcome::trouble && last != Outcome::infeasible && last != Outcome::unbounded &&
        last != Outcome::singular) {
      return last;
    }
    if (cleaning) continue;  // the budget ran out: the dual goes on from here
    core_->threshold = std::min(0.9, core_->threshold < 0.1 ? 0.1 : core_->threshold + 0.2);
    core_->set_logical_basis();  // what led here is not to be trusted: start over with stricter pivots
  }
  return last == Outcome::singular ? last : Outcome::trouble;  // no claim that was not verified
}

Outcome Solver::run_primal() {
  Outcome last = Outcome::trouble;
  for (int round = 0; round < kRounds; ++round) {
    answer_.method = Method::primal;
    keep_norms_ = false;
    last = primal().solve(kUnlimited);
    if (last == Outcome::infeasible && verify_infeasible(primal().infeasibility_duals())) return last;
    if (last == Outcome::unbounded && verify_ray()) return last;
    if (last != Outcome::trouble && last != Outcome::infeasible && last != Outcome::unbounded &&
        last != Outcome::singular) {
      return last;
    }
    core_->threshold = std::min(0.9, core_->threshold < 0.1 ? 0.1 : core_->threshold + 0.2);
    Dual::Settings settings;
    answer_.method = Method::dual;
    last = dual().solve(settings, kUnlimited);
    if (last == Outcome::infeasible && verify_infeasible(dual().farkas())) return last;
    if (last == Outcome::optimal && core_->dual_infeasibility().count == 0) return last;
    if (last == Outcome::iteration_limit || last == Outcome::time_limit || last == Outcome::tick_limit ||
        last == Outcome::user_abort) {
      return last;
    }
  }
  return last == Outcome::singular ? last : Outcome::trouble;
}

void Solver::extract() {
  Core& core = *core_;
  const int n = core.n;
  const int m = core.m;
  answer_.x.assign(static_cast<size_t>(n), 0.0);
  answer_.d.assign(static_cast<size_t>(n), 0.0);
  answer_.y.assign(static_cast<size_t>(m), 0.0);
  if (!ensure_factor()) return;
  core.use_original_costs();
  core.use_original_bounds();
  core.compute_primal();
  core.compute_dual();
  for (int j = 0; j < n; ++j) {
    if (core.nonbasic[j]) {
      const double v = core.value[j];
      answer_.x[j] = v == core.lower[j]   ? lp_.lower[j]
                     : v == core.upper[j] ? lp_.upper[j]
                                          : v * column_scale(j);
    }
  }
  for (int p = 0; p < m; ++p) {
    if (core.head[p] < n) answer_.x[core.head[p]] = core.x[p] * column_scale(core.head[p]);
  }
  for (int i = 0; i < m; ++i) answer_.y[i] = -core.d[n + i] * row_scale(i);
  const std::vector<At> status = core.basis_status();
  answer_.column_status.assign(status.begin(), status.begin() + n);
  answer_.row_status.resize(static_cast<size_t>(m));
  for (int i = 0; i < m; ++i) {
    const At at = status[n + i];
    answer_.row_status[i] = at == At::lower ? At::upper : at == At::upper ? At::lower : at;
  }
  answer_.activity = product(*this, answer_.x);
  const std::vector<double> z = transpose_product(*this, answer_.y);
  CompensatedSum objective;
  objective.add(lp_.offset);
  for (int j = 0; j < n; ++j) {
    answer_.d[j] = lp_.cost[j] - z[j];
    objective.add_product(lp_.cost[j], answer_.x[j]);
  }
  answer_.objective = objective.value();
  answer_.violation = measure_violation(lp_, answer_);
  answer_.has_values = true;
  answer_.primal_feasible = answer_.violation.primal() <= options_.primal_tolerance;
  answer_.dual_feasible = answer_.violation.dual <= options_.dual_tolerance;
}

/* y'A x over the columns' box must miss y'r over the rows' box. */
bool Solver::verify_infeasible(const std::vector<double>& scaled_row) {
  if (scaled_row.size() != static_cast<size_t>(core_->m)) return false;
  std::vector<double> y(scaled_row.size());
  for (size_t i = 0; i < y.size(); ++i) y[i] = scaled_row[i] * row_scale(static_cast<int>(i));
  FarkasProof proof;
  const auto each = [this](int j, auto f) { each_entry(j, f); };
  if (!verify_farkas(lp_, each, std::move(y), proof)) return false;
  answer_.farkas = std::move(proof.multipliers);
  answer_.farkas_gap = proof.gap;
  return true;
}

/* The direction in the user's space must keep A x within the rows' infinite sides, respect the columns' and
 * improve. */
bool Solver::verify_ray() {
  const int q = primal().ray_variable();
  if (q < 0) return false;
  Core& core = *core_;
  std::vector<double> ray(static_cast<size_t>(core.n), 0.0);
  const double direction = primal().ray_direction();
  if (q < core.n) ray[q] = direction * column_scale(q);
  const SparseVector& column = primal().ray_column();
  for (int p = 0; p < core.m; ++p) {
    const int j = core.head[p];
    if (j < core.n && column.array[p] != 0) ray[j] -= direction * column.array[p] * column_scale(j);
  }
  double largest = 0;
  for (double v : ray) largest = std::max(largest, std::fabs(v));
  if (largest == 0) return false;
  for (double& v : ray) v /= largest;
  // Rounding is small against the terms of a sum; in a badly scaled model that says nothing about its size.
  CompensatedSum slope;
  double slope_terms = 0;
  std::vector<double> terms(static_cast<size_t>(core.m), 0.0);
  for (int j = 0; j < core.n; ++j) {
    if ((ray[j] > 0 && lp_.upper[j] < kInf) || (ray[j] < 0 && lp_.lower[j] > -kInf)) {
      if (std::fabs(ray[j]) > kNegligible) return false;
      ray[j] = 0;
    }
    if (ray[j] == 0) continue;
    slope.add_product(lp_.cost[j], ray[j]);
    slope_terms += std::fabs(lp_.cost[j] * ray[j]);
    each_entry(j, [&](int i, double a) { terms[i] += std::fabs(a * ray[j]); });
  }
  const std::vector<double> activity = product(*this, ray);
  for (int i = 0; i < core.m; ++i) {
    const double negligible = kNegligible * terms[i];
    if ((activity[i] > negligible && lp_.row_upper[i] < kInf) ||
        (activity[i] < -negligible && lp_.row_lower[i] > -kInf)) {
      return false;
    }
  }
  if (!(slope.value() < -kNegligible * slope_terms)) return false;
  answer_.ray = std::move(ray);
  return true;
}

}  // namespace tovik::lp::simplex
