#include "options.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <map>

#include "tovik.h"

namespace tovik::cli {

namespace {

/* Parameters without a public name, by number. */
const char kTickLimit[] = "1127";
const char kRandomSeed[] = "1124";

/* Shows the usage line as it should be typed; the library's own would put options before models. */
class HelpFormat : public CLI::Formatter {
 public:
  explicit HelpFormat(std::string usage) : usage_(std::move(usage)) { column_width(34); }
  std::string make_usage(const CLI::App*, std::string) const override { return "Usage: " + usage_ + "\n"; }
  std::string make_positionals(const CLI::App*) const override { return ""; }

 private:
  std::string usage_;
};

/* An option that is a short way of setting parameters. */
struct Shorthand {
  const char* option;
  const char* origin;
  const char* meaning;
  std::vector<std::string> parameters;
};

const std::vector<Shorthand>& shorthands() {
  static const std::vector<Shorthand> table = {
      {"-t,--time-limit", "--time-limit", "Seconds (wall clock) that solving may take", {"TILIM"}},
      {"--ticks", "--ticks", "Limit on deterministic work, in ticks", {kTickLimit}},
      {"--threads", "--threads", "Most threads to use, 0: as many as there are processors", {"THREADS"}},
      {"--gap", "--gap", "Relative gap at which a mixed-integer search may end", {"EPGAP"}},
      {"--seed", "--seed", "Seed of the random numbers", {kRandomSeed}},
  };
  return table;
}

const std::map<std::string, std::string>& methods() {
  static const std::map<std::string, std::string> table = {
      {"auto", "0"},    {"primal", "1"},  {"dual", "2"},      {"network", "3"},
      {"barrier", "4"}, {"sifting", "5"}, {"concurrent", "6"}};
  return table;
}

/* Adds an option whose every occurrence appends its assignments at its place in the command line. */
void add_assigning(CLI::App& app, const std::string& option, const std::string& type,
                   const std::string& meaning, std::function<void(const std::string&)> append) {
  app.add_option_function<std::string>(option, std::move(append), meaning)
      ->type_name(type)
      ->trigger_on_parse()
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

void add_parameter_options(CLI::App& app, Options& options) {
  add_assigning(app, "--set", "NAME=VALUE",
                "Set any parameter (see: tovik params), any case, TVK_PARAM_ optional; repeatable",
                [&options](const std::string& text) {
                  const auto equals = text.find('=');
                  if (equals == std::string::npos || equals == 0)
                    throw CLI::ValidationError("--set", "needs NAME=VALUE, not '" + text + "'");
                  options.assignments.push_back({"--set", text.substr(0, equals), text.substr(equals + 1)});
                });
  for (const Shorthand& shorthand : shorthands()) {
    add_assigning(app, shorthand.option, "N", shorthand.meaning,
                  [&options, &shorthand](const std::string& value) {
                    for (const std::string& name : shorthand.parameters)
                      options.assignments.push_back({shorthand.origin, name, value});
                  });
  }
  add_assigning(app, "--method", "NAME", "auto, primal, dual, network, barrier, sifting or concurrent",
                [&options](const std::string& name) {
                  const auto method = methods().find(CLI::detail::to_lower(name));
                  if (method == methods().end())
                    throw CLI::ValidationError("--method", "no method is called '" + name + "'");
                  options.assignments.push_back({"--method", "LPMETHOD", method->second});
                  options.assignments.push_back({"--method", "QPMETHOD", method->second});
                });
}

const char kSolveFooter[] =
    "Each model is read (LP or MPS format, .gz and .bz2 too; - reads standard input), optimized, and "
    "checked.\n"
    "\n"
    "Other verbs: tovik params [PATTERN]   list the parameters: value, default, range, meaning\n"
    "\n"
    "Exit status: 0 solved, 1 infeasible, 2 usage, 3 limit with a solution, 4 limit without one, 5 "
    "unbounded,\n"
    "6 infeasible or unbounded, 7 input missing or malformed, 8 out of memory, 9 numerical failure or failed "
    "check,\n"
    "130 interrupted without a solution. Of several models the largest counts.";

void describe_solve(CLI::App& app, Options& options) {
  app.formatter(std::make_shared<HelpFormat>("tovik [solve] MODEL [MODEL ...] [options]"));
  app.footer(kSolveFooter);
  app.add_option("models", options.models)->required()->type_name("MODEL");
  add_parameter_options(app, options);
  app.add_flag("--relax", options.relax, "Ignore integrality: solve the continuous relaxation");
  app.add_flag("-q,--quiet", options.quiet, "No log; with --json nothing but the object and errors");
  app.add_flag_callback(
      "-v,--verbose",
      [&options] {
        for (const char* name : {"SIMDISPLAY", "BARDISPLAY", "SIFTDISPLAY"})
          options.assignments.push_back({"-v", name, "2"});
      },
      "More detailed log: a line for each iteration");
  app.add_flag("-p,--print", options.print_values, "Print the values (done anyway for at most 20 columns)");
  app.add_option("--log", options.log_file, "Write the log to this file as well")->type_name("FILE");
  app.add_flag("--json", options.json,
               "One JSON object a model on standard output; the log goes to standard error");
  app.add_flag("--exit-zero", options.exit_zero,
               "Exit with 0 for every answer about a model: statuses 1 and 3 to 6");
  app.set_version_flag("--version", [&options] {
    options.verb = Verb::version;
    return std::string();
  });
}

void describe_params(CLI::App& app, Options& options) {
  app.formatter(std::make_shared<HelpFormat>("tovik params [PATTERN] [options]"));
  app.footer(
      "Lists the parameters whose name or meaning holds PATTERN, in any case; * and ? stand for any text and "
      "any letter\n"
      "of a name. Values are those that a solve with the same options would use; changed ones are marked "
      "with *.");
  app.add_option("pattern", options.pattern)->type_name("PATTERN");
  add_parameter_options(app, options);
}

}  // namespace

std::variant<Options, ExitStatus> parse_options(int argc, const char* const* argv) {
  Options options;
  std::vector<std::string> words(argv + (argc > 0 ? 1 : 0), argv + argc);
  if (!words.empty() && (words.front() == "solve" || words.front() == "params")) {
    if (words.front() == "params") options.verb = Verb::params;
    words.erase(words.begin());
  }
  CLI::App app;
  if (options.verb == Verb::params) {
    describe_params(app, options);
  } else {
    describe_solve(app, options);
    if (words.empty()) words.emplace_back("--help");
  }
  try {
    std::vector<std::string> reversed(words.rbegin(),
                                      words.rend());  // the order that the parser takes a vector in
    app.parse(std::move(reversed));
  } catch (const CLI::CallForVersion&) {
    options.verb = Verb::version;
  } catch (const CLI::CallForHelp&) {
    std::fputs(app.help().c_str(), stdout);
    return argc > 1 ? ExitStatus::solved : ExitStatus::usage;
  } catch (const CLI::ParseError& error) {
    std::fprintf(stderr, "tovik: %s\nRun tovik --help for the options.\n", error.what());
    return ExitStatus::usage;
  }
  return options;
}

}  // namespace tovik::cli
