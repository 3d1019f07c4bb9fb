/* The exported routines around a basis: statuses, norms, factor, tableau, rays, sensitivity, quality,
 * user-requested pivots. */
#include <algorithm>
#include <cmath>

#include "api/optimizer_frame.h"
#include "env/entry.h"
#include "include/tovik.h"
#include "lp/basis_query/pivoting.h"
#include "lp/basis_query/quality.h"
#include "lp/basis_query/sensitivity.h"
#include "lp/run/basis_view.h"
#include "lp/run/method.h"
#include "lp/run/start_basis.h"
#include "model/routines/check.h"
#include "model/store/model.h"

using namespace tovik;
using namespace tovik::lp::run;

namespace {

template <class Each>
Status sensitivity_range(Environment& env, Problem& problem, const char* routine, int begin, int end,
                         int count, Each each) {
  if (const Status status = model::check_range(env, routine, begin, end, count); !status.ok()) return status;
  Sensitivity sensitivity;
  if (const Status status = sensitivity.open(env, problem); !status.ok()) return status;
  for (int k = begin; k <= end; ++k) each(sensitivity, k, k - begin);
  return {};
}

void put(double* array, int k, double value) {
  if (array != nullptr) array[k] = value;
}

void copy_out(const std::vector<double>& values, double* out) {
  std::copy(values.begin(), values.end(), out);
}

constexpr double kNoRate = 1e-9;  // a dual value or reduced cost that is rounding noise

/* Within its range one datum moves the objective in proportion: at the rate of the value that it is a cost of,
 * of the row's dual, or of the reduced cost that holds the column at this bound. */
Interval objective_range(const Problem& problem, Sensitivity& sensitivity, int what, int at) {
  const Solution& solution = *problem.solution;
  const auto k = static_cast<std::size_t>(at);
  const auto range = [&](Interval ends, double now, double rate) {
    const auto value = [&](double end) {
      if (end == now || std::fabs(now) >= TVK_INFBOUND) return solution.objective;  // no bound holds there
      if (std::fabs(end) >= TVK_INFBOUND && std::fabs(rate) <= kNoRate) return solution.objective;
      if (std::fabs(end) >= TVK_INFBOUND) return std::copysign(TVK_INFBOUND, (end - now) * rate);
      return solution.objective + rate * (end - now);
    };
    return Interval{value(ends.lower), value(ends.upper)};
  };
  if (what == TVK_SENS_OBJ) return range(sensitivity.cost(at), problem.model->objective()[k], solution.x[k]);
  if (what == TVK_SENS_RHS) return range(sensitivity.rhs(at), problem.model->rhs()[k], solution.pi[k]);
  const bool holds_lower = solution.dj[k] * problem.model->objective_sense() > 0;
  if (what == TVK_SENS_LB)
    return range(sensitivity.lower_bound(at), problem.model->lower()[k], holds_lower ? solution.dj[k] : 0);
  return range(sensitivity.upper_bound(at), problem.model->upper()[k], holds_lower ? 0 : solution.dj[k]);
}

}  // namespace

int TVKgetbase(ConstEnvHandle env, ConstProbHandle lp, int* cstat, int* rstat) {
  return with_problem(env, lp, [&](Environment&, Problem& p) { return get_base(p, cstat, rstat); });
}

int TVKcopybase(ConstEnvHandle env, ProbHandle lp, const int* cstat, const int* rstat) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (cstat == nullptr || rstat == nullptr) return Status(TVK_ERROR_NULL_POINTER);
    StartArrays arrays;
    arrays.column_status = cstat;
    arrays.row_status = rstat;
    return copy_start(e, p, arrays);
  });
}

int TVKcopystart(ConstEnvHandle env, ProbHandle lp, const int* cstat, const int* rstat, const double* cprim,
                 const double* rprim, const double* cdual, const double* rdual) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return copy_start(e, p, {cstat, rstat, cprim, rprim, cdual, rdual});
  });
}

int TVKgetdnorms(ConstEnvHandle env, ConstProbHandle lp, double* norm, int* head, int* len_p) {
  return with_problem(env, lp,
                      [&](Environment&, Problem& p) { return get_dual_norms(p, norm, head, len_p); });
}

int TVKcopydnorms(ConstEnvHandle env, ProbHandle lp, const double* norm, const int* head, int len) {
  return with_problem(env, lp, [&](Environment&, Problem& p) { return copy_dual_norms(p, norm, head, len); });
}

