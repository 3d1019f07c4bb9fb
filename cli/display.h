/* The verb `display`: a model in a few lines, or those of its items whose names fit a pattern. */
#pragma once

#include "cli/library.h"
#include "cli/options.h"

namespace tovik::cli {

ExitStatus display_model(const Environment& environment, const Options& options);

}  // namespace tovik::cli
