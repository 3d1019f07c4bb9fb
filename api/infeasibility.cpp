/* Row activities, and by how much a point violates rows and bounds. */
#include <cmath>

#include "env/entry.h"
#include "env/solution_access.h"
#include "model/routines/check.h"
#include "model/store/model.h"

using namespace tovik;

namespace {

/* Row i times x; the sum is compensated, because its cancellation decides about feasibility. */
double row_activity(const model::Model& model, int i, const double* x) {
  const model::RowView row = model.row(i);
  double sum = 0, lost = 0;
  for (int k = 0; k < row.count; ++k) {
    const double term = row.value[k] * x[row.index[k]];
    const double next = sum + term;
    lost += std::fabs(sum) >= std::fabs(term) ? (sum - next) + term : (term - next) + sum;
    sum = next;
  }
  return std::isfinite(sum) ? sum + lost : sum;
}

struct Limits {
  double lower, upper;
};

Limits row_limits(const model::Model& model, int i) {
  const double rhs = model.rhs()[i];
  const double range = model.range()[i];
  switch (model.sense()[i]) {
    case 'L':
      return {-model::kInfinity, rhs};
    case 'G':
      return {rhs, model::kInfinity};
    case 'R':
      return range >= 0 ? Limits{rhs, rhs + range} : Limits{rhs + range, rhs};
    default:
      return {rhs, rhs};
  }
}

/* Positive above the upper limit, negative below the lower one. */
double violation(double value, const Limits& limits) {
  if (limits.upper < model::kInfinity && value > limits.upper) return value - limits.upper;
  if (limits.lower > -model::kInfinity && value < limits.lower) return value - limits.lower;
  return std::isnan(value) ? value : 0.0;
}

double column_violation(const model::Model& model, int j, double value) {
  const double from_bounds = violation(value, {model.lower()[j], model.upper()[j]});
  const char type = model.column_types().empty() ? 'C' : model.column_types()[j];
  const bool may_be_zero = type == 'S' || type == 'N';
  return may_be_zero && std::fabs(value) < std::fabs(from_bounds) ? value : from_bounds;
}

struct Request {
  const char* routine;
  const double* x;  // null: the current solution
  double* out;
  int begin, end;
};

/* entry: double(const model::Model&, int position, const double* x), for each position of the range */
template <class Entry>
int evaluate(ConstEnvHandle env, ConstProbHandle lp, const Request& request,
             std::size_t (Problem::*count)() const, Entry&& entry) {
  return with_problem(env, lp, [&](Environment& e, Problem& problem) -> Status {
    if (request.out == nullptr) return TVK_ERROR_NULL_POINTER;
    update_solution(problem);
    const int limit = static_cast<int>((problem.*count)());
    Status status = model::check_range(e, request.routine, request.begin, request.end, limit);
    if (!status.ok()) return status;
    const double* x = request.x;
    if (x == nullptr) {
      const Solution* solution = find_solution(problem, Wanted::values, status);
      if (solution == nullptr) return status;
      x = solution->x.data();
    }
    for (int k = request.begin; k <= request.end; ++k)
      request.out[k - request.begin] = entry(*problem.model, k, x);
    return 0;
  });
}

}  // namespace

int TVKgetax(ConstEnvHandle env, ConstProbHandle lp, double* ax, int begin, int end) {
  return evaluate(env, lp, {"TVKgetax", nullptr, ax, begin, end}, &Problem::rows, row_activity);
}

int TVKgetrowinfeas(ConstEnvHandle env, ConstProbHandle lp, const double* x, double* infeas, int begin,
                    int end) {
  return evaluate(env, lp, {"TVKgetrowinfeas", x, infeas, begin, end}, &Problem::rows,
                  [](const model::Model& model, int i, const double* point) {
                    return violation(row_activity(model, i, point), row_limits(model, i));
                  });
}

int TVKgetcolinfeas(ConstEnvHandle env, ConstProbHandle lp, const double* x, double* infeas, int begin,
                    int end) {
  return evaluate(env, lp, {"TVKgetcolinfeas", x, infeas, begin, end}, &Problem::columns,
                  [](const model::Model& model, int j, const double* point) {
                    return column_violation(model, j, point[j]);
                  });
}
