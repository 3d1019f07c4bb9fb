#include "cli/solve/solve.h"

#include <chrono>
#include <new>
#include <optional>
#include <system_error>

#include "cli/input.h"
#include "cli/solve/files.h"
#include "cli/solve/report.h"
#include "cli/solve/violations.h"

namespace tovik::cli {

namespace {

class Stopwatch {
 public:
  double seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
  }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

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

void read_model(const Workplace& place, Model& model, const std::string& file, Outcome& outcome) {
  const Stopwatch watch;
  place.console.set_label(file == "-" ? "standard input" : file);
  {
    const Signals::Unfinished unfinished(place.signals);
    read_model_file(model, file);
  }
  place.console.set_label("");
  if (place.options.relax) model.relax();
  outcome.read_seconds = watch.seconds();
  outcome.rows = model.rows();
  outcome.columns = model.columns();
  outcome.nonzeros = TVKgetnumnz(place.environment.handle(), model.handle());
  outcome.problem_type = model.type();
}

void optimize(const Workplace& place, Model& model, Outcome& outcome) {
  const int threads = place.environment.integer_parameter(TVK_PARAM_THREADS);
  outcome.threads = threads > 0 ? threads : TVKEgetmaxthreads(place.environment.handle());
  const Stopwatch watch;
  const int code = TVKlpopt(place.environment.handle(), model.handle());
  outcome.solve_seconds = watch.seconds();
  outcome.presolve_seconds = place.console.presolve_seconds();
  place.environment.check(code);
}

/* What the library holds after the optimization. */
void collect(const Workplace& place, const Model& model, Outcome& outcome) {
  ConstEnvHandle env = place.environment.handle();
  outcome.status = TVKgetstat(env, model.handle());
  outcome.status_text = place.environment.status_text(*outcome.status);
  int method = -1, type = 0, primal_feasible = 0, dual_feasible = 0;
  place.environment.check(TVKsolninfo(env, model.handle(), &method, &type, &primal_feasible, &dual_feasible));
  outcome.method = method_name(method);
  outcome.simplex_iterations = TVKgetitcnt(env, model.handle());
  outcome.barrier_iterations = TVKgetbaritcnt(env, model.handle());
  outcome.has_values = type != 0;
  outcome.feasible = type != 0 && (primal_feasible != 0 || is_optimal(*outcome.status));
  outcome.exit_status = exit_status_of(*outcome.status, outcome.feasible);
  if (!outcome.feasible) return;

  double objective = 0;
  place.environment.check(TVKgetobjval(env, model.handle(), &objective));
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

enum class Stage { reading, solving, writing };

ExitStatus exit_status_of(Stage stage, int code) {
  if (stage == Stage::reading) return exit_status_of_read_error(code);
  return stage == Stage::solving ? exit_status_of_solve_error(code) : exit_status_of_write_error(code);
}

/* A file that cannot be written does not hide the answer. */
void write_what_was_found(const Workplace& place, const Model& model, Outcome& outcome) {
  try {
    write_results(place, model, outcome);
  } catch (const LibraryError& error) {
    outcome.error = place.console.first_error().empty() ? error.what() : place.console.first_error();
    outcome.exit_status = exit_status_of_write_error(error.code);
  }
  place.console.set_label("");
}

}  // namespace

Outcome solve_file(const Workplace& place, const std::string& file,
                   const std::function<void(const Model&, const Outcome&)>& show) {
  Outcome outcome;
  outcome.file = file;
  place.console.begin_model("");
  std::optional<Model> model;
  Stage stage = Stage::reading;
  try {
    model.emplace(place.environment, file);
    read_model(place, *model, file, outcome);
    place.console.note(size_line(outcome));
    stage = Stage::writing;
    write_model(place, *model, outcome);
    stage = Stage::reading;
    read_starts(place, *model);
    stage = Stage::solving;
    optimize(place, *model, outcome);
    collect(place, *model, outcome);
    write_what_was_found(place, *model, outcome);
    outcome.peak_memory_mb = peak_memory_mb();
    show(*model, outcome);
  } catch (const LibraryError& error) {
    outcome.error = place.console.first_error().empty() ? error.what() : place.console.first_error();
    outcome.exit_status = exit_status_of(stage, error.code);
    if (stage == Stage::solving && error.code == TVK_ERROR_NOT_FOR_MIP)
      place.console.complain("tovik: --relax solves the continuous relaxation");
  } catch (const std::system_error& error) {
    outcome.error = error.what();
    outcome.exit_status = ExitStatus::bad_input;
    place.console.complain(outcome.error);
  } catch (const std::bad_alloc&) {
    outcome.error = "out of memory";
    outcome.exit_status = ExitStatus::out_of_memory;
    place.console.complain("tovik: out of memory");
  }
  place.console.set_label("");
  outcome.peak_memory_mb = peak_memory_mb();
  return outcome;
}

}  // namespace tovik::cli
