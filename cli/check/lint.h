/* The verb `check`: reads models and tells what looks wrong in them. */
#pragma once

#include "cli/library.h"
#include "cli/options.h"

namespace tovik::cli {

ExitStatus check_models(const Environment& environment, const Options& options);

}  // namespace tovik::cli