int TVKcopybasednorms(ConstEnvHandle env, ProbHandle lp, const int* cstat, const int* rstat,
                      const double* dnorm) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (cstat == nullptr || rstat == nullptr || dnorm == nullptr) return Status(TVK_ERROR_NULL_POINTER);
    return copy_start_with_norms(e, p, cstat, rstat, dnorm);
  });
}

int TVKgetbasehead(ConstEnvHandle env, ConstProbHandle lp, int* head, double* x) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (head == nullptr && x == nullptr) return Status(TVK_ERROR_NULL_POINTER);
    BasisView view;
    if (const Status status = view.open_for_query(e, p); !status.ok()) return status;
    for (int k = 0; k < view.rows(); ++k) {
      if (head != nullptr) head[k] = view.head(k);
      if (x != nullptr) x[k] = view.value(k);
    }
    return {};
  });
}

int TVKgetbaseinvrow(ConstEnvHandle env, ConstProbHandle lp, int position, double* row) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (row == nullptr) return Status(TVK_ERROR_NULL_POINTER);
    if (position < 0 || position >= p.model->num_rows()) return fail(e, TVK_ERROR_ROW_INDEX_RANGE, position);
    BasisView view;
    if (const Status status = view.open_for_query(e, p); !status.ok()) return status;
    std::vector<double> result;
    view.inverse_row(position, result);
    copy_out(result, row);
    return {};
  });
}

int TVKgetbaseinvcol(ConstEnvHandle env, ConstProbHandle lp, int i, double* column) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (column == nullptr) return Status(TVK_ERROR_NULL_POINTER);
    if (i < 0 || i >= p.model->num_rows()) return fail(e, TVK_ERROR_ROW_INDEX_RANGE, i);
    BasisView view;
    if (const Status status = view.open_for_query(e, p); !status.ok()) return status;
    std::vector<double> result;
    view.solve(view.column(p.model->num_columns() + i), result);
    copy_out(result, column);
    return {};
  });
}

int TVKgettableaurow(ConstEnvHandle env, ConstProbHandle lp, int position, double* columns, double* slacks) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (columns == nullptr && slacks == nullptr) return Status(TVK_ERROR_NULL_POINTER);
    if (position < 0 || position >= p.model->num_rows()) return fail(e, TVK_ERROR_ROW_INDEX_RANGE, position);
    BasisView view;
    if (const Status status = view.open_for_query(e, p); !status.ok()) return status;
    std::vector<double> row, alpha;
    view.inverse_row(position, row);
    if (slacks != nullptr) copy_out(row, slacks);
    if (columns != nullptr) {
      view.row_times_matrix(row, alpha);
      copy_out(alpha, columns);
    }
    return {};
  });
}

int TVKgettableaucol(ConstEnvHandle env, ConstProbHandle lp, int j, double* column) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (column == nullptr) return Status(TVK_ERROR_NULL_POINTER);
    if (j < 0 || j >= p.model->num_columns()) return fail(e, TVK_ERROR_COLUMN_INDEX_RANGE, j);
    BasisView view;
    if (const Status status = view.open_for_query(e, p); !status.ok()) return status;
    std::vector<double> result;
    view.solve(view.column(j), result);
    copy_out(result, column);
    return {};
  });
}

int TVKftran(ConstEnvHandle env, ConstProbHandle lp, double* vector) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (vector == nullptr) return Status(TVK_ERROR_NULL_POINTER);
    BasisView view;
    if (const Status status = view.open_for_query(e, p); !status.ok()) return status;
    std::vector<double> result;
    view.solve(std::vector<double>(vector, vector + view.rows()), result);
    copy_out(result, vector);
    return {};
  });
}

int TVKbtran(ConstEnvHandle env, ConstProbHandle lp, double* vector) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (vector == nullptr) return Status(TVK_ERROR_NULL_POINTER);
    BasisView view;
    if (const Status status = view.open_for_query(e, p); !status.ok()) return status;
    std::vector<double> result;
    view.solve_transposed(std::vector<double>(vector, vector + view.rows()), result);
    copy_out(result, vector);
    return {};
  });
}

int TVKgetray(ConstEnvHandle env, ConstProbHandle lp, double* ray) {
  return with_problem(env, lp, [&](Environment&, Problem& p) -> Status {
    if (ray == nullptr) return Status(TVK_ERROR_NULL_POINTER);
    if (p.status != TVK_STATUS_UNBOUNDED || p.solution == nullptr || p.solution->ray.empty())
      return Status(TVK_ERROR_NEED_UNBOUNDED_SOLUTION);
    copy_out(p.solution->ray, ray);
    return {};
  });
}

