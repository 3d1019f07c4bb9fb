/* Solution and MIP-start files. */
#include <algorithm>

#include "api/file_name.h"
#include "env/entry.h"
#include "env/solution_access.h"
#include "fileio/xml/problem_solution.h"
#include "lp/basis_query/quality_report.h"
#include "lp/run/start_basis.h"
#include "mip/run/mip_run.h"

using namespace tovik;
using namespace tovik::fileio;

namespace {

Status write_solution(Environment& env, Problem& problem, const char* name, bool all_digits) {
  if (api::is_no_file_name(name)) return TVK_ERROR_NO_FILE_NAME;
  update_solution(problem);
  SolutionReport report;
  if (const Status status = describe_solution(env, problem, report); !status.ok()) return status;
  report.all_digits = all_digits;
  if (const mip::run::SearchResult* search = mip::run::search_result(problem); search != nullptr)
    report.nodes = search->nodes;
  report.quality = lp::run::quality_report(env, problem, {report.type != 3, report.type == 1});
  return write_solution_file(env, problem, report, name);
}

Status take_solution(Environment& env, Problem& problem, const char* name) {
  Start start;
  if (const Status s = fileio::read_solution(env, problem, name, start); !s.ok()) return s;
  return start.has_basis() || start.has_values() ? lp::run::set_start(env, problem, std::move(start))
                                                 : Status();
}

/* ---- What a file says, without storing it */

struct SolutionOutputs {
  int *count, *unknown, *status;
  double *objective, *x, *pi, *slack, *dj;
  int *column_status, *row_status;
};

template <class Value>
void hand_over(const std::vector<Value>& values, std::size_t count, Value absent, Value* to) {
  if (to == nullptr) return;
  std::fill_n(to, count, absent);
  std::ranges::copy(values, to);
}

Status query_solution(Environment& env, const Problem& problem, const char* name, int which,
                      const SolutionOutputs& to) {
  if (which < 0) return TVK_ERROR_INDEX_RANGE;
  std::vector<SolutionFile> solutions;
  int found = 0;
  const Status status =
      read_solution_file(env, problem, {name, ".sol"}, {true, false, which}, solutions, found);
  if (!status.ok()) return status;
  if (which >= found) return TVK_ERROR_INDEX_RANGE;
  SolutionFile& solution = solutions[0];
  fill_zeros(problem, solution);
  if (to.count != nullptr) *to.count = found;
  if (to.unknown != nullptr) *to.unknown = solution.unknown;
  if (to.status != nullptr) *to.status = solution.status;
  if (to.objective != nullptr) *to.objective = solution.objective;
  hand_over(solution.x, problem.columns(), kNoValue, to.x);
  hand_over(solution.dj, problem.columns(), kNoValue, to.dj);
  hand_over(solution.column_status, problem.columns(), -1, to.column_status);
  hand_over(solution.pi, problem.rows(), kNoValue, to.pi);
  hand_over(solution.slack, problem.rows(), kNoValue, to.slack);
  hand_over(solution.row_status, problem.rows(), -1, to.row_status);
  return {};
}

}  // namespace

int TVKsolwrite(ConstEnvHandle env, ConstProbHandle lp, const char* filename) {
  return with_problem(env, lp,
                      [&](Environment& e, Problem& p) { return write_solution(e, p, filename, false); });
}

int TVKsolwriteexact(ConstEnvHandle env, ConstProbHandle lp, const char* filename) {
  return with_problem(env, lp,
                      [&](Environment& e, Problem& p) { return write_solution(e, p, filename, true); });
}

int TVKwritemipstarts(ConstEnvHandle env, ConstProbHandle lp, const char* filename, int begin, int end) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) -> Status {
    if (api::is_no_file_name(filename)) return TVK_ERROR_NO_FILE_NAME;
    return write_start_file(e, p, filename, begin, end);
  });
}

int TVKreadcopysol(ConstEnvHandle env, ProbHandle lp, const char* filename) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) { return take_solution(e, p, filename); });
}

int TVKreadcopymipstart(ConstEnvHandle env, ProbHandle lp, const char* filename) {
  return with_problem(env, lp,
                      [&](Environment& e, Problem& p) { return read_starts(e, p, filename, false); });
}

int TVKreadcopymipstarts(ConstEnvHandle env, ProbHandle lp, const char* filename) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) { return read_starts(e, p, filename, true); });
}

int TVKreadsolution(ConstEnvHandle env, ConstProbHandle lp, const char* filename, int which, int* count_p,
                    int* unknown_p, int* lpstat_p, double* objval_p, double* x, double* pi, double* slack,
                    double* dj, int* cstat, int* rstat) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) {
    return query_solution(e, p, filename, which,
                          {count_p, unknown_p, lpstat_p, objval_p, x, pi, slack, dj, cstat, rstat});
  });
}
