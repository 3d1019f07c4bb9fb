#include "cli/options.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <map>

#include "cli/text.h"
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
      {"--threads",
       "--threads",
       "Most threads to use; 0, or more than there are: all processors (concurrent method, mixed-integer "
       "search)",
       {"THREADS"}},
      {"--nodes", "--nodes", "Nodes that a mixed-integer search may process", {"NODELIM"}},
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

/* The ways of setting any parameter. */
void add_setting_options(CLI::App& app, Options& options) {
  app.add_option("--params", options.params_file, "Parameter file; what the command line sets wins over it")
      ->type_name("FILE");
  add_assigning(app, "--set", "NAME=VALUE",
                "Set any parameter (see: tovik params), any case, TVK_PARAM_ optional; repeatable",
                [&options](const std::string& text) {
                  const auto equals = text.find('=');
                  if (equals == std::string::npos || equals == 0)
                    throw CLI::ValidationError("--set", "needs NAME=VALUE, not '" + text + "'");
                  options.assignments.push_back({"--set", text.substr(0, equals), text.substr(equals + 1)});
                });
}

/* ... and the short ones for solving. */
void add_parameter_options(CLI::App& app, Options& options) {
  add_setting_options(app, options);
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

void add_lenient(CLI::App& app, Options& options) {
  app.add_flag("--lenient", options.lenient,
               "Take a file of which text was ignored; otherwise it is refused, exit status 7");
}

const char kSolveFooter[] =
    "Each model is read (LP, MPS, SAV or network format, compressed too; - reads standard input), optimized, "
    "and\n"
    "checked. This version solves linear and mixed-integer linear models; --relax ignores integrality.\n"
    "Network files (.net, .min, .dimacs) are solved by the network simplex: flows of arcs, potentials of "
    "nodes.\n"
    "\n"
    "Examples:    tovik plan.mps.gz -t 60 --solution plan.sol\n"
    "             tovik *.lp --json -q\n"
    "             tovik plan.lp --set EPRHS=1e-9 --method dual\n"
    "\n"
    "Other verbs: tovik help VERB          the options of one of these\n"
    "             tovik params [PATTERN]   list the parameters: value, default, range, meaning\n"
    "             tovik convert IN OUT     write a model in the format that the name OUT tells\n"
    "             tovik display MODEL      sizes; with a PATTERN what fits it\n"
    "             tovik check MODEL ...    what looks wrong in a model, by name\n"
    "             tovik verify MODEL SOLUTION   does a solution file hold for a model?\n"
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
  add_lenient(app, options);
  app.add_flag("-q,--quiet", options.quiet, "No log; with --json nothing but the object and errors");
  app.add_flag_callback(
      "-v,--verbose",
      [&options] {
        options.verbose = true;
        for (const char* name : {"SIMDISPLAY", "BARDISPLAY", "SIFTDISPLAY"})
          options.assignments.push_back({"-v", name, "2"});
      },
      "More detailed log: a line for each iteration");
  app.add_flag("-p,--print", options.print_values, "Print the values (done anyway for at most 20 columns)");
  const auto add_file = [&app](const char* option, std::string& file, const char* meaning) {
    app.add_option(option, file, meaning)->type_name("FILE");
  };
  add_file("--basis", options.basis_file, "Start from the basis in this file");
  add_file("--start", options.start_file,
           "Start the mixed-integer search from this MIP start or solution, complete or in part");
  add_file("--solution", options.solution_file,
           "Write the solution to this file (XML); - is standard output, and the log goes to standard error");
  app.add_flag("--exact", options.exact,
               "The solution file with up to 17 digits, which read back as the same numbers");
  add_assigning(
      app, "--populate", "N",
      "Look for N more solutions of a mixed-integer model (parameters SOLNPOOLGAP, SOLNPOOLINTENSITY ...)",
      [&options](const std::string& value) {
        options.populate = true;
        options.assignments.push_back({"--populate", "POPULATELIM", value});
      });
  add_file("--filters", options.filter_file,
           "Of many solutions take only those that pass the filters in this file");
  add_file("--pool-solutions", options.pool_file, "Write all solutions that were met to this file");
  add_file("--write-basis", options.new_basis_file, "Write the last basis to this file");
  add_file("--write-model", options.model_file, "Write the model as it is solved (.lp, .mps, .sav, .gz ...)");
  app.add_option("--log", options.log_file, "Write the log to this file as well")->type_name("FILE");
  app.add_flag("--json", options.json,
               "One JSON object a model on standard output; the log goes to standard error");
  app.add_flag("--statistics", options.statistics,
               "Print what the optimization has counted as a JSON object; with --json its member statistics");
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
  app.add_flag("--all", options.all, "Parameters too that have no effect in this version");
  add_parameter_options(app, options);
}

