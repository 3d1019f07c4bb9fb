/* Solution query: status, objective, vectors, method, counters. */
#include <algorithm>
#include <climits>

#include "api/count.h"
#include "env/entry.h"
#include "env/solution_access.h"
#include "lp/run/statistics.h"
#include "mip/run/mip_run.h"
#include "model/routines/check.h"
#include "model/routines/query.h"

using namespace tovik;

namespace {

void copy_all(const std::vector<double>& from, double* to) {
  if (to != nullptr) std::copy(from.begin(), from.end(), to);
}

template <class Value>
void store(Value* to, Value value) {
  if (to != nullptr) *to = value;
}

enum class Dimension { rows, columns };

struct Query {
  const char* routine;
  Dimension dimension;
  SolutionPart part;
  const std::vector<double> Solution::*vector;
};

/* Entries begin..end of one vector of the solution. */
int get_vector(ConstEnvHandle env, ConstProbHandle lp, const Query& query, double* out, int begin, int end) {
  return with_problem(env, lp, [&](Environment& e, Problem& problem) -> Status {
    if (out == nullptr) return TVK_ERROR_NULL_POINTER;
    update_solution(problem);
    const std::size_t count = query.dimension == Dimension::rows ? problem.rows() : problem.columns();
    Status status = model::check_range(e, query.routine, begin, end, static_cast<int>(count));
    if (!status.ok()) return status;
    const Solution* solution = find_solution(problem, query.part, status);
    if (solution == nullptr) return status;
    const std::vector<double>& values = solution->*query.vector;
    if (begin <= end) std::copy(values.begin() + begin, values.begin() + end + 1, out);
    return 0;
  });
}

/* A counter of the last optimization; it survives changes of the model. */
int get_counter(ConstEnvHandle env, ConstProbHandle lp, int Solution::*counter) {
  int value = 0;
  with_problem(env, lp, [&](Environment&, Problem& problem) -> Status {
    update_solution(problem);
    if (problem.solution) value = (*problem.solution).*counter;
    return 0;
  });
  return value;
}

/* 1 basic, 2 primal and dual values, 3 primal values only */
int solution_type(const Problem& problem) {
  if (problem.mixed_integer() || !has_duals(problem)) return 3;
  return problem.solution->has_basis ? 1 : 2;
}

}  // namespace

namespace {

/* Of the last optimization; null before the first one. A search counts also where it has found nothing. */
const lp::run::OptimizationStatistics* last_statistics(Problem& problem) {
  update_solution(problem);
  const bool has_run = problem.solution != nullptr || mip::run::search_result(problem) != nullptr;
  return has_run ? lp::run::kept_statistics(problem) : nullptr;
}

}  // namespace

int TVKgetstatistics(ConstEnvHandle env, ConstProbHandle lp, char* buffer, int space, int* surplus_p) {
  if (surplus_p != nullptr) *surplus_p = 0;
  return with_problem(env, lp, [&](Environment&, Problem& problem) -> Status {
    const lp::run::OptimizationStatistics* statistics = last_statistics(problem);
    if (statistics == nullptr) return TVK_ERROR_NO_SOLUTION;
    return model::get_text(lp::run::json_text(*statistics).c_str(), buffer, space, surplus_p);
  });
}

int TVKgetticks(ConstEnvHandle env, ConstProbHandle lp, double* ticks_p) {
  return with_problem(env, lp, [&](Environment&, Problem& problem) -> Status {
    if (ticks_p == nullptr) return TVK_ERROR_NULL_POINTER;
    const lp::run::OptimizationStatistics* statistics = last_statistics(problem);
    if (statistics == nullptr) return TVK_ERROR_NO_SOLUTION;
    *ticks_p = static_cast<double>(lp::run::total_ticks(*statistics));
    return {};
  });
}

int TVKgetstat(ConstEnvHandle env, ConstProbHandle lp) {
  int stat = 0;
  with_problem(env, lp, [&](Environment&, Problem& problem) -> Status {
    update_solution(problem);
    stat = problem.status;
    return 0;
  });
  return stat;
}

int TVKsolution(ConstEnvHandle env, ConstProbHandle lp, int* lpstat_p, double* objval_p, double* x,
                double* pi, double* slack, double* dj) {
  return with_problem(env, lp, [&](Environment&, Problem& problem) -> Status {
    update_solution(problem);
    Status why;
    const Solution* solution = nullptr;
    if (pi != nullptr || dj != nullptr) {
      solution = find_solution(problem, SolutionPart::duals, why);
    } else if (x != nullptr || slack != nullptr) {
      solution = find_solution(problem, SolutionPart::values, why);
    } else {
      solution = find_solution(problem, SolutionPart::any, why);
    }
    if (solution == nullptr) return why;
    store(lpstat_p, problem.status);
    store(objval_p, solution->objective);
    copy_all(solution->x, x);
    copy_all(solution->pi, pi);
    copy_all(solution->slack, slack);
    copy_all(solution->dj, dj);
    return 0;
  });
}

