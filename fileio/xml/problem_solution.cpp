#include "fileio/xml/problem_solution.h"

#include <algorithm>
#include <memory>

#include "env/environment.h"
#include "env/solution_access.h"
#include "env/status_table.h"
#include "fileio/record/channel_log.h"
#include "fileio/stream/foreign.h"
#include "fileio/stream/write_file.h"
#include "include/tovik.h"
#include "model/routines/check.h"
#include "model/routines/family_changes.h"

namespace tovik::fileio {
namespace {

bool is_complete(const std::vector<int>& statuses, std::size_t count) {
  return statuses.size() == count && std::ranges::none_of(statuses, [](int s) { return s < 0; });
}

/* Empty unless there is a value for each. */
std::vector<double> complete(const std::vector<double>& values) {
  const bool whole = std::ranges::find(values, kNoValue) == values.end();
  return whole ? values : std::vector<double>();
}

/* MIP starts of the solutions that have a value; a warning when none has. */
Status add_starts(Environment& env, Problem& problem, const std::vector<SolutionFile>& solutions) {
  std::vector<int> begin, columns, efforts;
  std::vector<double> values;
  std::vector<const char*> names;
  for (const SolutionFile& solution : solutions) {
    const std::size_t before = columns.size();
    columns.insert(columns.end(), solution.values.index.begin(), solution.values.index.end());
    values.insert(values.end(), solution.values.value.begin(), solution.values.value.end());
    for (std::size_t j = 0; j < solution.x.size(); ++j) {
      if (solution.x[j] == kNoValue) continue;
      columns.push_back(static_cast<int>(j));
      values.push_back(solution.x[j]);
    }
    if (columns.size() == before) continue;
    begin.push_back(static_cast<int>(before));
    efforts.push_back(solution.effort);
    names.push_back(solution.name.empty() ? nullptr : solution.name.c_str());
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

/* The basis and the values of a solution, as far as they are complete. */
Start start_of(const Problem& problem, const SolutionFile& solution) {
  Start start;
  if (is_complete(solution.column_status, problem.columns()) && !solution.column_status.empty() &&
      is_complete(solution.row_status, problem.rows()) && !solution.row_status.empty()) {
    start.column_status = solution.column_status;
    start.row_status = solution.row_status;
  }
  start.primal = complete(solution.x);
  start.row_primal = complete(solution.slack);
  start.dual = complete(solution.dj);
  start.row_dual = complete(solution.pi);
  return start;
}

}  // namespace

WriteLevel write_level(const Environment& env) {
  return static_cast<WriteLevel>(std::max(1, env.settings.integer(TVK_PARAM_WRITELEVEL)));
}

Status describe_solution(const Environment& env, const Problem& problem, SolutionReport& report) {
  Status why;
  report.solution = find_solution(problem, SolutionPart::values, why);
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
  return {};
}

Status write_solution_file(Environment& env, const Problem& problem, const SolutionReport& report,
                           const char* name) {
  return write_file(env, name, [&](TextWriter& out) {
    return write_solution({*problem.model, problem.name}, report, out);
  });
}

Status write_several_solutions(Environment& env, const Problem& problem, const char* name, SeveralAs form,
                               int count, const std::function<SolutionReport(int)>& report) {
  return write_file(env, name, [&](TextWriter& out) {
    const auto write = form == SeveralAs::solutions ? write_solutions : write_solutions_as_starts;
    return write({*problem.model, problem.name}, write_level(env), count, report, out);
  });
}

Status write_start_file(Environment& env, const Problem& problem, const char* name, int begin, int end) {
  const int count = problem.model->families().starts.size();
  if (count == 0) return TVK_ERROR_NO_MIP_START;
  if (const Status status = model::check_range(env, "TVKwritemipstarts", begin, end, count); !status.ok())
    return status;
  return write_file(env, name, [&](TextWriter& out) {
    return write_starts({*problem.model, problem.name}, begin, end, write_level(env), out);
  });
}

Status read_solution_file(Environment& env, const Problem& problem, const SolutionSource& file,
                          const SolutionReading& reading, std::vector<SolutionFile>& solutions, int& found) {
  std::unique_ptr<ByteSource> opened;
  if (const Status status = open_for_reading(env, {file.name, file.extension}, opened); !status.ok())
    return status;
  PeekSource source(std::move(opened));
  const bool xml = looks_like_xml(source);
  if (!xml && problem.columns() > 0 && problem.model->column_names().empty()) return TVK_ERROR_NO_NAMES;
  ChannelLog log(env);
  ReadFailure failure;
  found = 1;
  if (xml) {
    failure = read_solutions(source, *problem.model, reading, log, solutions, found);
  } else {
    failure = read_start_text(source, *problem.model, log, solutions.emplace_back());
  }
  if (const Status s = close_source(env, source, bool(failure), file.name); !s.ok()) return s;
  if (failure || found == 0) tell_what_it_seems(env, file.name, Wanted::solution);
  return failure ? report_failure(env, failure) : Status();
}

Status read_solution(Environment& env, Problem& problem, const char* name, Start& start) {
  std::vector<SolutionFile> solutions;
  int found = 0;
  const Status status = read_solution_file(env, problem, {name, ".sol"}, {true, false, 0}, solutions, found);
  if (!status.ok()) return status;
  if (found > 1)
    message(env.warning_channel, "Warning: more than one solution read, only first one processed.\n");
  if (problem.mixed_integer()) return add_starts(env, problem, solutions);
  if (!solutions.empty()) start = start_of(problem, solutions[0]);
  if (!start.has_basis() && !start.has_values())
    message(env.warning_channel, "Warning: no complete solution read, no start loaded.\n");
  return {};
}

Status read_starts(Environment& env, Problem& problem, const char* name, bool several) {
  std::vector<SolutionFile> solutions;
  int found = 0;
  if (!problem.mixed_integer()) return TVK_ERROR_NOT_MIP;
  const Status status =
      read_solution_file(env, problem, {name, ".mst"}, {false, several, 0}, solutions, found);
  if (!status.ok()) return status;
  if (found > 1 && !several) {
    message(env.warning_channel,
            "Warning: more than one TOVIKSolution element in file, only first one processed.\n");
  }
  return add_starts(env, problem, solutions);
}

void fill_zeros(const Problem& problem, SolutionFile& solution) {
  if (solution.level != WriteLevel::nonzero && solution.level != WriteLevel::discrete_nonzero) return;
  const auto types = problem.model->column_types();
  for (std::size_t j = 0; j < solution.x.size(); ++j) {
    const bool discrete = !types.empty() && types[j] != 'C';
    if (solution.x[j] == kNoValue && (discrete || solution.level == WriteLevel::nonzero)) solution.x[j] = 0;
  }
}

}  // namespace tovik::fileio
