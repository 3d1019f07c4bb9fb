#include "cli/solve/files.h"

#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <system_error>

#include "cli/input.h"
#include "cli/solve/lp_names.h"

namespace tovik::cli {

namespace {

const char kOutput[] = "/dev/stdout";

/* "-" is standard output. */
std::string target(const std::string& file) {
  return file == "-" ? kOutput : file;
}

/* Runs one routine of the library for a file, whose name goes before what it has to say. */
void with_label(const SolveContext& context, const std::string& file, const std::function<int()>& routine) {
  context.console.set_label(file);
  context.environment.check(routine());
  context.console.set_label("");
}

/* The reason why a file cannot be written, 0 without one. */
int write_obstacle(const std::string& file) {
  namespace fs = std::filesystem;
  std::error_code error;
  if (fs::is_directory(file, error)) return EISDIR;
  if (access(file.c_str(), F_OK) == 0) return access(file.c_str(), W_OK) == 0 ? 0 : errno;
  const fs::path folder = fs::path(file).parent_path();
  return access(folder.empty() ? "." : folder.c_str(), W_OK | X_OK) == 0 ? 0 : errno;
}

}  // namespace

bool writes_to_output(const Options& options) {
  for (const std::string* file :
       {&options.solution_file, &options.pool_file, &options.new_basis_file, &options.model_file}) {
    if (target(*file) == kOutput) return true;
  }
  return false;
}

std::string unwritable_target(const Options& options) {
  for (const std::string* file :
       {&options.solution_file, &options.pool_file, &options.new_basis_file, &options.model_file}) {
    if (file->empty()) continue;
    if (const int why = write_obstacle(target(*file)); why != 0)
      return *file + ": " + std::generic_category().message(why);
  }
  return "";
}

void read_starts(const SolveContext& context, const Model& model) {
  const Options& options = context.options;
  EnvHandle env = context.environment.handle();
  if (!options.basis_file.empty()) {
    with_label(context, options.basis_file,
               [&] { return TVKreadcopybase(env, model.handle(), options.basis_file.c_str()); });
  }
  if (!options.start_file.empty()) {
    with_label(context, options.start_file,
               [&] { return TVKreadcopymipstart(env, model.handle(), options.start_file.c_str()); });
  }
  if (!options.filter_file.empty()) {
    with_label(context, options.filter_file,
               [&] { return TVKreadcopysolnpoolfilters(env, model.handle(), options.filter_file.c_str()); });
  }
}

void write_model(const SolveContext& context, const Model& model, Outcome& outcome) {
  const std::string& file = context.options.model_file;
  if (file.empty()) return;
  with_label(context, file, [&] {
    return TVKwriteprob(context.environment.handle(), model.handle(), target(file).c_str(),
                        target(file) == kOutput ? "LP" : nullptr);
  });
  outcome.written.push_back(file);
}

void write_results(const SolveContext& context, const Model& model, Outcome& outcome) {
  const Options& options = context.options;
  EnvHandle env = context.environment.handle();
  if (!options.solution_file.empty() && outcome.has_values) {
    const auto write = options.exact ? TVKsolwriteexact : TVKsolwrite;
    with_label(context, options.solution_file,
               [&] { return write(env, model.handle(), target(options.solution_file).c_str()); });
    outcome.written.push_back(options.solution_file);
  } else if (!options.solution_file.empty()) {
    context.console.print_error("tovik: no solution to write to " + options.solution_file);
  }
  if (!options.pool_file.empty() && outcome.pool_solutions.value_or(0) > 0) {
    with_label(context, options.pool_file, [&] {
      return TVKsolwritesolnpoolall(env, model.handle(), target(options.pool_file).c_str());
    });
    outcome.written.push_back(options.pool_file);
  } else if (!options.pool_file.empty()) {
    context.console.print_error("tovik: no solutions to write to " + options.pool_file);
  }
  if (options.new_basis_file.empty()) return;
  with_label(context, options.new_basis_file,
             [&] { return TVKmbasewrite(env, model.handle(), target(options.new_basis_file).c_str()); });
  outcome.written.push_back(options.new_basis_file);
}

ExitStatus convert(const Environment& environment, const Options& options) {
  Console console(environment, stderr, Verbosity::results);
  const std::string &from = options.models[0], &to = options.models[1];
  bool reading = true;
  try {
    const Model model(environment, from);
    console.set_label(from == "-" ? "standard input" : from);
    read_model_file(model, from);
    refuse_dropped_text(model.read_warnings(), options.lenient);
    if (from == "-") environment.check(TVKchgprobname(environment.handle(), model.handle(), "stdin"));
    reading = false;
    const bool to_output = target(to) == kOutput;  // whose name tells no format: LP
    console.set_label(to_output ? "standard output" : to);
    environment.check(
        TVKwriteprob(environment.handle(), model.handle(), target(to).c_str(), to_output ? "LP" : nullptr));
    const std::string changed = to_output || is_lp_file(to) ? names_not_in_lp(model) : "";
    if (!changed.empty()) console.print_error("names that an LP file cannot hold were changed: " + changed);
    return ExitStatus::solved;
  } catch (const LibraryError& error) {
    return reading ? exit_status_of_read_error(error.code) : exit_status_of_write_error(error.code);
  } catch (const DroppedText& error) {
    console.print_error(error.what());
    return ExitStatus::bad_input;
  } catch (const std::system_error& error) {
    console.print_error(error.what());
    return ExitStatus::bad_input;
  }
}

}  // namespace tovik::cli