int TVKsolninfo(ConstEnvHandle env, ConstProbHandle lp, int* solnmethod_p, int* solntype_p, int* pfeasind_p,
                int* dfeasind_p) {
  return with_problem(env, lp, [&](Environment&, Problem& problem) -> Status {
    update_solution(problem);
    Status why;
    const Solution* solution = find_solution(problem, SolutionPart::any, why);
    store(solnmethod_p, solution != nullptr ? solution->method : -1);
    store(solntype_p, solution != nullptr ? solution_type(problem) : 0);
    store(pfeasind_p, solution != nullptr && solution->primal_feasible ? 1 : 0);
    store(dfeasind_p, solution != nullptr && solution->dual_feasible ? 1 : 0);
    return 0;
  });
}

int TVKgetobjval(ConstEnvHandle env, ConstProbHandle lp, double* objval_p) {
  return with_problem(env, lp, [&](Environment&, Problem& problem) -> Status {
    if (objval_p == nullptr) return TVK_ERROR_NULL_POINTER;
    update_solution(problem);
    Status why;
    const Solution* solution = find_solution(problem, SolutionPart::any, why);
    if (solution == nullptr) return why;
    *objval_p = solution->objective;
    return 0;
  });
}

int TVKgetx(ConstEnvHandle env, ConstProbHandle lp, double* x, int begin, int end) {
  return get_vector(env, lp, {"TVKgetx", Dimension::columns, SolutionPart::values, &Solution::x}, x, begin,
                    end);
}

int TVKgetpi(ConstEnvHandle env, ConstProbHandle lp, double* pi, int begin, int end) {
  return get_vector(env, lp, {"TVKgetpi", Dimension::rows, SolutionPart::duals, &Solution::pi}, pi, begin,
                    end);
}

int TVKgetslack(ConstEnvHandle env, ConstProbHandle lp, double* slack, int begin, int end) {
  return get_vector(env, lp, {"TVKgetslack", Dimension::rows, SolutionPart::values, &Solution::slack}, slack,
                    begin, end);
}

int TVKgetdj(ConstEnvHandle env, ConstProbHandle lp, double* dj, int begin, int end) {
  return get_vector(env, lp, {"TVKgetdj", Dimension::columns, SolutionPart::duals, &Solution::dj}, dj, begin,
                    end);
}

int TVKgetmethod(ConstEnvHandle env, ConstProbHandle lp) {
  int method = 0;
  with_problem(env, lp, [&](Environment&, Problem& problem) -> Status {
    update_solution(problem);
    Status why;
    const Solution* solution = find_solution(problem, SolutionPart::any, why);
    if (solution != nullptr) method = solution->method;
    return why;
  });
  return method;
}

int TVKgetitcnt(ConstEnvHandle env, ConstProbHandle lp) {
  return api::count_of(env, lp, [](Problem& problem) {
    update_solution(problem);
    if (problem.solution != nullptr) return problem.solution->iterations;
    const mip::run::SearchResult* search = mip::run::search_result(problem);
    return search == nullptr ? 0 : static_cast<int>(std::min<std::int64_t>(search->iterations, INT_MAX));
  });
}

int TVKgetphase1cnt(ConstEnvHandle env, ConstProbHandle lp) {
  return get_counter(env, lp, &Solution::phase1_iterations);
}

int TVKgetbaritcnt(ConstEnvHandle env, ConstProbHandle lp) {
  return get_counter(env, lp, &Solution::barrier_iterations);
}

int TVKgetcrossppushcnt(ConstEnvHandle env, ConstProbHandle lp) {
  return get_counter(env, lp, &Solution::crossover_primal_pushes);
}

int TVKgetcrosspexchcnt(ConstEnvHandle env, ConstProbHandle lp) {
  return get_counter(env, lp, &Solution::crossover_primal_exchanges);
}

int TVKgetcrossdpushcnt(ConstEnvHandle env, ConstProbHandle lp) {
  return get_counter(env, lp, &Solution::crossover_dual_pushes);
}

int TVKgetcrossdexchcnt(ConstEnvHandle env, ConstProbHandle lp) {
  return get_counter(env, lp, &Solution::crossover_dual_exchanges);
}
