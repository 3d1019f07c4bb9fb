/* Row activities, and by how much a point violates rows and bounds. */
#include "lp/basis_query/infeasibility.h"
#include "env/entry.h"
#include "env/solution_access.h"
#include "model/routines/check.h"
#include "model/store/model.h"

using namespace tovik;

namespace {

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
      const Solution* solution = find_solution(problem, SolutionPart::values, status);
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
  return evaluate(env, lp, {"TVKgetax", nullptr, ax, begin, end}, &Problem::rows,
                  tovik::lp::run::row_activity);
}

int TVKgetrowinfeas(ConstEnvHandle env, ConstProbHandle lp, const double* x, double* infeas, int begin,
                    int end) {
  return evaluate(env, lp, {"TVKgetrowinfeas", x, infeas, begin, end}, &Problem::rows,
                  tovik::lp::run::row_violation);
}

int TVKgetcolinfeas(ConstEnvHandle env, ConstProbHandle lp, const double* x, double* infeas, int begin,
                    int end) {
  return evaluate(env, lp, {"TVKgetcolinfeas", x, infeas, begin, end}, &Problem::columns,
                  [](const model::Model& model, int j, const double* point) {
                    return tovik::lp::run::column_violation(model, j, point[j]);
                  });
}
