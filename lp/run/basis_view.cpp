#include "lp/run/basis_view.h"

#include <algorithm>

#include "include/tovik.h"
#include "lp/binding/engine_control.h"
#include "lp/binding/engine_options.h"
#include "model/store/model.h"

namespace tovik::lp::run {

Status BasisView::open(Environment& env, Problem& problem) {
  if (!problem.start.has_basis()) return Status(TVK_ERROR_NO_BASIS);
  const auto basic = [](const std::vector<int>& status) {
    return std::count(status.begin(), status.end(), 1);
  };
  if (basic(problem.start.column_status) + basic(problem.start.row_status) != problem.model->num_rows())
    return Status(TVK_ERROR_BASIS_SINGULAR);
  EngineGuard guard(problem);
  EngineControl control(env, problem);
  const Status status = warm_simplex(env, problem, {engine_options(env), control}, &warm_);
  if (!status.ok()) {
    guard.commit();
    return status;
  }
  install_basis(problem, *warm_);
  const simplex::Solver& solver = warm_->solver;
  core_ = &solver.core();
  problem_ = &problem;
  // A repaired basis is another one than the caller asked about.
  const bool regular = warm_->solver.factor_basis();
  warm_->solver.detach();
  if (!regular) return Status(TVK_ERROR_BASIS_SINGULAR);
  work_.resize(core_->m());
  warm_->start_installed = true;
  guard.commit();
  return {};
}

Status BasisView::open_for_query(Environment& env, Problem& problem) {
  if (!problem.start.has_basis()) return Status(TVK_ERROR_NO_BASIS);
  return problem.use.changing ? Status(TVK_ERROR_IN_INFO_CALLBACK) : open(env, problem);
}

int BasisView::head(int p) const {
  const int j = core_->basis.head(p);
  return j < core_->n() ? j : -(j - core_->n()) - 1;
}

double BasisView::scale(int variable) const {
  return variable < core_->n() ? warm_->solver.column_scale(variable)
                               : 1.0 / warm_->solver.row_scale(variable - core_->n());
}

double BasisView::value(int p) const {
  const int j = core_->basis.head(p);
  const double v = core_->values.x(p) * scale(j);
  // The engine's logical is minus the row's activity; users count the slack from the right-hand side.
  return j < core_->n() ? v : problem_->model->rhs()[j - core_->n()] + v;
}

void BasisView::solve(const std::vector<double>& v, std::vector<double>& out) {
  work_.clear();
  for (int i = 0; i < core_->m(); ++i) work_.array[i] = v[i] * warm_->solver.row_scale(i);
  work_.count = -1;
  work_.reindex();
  warm_->solver.ftran(work_);
  out.resize(static_cast<size_t>(core_->m()));
  for (int p = 0; p < core_->m(); ++p) out[p] = work_.array[p] * scale(core_->basis.head(p));
  work_.count = -1;
}

void BasisView::solve_transposed(const std::vector<double>& v, std::vector<double>& out) {
  work_.clear();
  for (int p = 0; p < core_->m(); ++p) work_.array[p] = v[p] * scale(core_->basis.head(p));
  work_.count = -1;
  work_.reindex();
  warm_->solver.btran(work_);
  out.resize(static_cast<size_t>(core_->m()));
  for (int i = 0; i < core_->m(); ++i) out[i] = work_.array[i] * warm_->solver.row_scale(i);
  work_.count = -1;
}

void BasisView::inverse_row(int p, std::vector<double>& out) {
  std::vector<double> unit(static_cast<size_t>(core_->m()), 0.0);
  unit[p] = 1.0;
  solve_transposed(unit, out);
}

void BasisView::row_times_matrix(const std::vector<double>& row, std::vector<double>& out) const {
  out.resize(static_cast<size_t>(core_->n()));
  for (int j = 0; j < core_->n(); ++j) {
    double sum = 0;
    warm_->solver.each_entry(j, [&](int i, double a) { sum += a * row[i]; });
    out[j] = sum;
  }
}

std::vector<double> BasisView::column(int j) const {
  std::vector<double> v(static_cast<size_t>(core_->m()), 0.0);
  if (j >= core_->n()) {
    v[j - core_->n()] = 1.0;
  } else {
    warm_->solver.each_entry(j, [&](int i, double a) { v[i] = a; });
  }
  return v;
}

}  // namespace tovik::lp::run
