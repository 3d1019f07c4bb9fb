/* One model from file to outcome. */
#pragma once

#include "cli/console.h"
#include "cli/library.h"
#include "cli/options.h"
#include "cli/outcome.h"
#include "cli/signals.h"

namespace tovik::cli {

struct SolveContext {
  const Environment& environment;
  Console& console;
  Signals& signals;
  const Options& options;
};

/* What a model was in when an error came; it decides the exit status. */
enum class Stage { reading, solving, writing };

/* Whether the values are to be shown, as text or as JSON. */
bool wants_values(const Options& options, int columns);

/* Reads, optimizes and checks `file`: a network by the network simplex, unless an option asks for what only its linear
 * problem has (a basis or solution file, another method). Errors of the library end up in the outcome, never outside. */
Outcome solve_file(const SolveContext& context, const std::string& file);

}  // namespace tovik::cli