void describe_convert(CLI::App& app, Options& options) {
  app.formatter(std::make_shared<HelpFormat>("tovik convert IN OUT [options]"));
  app.footer(
      "Reads the model IN (- reads standard input; .lp, .mps, .sav, .net) and writes it to OUT, whose name "
      "tells the format:\n"
      ".lp, .mps or .sav; .rlp and .rmp are LP and MPS with the names x1, c1 ...; each may end in .gz or "
      ".bz2.\n"
      "- writes an LP file to standard output.");
  app.add_option("models", options.models)->required()->expected(2)->type_name("IN OUT");
  add_lenient(app, options);
  add_setting_options(app, options);
}

void describe_display(CLI::App& app, Options& options) {
  app.formatter(std::make_shared<HelpFormat>("tovik display MODEL [PATTERN] [options]"));
  app.footer(
      "Tells how large the model is and how large its numbers are, or, with a pattern such as 'cap_*' or "
      "'x?', shows the\nrows, constraints, sets and bounds whose names fit. Exit status: 0, or 7 for a file "
      "that is missing or malformed.");
  app.add_option("models", options.models)->required()->expected(1, 2)->type_name("MODEL [PATTERN]");
  add_setting_options(app, options);
}

void describe_verify(CLI::App& app, Options& options) {
  app.formatter(std::make_shared<HelpFormat>("tovik verify MODEL SOLUTION [options]"));
  app.footer(
      "Recomputes what the solution file (.sol, .mst, may end in .gz or .bz2) claims from the two files "
      "alone: objective,\n"
      "violations of every kind with the worst item by name, and what the duals prove. Tolerances are those "
      "of the\n"
      "parameters EPRHS, EPINT and EPOPT.\n"
      "Exit status: 0 the solution holds, 9 a check failed, 7 a file is missing or malformed, or the two do "
      "not belong\n"
      "together.");
  app.add_option("models", options.models)->required()->expected(2)->type_name("MODEL SOLUTION");
  app.add_option("--pick", options.pick, "Which solution of the file to look at (1)")
      ->type_name("N")
      ->check(CLI::PositiveNumber);
  app.add_option("--tolerance", options.tolerance, "Largest violation of rows, bounds and integrality")
      ->type_name("T")
      ->check(CLI::NonNegativeNumber);
  app.add_flag("--zeros", options.zeros, "Columns that the file gives no value are 0");
  app.add_flag("--relax", options.relax, "Ignore integrality");
  app.add_flag("--json", options.json, "One JSON object on standard output");
  add_setting_options(app, options);
}

void describe_check(CLI::App& app, Options& options) {
  app.formatter(std::make_shared<HelpFormat>("tovik check MODEL [MODEL ...] [options]"));
  app.footer(
      "Reads each model and tells what looks wrong, by name: errors (no solution can exist, or the model "
      "says what it\n"
      "cannot mean), warnings (numbers that make trouble), notes (harmless).\n"
      "Exit status: 0 no errors, 9 errors (with --strict also warnings), 7 input missing or malformed.");
  app.add_option("models", options.models)->required()->type_name("MODEL");
  app.add_option("--most", options.most, "Findings of each kind to show, the worst first (5)")
      ->type_name("N")
      ->check(CLI::PositiveNumber);
  app.add_flag("--strict", options.strict, "Exit with 9 for warnings too");
  app.add_flag("-q,--quiet", options.quiet, "No notes");
  app.add_flag("--json", options.json, "One JSON object a model on standard output");
  add_setting_options(app, options);
}

void describe(CLI::App& app, Options& options) {
  switch (options.verb) {
    case Verb::verify:
      return describe_verify(app, options);
    case Verb::check:
      return describe_check(app, options);
    case Verb::params:
      return describe_params(app, options);
    case Verb::convert:
      return describe_convert(app, options);
    case Verb::display:
      return describe_display(app, options);
    default:
      return describe_solve(app, options);
  }
}

constexpr std::pair<const char*, Verb> kVerbs[] = {{"solve", Verb::solve},     {"params", Verb::params},
                                                   {"convert", Verb::convert}, {"verify", Verb::verify},
                                                   {"check", Verb::check},     {"display", Verb::display}};

Verb verb_of(const std::string& word) {
  for (const auto& [name, verb] : kVerbs) {
    if (word == name) return verb;
  }
  return Verb::solve;
}