int TVKgetfarkas(ConstEnvHandle env, ConstProbHandle lp, double* y, double* proof_p) {
  return with_problem(env, lp, [&](Environment&, Problem& p) -> Status {
    if (y == nullptr && proof_p == nullptr) return Status(TVK_ERROR_NULL_POINTER);
    if (p.status != TVK_STATUS_INFEASIBLE || p.solution == nullptr || !(p.solution->farkas_gap > 0))
      return Status(TVK_ERROR_NEED_DUAL_UNBOUNDED_SOLUTION);
    if (y != nullptr) copy_out(p.solution->farkas, y);
    if (proof_p != nullptr) *proof_p = p.solution->farkas_gap;
    return {};
  });
}

int TVKgetobjsens(ConstEnvHandle env, ConstProbHandle lp, int begin, int end, double* lower, double* upper) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (lower == nullptr && upper == nullptr) return Status(TVK_ERROR_NULL_POINTER);
    return sensitivity_range(e, p, "TVKgetobjsens", begin, end, p.model->num_columns(),
                             [&](Sensitivity& s, int j, int k) {
                               const Interval range = s.cost(j);
                               put(lower, k, range.lower);
                               put(upper, k, range.upper);
                             });
  });
}

int TVKgetrhssens(ConstEnvHandle env, ConstProbHandle lp, int begin, int end, double* lower, double* upper) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (lower == nullptr && upper == nullptr) return Status(TVK_ERROR_NULL_POINTER);
    return sensitivity_range(e, p, "TVKgetrhssens", begin, end, p.model->num_rows(),
                             [&](Sensitivity& s, int i, int k) {
                               const Interval range = s.rhs(i);
                               put(lower, k, range.lower);
                               put(upper, k, range.upper);
                             });
  });
}

int TVKgetboundsens(ConstEnvHandle env, ConstProbHandle lp, int begin, int end, double* lblower,
                    double* lbupper, double* ublower, double* ubupper) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (!lblower && !lbupper && !ublower && !ubupper) return Status(TVK_ERROR_NULL_POINTER);
    return sensitivity_range(e, p, "TVKgetboundsens", begin, end, p.model->num_columns(),
                             [&](Sensitivity& s, int j, int k) {
                               const Interval low = s.lower_bound(j);
                               const Interval high = s.upper_bound(j);
                               put(lblower, k, low.lower);
                               put(lbupper, k, low.upper);
                               put(ublower, k, high.lower);
                               put(ubupper, k, high.upper);
                             });
  });
}

int TVKgetsensobjval(ConstEnvHandle env, ConstProbHandle lp, int what, int begin, int end, double* lower,
                     double* upper) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (lower == nullptr && upper == nullptr) return Status(TVK_ERROR_NULL_POINTER);
    if (what < TVK_SENS_OBJ || what > TVK_SENS_UB) return Status(TVK_ERROR_BAD_ARGUMENT);
    const int count = what == TVK_SENS_RHS ? p.model->num_rows() : p.model->num_columns();
    return sensitivity_range(e, p, "TVKgetsensobjval", begin, end, count, [&](Sensitivity& s, int at, int k) {
      const Interval values = objective_range(p, s, what, at);
      put(lower, k, values.lower);
      put(upper, k, values.upper);
    });
  });
}

int TVKgetquality(ConstEnvHandle env, ConstProbHandle lp, int what, double* value_p, int* index_p) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (value_p == nullptr) return Status(TVK_ERROR_NULL_POINTER);
    Measure measure;
    if (const Status status = measure_quality(e, p, what, &measure); !status.ok()) return status;
    *value_p = measure.value;
    if (index_p != nullptr) *index_p = measure.index;
    return {};
  });
}

int TVKpivotin(ConstEnvHandle env, ProbHandle lp, const int* rlist, int rlen) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (const Status status = check_continuous(p); !status.ok()) return status;
    const api::OptimizerFrame frame(e);
    return pivot_in(e, p, rlist, rlen);
  });
}

int TVKpivotout(ConstEnvHandle env, ProbHandle lp, const int* clist, int clen) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (const Status status = check_continuous(p); !status.ok()) return status;
    const api::OptimizerFrame frame(e);
    return pivot_out(e, p, clist, clen);
  });
}

int TVKstrongbranch(ConstEnvHandle env, ProbHandle lp, const int* indices, int cnt, double* downobj,
                    double* upobj, int itlim) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (const Status status = check_continuous(p); !status.ok()) return status;
    const api::OptimizerFrame frame(e);
    return strong_branch(e, p, {indices, cnt, downobj, upobj, itlim});
  });
}
