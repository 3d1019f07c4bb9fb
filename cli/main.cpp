/* The program `tovik`: verbs, the run over several models, and the exit status. */
#include <unistd.h>

#include <cstdio>
#include <exception>
#include <mutex>

#include "cli/check/lint.h"
#include "cli/console.h"
#include "cli/display.h"
#include "cli/input.h"
#include "cli/library.h"
#include "cli/options.h"
#include "cli/parameters.h"
#include "cli/signals.h"
#include "cli/solve/files.h"
#include "cli/solve/report.h"
#include "cli/solve/solve.h"
#include "cli/verify/run.h"
#include "cli/version.h"

namespace tovik::cli {

namespace {

/* The models of one run. on_interrupt(), which may run on another thread, reports the file in work. */
class Run {
 public:
  Run(const Environment& environment, Console& console, const Options& options)
      : environment_(environment),
        console_(console),
        options_(options),
        signals_([this] { return on_interrupt(); }) {
    environment.check(TVKsetterminate(environment.handle(), signals_.terminate_flag()));
  }
  ~Run() { TVKsetterminate(environment_.handle(), nullptr); }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

  ExitStatus all() {
    ExitStatus worst = ExitStatus::solved;
    for (const std::string& file : options_.models) {
      const ExitStatus status = one(file);
      if (static_cast<int>(status) > static_cast<int>(worst)) worst = status;
      if (signals_.interrupted()) break;
    }
    return worst;
  }

 private:
  ExitStatus one(const std::string& file) {
    set_current(file);
    const Outcome outcome = solve_file({environment_, console_, signals_, options_}, file);
    if (outcome.complete) show(outcome);
    set_current("");
    if (options_.json) std::fputs(json_line(outcome, json_parts()).c_str(), stdout);
    return options_.exit_zero ? with_exit_zero(outcome.exit_status) : outcome.exit_status;
  }

  void show(const Outcome& outcome) {
    if (options_.quiet && options_.models.size() > 1) console_.print("\nModel       " + outcome.file);
    console_.print(closing_block(outcome));
    console_.print(value_table(outcome));
    if (!outcome.statistics.empty() && !options_.json) console_.print(statistics_block(outcome));
  }
  JsonParts json_parts() const { return {options_.print_values, options_.statistics}; }

  void set_current(const std::string& file) {
    const std::lock_guard guard(mutex_);
    current_ = file;
  }

  int on_interrupt() {
    const std::lock_guard guard(mutex_);
    Input::remove_temporary_file();
    if (!current_.empty()) {
      Outcome outcome;
      outcome.file = current_;
      outcome.error = "interrupted";
      outcome.peak_memory_mb = peak_memory_mb();
      if (options_.json) std::fputs(json_line(outcome, json_parts()).c_str(), stdout);
      std::fprintf(stderr, "%s: interrupted, no solution\n", current_.c_str());
    }
    std::fflush(stdout);
    return static_cast<int>(ExitStatus::interrupted);
  }

