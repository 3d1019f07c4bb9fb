/* Names that an LP file cannot hold: its writer changes them all, and only who converts a model needs to know. */
#pragma once

#include <string>

#include "cli/library.h"

namespace tovik::cli {

/* Whether the name of a file tells that an LP file is written to it, compressed or not. */
bool is_lp_file(const std::string& file);
/* "1 of 2 rows, the first is 1st" for each of rows and columns, a line each; "" when an LP file can hold all. */
std::string names_not_in_lp(const Model& model);

}  // namespace tovik::cli
