#include "lp/basis_query/quality.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

#include "env/solution_access.h"
#include "include/tovik.h"
#include "lp/base/sum.h"
#include "lp/basis_query/infeasibility.h"
#include "lp/binding/build_lp.h"
#include "lp/run/basis_view.h"
#include "lp/verify/point.h"
#include "model/store/model.h"

namespace tovik::lp::run {
namespace {

/* Keeps the largest or the sum of absolute values. */
class Gather {
 public:
  explicit Gather(bool sum) : sum_(sum) {}
  void add(double v, int index) {
    v = std::fabs(v);
    if (sum_) {
      total_.add(v);
    } else if (v > best_.value) {
      best_ = {v, index};
    }
  }
  Measure result() const { return sum_ ? Measure{total_.value(), -1} : best_; }

 private:
  bool sum_;
  Measure best_;
  CompensatedSum total_;
};

struct Data {
  const model::Model& model;
  const Solution& solution;
  double sign;
};

auto entries_of(const model::Model& model) {
  return [&model](int j, auto f) {
    const model::ColumnView column = model.column(j);
    for (int k = 0; k < column.count; ++k) f(column.index[k], column.value[k]);
  };
}

std::vector<double> activities(const Data& data) {
  return verify::activities(data.model.num_rows(), entries_of(data.model), data.solution.x);
}

void primal_infeasibility(const Data& data, Gather& gather) {
  const std::vector<double> activity = activities(data);
  for (int j = 0; j < data.model.num_columns(); ++j) {
    gather.add(column_violation(data.model, j, data.solution.x[static_cast<std::size_t>(j)]), j);
  }
  for (int i = 0; i < data.model.num_rows(); ++i) {
    const verify::Limits b = row_bounds(data.model.sense()[i], data.model.rhs()[i], data.model.range()[i]);
    gather.add(verify::outside(activity[i], b.lower, b.upper), -i - 1);
  }
}

void integer_infeasibility(const Data& data, Gather& gather) {
  const std::span<const char> types = data.model.column_types();
  for (std::size_t j = 0; j < types.size(); ++j) {
    const double x = data.solution.x[j];
    if (types[j] == 'B' || types[j] == 'I' || types[j] == 'N')
      gather.add(x - std::round(x), static_cast<int>(j));
  }
}

/* Wrong sign of a dual value of a variable standing at v between its bounds, for a minimization. */
double wrong_dual(double d, double v, double low, double high) {
  constexpr double kReach = 1e-6;
  return verify::wrong_sign(d, verify::status_at(v, low, high, kReach), verify::is_fixed(low, high));
}

void dual_infeasibility(const Data& data, Gather& gather) {
  const std::vector<double> activity = activities(data);
  for (int j = 0; j < data.model.num_columns(); ++j) {
    gather.add(wrong_dual(data.sign * data.solution.dj[j], data.solution.x[j],
                          stored_lower(data.model.lower()[j]), stored_upper(data.model.upper()[j])),
               j);
  }
  for (int i = 0; i < data.model.num_rows(); ++i) {
    const verify::Limits b = row_bounds(data.model.sense()[i], data.model.rhs()[i], data.model.range()[i]);
    gather.add(wrong_dual(data.sign * data.solution.pi[i], activity[i], b.lower, b.upper), -i - 1);
  }
}

void primal_residual(const Data& data, Gather& gather) {
  const std::vector<double> activity = activities(data);
  for (int i = 0; i < data.model.num_rows(); ++i) {
    gather.add(data.model.rhs()[i] - activity[i] - data.solution.slack[i], -i - 1);
  }
}

void dual_residual(const Data& data, Gather& gather) {
  for (int j = 0; j < data.model.num_columns(); ++j) {
    CompensatedSum sum =
        verify::reduced_cost(data.model.objective()[j], j, entries_of(data.model), data.solution.pi);
    sum.add(-data.solution.dj[j]);
    gather.add(sum.value(), j);
  }
}

void complementarity(const Data& data, Gather& gather) {
  for (int j = 0; j < data.model.num_columns(); ++j) {
    const double x = data.solution.x[j];
    const double gap = std::min(std::fabs(x - stored_lower(data.model.lower()[j])),
                                std::fabs(stored_upper(data.model.upper()[j]) - x));
    gather.add(std::isinf(gap) ? data.solution.dj[j] : gap * data.solution.dj[j], j);
  }
  for (int i = 0; i < data.model.num_rows(); ++i) {
    const verify::Limits b = row_bounds(data.model.sense()[i], data.model.rhs()[i], data.model.range()[i]);
    const double activity = data.model.rhs()[i] - data.solution.slack[i];
    const double gap = std::min(std::fabs(activity - b.lower), std::fabs(b.upper - activity));
    gather.add(std::isinf(gap) ? data.solution.pi[i] : gap * data.solution.pi[i], -i - 1);
  }
}

void each(const std::vector<double>& values, bool rows, Gather& gather) {
  for (size_t k = 0; k < values.size(); ++k)
    gather.add(values[k], rows ? -static_cast<int>(k) - 1 : static_cast<int>(k));
}

/* what: of those that the solution has the arrays for. */
Status gather(const Data& data, int what, Measure* result) {
  Gather largest(false);
  Gather sum(true);
  switch (what) {
    case TVK_QUALITY_MAX_PRIMAL_INFEAS:
      primal_infeasibility(data, largest);
      break;
    case TVK_QUALITY_SUM_PRIMAL_INFEAS:
      primal_infeasibility(data, sum);
      break;
    case TVK_QUALITY_MAX_DUAL_INFEAS:
      dual_infeasibility(data, largest);
      break;
    case TVK_QUALITY_SUM_DUAL_INFEAS:
      dual_infeasibility(data, sum);
      break;
    case TVK_QUALITY_MAX_PRIMAL_RESIDUAL:
      primal_residual(data, largest);
      break;
    case TVK_QUALITY_SUM_PRIMAL_RESIDUAL:
      primal_residual(data, sum);
      break;
    case TVK_QUALITY_MAX_DUAL_RESIDUAL:
      dual_residual(data, largest);
      break;
    case TVK_QUALITY_SUM_DUAL_RESIDUAL:
      dual_residual(data, sum);
      break;
    case TVK_QUALITY_MAX_COMP_SLACK:
      complementarity(data, largest);
      break;
    case TVK_QUALITY_SUM_COMP_SLACK:
      complementarity(data, sum);
      break;
    case TVK_QUALITY_MAX_INT_INFEAS:
      integer_infeasibility(data, largest);
      break;
    case TVK_QUALITY_SUM_INT_INFEAS:
      integer_infeasibility(data, sum);
      break;
    case TVK_QUALITY_MAX_X:
      each(data.solution.x, false, largest);
      break;
    case TVK_QUALITY_MAX_PI:
      each(data.solution.pi, true, largest);
      break;
    case TVK_QUALITY_MAX_SLACK:
      each(data.solution.slack, true, largest);
      break;
    case TVK_QUALITY_MAX_RED_COST:
      each(data.solution.dj, false, largest);
      break;
    default:
      return Status(TVK_ERROR_BAD_ARGUMENT);
  }
  const bool summed = what == TVK_QUALITY_SUM_PRIMAL_INFEAS || what == TVK_QUALITY_SUM_DUAL_INFEAS ||
                      what == TVK_QUALITY_SUM_PRIMAL_RESIDUAL || what == TVK_QUALITY_SUM_DUAL_RESIDUAL ||
                      what == TVK_QUALITY_SUM_COMP_SLACK || what == TVK_QUALITY_SUM_INT_INFEAS;
  *result = summed ? sum.result() : largest.result();
  return {};
}

bool needs_duals(int what) {
  return what == TVK_QUALITY_MAX_DUAL_INFEAS || what == TVK_QUALITY_SUM_DUAL_INFEAS ||
         what == TVK_QUALITY_MAX_DUAL_RESIDUAL || what == TVK_QUALITY_SUM_DUAL_RESIDUAL ||
         what == TVK_QUALITY_MAX_COMP_SLACK || what == TVK_QUALITY_SUM_COMP_SLACK ||
         what == TVK_QUALITY_MAX_PI || what == TVK_QUALITY_MAX_RED_COST;
}

}  // namespace

Status measure_point(const model::Model& model, const Solution& solution, int what, Measure* result) {
  if (needs_duals(what) || what == TVK_QUALITY_KAPPA) return Status(TVK_ERROR_NOT_FOR_MIP);
  return gather({model, solution, static_cast<double>(model.objective_sense())}, what, result);
}

Status measure_quality(Environment& env, Problem& problem, int what, Measure* result) {
  if (what == TVK_QUALITY_KAPPA) return basis_kappa(env, problem, &result->value);
  Status why;
  if (find_solution(problem, SolutionPart::values, why) == nullptr) return why;
  const Data data{*problem.model, *problem.solution, static_cast<double>(problem.model->objective_sense())};
  if (needs_duals(what) && find_solution(problem, SolutionPart::duals, why) == nullptr) return why;
  return gather(data, what, result);
}

Status basis_kappa(Environment& env, Problem& problem, double* kappa) {
  BasisView view;
  if (const Status status = view.open_for_query(env, problem); !status.ok()) return status;
  const simplex::Core& core = view.core();
  const auto m = static_cast<size_t>(core.m());
  *kappa = 1;
  if (m == 0) return {};
  double norm = 0;
  for (int p = 0; p < core.m(); ++p) {
    const int j = core.basis.head(p);
    double sum = j < core.n() ? 0 : 1;
    for (int k = j < core.n() ? core.matrix().start[j] : 0; j < core.n() && k < core.matrix().start[j + 1];
         ++k) {
      sum += std::fabs(core.matrix().value[k]);
    }
    norm = std::max(norm, sum);
  }
  SparseVector v;
  v.resize(core.m());
  const auto apply = [&](std::vector<double>& x, bool transposed) {
    v.clear();
    v.array = x;
    v.count = -1;
    v.reindex();
    if (transposed) {
      view.solver().btran(v);
    } else {
      view.solver().ftran(v);
    }
    x = v.array;
    v.count = -1;
  };
  std::vector<double> x(m, 1.0 / static_cast<double>(m));
  double estimate = 0;
  for (int step = 0; step < 5; ++step) {
    apply(x, false);
    double size = 0;
    for (double e : x) size += std::fabs(e);
    if (step > 0 && size <= estimate) break;
    estimate = size;
    for (double& e : x) e = e >= 0 ? 1.0 : -1.0;
    apply(x, true);
    const auto largest =
        std::max_element(x.begin(), x.end(), [](double a, double b) { return std::fabs(a) < std::fabs(b); });
    const auto position = static_cast<size_t>(largest - x.begin());
    std::fill(x.begin(), x.end(), 0.0);
    x[position] = 1.0;
  }
  *kappa = norm * estimate;
  return {};
}

}  // namespace tovik::lp::run
