#include "mip/run/pool_file.h"

#include "env/status_table.h"
#include "include/tovik.h"
#include "lp/basis_query/quality_report.h"
#include "mip/run/mip_run.h"
#include "mip/run/pool.h"

namespace tovik::mip::run {
namespace {

constexpr int kPrimalValuesOnly = 3;

/* Of a solution that stays while the report is used. */
fileio::SolutionReport report_of(const Environment& env, const tovik::Problem& problem, int soln,
                                 const tovik::Solution& solution) {
  fileio::SolutionReport report{};
  report.solution = &solution;
  report.name = soln < 0 ? "incumbent" : (*problem.pool)[soln].name();
  report.index = soln;
  report.mixed_integer = true;
  report.type = kPrimalValuesOnly;
  report.status = problem.status;
  // While the first search runs, callbacks see members and no status yet.
  const char* const text = status_text(problem.status);
  report.status_text = text != nullptr ? text : "unknown";
  if (const SearchResult* search = search_result(problem); search != nullptr) report.nodes = search->nodes;
  report.quality = lp::run::quality_of_point(env, problem, solution);
  report.level = fileio::write_level(env);
  return report;
}

}  // namespace

Status write_pool_solution(Environment& env, const tovik::Problem& problem, int soln, const char* name) {
  tovik::Solution solution;
  if (const Status status = pool_solution(problem, soln, &solution); !status.ok()) return status;
  return write_solution_file(env, problem, report_of(env, problem, soln, solution), name);
}

Status write_pool(Environment& env, const tovik::Problem& problem, fileio::SeveralAs form, const char* name) {
  const SolutionPool* pool = nullptr;
  if (const Status status = find_pool(problem, &pool); !status.ok()) return status;
  if (pool->size() == 0) return Status(TVK_ERROR_NO_SOLUTION);
  tovik::Solution solution;
  const auto report = [&](int k) {
    static_cast<void>(pool_solution(problem, k, &solution));  // k is a member
    return report_of(env, problem, k, solution);
  };
  return write_several_solutions(env, problem, name, form, pool->size(), report);
}

}  // namespace tovik::mip::run
