/* What the program prints about a model: the closing block, the values, the JSON object. Texts end with a
 * newline. */
#pragma once

#include <string>

#include "cli/library.h"
#include "cli/outcome.h"

namespace tovik::cli {

std::string size_line(const Outcome& outcome);
/* Status, objective, Checked, work. `model` gives the names of the worst places. */
std::string closing_block(const Model& model, const Outcome& outcome);
/* Columns with value and reduced cost; rows with activity and dual value when `with_rows`. */
std::string value_table(const Model& model, const Outcome& outcome, bool with_rows);
/* outcome.statistics for people to read: still one JSON object, over many lines. */
std::string statistics_block(const Outcome& outcome);
/* One object on one line; a value that does not exist, or is no finite number, is null. */
std::string json_line(const Outcome& outcome, bool with_statistics);

}  // namespace tovik::cli
