/* What the program prints about a model: the closing block, the values, the JSON object. Texts end with a
 * newline. */
#pragma once

#include <string>

#include "cli/outcome.h"

namespace tovik::cli {

std::string size_line(const Outcome& outcome);
/* Status, objective, Checked, work. */
std::string closing_block(const Outcome& outcome);
/* The outcome's values: columns with reduced costs, rows with dual values. */
std::string value_table(const Outcome& outcome);
/* outcome.statistics for people to read: still one JSON object, over many lines. */
std::string statistics_block(const Outcome& outcome);
/* One object on one line; a value that does not exist, or is no finite number, is null. */
struct JsonParts {
  bool values = false, statistics = false;
};
std::string json_line(const Outcome& outcome, JsonParts with);

}  // namespace tovik::cli
