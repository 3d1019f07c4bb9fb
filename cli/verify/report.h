/* What `verify` prints: a block of text, or one JSON object. */
#pragma once

#include <string>

#include "cli/verify/measures.h"

namespace tovik::cli {

struct VerifyReport {
  std::string model_file, solution_file;
  int pick = 1;              // which solution, from 1
  std::string problem_type;  // empty when the model could not be read
  Claim claim;
  Tolerances tolerances;
  std::optional<Verdict> verdict;  // none: the files do not allow one
  std::string error;               // why
};

std::string verify_text(const VerifyReport& report);
std::string verify_json(const VerifyReport& report);

}  // namespace tovik::cli
