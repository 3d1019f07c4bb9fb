/* Solution and MIP-start files. */
#include <algorithm>

#include "env/entry.h"
#include "env/solution_access.h"
#include "env/status_table.h"
#include "fileio/record/channel_log.h"
#include "fileio/stream/write_file.h"
#include "fileio/xml/solution_file.h"
#include "lp/basis_query/quality.h"
#include "lp/run/start_basis.h"
#include "model/routines/check.h"
#include "model/routines/family_changes.h"

using namespace tovik;
using namespace tovik::fileio;

namespace {

WriteLevel write_level(const Environment& env) {
  return static_cast<WriteLevel>(std::max(1, env.settings.integer(TVK_PARAM_WRITELEVEL)));
}

/* ---- Writing */

struct QualityName {
  const char* name;
  int what;
};
constexpr QualityName kPrimalQuality[] = {{"maxPrimalInfeas", TVK_QUALITY_MAX_PRIMAL_INFEAS},
                                          {"maxPrimalResidual", TVK_QUALITY_MAX_PRIMAL_RESIDUAL},
                                          {"maxX", TVK_QUALITY_MAX_X},
                                          {"maxSlack", TVK_QUALITY_MAX_SLACK}};
constexpr QualityName kQuality[] = {{"maxPrimalInfeas", TVK_QUALITY_MAX_PRIMAL_INFEAS},
                                    {"maxDualInfeas", TVK_QUALITY_MAX_DUAL_INFEAS},
                                    {"maxPrimalResidual", TVK_QUALITY_MAX_PRIMAL_RESIDUAL},
                                    {"maxDualResidual", TVK_QUALITY_MAX_DUAL_RESIDUAL},
                                    {"maxX", TVK_QUALITY_MAX_X},
                                    {"maxPi", TVK_QUALITY_MAX_PI},
                                    {"maxSlack", TVK_QUALITY_MAX_SLACK},
                                    {"maxRedCost", TVK_QUALITY_MAX_RED_COST},
                                    {"kappa", TVK_QUALITY_KAPPA}};

/* The measures that the solution allows, behind the tolerances in force. */
void add_quality(Environment& env, Problem& problem, bool duals, SolutionReport& report) {
  report.quality.emplace_back("epRHS", env.settings.real(TVK_PARAM_EPRHS));
  if (duals) report.quality.emplace_back("epOpt", env.settings.real(TVK_PARAM_EPOPT));
  const std::span<const QualityName> measures =
      duals ? std::span<const QualityName>(kQuality) : kPrimalQuality;
  for (const auto& [name, what] : measures) {
    lp::run::Measure measure;
    if (what == TVK_QUALITY_KAPPA && report.type != 1) continue;
    if (lp::run::measure_quality(env, problem, what, &measure).ok())
      report.quality.emplace_back(name, measure.value);
  }
}

Status write_solution_file(Environment& env, Problem& problem, const char* name) {
  if (name == nullptr || name[0] == '\0') return TVK_ERROR_NO_FILE_NAME;
  update_solution(problem);
  Status why;
  SolutionReport report;
  report.solution = find_solution(problem, Wanted::values, why);
  if (report.solution == nullptr) return why;
  report.mixed_integer = problem.mixed_integer();
  const bool duals = !report.mixed_integer && has_duals(problem);
  const Start& start = problem.start;
  const bool basis = duals && report.solution->has_basis && start.has_basis();
  report.type = basis ? 1 : duals ? 2 : 3;
  report.status = problem.status;
  report.status_text = status_text(problem.status);
  if (basis) {
    report.column_status = start.column_status;
    report.row_status = start.row_status;
  }
  report.level = write_level(env);
  add_quality(env, problem, duals, report);
  return write_file(env, name, [&](TextWriter& out) {
    return write_solution({*problem.model, problem.name}, report, out);
  });
}

Status write_start_file(Environment& env, Problem& problem, const char* name, int begin, int end) {
  if (name == nullptr || name[0] == '\0') return TVK_ERROR_NO_FILE_NAME;
  const int count = problem.model->families().starts.size();
  if (count == 0) return TVK_ERROR_NO_MIP_START;
  if (const Status status = model::check_range(env, "TVKwritemipstarts", begin, end, count); !status.ok())
    return status;
  return write_file(env, name, [&](TextWriter& out) {
    return write_starts({*problem.model, problem.name}, begin, end, write_level(env), out);
  });
}

/* ---- Reading */

Status open_source(Environment& env, const char* name, const char* extension,
                   std::unique_ptr<ByteSource>& source) {
  return open_for_reading(env, {name, extension}, source);
}

/* The solutions of an XML document, or the one MIP start of a text. */
Status read_solution_file(Environment& env, const Problem& problem, const char* name, const char* extension,
                          const SolutionReading& reading, std::vector<SolutionFile>& solutions, int& found) {
  std::unique_ptr<ByteSource> source;
  if (const Status status = open_source(env, name, extension, source); !status.ok()) return status;
  const bool xml = looks_like_xml(*source);
  if (const Status status = open_source(env, name, extension, source); !status.ok()) return status;
  if (!xml && problem.columns() > 0 && problem.model->column_names().empty()) return TVK_ERROR_NO_NAMES;
  ChannelLog log(env);
  ReadFailure failure;
  found = 1;
  if (xml) {
    failure = read_solutions(*source, *problem.model, reading, log, solutions, found);
  } else {
    failure = read_start_text(*source, *problem.model, log, solutions.emplace_back());
  }
  if (!source->finish()) return fail(env, TVK_ERROR_OPEN_FOR_READING, name);
  return failure ? report_failure(env, failure) : Status();
}

/* Starts of the solutions that have a value; the others bring none. */
Status add_starts(Environment& env, Problem& problem, const std::vector<SolutionFile>& solutions) {
  std::vector<int> begin, columns, efforts;
  std::vector<double> values;
  std::vector<const char*> names;
  for (const SolutionFile& solution : solutions) {
    if (std::ranges::all_of(solution.x, [](double value) { return value == kNoValue; })) continue;
    begin.push_back(static_cast<int>(columns.size()));
    efforts.push_back(solution.effort);
    names.push_back(solution.name.empty() ? nullptr : solution.name.c_str());
    for (std::size_t j = 0; j < solution.x.size(); ++j) {
      if (solution.x[j] == kNoValue) continue;
      columns.push_back(static_cast<int>(j));
      values.push_back(solution.x[j]);
    }
  }
  if (begin.empty()) {
    message(env.warning_channel, "Warning: no MIP start values read, no MIP start loaded.\n");
    return {};
  }
  const bool named = std::ranges::any_of(names, [](const char* name) { return name != nullptr; });
  return model::add_starts(env, problem,
                           {static_cast<int>(begin.size()), static_cast<int>(columns.size()), begin.data(),
                            columns.data(), values.data(), efforts.data(), named ? names.data() : nullptr});
}

bool is_complete(const std::vector<int>& statuses, std::size_t count) {
  return statuses.size() == count && std::ranges::none_of(statuses, [](int s) { return s < 0; });
}

/* Null unless there is a value for each. */
const double* complete(const std::vector<double>& values) {
  const bool whole = !values.empty() && std::ranges::find(values, kNoValue) == values.end();
  return whole ? values.data() : nullptr;
}

/* The basis and the values of a solution, as far as they are complete. */
Status copy_start(Environment& env, Problem& problem, const SolutionFile& solution) {
  lp::run::StartArrays arrays;
  if (is_complete(solution.column_status, problem.columns()) && !solution.column_status.empty() &&
      is_complete(solution.row_status, problem.rows()) && !solution.row_status.empty()) {
    arrays.column_status = solution.column_status.data();
    arrays.row_status = solution.row_status.data();
  }
  arrays.column_primal = complete(solution.x);
  arrays.row_primal = complete(solution.slack);
  arrays.column_dual = complete(solution.dj);
  arrays.row_dual = complete(solution.pi);
  const bool anything = arrays.column_status != nullptr || arrays.column_primal != nullptr ||
                        arrays.row_primal != nullptr || arrays.column_dual != nullptr ||
                        arrays.row_dual != nullptr;
  if (anything) return lp::run::copy_start(env, problem, arrays);
  message(env.warning_channel, "Warning: no complete solution read, no start loaded.\n");
  return {};
}

Status read_solution(Environment& env, Problem& problem, const char* name) {
  std::vector<SolutionFile> solutions;
  int found = 0;
  const Status status = read_solution_file(env, problem, name, ".sol", {true, false, 0}, solutions, found);
  if (!status.ok()) return status;
  if (found > 1)
    message(env.warning_channel, "Warning: more than one solution read, only first one processed.\n");
  if (problem.mixed_integer()) return add_starts(env, problem, solutions);
  return copy_start(env, problem, solutions.empty() ? SolutionFile() : solutions[0]);
}

Status read_starts(Environment& env, Problem& problem, const char* name, bool several) {
  std::vector<SolutionFile> solutions;
  int found = 0;
  if (!problem.mixed_integer()) return TVK_ERROR_NOT_MIP;
  const Status status = read_solution_file(env, problem, name, ".mst", {false, several, 0}, solutions, found);
  if (!status.ok()) return status;
  if (found > 1 && !several) {
    message(env.warning_channel,
            "Warning: more than one TOVIKSolution element in file, only first one processed.\n");
  }
  return add_starts(env, problem, solutions);
}

/* ---- What a file says, without taking it over */

struct SolutionOutputs {
  int *count, *unknown, *status;
  double *objective, *x, *pi, *slack, *dj;
  int *column_status, *row_status;
};

/* Columns that the write level left out because they are 0. */
void fill_zeros(const Problem& problem, SolutionFile& solution) {
  if (solution.level != WriteLevel::nonzero && solution.level != WriteLevel::discrete_nonzero) return;
  const auto types = problem.model->column_types();
  for (std::size_t j = 0; j < solution.x.size(); ++j) {
    const bool discrete = !types.empty() && types[j] != 'C';
    if (solution.x[j] == kNoValue && (discrete || solution.level == WriteLevel::nonzero)) solution.x[j] = 0;
  }
}

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
      read_solution_file(env, problem, name, ".sol", {true, false, which}, solutions, found);
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
                      [&](Environment& e, Problem& p) { return write_solution_file(e, p, filename); });
}

int TVKwritemipstarts(ConstEnvHandle env, ConstProbHandle lp, const char* filename, int begin, int end) {
  return with_problem(
      env, lp, [&](Environment& e, Problem& p) { return write_start_file(e, p, filename, begin, end); });
}

int TVKreadcopysol(ConstEnvHandle env, ProbHandle lp, const char* filename) {
  return with_problem(env, lp, [&](Environment& e, Problem& p) { return read_solution(e, p, filename); });
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
