#include "cli/solve/solve.h"

#include <cmath>
#include <new>
#include <optional>
#include <system_error>

#include "cli/input.h"
#include "cli/solve/evidence.h"
#include "cli/solve/files.h"
#include "cli/solve/network.h"
#include "cli/solve/progress.h"
#include "cli/solve/report.h"
#include "cli/solve/stopwatch.h"
#include "cli/solve/violations.h"

namespace tovik::cli {

namespace {

const char* method_name(int method) {
  switch (method) {
    case 1:
      return "primal";
    case 2:
      return "dual";
    case 3:
      return "network";
    case 4:
      return "barrier";
    case 5:
      return "sifting";
    case 6:
      return "concurrent";
    case 11:
    case 12:
      return "mip";
    default:
      return "";
  }
}

void read_model(const SolveContext& context, Model& model, const std::string& file, Outcome& outcome) {
  const Stopwatch watch;
  context.console.set_label(file == "-" ? "standard input" : file);
  {
    const Signals::ExitOnFirstSignal guard(context.signals);
    read_model_file(model, file);
  }
  const Model::ReadWarnings said = model.read_warnings();
  outcome.warnings = said.warnings;
  refuse_dropped_text(said, context.options.lenient);
  context.console.set_label("");
  if (context.options.relax) model.relax();
  outcome.read_seconds = watch.seconds();
  outcome.rows = model.rows();
  outcome.columns = model.columns();
  outcome.nonzeros = TVKgetnumnz(context.environment.handle(), model.handle());
  outcome.problem_type = model.type();
}

/* A search whose node files failed has its incumbent all the same. */
bool keeps_incumbent(const Environment& environment, const Model& model, int code) {
  return (code == TVK_ERROR_TEMPORARY_FILE_OPEN || code == TVK_ERROR_TEMPORARY_FILE_READ ||
          code == TVK_ERROR_TEMPORARY_FILE_WRITE) &&
         TVKgetstat(environment.handle(), model.handle()) == TVK_STATUS_MIP_ERROR;
}

void optimize(const SolveContext& context, Model& model, Outcome& outcome) {
  const ProgressLines progress(context.environment, context.console);
  const Stopwatch watch;
  const auto solve = context.options.populate ? TVKpopulate : model.mixed_integer() ? TVKmipopt : TVKlpopt;
  const int code = solve(context.environment.handle(), model.handle());
  outcome.solve_seconds = watch.seconds();
  outcome.presolve_seconds = context.console.presolve_seconds();
  if (keeps_incumbent(context.environment, model, code)) {
    outcome.error = context.console.first_error();
  } else {
    context.environment.check(code);
  }
}

/* What there is to say without a feasible point: why there is none, or how far the last one was. */
void collect_evidence(const SolveContext& context, const Model& model, bool dual_feasible, Outcome& outcome) {
  ConstEnvHandle env = context.environment.handle();
  if (outcome.exit_status == ExitStatus::infeasible)
    outcome.proof = proof_of_infeasibility(model, context.console);
  const bool stopped = outcome.exit_status == ExitStatus::limit_without_solution ||
                       outcome.exit_status == ExitStatus::interrupted;
  if (!stopped || !outcome.has_values || model.mixed_integer()) return;
  outcome.so_far = true;
  outcome.violations = check_solution(model, {});
  double bound = 0;
  if (dual_feasible && TVKgetobjval(env, model.handle(), &bound) == 0) outcome.best_bound = bound;
}

void collect_search(const SolveContext& context, const Model& model, Outcome& outcome) {
  ConstEnvHandle env = context.environment.handle();
  outcome.nodes = TVKgetnodecnt(env, model.handle());
  if (context.options.populate || !context.options.pool_file.empty())
    outcome.pool_solutions = TVKgetsolnpoolnumsolns(env, model.handle());
  double bound = 0, gap = 0;
  if (TVKgetbestobjval(env, model.handle(), &bound) == 0 && std::fabs(bound) < 1e75)
    outcome.best_bound = bound;
  if (outcome.best_bound && TVKgetmiprelgap(env, model.handle(), &gap) == 0) outcome.gap = gap;
}

/* What the library holds after the optimization. */
void collect(const SolveContext& context, const Model& model, Outcome& outcome) {
  ConstEnvHandle env = context.environment.handle();
  outcome.status = TVKgetstat(env, model.handle());
  outcome.status_text = context.environment.status_text(*outcome.status);
  int method = -1, type = 0, primal_feasible = 0, dual_feasible = 0;
  context.environment.check(
      TVKsolninfo(env, model.handle(), &method, &type, &primal_feasible, &dual_feasible));
  outcome.method = method_name(method);
  outcome.simplex_iterations = TVKgetitcnt(env, model.handle());
  outcome.barrier_iterations = TVKgetbaritcnt(env, model.handle());
  outcome.has_values = type != 0;
  outcome.feasible = type != 0 && (primal_feasible != 0 || is_optimal(*outcome.status));
  outcome.exit_status = exit_status_of(*outcome.status, outcome.feasible);
  outcome.threads = model.threads();
  double ticks = 0;
  if (TVKgetticks(env, model.handle(), &ticks) == 0) outcome.ticks = ticks;
  if (outcome.exit_status == ExitStatus::unbounded) outcome.ray = ray_of(model, context.console);
  if (model.mixed_integer()) collect_search(context, model, outcome);
  if (!outcome.feasible) return collect_evidence(context, model, dual_feasible != 0, outcome);

  double objective = 0;
  context.environment.check(TVKgetobjval(env, model.handle(), &objective));
  outcome.objective = objective;
  const bool optimal = is_optimal(*outcome.status);
  const bool mixed_integer = model.mixed_integer();
  if (optimal && !mixed_integer) {
    outcome.best_bound = objective;
    outcome.gap = 0.0;
  }
  const bool has_duals = !mixed_integer && (type == 1 || type == 2);
  outcome.violations = check_solution(model, {objective, optimal && has_duals, mixed_integer});
  if (outcome.violations->failed) outcome.exit_status = ExitStatus::numerical_failure;
}

/* Values for the reports, which are made when the model is gone. */
std::vector<Value> values(const std::vector<std::string>& names, const std::vector<double>& value,
                          const std::vector<double>& dual) {
  std::vector<Value> all;
  for (std::size_t k = 0; k < names.size(); ++k)
    all.push_back({names[k], value[k], dual.empty() ? std::nullopt : std::optional(dual[k])});
  return all;
}

void collect_values(const SolveContext& context, const Model& model, Outcome& outcome) {
  if (!outcome.feasible || !wants_values(context.options, model.columns())) return;
  const bool duals = outcome.violations && outcome.violations->has_duals;
  const int columns = model.columns(), rows = model.rows();
  const std::vector<double> none;
  outcome.column_values = values(model.column_names(), model.all<double>(TVKgetx, columns),
                                 duals ? model.all<double>(TVKgetdj, columns) : none);
  if (!context.options.print_values) return;
  outcome.row_values = values(model.row_names(), model.all<double>(TVKgetax, rows),
                              duals ? model.all<double>(TVKgetpi, rows) : none);
}

ExitStatus exit_status_of(Stage stage, int code) {
  if (stage == Stage::reading) return exit_status_of_read_error(code);
  return stage == Stage::solving ? exit_status_of_solve_error(code) : exit_status_of_write_error(code);
}

/* A file that cannot be written does not hide the answer. */
void write_what_was_found(const SolveContext& context, const Model& model, Outcome& outcome) {
  try {
    write_results(context, model, outcome);
  } catch (const LibraryError& error) {
    outcome.error = context.console.first_error().empty() ? error.what() : context.console.first_error();
    outcome.exit_status = exit_status_of_write_error(error.code);
  }
  context.console.set_label("");
}

void solve_model(const SolveContext& context, const std::string& file, Outcome& outcome, Stage& stage) {
  Model model(context.environment, file);
  read_model(context, model, file, outcome);
  context.console.log(size_line(outcome));
  stage = Stage::writing;
  write_model(context, model, outcome);
  stage = Stage::reading;
  read_starts(context, model);
  stage = Stage::solving;
  optimize(context, model, outcome);
  collect(context, model, outcome);
  collect_values(context, model, outcome);
  if (context.options.statistics) outcome.statistics = model.statistics();
  write_what_was_found(context, model, outcome);
  outcome.peak_memory_mb = peak_memory_mb();
}

}  // namespace

bool wants_values(const Options& options, int columns) {
  constexpr int kFewColumns = 20;  // up to here values are printed unasked
  return options.print_values || (columns <= kFewColumns && !options.quiet);
}

Outcome solve_file(const SolveContext& context, const std::string& file) {
  Outcome outcome;
  outcome.file = file;
  context.console.begin_model("");
  Stage stage = Stage::reading;
  try {
    const auto solve = is_solved_as_network(context, file) ? solve_network : solve_model;
    solve(context, file, outcome, stage);
    outcome.complete = true;
  } catch (const LibraryError& error) {
    outcome.error = context.console.first_error().empty() ? error.what() : context.console.first_error();
    outcome.exit_status = exit_status_of(stage, error.code);
    if (stage == Stage::solving && error.code == TVK_ERROR_NOT_MIP)
      context.console.print_error("tovik: --populate is for mixed-integer models");
    if (stage == Stage::solving && error.code == TVK_ERROR_NOT_FOR_MIP)
      context.console.print_error("tovik: --relax solves the continuous relaxation");
  } catch (const DroppedText& error) {
    outcome.error = error.what();
    outcome.exit_status = ExitStatus::bad_input;
    context.console.print_error(outcome.error);
  } catch (const std::system_error& error) {
    outcome.error = error.what();
    outcome.exit_status = ExitStatus::bad_input;
    context.console.print_error(outcome.error);
  } catch (const std::bad_alloc&) {
    outcome.error = "out of memory";
    outcome.exit_status = ExitStatus::out_of_memory;
    context.console.print_error("tovik: out of memory");
  }
  context.console.set_label("");
  outcome.peak_memory_mb = peak_memory_mb();
  return outcome;
}

}  // namespace tovik::cli
