/* What `check` prints of a model: a line for each kind of finding with advice and the worst items below it,
 * or one JSON object. */
#pragma once

#include <optional>
#include <string>

#include "cli/check/findings.h"

namespace tovik::cli {

struct LintReport {
  std::string file;
  std::string problem_type;  // empty when the model could not be read
  int rows = 0, columns = 0, nonzeros = 0;
  std::optional<Findings> findings;
  std::string error;
};

std::string lint_text(const LintReport& report, bool notes);
std::string lint_json(const LintReport& report);

}  // namespace tovik::cli