/* " check", what stands behind `tovik help` for a verb. */
std::string verb_suffix(Verb verb) {
  for (const auto& [name, which] : kVerbs) {
    if (which == verb && verb != Verb::solve) return std::string(" ") + name;
  }
  return "";
}

constexpr std::size_t kNear = 2;  // edits that a slip of the fingers makes

std::string nearest_verb(const std::string& word) {
  std::string nearest;
  std::size_t least = kNear + 1;
  for (const auto& [name, verb] : kVerbs) {
    const std::size_t distance = edit_distance(word, name);
    if (distance < least) nearest = name, least = distance;
  }
  return nearest;
}

/* `help VERB` becomes `VERB --help`. False, said on standard error, for a verb that does not exist. */
bool take_help(std::vector<std::string>& words, Options& options) {
  const std::string word = words.size() > 1 ? words[1] : "solve";
  options.verb = verb_of(word);
  words.assign(1, "--help");
  if (word == "solve" || word == "help" || options.verb != Verb::solve) return true;
  const std::string nearest = nearest_verb(word);
  std::fprintf(stderr, "tovik: no verb is called '%s'%s\n", word.c_str(),
               nearest.empty() ? "" : ("; did you mean " + nearest + "?").c_str());
  return false;
}

/* A first word that is nearly a verb, and no file. */
bool mistyped_verb(const std::vector<std::string>& words, const Options& options) {
  if (words.empty() || options.verb != Verb::solve || words.front().find_first_of("./-") != std::string::npos)
    return false;
  const std::string nearest = nearest_verb(words.front());
  if (nearest.empty() || nearest == words.front() || std::filesystem::exists(words.front())) return false;
  std::fprintf(stderr, "tovik: '%s' is no file; did you mean tovik %s?\n", words.front().c_str(),
               nearest.c_str());
  return true;
}

/* For each option that does not exist the ones it nearly is: "--threds: did you mean --threads?" */
std::string near_options(const CLI::App& app, const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) {
    if (!word.starts_with("--")) continue;
    const std::string typed =
        word.substr(2, word.find('=') == std::string::npos ? word.npos : word.find('=') - 2);
    std::string nearest;
    std::size_t least = kNear + 1;
    for (const CLI::Option* option : app.get_options()) {
      for (const std::string& name : option->get_lnames()) {
        const std::size_t distance = edit_distance(typed, name);
        if (distance < least) nearest = name, least = distance;
      }
    }
    if (!nearest.empty() && least > 0) text += "--" + typed + ": did you mean --" + nearest + "?\n";
  }
  return text;
}

/* Each of these files belongs to one model. */
bool names_one_model_file(const Options& options) {
  for (const std::string* file :
       {&options.basis_file, &options.start_file, &options.filter_file, &options.solution_file,
        &options.pool_file, &options.new_basis_file, &options.model_file}) {
    if (!file->empty()) return true;
  }
  return false;
}

}  // namespace

std::variant<Options, ExitStatus> parse_options(int argc, const char* const* argv) {
  Options options;
  std::vector<std::string> words(argv + (argc > 0 ? 1 : 0), argv + argc);
  if (!words.empty() && (words.front() == "solve" || verb_of(words.front()) != Verb::solve)) {
    options.verb = verb_of(words.front());
    words.erase(words.begin());
  }
  const bool help = !words.empty() && words.front() == "help" && options.verb == Verb::solve;
  if (help && !take_help(words, options)) return ExitStatus::usage;
  if (!help && mistyped_verb(words, options)) return ExitStatus::usage;
  CLI::App app;
  describe(app, options);
  const bool nothing_said = words.empty() && options.verb != Verb::params;
  if (nothing_said) words.emplace_back("--help");
  try {
    std::vector<std::string> reversed(words.rbegin(),
                                      words.rend());  // the order that the parser takes a vector in
    app.parse(std::move(reversed));
  } catch (const CLI::CallForVersion&) {
    options.verb = Verb::version;
  } catch (const CLI::CallForHelp&) {
    std::fputs(app.help().c_str(), stdout);
    return nothing_said ? ExitStatus::usage : ExitStatus::solved;
  } catch (const CLI::ParseError& error) {
    std::fprintf(stderr, "tovik: %s\n%sRun tovik help%s for the options.\n", error.what(),
                 near_options(app, words).c_str(), verb_suffix(options.verb).c_str());
    return ExitStatus::usage;
  }
  if (options.verb == Verb::solve && options.models.size() > 1 && names_one_model_file(options)) {
    std::fputs("tovik: files to start from and to write belong to one model; give one model\n", stderr);
    return ExitStatus::usage;
  }
  return options;
}

}  // namespace tovik::cli
