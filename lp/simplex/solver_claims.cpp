/* What a solve may claim, checked on the user's own data: values and duals, their violations, proofs of
 * infeasibility and rays. */
#include <utility>

#include "lp/simplex/solver.h"
#include "lp/verify/certificates.h"
#include "lp/verify/point.h"

namespace tovik::lp::simplex {

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
  for (int p = 0; p < m; ++p) {
    if (core.basis.head(p) < n)
      answer_.x[core.basis.head(p)] = core.values.x(p) * column_scale(core.basis.head(p));
  }
  for (int i = 0; i < m; ++i) {
    answer_.row_status[i] = activity_status(core.status(n + i));
    answer_.y[i] = -core.values.d(n + i) * row_scale(i);
  }
  sums_.compute(answer_.x, answer_.y);
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
  std::vector<double> y(scaled_row.size());
  for (size_t i = 0; i < y.size(); ++i) y[i] = scaled_row[i] * row_scale(static_cast<int>(i));
  verify::FarkasProof proof;
  const auto each = [this](int j, auto f) { each_entry(j, f); };
  if (!verify::check_farkas(user_.lp, each, std::move(y), proof)) return false;
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
