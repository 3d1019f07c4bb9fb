/* The verb `verify`, from files to exit status. */
#pragma once

#include "cli/library.h"
#include "cli/options.h"

namespace tovik::cli {

ExitStatus verify_file(const Environment& environment, const Options& options);

}  // namespace tovik::cli
