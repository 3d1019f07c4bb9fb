/* The command line of the program. */
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "cli/outcome.h"

namespace tovik::cli {

/* One setting, in the order of the command line: the later one wins. */
struct Assignment {
  std::string origin;  // the option as the user knows it, for messages: "--set", "--gap"
  std::string name;    // as given: any case, with or without the prefix, or a number
  std::string value;
};

enum class Verb { solve, params, convert, verify, check, display, version };

struct Options {
  Verb verb = Verb::solve;
  std::vector<std::string> models;  // of `convert`: the one to read and the one to write; of `verify`: model,
                                    // solution; of `display`: model, pattern
  std::string pattern;              // of `params`
  std::vector<Assignment> assignments;
  std::string params_file;
  std::string basis_file, start_file;                     // to read before the solve
  std::string filter_file;                                // the same: filters of the pool
  std::string solution_file, new_basis_file, model_file;  // to write
  std::string pool_file;                                  // the same: all solutions of the pool
  bool populate = false;                                  // fill the pool
  bool exact = false;                                     // the solution with every digit
  std::string log_file;
  bool relax = false;
  bool quiet = false;
  bool verbose = false;
  bool all = false;  // of `params`: those without effect too
  bool print_values = false;
  bool json = false;
  bool statistics = false;  // what the optimization has counted
  bool exit_zero = false;
  bool lenient = false;             // a model from which text of its file is missing counts
  int pick = 1;                     // of `verify`: which solution of the file, from 1
  bool zeros = false;               // columns without a value are 0
  std::optional<double> tolerance;  // in place of the parameters
  int most = 5;                     // of `check`: findings of a kind that are shown
  bool strict = false;              // warnings count as errors
};

/* The options, or the exit status when there is nothing to do: help was printed, or the line is wrong. */
std::variant<Options, ExitStatus> parse_options(int argc, const char* const* argv);

}  // namespace tovik::cli
