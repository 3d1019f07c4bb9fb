/* The verb `check`: reads models and tells what looks wrong in them. */
#pragma once

#include "library.h"
#include "options.h"

namespace tovik::cli {

ExitStatus check_models(const Environment& environment, const Options& options);

}  // namespace tovik::cli