  const Environment& environment_;
  Console& console_;
  const Options& options_;
  std::mutex mutex_;
  std::string current_;
  Signals signals_;
};

Verbosity verbosity_of(const Options& options) {
  if (!options.quiet) return Verbosity::full;
  return options.json ? Verbosity::none : Verbosity::results;
}

ExitStatus solve_all(const Environment& environment, const Parameters& parameters, const Options& options) {
  if (const std::string obstacle = unwritable_target(options); !obstacle.empty()) {
    std::fprintf(stderr, "tovik: cannot write %s\n", obstacle.c_str());
    return ExitStatus::usage;
  }
  const bool output_taken = options.json || writes_to_output(options);
  Console console(environment, output_taken ? stderr : stdout, verbosity_of(options), !options.verbose);
  if (!options.log_file.empty() && !console.open_log(options.log_file)) {
    std::fprintf(stderr, "tovik: cannot write %s\n", options.log_file.c_str());
    return ExitStatus::usage;
  }
  const std::string changed = parameters.changed();
  console.log("TOVIK " + environment.version() + (changed.empty() ? "" : "  " + changed) + "\n");
  return Run(environment, console, options).all();
}

ExitStatus list_parameters(const Parameters& parameters, const Options& options) {
  const std::string table = parameters.table(options.pattern, options.all);
  if (table.empty()) {
    const bool hidden = !parameters.table(options.pattern, true).empty();
    std::fprintf(stderr,
                 hidden ? "tovik: parameters that match %s have no effect in this version; --all shows them\n"
                        : "tovik: no parameter matches %s\n",
                 options.pattern.c_str());
    return ExitStatus::usage;
  }
  std::fputs(table.c_str(), stdout);
  return ExitStatus::solved;
}

/* The console that shows what is wrong with the file ends before the solve makes its own. */
bool read_parameters(const Environment& environment, const std::string& file) {
  Console console(environment, stderr, Verbosity::results);
  console.set_label(file);
  return TVKreadcopyparam(environment.handle(), file.c_str()) == 0;
}

/* Opening the library may say which parameter file it reads, on standard output, which with --json is not its. */
class OutputToErrors {
 public:
  explicit OutputToErrors(bool wanted) {
    if (!wanted) return;
    std::fflush(stdout);
    kept_ = dup(STDOUT_FILENO);
    if (kept_ >= 0) dup2(STDERR_FILENO, STDOUT_FILENO);
  }
  ~OutputToErrors() {
    if (kept_ < 0) return;
    std::fflush(stdout);
    dup2(kept_, STDOUT_FILENO);
    close(kept_);
  }
  OutputToErrors(const OutputToErrors&) = delete;
  OutputToErrors& operator=(const OutputToErrors&) = delete;

 private:
  int kept_ = -1;
};

Environment open_environment(bool json) {
  const OutputToErrors redirected(json);
  return Environment();
}

ExitStatus run(int argc, const char* const* argv) {
  const auto parsed = parse_options(argc, argv);
  if (const auto* done = std::get_if<ExitStatus>(&parsed)) return *done;
  const Options& options = std::get<Options>(parsed);
  const Environment environment = open_environment(options.json);
  if (options.verb == Verb::version) {
    std::printf("TOVIK %s\ncommit %s\nlicence Apache-2.0\n", environment.version().c_str(), kCommit);
    return ExitStatus::solved;
  }
  const Parameters parameters(environment);
  if (!options.params_file.empty() && !read_parameters(environment, options.params_file))
    return ExitStatus::bad_input;
  for (const Assignment& assignment : options.assignments) parameters.apply(assignment);
  if (options.verb == Verb::convert) return convert(environment, options);
  if (options.verb == Verb::display) return display_model(environment, options);
  if (options.verb == Verb::verify) return verify_file(environment, options);
  if (options.verb == Verb::check) return check_models(environment, options);
  return options.verb == Verb::params ? list_parameters(parameters, options)
                                      : solve_all(environment, parameters, options);
}

ExitStatus guarded(int argc, const char* const* argv) {
  try {
    return run(argc, argv);
  } catch (const ParameterError& error) {
    std::fprintf(stderr, "tovik: %s\n", error.what());
    return ExitStatus::usage;
  } catch (const std::bad_alloc&) {
    std::fputs("tovik: out of memory\n", stderr);
    return ExitStatus::out_of_memory;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "tovik: %s\n", error.what());
    return ExitStatus::numerical_failure;
  }
}

}  // namespace

}  // namespace tovik::cli

int main(int argc, char** argv) {
  const auto status = tovik::cli::guarded(argc, argv);
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    std::fputs("tovik: cannot write to standard output\n", stderr);
    return static_cast<int>(tovik::cli::ExitStatus::usage);
  }
  return static_cast<int>(status);
}
