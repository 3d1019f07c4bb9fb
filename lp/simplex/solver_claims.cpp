/* What a solve may claim, checked on the user's own data: values and duals, their violations, proofs of
 * infeasibility and rays. */
#include <algorithm>
#include <cmath>
#include <utility>

#include "lp/simplex/basis_refinement.h"
#include "lp/simplex/solver.h"
#include "lp/verify/certificates.h"
#include "lp/verify/point.h"

namespace tovik::lp::simplex {

/* The core's basic values and duals become the answer's, and their sums are computed. */
void Solver::take_core_values() {
  const Core& core = *core_;
  const int n = core.n();
  for (int p = 0; p < core.m(); ++p) {
    const int j = core.basis.head(p);
    if (j < n) answer_.x[j] = core.values.x(p) * column_scale(j);
  }
  for (int i = 0; i < core.m(); ++i) answer_.y[i] = -core.values.d(n + i) * row_scale(i);
  sums_.compute(answer_.x, answer_.y);
}

/* What the user's sums leave of row i of A x + s = 0, scaled. */
double Solver::row_residual(int i) const {
  const Core& core = *core_;
  const int j = core.n() + i;
  const double s = core.basis.nonbasic(j) ? core.basis.value(j) : core.values.x(core.basis.position(j));
  return sums_.activity(i) * row_scale(i) + s;
}

/* Of the reduced cost of the basic variable at position p, scaled. */
double Solver::basic_residual(int p) const {
  const int j = core_->basis.head(p);
  return j < core_->n() ? sums_.reduced_cost(j) * column_scale(j) : 0.0;
}

/* The largest of both kinds in the user's space, as a multiple of its tolerance. */
double Solver::residual_excess() const {
  double primal = 0, dual = 0;
  for (int i = 0; i < core_->m(); ++i) {
    primal = std::max(primal, std::fabs(row_residual(i)) / row_scale(i));
    const int j = core_->basis.head(i);
    if (j < core_->n()) dual = std::max(dual, std::fabs(sums_.reduced_cost(j)));
  }
  return std::max(primal / options_.primal_tolerance, dual / options_.dual_tolerance);
}

/* Basic values and duals are as exact as the factor made them: where what they leave is a share of the tolerances that is
 * felt, corrections follow while they help. */
void Solver::refine_values() {
  constexpr double kFelt = 0.01;
  constexpr double kHelps = 0.5;
  constexpr int kMostCorrections = 3;
  double excess = residual_excess();
  for (int k = 0; k < kMostCorrections && excess > kFelt && std::isfinite(excess); ++k) {
    const IterateValues::Saved saved = core_->values.save();
    correct_values_and_duals();
    const double before = std::exchange(excess, residual_excess());
    if (excess <= kHelps * before) continue;
    if (!(excess <= before)) {
      core_->values.restore(saved, core_->work, core_->basis);
      take_core_values();
    }
    return;
  }
}

void Solver::correct_values_and_duals() {
  Core& core = *core_;
  const int n = core.n();
  const auto m = static_cast<size_t>(core.m());
  std::vector<double> rows(m), duals(m);
  for (size_t i = 0; i < m; ++i) {
    rows[i] = row_residual(static_cast<int>(i));
    duals[i] = basic_residual(static_cast<int>(i));
  }
  correct_values(core, rows);
  const std::vector<double> change = dual_correction(core, duals);
  for (int i = 0; i < core.m(); ++i) {
    if (core.basis.nonbasic(n + i)) core.values.add_dual(n + i, -change[i]);
  }
  take_core_values();
  for (int j = 0; j < n; ++j) {
    if (core.basis.nonbasic(j)) core.values.set_dual(j, sums_.reduced_cost(j) * column_scale(j));
  }
}

void Solver::extract() {
  Core& core = *core_;
  const int n = core.n();
  const int m = core.m();
  answer_is_new_ = true;
  reoptimization_.forget();
  answer_.x.assign(static_cast<size_t>(n), 0.0);
  answer_.d.assign(static_cast<size_t>(n), 0.0);
  answer_.y.assign(static_cast<size_t>(m), 0.0);
  answer_.activity.assign(static_cast<size_t>(m), 0.0);
  answer_.column_status.clear();
  answer_.row_status.clear();
  if (!ensure_factor()) return;
  if (!values_are_fresh_) {
    core.use_original_costs();
    core.use_original_bounds();
    core.compute_primal();
    core.compute_dual();
  }
  values_are_fresh_ = false;
  answer_.column_status.resize(static_cast<size_t>(n));
  answer_.row_status.resize(static_cast<size_t>(m));
  for (int j = 0; j < n; ++j) {
    answer_.column_status[j] = core.status(j);
    if (core.basis.nonbasic(j)) answer_.x[j] = user_.nonbasic_value(j);
  }
  for (int i = 0; i < m; ++i) answer_.row_status[i] = activity_status(core.status(n + i));
  take_core_values();
  refine_values();
  for (int i = 0; i < m; ++i) answer_.activity[i] = sums_.activity(i);
  for (int j = 0; j < n; ++j) answer_.d[j] = sums_.reduced_cost(j);
  answer_.objective = sums_.objective();
  answer_.violation = verify::measure_violation(user_.lp, answer_);
  answer_.has_values = true;
  answer_.primal_feasible = answer_.violation.primal() <= options_.primal_tolerance;
  answer_.dual_feasible = answer_.violation.dual <= options_.dual_tolerance;
}

/* y'A x over the columns' box must miss y'r over the rows' box. */
bool Solver::verify_infeasible(const std::vector<double>& scaled_row) {
  if (scaled_row.size() != static_cast<size_t>(core_->m())) return false;
  verify::FarkasProof proof;
  const auto each = [this](int j, auto f) { each_entry(j, f); };
  const auto is_proof = [&](verify::Multipliers y) {
    double largest = 0, largest_scale = 0;
    for (size_t i = 0; i < y.high.size(); ++i) {
      const double scale = row_scale(static_cast<int>(i));
      largest_scale = std::max(largest_scale, scale);
      y.high[i] *= scale;
      if (!y.low.empty()) y.low[i] *= scale;
      largest = std::max(largest, std::fabs(y.high[i]));
    }
    // Smaller entries have no share in a proof; without them it is judged like any other.
    y.error = std::max(y.error * largest_scale, verify::kNoMultiplier * largest);
    return verify::check_farkas(user_.lp, each, std::move(y), proof);
  };
  if (!is_proof({scaled_row, {}, 0}) &&
      !(core_->has_factor() && is_proof(refine_multipliers(*core_, scaled_row))))
    return false;
  answer_.farkas = std::move(proof.multipliers);
  answer_.farkas_gap = proof.gap;
  answer_.farkas_margin = proof.margin;
  answer_.farkas_clean = proof.clean;
  return true;
}

/* Along the direction in the user's space the objective falls for ever. */
bool Solver::verify_ray() {
  const int q = the_primal().ray_variable();
  if (q < 0) return false;
  Core& core = *core_;
  std::vector<double> ray(static_cast<size_t>(core.n()), 0.0);
  const double direction = the_primal().ray_direction();
  if (q < core.n()) ray[q] = direction * column_scale(q);
  const SparseVector& column = the_primal().ray_column();
  for (int p = 0; p < core.m(); ++p) {
    const int j = core.basis.head(p);
    if (j < core.n() && column.array[p] != 0) ray[j] -= direction * column.array[p] * column_scale(j);
  }
  const auto each = [this](int j, auto f) { each_entry(j, f); };
  if (!verify::check_ray(user_.lp, each, ray)) return false;
  answer_.ray = std::move(ray);
  return true;
}

}  // namespace tovik::lp::simplex
