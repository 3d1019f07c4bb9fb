#include "lp/run/start_basis.h"

#include <utility>

#include "lp/run/warm_simplex.h"
#include "model/store/model.h"

namespace tovik::lp::run {
namespace {

Status check_statuses(Environment& env, const std::vector<int>& status) {
  for (size_t k = 0; k < status.size(); ++k) {
    if (status[k] < TVK_AT_LOWER || status[k] > TVK_FREE_SUPER)
      return fail(env, TVK_ERROR_BASIS_STATUS_ENTRY, static_cast<int>(k));
  }
  return {};
}

std::vector<double> optional_copy(const double* values, int count) {
  return values == nullptr ? std::vector<double>{} : std::vector<double>(values, values + count);
}

}  // namespace

Status copy_start(Environment& env, Problem& problem, const StartArrays& arrays) {
  const int columns = problem.model->num_columns();
  const int rows = problem.model->num_rows();
  if ((arrays.column_status == nullptr) != (arrays.row_status == nullptr))
    return Status(TVK_ERROR_NULL_POINTER);
  const bool values = arrays.column_primal || arrays.row_primal || arrays.column_dual || arrays.row_dual;
  if (arrays.column_status == nullptr && !values) return Status(TVK_ERROR_NULL_POINTER);
  Start start;
  if (arrays.column_status != nullptr) {
    start.column_status.assign(arrays.column_status, arrays.column_status + columns);
    start.row_status.assign(arrays.row_status, arrays.row_status + rows);
  }
  start.primal = optional_copy(arrays.column_primal, columns);
  start.row_primal = optional_copy(arrays.row_primal, rows);
  start.dual = optional_copy(arrays.column_dual, columns);
  start.row_dual = optional_copy(arrays.row_dual, rows);
  return set_start(env, problem, std::move(start));
}

Status set_start(Environment& env, Problem& problem, Start start) {
  if (const Status s = check_statuses(env, start.column_status); !s.ok()) return s;
  if (const Status s = check_statuses(env, start.row_status); !s.ok()) return s;
  problem.start = std::move(start);
  problem.norms = Norms{};
  release_engine(problem);
  problem.status = TVK_STATUS_NONE;
  return {};
}

Status get_base(Problem& problem, int* column_status, int* row_status) {
  const Start& start = problem.start;
  if (!start.has_basis()) return Status(TVK_ERROR_NO_BASIS);
  if (column_status != nullptr)
    std::copy(start.column_status.begin(), start.column_status.end(), column_status);
  if (row_status != nullptr) std::copy(start.row_status.begin(), start.row_status.end(), row_status);
  return {};
}

namespace {

Status check_norms(const Problem& problem, const double* norms, const int* head, int length) {
  if (length < 0 || length > problem.model->num_rows()) return Status(TVK_ERROR_BAD_ARGUMENT);
  if (length > 0 && (norms == nullptr || head == nullptr)) return Status(TVK_ERROR_NULL_POINTER);
  for (int k = 0; k < length; ++k) {
    if (head[k] >= problem.model->num_columns() || head[k] < -problem.model->num_rows())
      return Status(TVK_ERROR_INDEX_RANGE);
    if (!(norms[k] > 0)) return Status(TVK_ERROR_BAD_ARGUMENT);
  }
  return {};
}

}  // namespace

Status copy_dual_norms(Problem& problem, const double* norms, const int* head, int length) {
  if (const Status s = check_norms(problem, norms, head, length); !s.ok()) return s;
  Norms copy = problem.norms;
  copy.dual.assign(norms, norms + length);
  copy.head.assign(head, head + length);
  problem.norms = std::move(copy);
  return {};
}

Status get_dual_norms(Problem& problem, double* norms, int* head, int* length) {
  if (norms == nullptr || head == nullptr || length == nullptr) return Status(TVK_ERROR_NULL_POINTER);
  if (const WarmSimplex* warm = synchronized_simplex(problem);
      warm != nullptr && warm->norms_current && warm->solver.has_dual_norms()) {
    const simplex::Core& core = warm->solver.core();
    const std::vector<double>& weights = warm->solver.dual_norms();
    for (int p = 0; p < core.m(); ++p) {
      norms[p] = weights[p];
      head[p] = core.basis.head(p) < core.n() ? core.basis.head(p) : -(core.basis.head(p) - core.n()) - 1;
    }
    *length = core.m();
    return {};
  }
  if (problem.norms.dual.empty()) return Status(TVK_ERROR_NO_NORMS);
  std::copy(problem.norms.dual.begin(), problem.norms.dual.end(), norms);
  std::copy(problem.norms.head.begin(), problem.norms.head.end(), head);
  *length = static_cast<int>(problem.norms.dual.size());
  return {};
}

Norms norms_of(Problem& problem) {
  Norms norms;
  norms.dual.resize(problem.rows());
  norms.head.resize(problem.rows());
  int length = 0;
  const bool held =
      problem.rows() != 0 && get_dual_norms(problem, norms.dual.data(), norms.head.data(), &length).ok();
  norms.dual.resize(held ? static_cast<std::size_t>(length) : 0);
  norms.head.resize(norms.dual.size());
  return norms;
}

Status copy_start_with_norms(Environment& env, Problem& problem, const int* column_status,
                             const int* row_status, const double* norms) {
  std::vector<int> head;
  for (int j = 0; j < problem.model->num_columns(); ++j) {
    if (column_status[j] == TVK_BASIC) head.push_back(j);
  }
  for (int i = 0; i < problem.model->num_rows(); ++i) {
    if (row_status[i] == TVK_BASIC) head.push_back(-i - 1);
  }
  if (static_cast<int>(head.size()) != problem.model->num_rows()) return Status(TVK_ERROR_BAD_ARGUMENT);
  const int length = static_cast<int>(head.size());
  if (const Status s = check_norms(problem, norms, head.data(), length); !s.ok()) return s;
  Norms fresh;
  fresh.dual.assign(norms, norms + length);
  fresh.head = std::move(head);
  StartArrays arrays;
  arrays.column_status = column_status;
  arrays.row_status = row_status;
  if (const Status status = copy_start(env, problem, arrays); !status.ok()) return status;
  problem.norms = std::move(fresh);
  return {};
}

}  // namespace tovik::lp::run
