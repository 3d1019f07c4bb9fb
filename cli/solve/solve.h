/* One model from file to outcome. */
#pragma once

#include <functional>

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

/* Reads, optimizes and checks `file`; `show` sees the model while it still exists. Errors of the library end
 * up in the outcome, never outside. */
Outcome solve_file(const SolveContext& context, const std::string& file,
                   const std::function<void(const Model&, const Outcome&)>& show);

}  // namespace tovik::cli
