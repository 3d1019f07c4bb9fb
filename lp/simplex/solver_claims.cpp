/* What a solve may claim, checked on the user's own data: values and duals, their violations, proofs of
 * infeasibility and rays. */
#include <algorithm>
#include <cmath>
#include <utility>

#include "lp/base/certificates.h"
#include "lp/base/sum.h"
#include "lp/simplex/solver.h"

namespace tovik::lp::simplex {
namespace {

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
double dual_violation(double d, BasisStatus status, double low, double high) {
  if (low == high || status == BasisStatus::basic) return status == BasisStatus::basic ? std::fabs(d) : 0.0;
  if (status == BasisStatus::lower) return std::max(0.0, -d);
  if (status == BasisStatus::upper) return std::max(0.0, d);
  return std::fabs(d);
}

}  // namespace

Violation measure_violation(const LpData& lp, const Answer& answer) {
  Violation v;
  const auto note = [](double violation, int where, double& largest, int& worst) {
    if (!(violation > largest)) return;
    largest = violation;
    worst = where;
  };
  for (int j = 0; j < lp.num_columns(); ++j) {
    note(std::max(lp.lower[j] - answer.x[j], answer.x[j] - lp.upper[j]), j, v.column, v.worst_column);
    note(dual_violation(answer.d[j], answer.column_status[j], lp.lower[j], lp.upper[j]), j, v.dual,
         v.worst_dual);
  }
  for (int i = 0; i < lp.num_rows(); ++i) {
    note(std::max(lp.row_lower[i] - answer.activity[i], answer.activity[i] - lp.row_upper[i]), i, v.row,
         v.worst_row);
    note(dual_violation(answer.y[i], answer.row_status[i], lp.row_lower[i], lp.row_upper[i]),
         lp.num_columns() + i, v.dual, v.worst_dual);
  }
  return v;
}

void Solver::extract() {
  Core& core = *core_;
  const int n = core.n;
  const int m = core.m;
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
    if (core.nonbasic[j]) answer_.x[j] = user_.nonbasic_value(j);
  }
  for (int p = 0; p < m; ++p) {
    if (core.head[p] < n) answer_.x[core.head[p]] = core.x[p] * column_scale(core.head[p]);
  }
  for (int i = 0; i < m; ++i) {
    answer_.row_status[i] = activity_status(core.status(n + i));
    answer_.y[i] = -core.d[n + i] * row_scale(i);
  }
  sums_.compute(answer_.x, answer_.y);
  for (int i = 0; i < m; ++i) answer_.activity[i] = sums_.activity(i);
  for (int j = 0; j < n; ++j) answer_.d[j] = user_.lp.cost[j] - sums_.dual_sum(j);
  answer_.objective = sums_.objective();
  answer_.violation = measure_violation(user_.lp, answer_);
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
  if (!verify_farkas(user_.lp, each, std::move(y), proof)) return false;
  answer_.farkas = std::move(proof.multipliers);
  answer_.farkas_gap = proof.gap;
  return true;
}

/* The direction in the user's space must keep A x within the rows' infinite sides, respect the columns' and
 * improve. */
bool Solver::verify_ray() {
  const int q = the_primal().ray_variable();
  if (q < 0) return false;
  Core& core = *core_;
  std::vector<double> ray(static_cast<size_t>(core.n), 0.0);
  const double direction = the_primal().ray_direction();
  if (q < core.n) ray[q] = direction * column_scale(q);
  const SparseVector& column = the_primal().ray_column();
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
    if ((ray[j] > 0 && user_.lp.upper[j] < kInf) || (ray[j] < 0 && user_.lp.lower[j] > -kInf)) {
      if (std::fabs(ray[j]) > kNegligible) return false;
      ray[j] = 0;
    }
    if (ray[j] == 0) continue;
    slope.add_product(user_.lp.cost[j], ray[j]);
    slope_terms += std::fabs(user_.lp.cost[j] * ray[j]);
    each_entry(j, [&](int i, double a) { terms[i] += std::fabs(a * ray[j]); });
  }
  const std::vector<double> activity = product(*this, ray);
  for (int i = 0; i < core.m; ++i) {
    const double negligible = kNegligible * terms[i];
    if ((activity[i] > negligible && user_.lp.row_upper[i] < kInf) ||
        (activity[i] < -negligible && user_.lp.row_lower[i] > -kInf)) {
      return false;
    }
  }
  if (!(slope.value() < -kNegligible * slope_terms)) return false;
  answer_.ray = std::move(ray);
  return true;
}

}  // namespace tovik::lp::simplex
